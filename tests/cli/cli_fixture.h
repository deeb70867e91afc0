#pragma once
// Runs the velmora program with its scratch tree and output folder under a test's temporary folder,
// and reads back what it wrote.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "base/session.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "support/checks.h"

namespace velmora::testing {

using Texts = std::vector<std::string>;

class CliTest : public ::testing::Test {
 protected:
  // Runs the program with `arguments` and -o `out` (relative to the test's folder), messages in
  // `lang`; the exit status.
  int Run(const std::string& arguments, const std::string& out = "out", const std::string& lang = "ja") {
    return Status(std::system(CommandFor(arguments, out, lang).c_str()));
  }
  // The same with the program's address space limited to `kilobytes` (ulimit -v).
  int RunWithin(std::int64_t kilobytes, const std::string& arguments) {
    return Status(std::system(("ulimit -v " + std::to_string(kilobytes) + "; " + CommandFor(arguments, "out", "ja")).c_str()));
  }
  std::string Stdout() const { return ReadBytes(temp / "stdout.txt"); }
  std::string Stderr() const { return ReadBytes(temp / "stderr.txt"); }

  Texts Written(const std::string& out = "out") const { return FileNames(temp / out); }
  // The one written file whose name holds `part`; fails the test when there is not exactly one.
  std::filesystem::path WrittenWith(const std::string& part, const std::string& out = "out") const {
    Texts hits;
    for (const std::string& name : Written(out))
      if (name.find(part) != std::string::npos) hits.push_back(name);
    EXPECT_EQ(hits.size(), 1u) << part;
    return hits.empty() ? temp / out / "none" : temp / out / hits.front();
  }
  Texts LinesOf(const std::string& part, const std::string& out = "out") const {
    return ReadSystemTextLines(WrittenWith(part, out));
  }
  // A written ERD file read back; nothing is asked while reading.
  static ErdRecord ErdOf(const std::filesystem::path& path) {
    Session quiet;
    ErdRecord erd;
    EXPECT_TRUE(ReadERD(quiet, path.string(), erd)) << path;
    return erd;
  }
  std::string Example(const char* name) const { return "'" + (SourceDir() / "examples" / name).string() + "'"; }

  // A one-channel ERD file of `values` (mm) at `pitch` m, from `kp` km when given, written by hand; its
  // quoted path.
  std::string WriteErd(const std::string& name, const std::vector<double>& values, double pitch,
                       std::optional<double> kp = std::nullopt) const {
    std::ostringstream text;
    text << "ERDFILEV2.00\r\n      1, " << values.size() << ", " << values.size() << ",      1,      5, " << pitch
         << "    ,     -1,\r\nTITLE   " << name;
    if (kp) text << "｜" << std::fixed << std::setprecision(5) << *kp << "+0" << std::defaultfloat;
    text << "\r\nSHORTNAMRElev.\r\nLONGNAMELeft Elevation\r\nUNITSNAMmm\r\n"
         << "GENNAME Elevation\r\nXLABEL  Distance\r\nXUNITS  m\r\nFORMAT  (G14.6)\r\nEND\r\n";
    text.precision(10);
    for (double v : values) text << v << " \r\n";
    WriteBytes(temp / (name + ".erd"), ToSystemCodePage(text.str()));
    return "'" + (temp / (name + ".erd")).string() + "'";
  }

  TempDir temp;

 private:
  std::string CommandFor(const std::string& arguments, const std::string& out, const std::string& lang) const {
    return "VELMORA_HOME='" + (temp / "home").string() + "' '" VELMORA_BIN_DIR "/velmora' -o '" + (temp / out).string() +
           "' --quiet --lang " + lang + " " + arguments + " >'" + (temp / "stdout.txt").string() + "' 2>'" +
           (temp / "stderr.txt").string() + "'";
  }
  static int Status(int status) { return WIFEXITED(status) ? WEXITSTATUS(status) : -1; }
};

// The fields of a CSV line of the result files (", " between fields).
inline Texts Fields(const std::string& line) {
  Texts out;
  std::size_t from = 0;
  for (std::size_t at; (at = line.find(", ", from)) != std::string::npos; from = at + 2)
    out.push_back(line.substr(from, at - from));
  out.push_back(line.substr(from));
  return out;
}

}  // namespace velmora::testing
