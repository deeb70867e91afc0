// velmora repair end to end on a bundled example: exit status, printed IRIs and the files it writes.
#include <regex>

#include "cli_fixture.h"

namespace velmora {
namespace {

using testing::CliTest;
using testing::ExpectHeads;
using testing::Texts;

TEST_F(CliTest, WritesTheFiveStudyFilesTheRegisteredWavesAndPrintsTheThreeIris) {
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --long 51.2 --short 4 --length 10 --lines ,,,,,,,, --register L,ideal"), 0)
      << Stderr();
  Texts study, erds;
  for (const auto& name : Written()) (name.ends_with(".ERD") ? erds : study).push_back(name);
  ExpectHeads(study, {"road_b_3波分解(IRI)_", "road_b_3波分解(Profile)_", "road_b_S波(IRI)_", "road_b_S波_",
                      "road_b_理想形状_"});
  ExpectHeads(erds, {"road_b_L波_", "road_b_理想形状案_"});
  // 5000 samples: a head line and one line per sample.
  const Texts profile = LinesOf("road_b_3波分解(Profile)_");
  EXPECT_EQ(profile.size(), 5001u);
  EXPECT_EQ(profile[0], "Distance(m), Profile, L波, M波, S波");
  EXPECT_EQ(profile[1].rfind("0.00000, ", 0), 0u) << profile[1];

  // The three IRIs on one line, then one line per registered wave.
  const std::string out = Stdout(), iris = out.substr(0, out.find('\n') + 1);
  std::smatch m;
  ASSERT_TRUE(std::regex_match(
      iris, m, std::regex("road_b\tIRI ([0-9.]+) mm/m\tcorrected ([0-9.]+) mm/m\tideal ([0-9.]+) mm/m\n")))
      << out;
  // No band lines: S' is S, so the ideal shape is the corrected profile and has its IRI.
  EXPECT_EQ(m[2].str(), m[3].str());
  EXPECT_GT(std::stod(m[1].str()), 0);
  // Then every written file, one path per line in name order.
  std::string paths;
  for (const std::string& name : Written()) paths += (temp / "out" / name).string() + "\n";
  EXPECT_EQ(out.substr(iris.size()), paths);
  // The registered waves are ERD profiles with marked titles.
  const ErdRecord wave = ErdOf(temp / "out" / erds.at(0));
  EXPECT_EQ(wave.NumSamples, 5000);
  EXPECT_EQ(wave.Title, "Test road B, right wheel path(L)");
}

TEST_F(CliTest, StudyTakesItsBandLinesFromTheSettingsUnlessAFlagGivesThem) {
  // The bundled Default.ini holds the lines 12, 8, 5, 3, 2, 1.2, 0.8, 0.5, 0.3 mm: naming them changes
  // nothing, clearing them changes the corrected profile.
  const auto firstLine = [this] { return Stdout().substr(0, Stdout().find('\n')); };
  ASSERT_EQ(Run("repair " + Example("road_b.erd")), 0) << Stderr();
  const std::string fromSettings = firstLine();
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --lines 12,8,5,3,2,1.2,0.8,0.5,0.3", "named"), 0) << Stderr();
  EXPECT_EQ(firstLine(), fromSettings);
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --lines ,,,,,,,,", "none"), 0) << Stderr();
  EXPECT_NE(firstLine(), fromSettings);
}

TEST_F(CliTest, AdjustedStudyChangesTheCorrectedProfile) {
  ASSERT_EQ(Run("repair " + Example("road_b.erd")), 0) << Stderr();
  EXPECT_EQ(Written().size(), 5u);  // nothing registered unless asked
  const std::string plain = Stdout();
  WriteSystemTextFile(temp / "adjust.csv", {"KP(km),厚さ(mm)", "0.1,5"});
  ASSERT_EQ(Run("repair " + Example("road_b.erd") + " --adjust '" + (temp / "adjust.csv").string() + "'", "adjusted"), 0)
      << Stderr();
  // Same profile IRI; a 5 mm change at one point gives another corrected profile.
  EXPECT_EQ(plain.substr(0, plain.find("\tcorrected")), Stdout().substr(0, Stdout().find("\tcorrected")));
  EXPECT_NE(plain, Stdout());
}

}  // namespace
}  // namespace velmora
