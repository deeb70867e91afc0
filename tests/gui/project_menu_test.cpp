// The project menu of the window over the engine's commands: a project saved, a new one, the saved
// one opened again (also after a restart) with its list and title, the unsaved-work question in the
// program's words, result files from the menu, and the window's place kept across runs.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QMenu>

#include "base/text_encoding.h"
#include "program_fixture.h"

namespace velmora::gui {
namespace {

namespace fs = std::filesystem;
namespace tab = workbench::tab;

const std::vector<std::string> kExampleNames{"road_a_kp", "road_b", "road_c_rough"};
const testing::Shown kUnsavedQuestion{"プロジェクトデータが変更されています。保存しますか？", "確認", MsgIcon::Question,
                                      MsgButtons::YesNoCancel};

class ProjectMenuTest : public ProgramTest {
 protected:
  void Choose(const QString& item) const { run->MenuItem(item)->trigger(); }
  std::string Title() const { return run->window->windowTitle().toStdString(); }
};

TEST_F(ProjectMenuTest, ASavedProjectOpensAgainAfterARestartWithItsListAndTitle) {
  ASSERT_TRUE(run->window->AddFiles(Examples()));
  const std::string prj = (scratch / "roads.prj").string();
  ui.Files.push_back({prj});
  Choose("mnuFileSub2");  // 上書保存 of a project without a file asks for one
  testing::ExpectMessages(ui, {{"プロジェクトファイルを保存しました。\r\n\r\n保存先：" + prj, "SAVE", MsgIcon::Information}});
  EXPECT_EQ(Title(), " velmora : [ roads ]");
  ASSERT_TRUE(fs::exists(prj));

  ui.Log.clear();
  Choose("mnuFileSub0");  // 新規作成: nothing unsaved, so no question
  EXPECT_TRUE(ui.Messages().empty()) << ui.Messages().front().Text;
  EXPECT_TRUE(ListedNames().empty());
  EXPECT_EQ(Title(), " velmora : [ 新規作成 ]");

  Restart();
  ui.Files.push_back({prj});
  Choose("mnuFileSub1");  // 開く
  EXPECT_TRUE(ui.Messages().empty()) << ui.Messages().front().Text;
  EXPECT_EQ(ListedNames(), kExampleNames);
  EXPECT_EQ(Title(), " velmora : [ roads ]");
  // Every tab's list has every row selected, and the reopened profiles compute.
  for (int t : {tab::Filter, tab::Iri, tab::Statistics, tab::Print})
    EXPECT_EQ(run->bench.Selection(t), (std::vector<int>{1, 2, 3})) << t;
  run->window->ShowTab(tab::Iri);
  ASSERT_TRUE(run->window->StartGo(tab::Iri));
  EXPECT_EQ(run->window->WaitForGo(), workbench::GoOutcome::Completed);
}

TEST_F(ProjectMenuTest, ANewProjectShowsTheInputsItResetTheTabsTo) {
  auto* box = run->window->findChild<QLineEdit*>("evalLength");
  ASSERT_NE(box, nullptr);
  box->setText("7");  // typed, so the IRI tab's field holds it
  ASSERT_EQ(run->bench.Iri.EvalLength, "7");
  Choose("mnuFileSub0");  // 新規作成
  EXPECT_NE(run->bench.Iri.EvalLength, "7");
  EXPECT_EQ(box->text().toStdString(), run->bench.Iri.EvalLength);
}

TEST_F(ProjectMenuTest, UnsavedWorkIsAskedAboutCancelKeepsItAndNoDropsIt) {
  ASSERT_TRUE(run->window->AddFiles(Examples()));
  ui.Answers = {MsgAnswer::Cancel};
  Choose("mnuFileSub0");
  testing::ExpectMessages(ui, {kUnsavedQuestion});
  EXPECT_EQ(ListedNames(), kExampleNames);

  ui.Log.clear();
  ui.Answers = {MsgAnswer::No};
  Choose("mnuFileSub1");  // 開く asks the same; the dialog then is cancelled (no file given)
  testing::ExpectMessages(ui, {kUnsavedQuestion});
  EXPECT_EQ(ListedNames(), kExampleNames);

  ui.Log.clear();
  ui.Answers = {MsgAnswer::No};
  Choose("mnuFileSub0");
  testing::ExpectMessages(ui, {kUnsavedQuestion});
  EXPECT_TRUE(ListedNames().empty());
}

TEST_F(ProjectMenuTest, TheCommandsOnAProjectFileWaitForOne) {
  QMenu* menu = run->window->menuBar()->findChild<QMenu*>("mnuFile");
  ASSERT_NE(menu, nullptr);
  const auto enabled = [&](const char* item) { return run->MenuItem(item)->isEnabled(); };
  emit menu->aboutToShow();
  EXPECT_TRUE(enabled("mnuFileSub0") && enabled("mnuFileSub1") && enabled("mnuFileSub2"));
  EXPECT_FALSE(enabled("mnuFileSub3") || enabled("mnuFileSub5") || enabled("mnuFileSub6") || enabled("mnuFileSub8"));
  ASSERT_TRUE(run->window->AddFiles(Examples()));
  ui.Files.push_back({(scratch / "p.prj").string()});
  Choose("mnuFileSub2");
  emit menu->aboutToShow();
  EXPECT_TRUE(enabled("mnuFileSub3") && enabled("mnuFileSub5") && enabled("mnuFileSub6") && enabled("mnuFileSub8"));
}

TEST_F(ProjectMenuTest, TheExportMenuWritesTheWholeIriOfTheIriTabsProfiles) {
  ASSERT_TRUE(run->window->AddFiles(Examples()));
  run->window->ShowTab(tab::Iri);
  ASSERT_TRUE(run->window->StartGo(tab::Iri));
  ASSERT_EQ(run->window->WaitForGo(), workbench::GoOutcome::Completed);
  const fs::path folder = scratch / "export";
  fs::create_directories(folder);
  ui.Files.push_back({(folder / "any.Dummy").string()});  // only the folder of the answer is used
  QAction* item = nullptr;
  for (QAction* action : run->window->menuBar()->findChild<QMenu*>("mnuExport")->actions())
    if (action->text() == "IRI 全区間 (CSV)") item = action;
  ASSERT_NE(item, nullptr);
  item->trigger();
  std::vector<fs::path> written;
  for (const auto& entry : fs::directory_iterator(folder)) written.push_back(entry.path());
  ASSERT_EQ(written.size(), 1u);
  // One file for all profiles: a line naming each, with its whole IRI as the tab computed it.
  const std::vector<std::string> lines = ReadSystemTextLines(written.front());
  for (int row = 1; row <= 3; ++row) {
    const ProfileRecord& profile = run->bench.Profile(row);
    const auto named = std::find_if(lines.begin(), lines.end(), [&](const std::string& line) {
      return line.find(ProfileList::NameOf(profile)) != std::string::npos;
    });
    ASSERT_NE(named, lines.end()) << ProfileList::NameOf(profile);
    const double iri = std::stod(named->substr(named->rfind(',') + 1));
    EXPECT_NEAR(iri, profile.Analysis.Iri.IriWholeProfile, 1e-6) << *named;
  }
}

TEST_F(ProjectMenuTest, TheWindowsPlaceAndSizeSurviveARestart) {
  run->window->setGeometry(70, 50, 1010, 640);
  QApplication::processEvents();
  const QRect before = run->window->geometry();
  ASSERT_EQ(before.size(), QSize(1010, 640));
  Restart();
  EXPECT_EQ(run->window->geometry(), before);
}

}  // namespace
}  // namespace velmora::gui
