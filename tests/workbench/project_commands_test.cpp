// The project commands on a workbench with real files: a project saved, closed and opened again is
// the same project; a project file that cannot be taken leaves the open project as it was; a save
// stopped halfway leaves the old file readable; the questions before work would be lost.
#include "workbench/project_commands.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <functional>

#include "base/startup.h"
#include "base/text_encoding.h"
#include "profile/erd_file.h"
#include "report/project_archive.h"
#include "support/checks.h"
#include "support/profile_fixture.h"
#include "support/raw_zip.h"

namespace velmora::workbench {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// Samples with at most three decimals, which the ERD writer's eight keep exactly.
std::vector<double> Rounded(std::vector<double> values) {
  for (double& v : values) v = std::round(v * 1000) / 1000;
  return values;
}

class ProjectCommandsTest : public testing::SessionTest {
 protected:
  void SetUp() override {
    session.Paths.AppPath = VELMORA_BIN_DIR;  // Default.ini
    session.Paths.UserLocalPath = (dir_ / "local").string();
    InitCreateFolder(session);
    InitProjectData(session);
    bench.FormLoad();
    std::vector<std::string> files;
    for (const auto& [name, samples] : {std::pair{"a", Rounded(testing::Road(400))}, std::pair{"b", Rounded(testing::Ramp(60))}}) {
      const fs::path file = dir_ / (std::string(name) + ".erd");
      WriteERD(file.string(), testing::MakeProfile(name, 0.05, samples).Erd);
      files.push_back(file.string());
    }
    ASSERT_TRUE(bench.RegisterFiles(files, false));
    ui_.Log.clear();
  }

  // Header edits, an adjusted study and conditions other than the defaults.
  void EditProject() {
    ProfileRecord& a = bench.Profile(1);
    a.Erd.Title = "新しい題";
    a.Erd.KpStart = 12.345;
    a.Erd.KpSign = 1;
    a.Erd.Lane = -1;
    a.RouteName = "国道１号";
    a.Comment = "一行目\r\n二行目";
    a.MeasureDate = 45356;
    StudyTarget study;
    study.Name = "山[厚]";
    study.Adjusted = true;
    study.Flags = {0, 1};
    study.Points = {10, 30};
    study.AdjFlags = {0, 2, 1};
    study.AdjPoints = {10, 20, 30};
    a.Studies.push_back(study);
    CalcConditions& c = session.CurrentConditions;
    c.FilterLong = 80;
    c.FilterShort = 5;
    c.Iri.Speed = 60;
    c.RepairIri.KsMs = 70.25;
    c.RepairIri.PowerWeighting = 1;
  }

  // Saves through the command; the save dialog answers `target` when one is asked for.
  void Save(const fs::path& target, int command = kProjectSave) {
    ui_.Files.push_back({target.string()});
    cmdProject(bench, command);
  }
  void Open(const fs::path& file) {
    ui_.Files.push_back({file.string()});
    cmdProject(bench, kProjectOpen);
  }

  Lines UserDataOf(const fs::path& archive) {
    const fs::path folder = dir_ / ("unpacked-" + archive.filename().string());
    fs::create_directories(folder);
    UnpackProjectArchive(archive, folder);
    return ReadSystemTextLines(folder / "Project" / "User.dat");
  }

  fs::path ScratchUserData() const { return fs::path(session.Paths.UserLocalPath) / "Project" / "User.dat"; }

