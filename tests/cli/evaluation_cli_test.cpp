// velmora stats and velmora xcorr end to end on ERD files written here: exit status, the files in -o
// and their first lines, and a refused pitch mismatch.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "cli_fixture.h"
#include "support/profile_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

using testing::Ramp;
using testing::Road;

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::TempDir;

class EvaluationCliTest : public testing::CliTest {
 protected:
  // An ERD file of one channel in mm; its quoted path.
  std::string Erd(const std::string& name, double pitch, const std::vector<double>& samples, double kp) {
    ErdRecord rec;
    rec.NumChannels = 1;
    rec.FormatCode = 5;
    rec.NumSamples = rec.NumSamplesHeader = static_cast<std::int32_t>(samples.size());
    rec.IsMetric = true;
    rec.StepSize = pitch;
    rec.KpStart = kp;
    rec.Title = name;
    rec.Elevation = Array1<double>(samples);
    const fs::path path = temp / "in" / (name + ".erd");
    fs::create_directories(path.parent_path());
    EXPECT_TRUE(WriteERD(path.string(), rec)) << path;
    return "'" + path.string() + "'";
  }
  std::string Named(const std::string& prefix) const {
    for (const auto& name : Written())
      if (name.rfind(prefix, 0) == 0) return name;
    return {};
  }

};

TEST_F(EvaluationCliTest, StatsWritesOnePagePerFileWithFiguresByHand) {
  const std::string a = Erd("A", 0.25, Ramp(400), 1.0);
  const std::string b = Erd("B", 0.25, Ramp(400, true), 1.0);
  ASSERT_EQ(Run("stats " + a + " " + b + " --bands full --stats mean,sd --order stat,profile,band"), 0) << ReadBytes(temp / "stderr.txt");
  const auto names = Written();
  ASSERT_EQ(names.size(), 4u);
  for (const auto& name : names) EXPECT_EQ(name.rfind("統計値_", 0), 0u) << name;
  const auto whole = ReadSystemTextLines(temp / "out" / Named("統計値_全区間(Prof)_"));
  ASSERT_EQ(whole.size(), 4u);
  EXPECT_EQ(whole[0], "プロファイル,A,B,A,B");
  EXPECT_EQ(whole[1], "帯域,全波長,全波長,全波長,全波長");
  // Means 200.5 and 799.5; the deviation of 400 equally spaced values sqrt((400² - 1) / 12) = 115.46969...
  EXPECT_EQ(whole[3].rfind("全区間,200.50000000,799.50000000,115.4696", 0), 0u) << whole[3];
  const auto tens = ReadSystemTextLines(temp / "out" / Named("統計値_10m(Prof)_"));
  ASSERT_EQ(tens.size(), 14u);  // three head rows, "KP", ten sections from 1.000 km
  EXPECT_EQ(tens[3], "KP,,,,");
  EXPECT_EQ(tens[4].rfind("1.000,20.50000000,979.50000000,", 0), 0u) << tens[4];
  EXPECT_NE(ReadBytes(temp / "stdout.txt").find("10m(Prof)"), std::string::npos);

  // The IRI side only, on a flat road.
  fs::remove_all(temp / "out");
  const std::string flat = Erd("F", 0.25, std::vector<double>(400, 5.0), 1.0);
  ASSERT_EQ(Run("stats " + flat + " --no-profile --bands full --stats mean --iri-lengths 10c,100"), 0)
      << ReadBytes(temp / "stderr.txt");
  const auto iri = ReadSystemTextLines(temp / "out" / Named("統計値_全区間(IRI)_"));
  ASSERT_GE(iri.size(), 5u);
  EXPECT_EQ(iri[0], "プロファイル,F,F");
  EXPECT_EQ(iri[1], "IRI算出基準長,10m連続,100m固定");
  // A flat road moves the quarter car not at all: its IRI is 0 everywhere.
  EXPECT_EQ(iri[4], "全区間,0.00000000,0.00000000");
}

TEST_F(EvaluationCliTest, StatsRefusesAnEmptySelectionOfStatistics) {
  const std::string a = Erd("A", 0.25, Ramp(400), 1.0);
  EXPECT_NE(Run("stats " + a + " --stats ''"), 0);
  EXPECT_NE(Run("stats " + a + " --no-profile"), 0);
  EXPECT_NE(ReadBytes(temp / "stderr.txt").find("nothing to compute"), std::string::npos);
  EXPECT_TRUE(Written().empty());
  EXPECT_NE(Run("stats --help"), 1);
  const std::string help = ReadBytes(temp / "stdout.txt");
  EXPECT_NE(help.find("mm/m"), std::string::npos) << help;
  EXPECT_NE(help.find("in m"), std::string::npos) << help;
}

TEST_F(EvaluationCliTest, XcorrPrintsTheTableWritesSixFilesAndTheShiftedCopy) {
  // A's feature at index k lies at k + 3 in B: the shift against A is 3 and the copy is "B-3P".
  const std::string a = Erd("A", 0.25, Road(400, 3), 1.0);
  const std::string b = Erd("B", 0.25, Road(400), 1.0);
  ASSERT_EQ(Run("xcorr " + a + " " + b + " --filter none --measure shift --register-shifted"), 0)
      << ReadBytes(temp / "stderr.txt");
  const std::string out = ReadBytes(temp / "stdout.txt");
  // One row per profile under the names; only B's row under A's column holds a pair.
  EXPECT_EQ(out.rfind("\tA\tB\nA\t\t\nB\t3\t\n平均(基準)\t3.00000\t0.00000\n", 0), 0u) << out;
  EXPECT_NE(out.find("registered B-3P"), std::string::npos);
  const auto names = Written();
  ASSERT_EQ(names.size(), 7u);
  EXPECT_EQ(names[0], "B-3P.ERD");
  const auto shift = ReadSystemTextLines(temp / "out" / Named("CC_ずらし量_"));
  EXPECT_EQ(shift[0], ",,,,,,,ずらし量");
  ErdRecord copy;
  ASSERT_TRUE(ReadERD((temp / "out" / "B-3P.ERD").string(), copy));
  EXPECT_NEAR(copy.KpStart, 1.0 - 3 * 0.25 / 1000, 1e-9);  // km
  EXPECT_EQ(copy.Title, "B(-3P)");
}

TEST_F(EvaluationCliTest, XcorrRefusesMixedPitchesWithTheExactMessage) {
  const std::string a = Erd("A", 0.25, Road(100), 1.0);
  const std::string b = Erd("B", 0.1, Road(100), 1.0);
  EXPECT_NE(Run("xcorr " + a + " " + b), 0);
  const std::string err = ReadBytes(temp / "stderr.txt");
  EXPECT_NE(err.find("対象プロファイルのサンプルピッチは全て同じにしてください。"), std::string::npos) << err;
  EXPECT_NE(err.find("A ： 0.2500"), std::string::npos) << err;
  EXPECT_NE(err.find("B ： 0.1000"), std::string::npos) << err;
  EXPECT_NE(err.find("確認してください。"), std::string::npos) << err;
  EXPECT_TRUE(Written().empty());
  EXPECT_NE(Run("xcorr " + a + " " + a + " --max-shift 99"), 0);  // beyond CommonCount - 2 = 98
  EXPECT_NE(ReadBytes(temp / "stderr.txt").find("０ < [最大ずらし量] <= ９８　の範囲で指定してください"),
            std::string::npos)
      << ReadBytes(temp / "stderr.txt");
}

}  // namespace
}  // namespace velmora
