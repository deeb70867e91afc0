// Nothing lost on the way out: a write that fails midway leaves the previous file byte for byte, for
// every kind of writer; what the ERD writer writes, its reader reads back; and a huge file that cannot
// be a profile is refused in bounded memory.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cfloat>
#include <cmath>
#include <fstream>
#include <functional>
#include <random>

#include "base/file_helpers.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "support/checks.h"
#include "support/test_support.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::TempDir;
using testing::WriteBytes;

// Runs `write` with files limited to `bytes` and SIGXFSZ ignored, as on a file system that fills up.
void WithFileSizeLimit(rlim_t bytes, const std::function<void()>& write) {
  rlimit saved{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
  auto* previous = signal(SIGXFSZ, SIG_IGN);
  rlimit tight = saved;
  tight.rlim_cur = bytes;
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &tight), 0);
  try {
    write();
    ADD_FAILURE() << "the write did not fail";
  } catch (const LegacyError& error) {
    EXPECT_EQ(error.Number(), ErrorNumber::DiskFull) << error.what();
  }
  setrlimit(RLIMIT_FSIZE, &saved);
  signal(SIGXFSZ, previous);
}

ErdRecord Profile(std::size_t count, double pitch) {
  ErdRecord rec;
  rec.NumChannels = 1;
  rec.FormatCode = 5;
  rec.StepSize = pitch;
  rec.Title = "road";
  rec.ShortName[1] = "LElev.";
  rec.YLabel = "Elevation";
  rec.XLabel = "Distance";
  std::vector<double> samples(count);
  for (std::size_t i = 0; i < count; ++i) samples[i] = std::sin(0.01 * static_cast<double>(i)) * 10;
  rec.Elevation = Array1<double>(std::move(samples));
  rec.NumSamples = static_cast<std::int32_t>(count);
  return rec;
}

TEST(SafeWrites, AWriteThatFailsMidwayLeavesThePreviousFileAndNoTemporary) {
  TempDir temp;
  const fs::path target = temp / "target";
  const std::string previous = "the previous contents\r\n";
  WriteBytes(temp / "big.source", std::string(300'000, 'x'));
  const std::vector<std::string> lines(20'000, "0.12345678,1.23456789");
  const struct {
    const char* name;
    std::function<void()> write;
  } writers[] = {
      {"text lines", [&] { WriteSystemTextFile(target, lines); }},
      {"streamed lines",
       [&] {
         SystemTextWriter out(target);
         for (const auto& line : lines) out.Line(line);
         out.Commit();
       }},
      {"bytes", [&] { WriteFileBytesAtomically(target, std::string(300'000, 'b')); }},
      {"copy", [&] { uFileCopy_A((temp / "big.source").string(), target.string()); }},
      {"ERD", [&] { WriteERD(target.string(), Profile(20'000, 0.01)); }},
  };
  for (const auto& writer : writers) {
    WriteBytes(target, previous);
    WithFileSizeLimit(100'000, writer.write);
    EXPECT_EQ(ReadBytes(target), previous) << writer.name;
    EXPECT_EQ(testing::EntryNames(temp.path()), (std::vector<std::string>{"big.source", "target"})) << writer.name;
  }
}

TEST(SafeWrites, TheErdWriterRefusesWhatItsReaderWouldRefuseAndKeepsTheOldFile) {
  TempDir temp;
  const fs::path target = temp / "p.erd";
  WriteBytes(target, "old");
  ErdRecord tinyPitch = Profile(3, 0.0000004);  // "0.000000" in the file
  ErdRecord infinite = Profile(3, 0.1);
  infinite.Elevation[2] = std::numeric_limits<double>::infinity();
  for (const ErdRecord* rec : {&tinyPitch, &infinite}) {
    try {
      WriteERD(target.string(), *rec);
      ADD_FAILURE() << "written";
    } catch (const LegacyError& error) {
      EXPECT_NE(std::string(error.what()).find(target.string()), std::string::npos) << error.what();
    }
    EXPECT_EQ(ReadBytes(target), "old");
  }
}

// Random records, extremes among them: each read back holds its count and every value to the
// precision written: a mm value is rounded to 15 significant digits and then to eight decimals, as the
// legacy format does (half a unit of each), a pitch to six decimals of a m.
TEST(SafeWrites, EveryRecordTheWriterWritesReadsBackToThePrecisionWritten) {
  TempDir temp;
  std::mt19937_64 random(20261123);
  const double extremes[] = {0.0, -0.0, 1.79769313486231e308, -1.79769313486231e308, 1e300, -1e-300, 5e-9, 4.9999e-9,
                             123456789.123456789};
  for (int round = 0; round < 60; ++round) {
    const std::size_t count = 1 + random() % 200;
    const double pitch = std::pow(10.0, std::uniform_real_distribution<double>(-5.7, 3.0)(random));
    ErdRecord rec = Profile(count, pitch);
    for (std::size_t i = 1; i <= count; ++i) {
      const auto pick = random() % 4;
      rec.Elevation[static_cast<std::ptrdiff_t>(i)] =
          pick == 0 ? extremes[random() % std::size(extremes)]
                    : std::uniform_real_distribution<double>(-1.0, 1.0)(random) * std::pow(10.0, double(random() % 12));
    }
    const fs::path path = temp / "r.erd";
    WriteERD(path.string(), rec);
    testing::ScriptedUi ui;
    Session session(ui);
    ErdRecord back;
    ASSERT_TRUE(ReadERD(session, path.string(), back)) << round;
    ASSERT_EQ(back.NumSamples, rec.NumSamples);
    EXPECT_NEAR(back.StepSize, pitch, 5e-7 * (1 + 1e-9)) << round;
    EXPECT_GT(back.StepSize, 0);
    for (std::ptrdiff_t i = 1; i <= rec.NumSamples; ++i) {
      const double v = rec.Elevation[i];
      EXPECT_NEAR(back.Elevation[i], v, 5e-9 + std::fabs(v) * (5e-15 + 2 * DBL_EPSILON)) << round << " " << i;
    }
  }
}

// The resident and virtual sizes do not tell a reader that maps or buffers the file from one that does
// not; a limit on the address space does. The child reads with 50 MB more than it has at the start.
TEST(SafeWrites, ASparseFileOfTwoGigabytesIsRefusedInBoundedMemory) {
  TempDir temp;
  const fs::path path = temp / "sparse.erd";
  { std::ofstream(path) << ""; }
  fs::resize_file(path, std::uintmax_t{2} << 30);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit = static_cast<rlim_t>(pages) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + (50u << 20);
    rlimit cap{limit, limit};
    setrlimit(RLIMIT_AS, &cap);
    testing::ScriptedUi ui;
    Session session(ui);
    ErdRecord rec;
    bool refused = false;
    try {
      refused = !ReadERD(session, path.string(), rec);
    } catch (...) {
    }
    _exit(refused ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
}  // namespace velmora
