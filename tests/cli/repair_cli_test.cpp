// velmora repair end to end on a bundled example: exit status, printed IRIs, the files it writes, and
// input it refuses without writing anything.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <regex>

#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "cli_fixture.h"
#include "support/test_support.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::ReadBytes;
using testing::SourceDir;
using testing::TempDir;

class RepairCliTest : public testing::CliTest {
 protected:
  // Runs `velmora -o <temp>/out --quiet repair <arguments>`; returns the exit status.
  int Repair(const std::string& arguments) { return Run("repair " + arguments); }
  std::string Out() const { return Stdout(); }
  std::string Err() const { return Stderr(); }
  static std::string Road() { return "'" + (SourceDir() / "examples" / "road_b.erd").string() + "'"; }
};

bool StartsWith(const std::string& text, const std::string& head) { return text.rfind(head, 0) == 0; }

TEST_F(RepairCliTest, WritesTheFiveStudyFilesAndPrintsTheThreeIris) {
  ASSERT_EQ(Repair(Road() + " --long 51.2 --short 4 --length 10"), 0) << Err();
  const auto names = Written();
  ASSERT_EQ(names.size(), 5u);
  EXPECT_TRUE(StartsWith(names[0], "road_b_3波分解(IRI)_")) << names[0];
  EXPECT_TRUE(StartsWith(names[1], "road_b_3波分解(Profile)_")) << names[1];
  EXPECT_TRUE(StartsWith(names[2], "road_b_S波(IRI)_")) << names[2];
  EXPECT_TRUE(StartsWith(names[3], "road_b_S波_")) << names[3];
  EXPECT_TRUE(StartsWith(names[4], "road_b_理想形状_")) << names[4];
  const std::string profile = FromSystemCodePage(ReadBytes(temp / "out" / names[1]));
  EXPECT_TRUE(StartsWith(profile, "Distance(m), Profile, L波, M波, S波\r\n0.00000, ")) << profile.substr(0, 80);
  // 5000 samples: a head line and one line per sample.
  EXPECT_EQ(std::count(profile.begin(), profile.end(), '\n'), 5001);

  std::smatch m;
  const std::string out = Out();
  ASSERT_TRUE(std::regex_match(out, m,
                               std::regex("road_b\tIRI ([0-9.]+) mm/m\tcorrected ([0-9.]+) mm/m\tideal ([0-9.]+) mm/m\n")))
      << out;
  // No band lines: S' is S, so the ideal shape is the corrected profile and has its IRI.
  EXPECT_EQ(m[2].str(), m[3].str());
  EXPECT_GT(std::stod(m[1].str()), 0);
}

TEST_F(RepairCliTest, RegisteredWavesAreErdProfilesWithMarkedTitles) {
  ASSERT_EQ(Repair(Road() + " --register L,ideal"), 0) << Err();
  std::vector<std::string> erds;
  for (const auto& name : Written())
    if (name.size() > 4 && name.substr(name.size() - 4) == ".ERD") erds.push_back(name);
  ASSERT_EQ(erds.size(), 2u);
  EXPECT_TRUE(StartsWith(erds[0], "road_b_L波_")) << erds[0];
  EXPECT_TRUE(StartsWith(erds[1], "road_b_理想形状案_")) << erds[1];
  ErdRecord wave;
  ASSERT_TRUE(ReadERD((temp / "out" / erds[0]).string(), wave));
  EXPECT_EQ(wave.NumSamples, 5000);
  EXPECT_EQ(wave.Title, "Test road B, right wheel path(L)");
}

TEST_F(RepairCliTest, ABoundaryTheChecksRefuseStopsWithItsMessageAndNoFile) {
  EXPECT_EQ(Repair(Road() + " --long 5l.2"), 1);
  EXPECT_NE(Err().find("長波側境界値は数値で指定して下さい。"), std::string::npos) << Err();
  EXPECT_TRUE(Written().empty());
  EXPECT_EQ(Repair(Road() + " --short ''"), 1);
  EXPECT_NE(Err().find("短波側境界値が指定されていません。"), std::string::npos) << Err();
  EXPECT_TRUE(Written().empty());
  // Options of the command line itself are checked before any work.
  EXPECT_EQ(Repair(Road() + " --register L,X"), 2);
  EXPECT_NE(Err().find("--register: \"X\" is none of L, M, S, ideal"), std::string::npos) << Err();
  EXPECT_EQ(Repair(Road() + " --lines 1,2,3"), 2);
  EXPECT_NE(Err().find("--lines: nine limits are needed (mm), got 3"), std::string::npos) << Err();
  EXPECT_EQ(Repair(Road() + " --plan-range 0.1"), 2);
  EXPECT_NE(Err().find("--plan-range: two KP values in km are needed"), std::string::npos) << Err();
  EXPECT_TRUE(Written().empty());
}

TEST_F(RepairCliTest, BadAdjustmentFileIsNamedWithItsLineAndNothingIsWritten) {
  const fs::path adjust = temp / "adjust.csv";
  WriteSystemTextFile(adjust, {"KP(km),厚さ(mm)", "0.1,5", "0.2;3"});
  EXPECT_EQ(Repair(Road() + " --adjust '" + adjust.string() + "'"), 2);
  EXPECT_NE(Err().find(adjust.string() + ": line 3: expected \"KP(km),thickness(mm)\", got \"0.2;3\""), std::string::npos)
      << Err();
  EXPECT_TRUE(Written().empty());
  // A KP beyond the road's 249.95 m.
  WriteSystemTextFile(adjust, {"0.3,5"});
  EXPECT_EQ(Repair(Road() + " --adjust '" + adjust.string() + "'"), 2);
  EXPECT_NE(Err().find("KP 0.300 km lies outside the profile road_b"), std::string::npos) << Err();
  EXPECT_TRUE(Written().empty());
}

TEST_F(RepairCliTest, AdjustedStudyChangesTheCorrectedProfile) {
  ASSERT_EQ(Repair(Road()), 0) << Err();
  const std::string plain = Out();
  fs::remove_all(temp / "out");
  const fs::path adjust = temp / "adjust.csv";
  WriteSystemTextFile(adjust, {"KP(km),厚さ(mm)", "0.1,5"});
  ASSERT_EQ(Repair(Road() + " --adjust '" + adjust.string() + "'"), 0) << Err();
  // Same profile IRI; a 5 mm change at one point gives another corrected profile.
  EXPECT_EQ(plain.substr(0, plain.find("\tcorrected")), Out().substr(0, Out().find("\tcorrected")));
  EXPECT_NE(plain, Out());
}

TEST_F(RepairCliTest, HelpStatesTheUnits) {
  const std::string command = "'" VELMORA_BIN_DIR "/velmora' repair --help >'" + (temp / "stdout.txt").string() + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const std::string help = Out();
  for (const char* unit : {"boundary, m", "base length of the study, m", "mm", "KP in km", "(mm/m)"})
    EXPECT_NE(help.find(unit), std::string::npos) << unit;
}

}  // namespace
}  // namespace velmora
