// Every command meets every kind of bad input file with one message naming the file, exit status 1,
// no result file and no scratch tree left behind; and a disk that fills up mid-run costs no earlier
// result.
#include <map>

#include "cli_fixture.h"

namespace velmora {
namespace {

using testing::CliTest;

// Each command as it is given one profile file ({F}); xcorr needs a pair.
const char* const kCommands[] = {
    "info {F}",          "convert {F}",   "filter {F}",         "iri {F}",         "octave {F}",
    "psd {F}",           "reduce {F}",    "repair {F}",         "stats {F}",       "summary {F}",
    "tool reverse {F}",  "xcorr {F} {F}",
};

struct BadInput {
  const char* name;
  std::string bytes;    // the file's contents; "<missing>" for no file, "<folder>" for an empty folder
  const char* message;  // what the line after the file's name says (English)
};

const std::string kHead =
    "ERDFILEV2.00\r\n      1,      3,      3,      1,      5, 0.100000    ,     -1,\r\n"
    "TITLE   t\r\nUNITSNAMm\r\nEND\r\n";

const BadInput kBadInputs[] = {
    {"missing.erd", "<missing>", "no such file"},
    {"empty", "<folder>", "no ERD file in this folder"},
    {"empty.erd", "", "not an ERD file"},
    {"binary.erd", std::string("\x7F" "ELF\x02\x01\x01\x00\xFF\xFE", 10), "not an ERD file"},
    {"bom.erd", "\xEF\xBB\xBF" + kHead + "1\r\n", "not an ERD file"},
    // 1e307 m is 1e310 mm: not finite.
    {"metres.erd", kHead + "1\r\n1e307\r\n2\r\n", "line 7: the value \"1e307\" is out of range in mm"},
};

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at; (at = text.find(from)) != std::string::npos;) text.replace(at, from.size(), to);
  return text;
}

TEST_F(CliTest, EveryCommandNamesTheBadFileAndWritesNothing) {
  const std::filesystem::path scratch = temp / "scratch";
  std::filesystem::create_directories(scratch);
  ::setenv("TMPDIR", scratch.c_str(), 1);
  for (const BadInput& input : kBadInputs) {
    const std::filesystem::path file = temp / input.name;
    if (input.bytes == "<folder>") std::filesystem::create_directories(file);
    else if (input.bytes != "<missing>") testing::WriteBytes(file, input.bytes);
    for (const char* command : kCommands) {
      const std::string line = Replaced(command, "{F}", "'" + file.string() + "'");
      EXPECT_EQ(Run(line, "out", "en"), 1) << line << "\n" << Stderr();
      const std::string expected = file.string() + ": " + input.message;
      EXPECT_NE(Stderr().find(expected), std::string::npos) << line << "\n" << Stderr();
      EXPECT_TRUE(Written().empty()) << line;
      EXPECT_TRUE(std::filesystem::is_empty(scratch)) << line;
    }
  }
  ::unsetenv("TMPDIR");
}

TEST_F(CliTest, ImportNamesTheBadTextFileAndWritesNothing) {
  const struct {
    const char* name;
    std::string bytes;
    const char* message;
  } cases[] = {
      {"missing.csv", "<missing>", "no such file"},
      {"empty.csv", "", "empty file"},
      // 0xFF is no Shift-JIS byte; the first line is plain.
      {"binary.csv", "1,2\r\n\x7F\xFF\x00\x01\r\n", "line 2: bytes that are not Shift-JIS text (0xFF)"},
  };
  for (const auto& c : cases) {
    const std::filesystem::path file = temp / c.name;
    if (c.bytes != "<missing>") testing::WriteBytes(file, c.bytes);
    EXPECT_EQ(Run("import '" + file.string() + "' --pitch 0.1", "out", "en"), 1) << c.name << "\n" << Stderr();
    EXPECT_NE(Stderr().find(file.string() + ": " + c.message), std::string::npos) << Stderr();
    EXPECT_TRUE(Written().empty()) << c.name;
  }
}

// The run's files are made in its scratch tree and only then put in place: when the disk fills up,
// the results of the run before stay as they were.
TEST_F(CliTest, ADiskThatFillsUpMidRunLeavesThePreviousResults) {
  const std::string road = Example("road_b.erd");
  ASSERT_EQ(Run("--no-timestamp octave " + road), 0) << Stderr();
  std::map<std::string, std::string> before;
  for (const std::string& name : Written()) before[name] = testing::ReadBytes(temp / "out" / name);
  ASSERT_FALSE(before.empty());
  // The shell ignores SIGXFSZ and limits files to 64 blocks, and the program inherits both.
  const std::string command = "trap '' XFSZ; ulimit -f 64; VELMORA_HOME='" + (temp / "home").string() + "' '" VELMORA_BIN_DIR
                              "/velmora' -o '" + (temp / "out").string() + "' --quiet --no-timestamp octave " + road +
                              " >/dev/null 2>'" + (temp / "stderr.txt").string() + "'";
  const int status = std::system(command.c_str());
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status << "\n" << Stderr();
  EXPECT_FALSE(Stderr().empty());
  EXPECT_EQ(Written().size(), before.size());
  for (const auto& [name, bytes] : before) EXPECT_EQ(testing::ReadBytes(temp / "out" / name), bytes) << name;
}

}  // namespace
}  // namespace velmora