  Workbench bench{session};
  fs::path target = dir_ / "p.prj";
};

TEST_F(ProjectCommandsTest, ASavedProjectOpensAgainAsTheSameProject) {
  EditProject();
  Save(target);
  testing::ExpectMessages(ui_, {{"プロジェクトファイルを保存しました。\r\n\r\n保存先：" + target.string(), "SAVE",
                                 MsgIcon::Information}});
  EXPECT_EQ(bench.WindowTitle, " velmora : [ p ]");
  EXPECT_FALSE(ProjectDirty(bench));
  EXPECT_TRUE(bench.ProjectCommandEnabled[kProjectDelete]);
  const ProfileList saved = PersistentCopy(bench.List());
  const CalcConditions conditions = session.CurrentConditions;

  cmdProject(bench, kProjectNew);
  EXPECT_EQ(std::tuple(bench.ProfileCount(), bench.WindowTitle, session.Project.FileName),
            std::tuple(0, std::string(kTitleNew), std::string()));
  EXPECT_EQ(session.CurrentConditions.FilterLong, session.DefaultConditions.FilterLong);

  Open(target);
  ASSERT_EQ(bench.ProfileCount(), 2);
  EXPECT_FALSE(ProfilesChanged(saved, bench.List()));
  EXPECT_TRUE(session.CurrentConditions == conditions);
  EXPECT_FALSE(ProjectDirty(bench));
  EXPECT_EQ(std::tuple(bench.WindowTitle, session.Project.FileName), std::tuple(std::string(" velmora : [ p ]"), target.string()));
  EXPECT_EQ(bench.List().Views[3].Rows, (Lines{"a", "b"}));
  const ProfileRecord& a = bench.Profile(1);
  EXPECT_EQ(std::tuple(a.Erd.Title, a.Erd.KpStart, a.Erd.Lane, a.WorkCount), std::tuple(std::string("新しい題"), 12.345, -1, 400));
  ASSERT_EQ(a.Studies.size(), 1u);
  EXPECT_EQ(a.Studies[0].Name, "山[厚],1") << "the name line is read whole";
  EXPECT_EQ(a.Studies[0].Points, (std::vector<double>{10, 20, 30}));
}

TEST_F(ProjectCommandsTest, TheSecondSaveWritesTheSameFilesApartFromTheDateAndTheStudyNameRule) {
  EditProject();
  Save(target);
  const fs::path first = dir_ / "first.prj";
  fs::copy_file(target, first);
  cmdProject(bench, kProjectNew);
  Open(target);
  Save(target);
  const Lines before = UserDataOf(first), after = UserDataOf(target);
  ASSERT_EQ(before.size(), after.size());
  constexpr std::size_t kDate = 12;
  std::vector<std::size_t> differing;
  for (std::size_t i = 0; i < before.size(); ++i)
    if (before[i] != after[i] && i != kDate) differing.push_back(i);
  // Besides the date: the study's name line, which after a reload carries ",1" (a "," written
  // full-width), and the write-only plan lines, whose plan data are not read back.
  const auto at = [&](const std::string& line) {
    return static_cast<std::size_t>(std::find(before.begin(), before.end(), line) - before.begin());
  };
  const std::size_t plan = at("山[厚],1,0,0,0,0.0000,");
  EXPECT_EQ(before[kDate - 1], "[DATE]");
  EXPECT_EQ(differing, (std::vector<std::size_t>{at("山[厚],1"), plan, plan + 1, plan + 2}));
  EXPECT_EQ(after[at("山[厚],1")], "山[厚]，1,0");
  for (const char* erd : {"a.erd", "b.erd"})
    EXPECT_EQ(testing::ReadBytes(dir_ / "unpacked-first.prj" / "Project" / "Profile" / erd),
              testing::ReadBytes(dir_ / "unpacked-p.prj" / "Project" / "Profile" / erd))
        << erd;
}

struct BadFile {
  const char* Case;
  // Writes the bad project file from the good one (saved) and the scratch folder it was packed from.
  std::function<std::string(const fs::path& good, const fs::path& project)> Bytes;
  std::string Why;  // after "ファイル名：<file>\r\n\r\n"
};

// The good project repacked with its User.dat changed by `change`.
std::string WithUserData(const fs::path& project, const std::function<void(Lines&)>& change) {
  const fs::path copy = project.parent_path() / "Changed" / "Project";
  fs::remove_all(copy.parent_path());
  fs::create_directories(copy.parent_path());
  fs::copy(project, copy, fs::copy_options::recursive);
  Lines lines = ReadSystemTextLines(copy / "User.dat");
  change(lines);
  WriteSystemTextFile(copy / "User.dat", lines);
  const fs::path packed = copy.parent_path() / "changed.prj";
  PackProjectFolder(copy, packed);
  return testing::ReadBytes(packed);
}

std::size_t IndexOf(const Lines& lines, const std::string& start) {
  for (std::size_t i = 0; i < lines.size(); ++i)
    if (lines[i].starts_with(start)) return i;
  ADD_FAILURE() << start;
  return 0;
}

class BadProjectFileTest : public ProjectCommandsTest, public ::testing::WithParamInterface<BadFile> {};

TEST_P(BadProjectFileTest, IsRefusedAndTheOpenProjectStaysAsItWas) {
  EditProject();
  Save(target);
  const ProfileList open = PersistentCopy(bench.List());
  const CalcConditions conditions = session.CurrentConditions;
  const std::string scratchUserData = testing::ReadBytes(ScratchUserData());
  const fs::path bad = dir_ / "bad.prj";
  testing::WriteBytes(bad, GetParam().Bytes(target, fs::path(session.Paths.UserLocalPath) / "Project"));
  ui_.Log.clear();

  Open(bad);
  const auto messages = ui_.Messages();
  ASSERT_FALSE(messages.empty());
  if (GetParam().Why.starts_with("指定されたファイルのバージョンが違います。"))
    testing::ExpectShown(messages.back(), {GetParam().Why, "プロジェクトの読込", MsgIcon::Exclamation});
  else
    testing::ExpectShown(messages.back(), {"プロジェクトファイルの読み込みに失敗しました。\r\n\r\nファイル名：" + bad.string() +
                                               "\r\n\r\n" + GetParam().Why,
                                           "ReadError", MsgIcon::Exclamation});
  EXPECT_FALSE(ProfilesChanged(open, bench.List()));
  EXPECT_TRUE(session.CurrentConditions == conditions);
  EXPECT_EQ(std::tuple(session.Project.FileName, bench.WindowTitle), std::tuple(target.string(), std::string(" velmora : [ p ]")));
  EXPECT_EQ(testing::ReadBytes(ScratchUserData()), scratchUserData);
  for (const auto& entry : fs::directory_iterator(session.Paths.UserLocalPath))
    EXPECT_FALSE(entry.path().filename().string().starts_with("Opening")) << entry.path();
}

INSTANTIATE_TEST_SUITE_P(
    Cases, BadProjectFileTest,
    ::testing::Values(
        BadFile{"CutShort",
                [](const fs::path& good, const fs::path&) {
                  const std::string bytes = testing::ReadBytes(good);
                  return bytes.substr(0, bytes.size() * 2 / 3);
                },
                "ZIP 書庫が途中で切れています。"},
        BadFile{"NoUserData",
                [](const fs::path&, const fs::path&) { return testing::RawZip({{"Project/Profile/a.erd", "x"}}); },
                "エントリー Project/User.dat がありません。"},
        BadFile{"NewerVersion",
                [](const fs::path&, const fs::path& project) {
                  return WithUserData(project, [](Lines& l) { l[IndexOf(l, "[VER]") + 1] = "0.2.0"; });
                },
                "指定されたファイルのバージョンが違います。\r\nVER. 0.2 以上のプログラムを入手してください。"},
        BadFile{"ProfileLineWithTooManyFields",
                [](const fs::path&, const fs::path& project) {
                  return WithUserData(project, [](Lines& l) { l[IndexOf(l, "    0, a.erd")] += ", extra"; });
                },
                "エントリー Project/User.dat の 24 行目：項目の数が 7 個です（6 個のはずです）。"},
        BadFile{"NamedErdMissing",
                [](const fs::path&, const fs::path& project) {
                  return WithUserData(project, [&](Lines&) { fs::remove(project.parent_path() / "Changed" / "Project" / "Profile" / "b.erd"); });
                },
                "エントリー Project/Profile/b.erd がありません。"},
        BadFile{"ErdThatIsNoErd",
                [](const fs::path&, const fs::path& project) {
                  return WithUserData(project, [&](Lines&) {
                    testing::WriteBytes(project.parent_path() / "Changed" / "Project" / "Profile" / "b.erd", "not an ERD\r\n");
                  });
                },
                "エントリー Project/Profile/b.erd は ERD ファイルとして読めません。"}),
    [](const auto& info) { return std::string(info.param.Case); });

TEST_F(ProjectCommandsTest, ASaveStoppedHalfwayLeavesTheOldFileReadable) {
  bench.AddProfile(testing::MakeProfile("long", 0.05, Rounded(testing::Road(20000))));
  Save(target);
  const std::string old = testing::ReadBytes(target);
  constexpr rlim_t kLimit = 16 * 1024;
  ASSERT_GT(old.size(), kLimit) << "the new archive must be cut inside";
  bench.Profile(1).RouteName = "changed";
  const pid_t child = ::fork();
  if (child == 0) {
    // The writer is stopped by SIGXFSZ when the file it writes reaches the limit.
    const rlimit limit{kLimit, kLimit};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    SaveProjectData(bench, target.string(), false);
    ::_exit(0);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(WTERMSIG(status), SIGXFSZ);
  EXPECT_EQ(testing::ReadBytes(target), old);
  std::size_t partial = 0;
  for (const auto& entry : fs::directory_iterator(dir_.path()))
    if (entry.path().filename().string().starts_with("p.prj.")) partial = fs::file_size(entry.path());
  EXPECT_EQ(partial, kLimit) << "the stopped writer's file lies beside the old one";
  cmdProject(bench, kProjectNew);
  ui_.Log.clear();
  Open(target);
  EXPECT_TRUE(ui_.Messages().empty());
  EXPECT_EQ(bench.ProfileCount(), 3);
}

TEST_F(ProjectCommandsTest, UnsavedWorkIsAskedAboutBeforeItWouldBeLost) {
  Save(target);
  ui_.Log.clear();
  bench.Profile(2).Comment = "changed";
  const testing::Shown question{"プロジェクトデータが変更されています。保存しますか？", "確認", MsgIcon::Question,
                                MsgButtons::YesNoCancel};
  ui_.Answers = {MsgAnswer::Cancel};
  cmdProject(bench, kProjectNew);
  EXPECT_EQ(bench.ProfileCount(), 2);
  ui_.Answers = {MsgAnswer::Yes};
  cmdProject(bench, kProjectNew);
  testing::ExpectMessages(ui_, {question, question});
  EXPECT_EQ(bench.ProfileCount(), 0);
  Open(target);
  EXPECT_EQ(bench.Profile(2).Comment, "changed") << "Yes saved before the new project";
  session.CurrentConditions.FilterShort = 3;
  ui_.Log.clear();
  ui_.Answers = {MsgAnswer::No};
  cmdProject(bench, kProjectNew);
  testing::ExpectMessages(ui_, {question});
  EXPECT_EQ(bench.ProfileCount(), 0);
}

TEST_F(ProjectCommandsTest, AProjectWithoutProfilesIsNotSaved) {
  ui_.Answers = {MsgAnswer::No};  // to the question about the registered profiles
  cmdProject(bench, kProjectNew);
  ui_.Log.clear();
  Save(target);
  testing::ExpectMessages(ui_, {{"プロファイルデータが１個も指定されていません。\r\n保存処理は中止します。", "警告"}});
  EXPECT_FALSE(fs::exists(target));
}

TEST_F(ProjectCommandsTest, RenameCopyAndDeleteOfTheProjectFile) {
  Save(target);
  ui_.Inputs = {"q"};
  cmdProject(bench, kProjectRename);
  const fs::path renamed = dir_ / "q.prj";
  EXPECT_TRUE(fs::exists(renamed));
  EXPECT_FALSE(fs::exists(target));
  EXPECT_EQ(std::tuple(session.Project.FileName, bench.WindowTitle), std::tuple(renamed.string(), std::string(" velmora : [ q ]")));
  Save(dir_ / "copy.prj", kProjectCopy);
  EXPECT_EQ(testing::ReadBytes(dir_ / "copy.prj"), testing::ReadBytes(renamed));
  EXPECT_EQ(session.Project.FileName, renamed.string()) << "the copy is not the project";
  ui_.Answers = {MsgAnswer::Ok, MsgAnswer::Yes};
  cmdProject(bench, kProjectDelete);
  EXPECT_FALSE(fs::exists(renamed));
  EXPECT_EQ(std::tuple(bench.ProfileCount(), bench.WindowTitle), std::tuple(0, std::string(kTitleNew)));
}

}  // namespace
}  // namespace velmora::workbench
