// velmora project and --project end to end: a project made from files gives the analyses the same
// files as the files themselves, a project repacked by the ordinary zip tool with other conditions
// carries them, and bad project files end in one message naming the file.
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "cli_fixture.h"
#include "support/profile_fixture.h"

namespace velmora {
namespace {

namespace fs = std::filesystem;
using testing::CliTest;
using testing::Texts;

// Samples with three decimals, which the project's copy (written with eight) keeps exactly.
std::vector<double> Rounded(std::vector<double> values) {
  for (double& v : values) v = std::round(v * 1000) / 1000;
  return values;
}

class ProjectCliTest : public CliTest {
 protected:
  void SetUp() override {
    files = WriteErd("a", testing::Ramp(300), 0.05) + " " + WriteErd("b", Rounded(testing::Road(400)), 0.1, 12.5);
    project = "'" + (temp / "p.prj").string() + "'";
    ASSERT_EQ(Run("project new " + project + " " + files), 0) << Stderr();
  }

  // True when the two output folders hold the same files with the same bytes.
  bool SameFiles(const std::string& one, const std::string& other) const {
    if (Written(one) != Written(other)) return false;
    for (const std::string& name : Written(one))
      if (testing::ReadBytes(temp / one / name) != testing::ReadBytes(temp / other / name)) return false;
    return true;
  }

  std::string files, project;
};

TEST_F(ProjectCliTest, NewInfoAndExtract) {
  EXPECT_EQ(Stdout(), (temp / "p.prj").string() + "\n");
  ASSERT_EQ(Run("project info " + project), 0) << Stderr();
  const std::string info = Stdout();
  EXPECT_NE(info.find("p.prj: 2 profiles\n"), std::string::npos) << info;
  EXPECT_NE(info.find("a  300 samples at 0.050000 m, 14.95000 m, KP -\n"), std::string::npos) << info;
  EXPECT_NE(info.find("b  400 samples at 0.100000 m, 39.90000 m, KP 12.50000+0\n"), std::string::npos) << info;
  EXPECT_NE(info.find("  filter     long "), std::string::npos) << info;

  ASSERT_EQ(Run("project extract " + project, "ex"), 0) << Stderr();
  EXPECT_EQ(Written("ex"), (Texts{"User.dat", "a.erd", "b.erd"}));
  EXPECT_EQ(ErdOf(temp / "ex" / "b.erd").Elevation, ErdOf(temp / "b.erd").Elevation);

  EXPECT_EQ(Run("project new " + project + " " + files), 1);
  EXPECT_EQ(Stderr(), "velmora: project: " + (temp / "p.prj").string() + ": は既にあります（追加は project add で）\n");
}

TEST_F(ProjectCliTest, AnalysesOfTheProjectWriteWhatTheyWriteForItsFiles) {
  ASSERT_EQ(Run("iri --no-timestamp --project " + project, "from-project"), 0) << Stderr();
  ASSERT_EQ(Run("iri --no-timestamp " + files, "from-files"), 0) << Stderr();
  EXPECT_TRUE(SameFiles("from-project", "from-files"));
  EXPECT_EQ(Written("from-project").size(), 9u);
}

TEST_F(ProjectCliTest, TheProjectsConditionsAreTheOnesInForce) {
  // Unpacked and packed again by the zip tool, with the IRI speed of 60 km/h in its User.dat.
  ASSERT_EQ(Run("project extract " + project, "ex"), 0) << Stderr();
  const fs::path tree = temp / "tree" / "Project";
  fs::create_directories(tree / "Profile");
  for (const char* erd : {"a.erd", "b.erd"}) fs::copy_file(temp / "ex" / erd, tree / "Profile" / erd);
  Texts lines = ReadSystemTextLines(temp / "ex" / "User.dat");
  const auto iri = std::find(lines.begin(), lines.end(), "[IRI]");
  ASSERT_NE(iri, lines.end());
  std::string& values = *(iri + 2);
  values = "       60.00000" + values.substr(values.find(','));
  WriteSystemTextFile(tree / "User.dat", lines);
  const std::string zip = "cd '" + (temp / "tree").string() + "' && zip -qr ../slow.prj Project";
  ASSERT_EQ(std::system(zip.c_str()), 0);

  ASSERT_EQ(Run("iri --no-timestamp --project '" + (temp / "slow.prj").string() + "'", "from-project"), 0) << Stderr();
  ASSERT_EQ(Run("iri --no-timestamp --speed 60 " + files, "from-files"), 0) << Stderr();
  EXPECT_TRUE(SameFiles("from-project", "from-files"));
  ASSERT_EQ(Run("iri --no-timestamp " + files, "at-80"), 0) << Stderr();
  EXPECT_FALSE(SameFiles("from-project", "at-80"));
}

TEST_F(ProjectCliTest, BadProjectFilesAndMisuseEndInOneMessage) {
  testing::WriteBytes(temp / "bad.prj", "PK\x03\x04 and then nothing");
  EXPECT_EQ(Run("project info '" + (temp / "bad.prj").string() + "'", "out", "en"), 1);
  EXPECT_EQ(Stderr(), "velmora: project: " + (temp / "bad.prj").string() +
                          ": the project file could not be read: the ZIP archive is cut short\n");
  EXPECT_EQ(Run("iri --project '" + (temp / "bad.prj").string() + "'"), 1);
  EXPECT_EQ(Stderr(), "velmora: iri: " + (temp / "bad.prj").string() +
                          ": プロジェクトファイルの読み込みに失敗しました。 ZIP 書庫が途中で切れています。\n");
  EXPECT_EQ(Run("iri --project " + project + " " + files, "out", "en"), 2);
  EXPECT_EQ(Stderr(), "velmora: iri: --project: takes the place of FILE: give one or the other\n");
  EXPECT_TRUE(Written().empty());
}

TEST_F(ProjectCliTest, AddReplacesANameOnlyAfterYes) {
  const std::string again = WriteErd("a", testing::Ramp(100), 0.05);
  ASSERT_EQ(Run("project add " + project + " " + WriteErd("c", testing::Ramp(50), 0.05) + " " + again), 0) << Stderr();
  ASSERT_EQ(Run("project info " + project), 0);
  EXPECT_NE(Stdout().find("p.prj: 3 profiles\n"), std::string::npos) << Stdout();
  EXPECT_NE(Stdout().find("a  300 samples"), std::string::npos) << "kept without --yes";
  ASSERT_EQ(Run("--yes project add " + project + " " + again), 0) << Stderr();
  ASSERT_EQ(Run("project info " + project), 0);
  EXPECT_NE(Stdout().find("a  100 samples"), std::string::npos) << Stdout();
}

}  // namespace
}  // namespace velmora
