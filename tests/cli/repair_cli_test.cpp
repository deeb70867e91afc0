// velmora repair end to end on a bundled example: exit status, printed IRIs and the files it writes.
#include <regex>

#include "base/session.h"
#include "cli_fixture.h"
#include "profile/erd_file.h"

namespace velmora {
namespace {

// Reads back what the program wrote; nothing here asks anything.
Session quiet_;

using testing::CliTest;

TEST_F(CliTest, WritesTheFiveStudyFilesTheRegisteredWavesAndPrintsTheThreeIris) {
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --long 51.2 --short 4 --length 10 --register L,ideal"), 0)
      << Stderr();
  std::vector<std::string> study, erds;
  for (const auto& name : Written()) (name.ends_with(".ERD") ? erds : study).push_back(name);
  ExpectHeads(study, {"road_b_3波分解(IRI)_", "road_b_3波分解(Profile)_", "road_b_S波(IRI)_", "road_b_S波_",
                      "road_b_理想形状_"});
  ASSERT_EQ(study.size(), 5u);
  const std::string profile = FromSystemCodePage(testing::ReadBytes(temp / "out" / study[1]));
  EXPECT_EQ(profile.rfind("Distance(m), Profile, L波, M波, S波\r\n0.00000, ", 0), 0u) << profile.substr(0, 80);
  // 5000 samples: a head line and one line per sample.
  EXPECT_EQ(std::count(profile.begin(), profile.end(), '\n'), 5001);

  // The three IRIs on one line, then one line per registered wave.
  const std::string out = Stdout(), iris = out.substr(0, out.find('\n') + 1);
  std::smatch m;
  ASSERT_TRUE(std::regex_match(
      iris, m, std::regex("road_b\tIRI ([0-9.]+) mm/m\tcorrected ([0-9.]+) mm/m\tideal ([0-9.]+) mm/m\n")))
      << out;
  // No band lines: S' is S, so the ideal shape is the corrected profile and has its IRI.
  EXPECT_EQ(m[2].str(), m[3].str());
  EXPECT_GT(std::stod(m[1].str()), 0);

  // The registered waves are ERD profiles with marked titles.
  ExpectHeads(erds, {"road_b_L波_", "road_b_理想形状案_"});
  ASSERT_EQ(erds.size(), 2u);
  EXPECT_EQ(out.substr(iris.size()), "registered\t" + erds[0] + "\nregistered\t" + erds[1] + "\n");
  ErdRecord wave;
  ASSERT_TRUE(ReadERD(quiet_, (temp / "out" / erds[0]).string(), wave));
  EXPECT_EQ(wave.NumSamples, 5000);
  EXPECT_EQ(wave.Title, "Test road B, right wheel path(L)");
}

TEST_F(CliTest, AdjustedStudyChangesTheCorrectedProfile) {
  ASSERT_EQ(Run("repair " + Example("road_b.erd")), 0) << Stderr();
  EXPECT_EQ(Written().size(), 5u);  // nothing registered unless asked
  const std::string plain = Stdout();
  std::filesystem::remove_all(temp / "out");
  const std::filesystem::path adjust = temp / "adjust.csv";
  WriteSystemTextFile(adjust, {"KP(km),厚さ(mm)", "0.1,5"});
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --adjust '" + adjust.string() + "'"), 0) << Stderr();
  // Same profile IRI; a 5 mm change at one point gives another corrected profile.
  EXPECT_EQ(plain.substr(0, plain.find("\tcorrected")), Stdout().substr(0, Stdout().find("\tcorrected")));
  EXPECT_NE(plain, Stdout());
}

}  // namespace
}  // namespace velmora
