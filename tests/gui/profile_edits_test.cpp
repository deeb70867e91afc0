// The edits of the profile tab: the list buttons (rename, remove, move) and the header boxes. Each
// changes the profile record through the workbench; those that change a profile's rows or what is
// drawn along it mark every tab for recomputation.
#include "profile_edits.h"

#include <gtest/gtest.h>

#include <QRadioButton>

#include <filesystem>

#include "base/common.h"
#include "base/text_encoding.h"
#include "profile/profile_tab.h"
#include "qt_colour.h"
#include "window_fixture.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

class ProfileEditsTest : public WindowFixture {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    ASSERT_TRUE(AddExamples());
    edits = window->Edits();
    ASSERT_NE(edits, nullptr);
  }

  QStringList Names() const {
    QStringList names;
    const QAbstractItemModel* model = window->ListOf(tab::Profile)->model();
    for (int r = 0; r < model->rowCount(); ++r) names << model->index(r, 0).data().toString();
    return names;
  }
  void SelectOnTab1(std::initializer_list<int> rows) {
    QTableView* list = window->ListOf(tab::Profile);
    list->clearSelection();
    for (int row : rows)
      list->selectionModel()->select(list->model()->index(row - 1, 0),
                                     QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  void Click(const char* name) { window->findChild<QPushButton*>(name)->click(); }
  // Types into a header box and leaves it, as Enter or a change of focus does.
  void Type(int box, const QString& text) {
    edits->Box(box)->setText(text);
    emit edits->Box(box)->editingFinished();
  }
  // Every tab but the profile tab, which an edit of a profile redraws at once.
  bool AnalysisTabsDirty() const {
    for (int t = 0; t < workbench::kTabCount; ++t)
      if (t != tab::Profile && !bench.TabDirty[static_cast<std::size_t>(t)]) return false;
    return true;
  }
  bool AnyTabDirty() const {
    return std::any_of(bench.TabDirty.begin(), bench.TabDirty.end(), [](bool d) { return d; });
  }
  QColor PanelOf(int row) const {
    return window->ListOf(tab::Profile)->model()->index(row - 1, 0).data(Qt::DecorationRole).value<QColor>();
  }

  ProfileEdits* edits = nullptr;
};

struct ListButtonCase {
  const char* Name;
  std::vector<int> Selected;
  const char* Button;
  std::vector<std::string> Inputs;  // the answers to the rename's input box
  QStringList After;
  std::vector<int> IriSelection;  // what the IRI tab, which had all three, keeps selected
  std::vector<std::string> Gone;  // files no longer in the project folder
};

class ListButtonTest : public ProfileEditsTest, public ::testing::WithParamInterface<ListButtonCase> {};

TEST_P(ListButtonTest, ChangesTheListAndMarksEveryTab) {
  const ListButtonCase& c = GetParam();
  QTableView* list = window->ListOf(tab::Profile);
  list->clearSelection();
  for (int row : c.Selected)
    list->selectionModel()->select(list->model()->index(row - 1, 0),
                                   QItemSelectionModel::Select | QItemSelectionModel::Rows);
  const QColor firstPanel = PanelOf(1);
  bench.TabDirty.fill(false);
  ui.Inputs.assign(c.Inputs.begin(), c.Inputs.end());
  Click(c.Button);
  EXPECT_EQ(Names(), c.After);
  EXPECT_TRUE(AnalysisTabsDirty());
  EXPECT_EQ(bench.Selection(tab::Iri), c.IriSelection);
  EXPECT_EQ(window->ListOf(tab::Iri)->selectionModel()->selectedRows().size(), c.IriSelection.size());
  // The colour panels belong to the positions, not to the profiles.
  EXPECT_EQ(PanelOf(1), firstPanel);
  const auto folder = scratch / "user" / "Project" / "Profile";
  for (int row = 1; row <= bench.ProfileCount(); ++row) {
    EXPECT_EQ(QString::fromStdString(ProfileList::NameOf(bench.List().Items.at(row))), c.After[row - 1]);
    EXPECT_TRUE(std::filesystem::exists(folder / bench.List().Items.at(row).FileName)) << row;
  }
  for (const std::string& gone : c.Gone) EXPECT_FALSE(std::filesystem::exists(folder / gone)) << gone;
}

INSTANTIATE_TEST_SUITE_P(
    Buttons, ListButtonTest,
    ::testing::Values(
        ListButtonCase{"rename",
                       {2},
                       "cmdProfileEdit3",
                       {"road_b2"},
                       {"road_a_kp", "road_b2", "road_c_rough"},
                       {1, 2, 3},
                       {"road_b.ERD"}},
        ListButtonCase{"remove", {1, 3}, "cmdProfileEdit4", {}, {"road_b"}, {1}, {"road_a_kp.ERD", "road_c_rough.ERD"}},
        ListButtonCase{"down", {1}, "cmd上下移動1", {}, {"road_b", "road_a_kp", "road_c_rough"}, {1, 2, 3}, {}},
        ListButtonCase{"up", {3}, "cmd上下移動0", {}, {"road_a_kp", "road_c_rough", "road_b"}, {1, 2, 3}, {}}),
    [](const ::testing::TestParamInfo<ListButtonCase>& info) { return std::string(info.param.Name); });

TEST_F(ProfileEditsTest, FileOutputWritesTheSelectedProfilesAsChosenAndPmsIsRefused) {
  const auto out = scratch / "exported";
  std::filesystem::create_directories(out);
  SelectOnTab1({1, 3});
  // ERD, the first choice: the save dialog's name only gives the folder.
  ui.Files = {{(out / "ignored.Dummy").string()}};
  Click("cmdProfileEdit2");
  EXPECT_TRUE(std::filesystem::exists(out / "road_a_kp.ERD"));
  EXPECT_TRUE(std::filesystem::exists(out / "road_c_rough.ERD"));
  EXPECT_FALSE(std::filesystem::exists(out / "road_b.ERD"));
  EXPECT_EQ(ui.OnlyMessageText(), "ERDファイルを保存しました。 \r\n保存先：" + out.string());
  // CSV: one file, the two profiles side by side after the eleven header rows (3000 samples each).
  window->findChild<QRadioButton*>("optExport1")->click();
  ui.Files = {{(out / "both.CSV").string()}};
  ui.Log.clear();
  Click("cmdProfileEdit2");
  const std::vector<std::string> lines = ReadSystemTextLines(out / "both.CSV");
  EXPECT_EQ(lines.size(), 11u + 3000u);
  EXPECT_EQ(ui.OnlyMessageText(), "CSVファイルを保存しました。 \r\n保存先：" + (out / "both.CSV").string());
  // PMS追加 is the program's standing refusal; neither button changes the list.
  ui.Log.clear();
  Click("cmdProfileEdit1");
  EXPECT_EQ(ui.OnlyMessageText(), "この機能は現在対応していません。");
  EXPECT_EQ(Names(), (QStringList{"road_a_kp", "road_b", "road_c_rough"}));
  SelectOnTab1({});
  EXPECT_FALSE(window->findChild<QPushButton*>("cmdProfileEdit2")->isEnabled());
}

TEST_F(ProfileEditsTest, ARefusedOrCancelledButtonChangesNothing) {
  SelectOnTab1({1});
  bench.TabDirty.fill(false);
  ui.Inputs = {"road_b"};  // a name another row has: refused, then asked again and cancelled
  Click("cmdProfileEdit3");
  ui.Answers = {MsgAnswer::Cancel};
  Click("cmdProfileEdit4");
  EXPECT_EQ(Names(), (QStringList{"road_a_kp", "road_b", "road_c_rough"}));
  EXPECT_FALSE(AnyTabDirty());
  EXPECT_FALSE(window->findChild<QPushButton*>("cmd上下移動0")->isEnabled());  // the first row cannot go up
  EXPECT_TRUE(window->findChild<QPushButton*>("cmd上下移動1")->isEnabled());
}

TEST_F(ProfileEditsTest, AFileOfAListedNameReplacesItsProfileOnlyAfterAYes) {
  // Another measurement under the name road_b: road_c_rough's 3000 samples at 0.1 m, where road_b
  // has 5000 at 0.05 m.
  const auto again = scratch / "again";
  std::filesystem::create_directories(again);
  std::filesystem::copy_file(Examples()[2], again / "road_b.erd");
  const QAbstractItemModel* model = window->ListOf(tab::Profile)->model();
  struct Case {
    MsgAnswer Answer;
    int Samples;
    bool Replaced;
  };
  for (const Case c : {Case{MsgAnswer::No, 5000, false}, Case{MsgAnswer::Yes, 3000, true}}) {
    SCOPED_TRACE(c.Answer == MsgAnswer::Yes ? "yes" : "no");
    ui.Log.clear();
    ui.Answers = {c.Answer};
    bench.TabDirty.fill(false);
    window->AddFiles({(again / "road_b.erd").string()});
    ASSERT_EQ(ui.Messages().size(), 1u);
    EXPECT_NE(ui.Messages().front().Text.find("置き換えますか？"), std::string::npos);
    EXPECT_EQ(Names(), (QStringList{"road_a_kp", "road_b", "road_c_rough"}));
    EXPECT_EQ(bench.List().Items.at(2).Erd.NumSamples, c.Samples);
    EXPECT_EQ(model->index(1, ProfileTableModel::Samples).data().toInt(), c.Samples);
    if (c.Replaced) {
      EXPECT_TRUE(AnalysisTabsDirty());
    }
  }
}

TEST_F(ProfileEditsTest, TheHeaderBoxesShowTheOneSelectedProfile) {
  SelectOnTab1({1});
  EXPECT_EQ(edits->ShownRow(), 1);
  EXPECT_EQ(edits->Box(3)->text(), "0.10000");   // pitch
  EXPECT_EQ(edits->Box(4)->text(), "3000");      // samples
  EXPECT_EQ(edits->Box(7)->text(), "12.30000");  // KP start
  EXPECT_TRUE(edits->Box(4)->isReadOnly());
  SelectOnTab1({1, 2});
  EXPECT_EQ(edits->ShownRow(), 0);
  EXPECT_EQ(edits->Box(3)->text(), "");
}

TEST_F(ProfileEditsTest, APitchOrKpEditReachesTheRecordAndMarksEveryTab) {
  SelectOnTab1({1});
  const QAbstractItemModel* model = window->ListOf(tab::Profile)->model();
  bench.TabDirty.fill(false);
  Type(3, "0.2");
  EXPECT_DOUBLE_EQ(bench.List().Items.at(1).Erd.StepSize, 0.2);
  EXPECT_TRUE(AnalysisTabsDirty());
  // The list follows: 3000 samples at 0.2 m are 2999 x 0.2 = 599.8 m.
  EXPECT_EQ(model->index(0, ProfileTableModel::Pitch).data().toString(), "0.200");
  EXPECT_EQ(model->index(0, ProfileTableModel::Length).data().toString(), "599.80");
  EXPECT_EQ(edits->ShownRow(), 1);

  bench.TabDirty.fill(false);
  Type(7, "5.5");
  EXPECT_DOUBLE_EQ(bench.List().Items.at(1).Erd.KpStart, 5.5);
  EXPECT_EQ(model->index(0, ProfileTableModel::Kp).data().toString(), "5.500");
  EXPECT_TRUE(AnalysisTabsDirty());

  // The file has the KP counting up in lane 1 (its KP text "12.30000++"): each choice is a change.
  struct Choice {
    const char* Name;
    std::int32_t ErdRecord::*Field;
    std::int32_t Value;
  };
  for (const Choice& c : {Choice{"optKP1", &ErdRecord::KpSign, 1}, Choice{"opt上下1", &ErdRecord::Lane, -1}}) {
    SCOPED_TRACE(c.Name);
    bench.TabDirty.fill(false);
    window->findChild<QRadioButton*>(c.Name)->click();
    EXPECT_TRUE(AnalysisTabsDirty());
    EXPECT_EQ(bench.List().Items.at(1).Erd.*c.Field, c.Value);
  }
}

TEST_F(ProfileEditsTest, ATitleEditReachesTheRecordWithoutMarkingTheTabs) {
  SelectOnTab1({2});
  bench.TabDirty.fill(false);
  Type(5, "  新しい題  ");
  Type(8, "測定やり直し");
  EXPECT_EQ(bench.List().Items.at(2).Erd.Title, "新しい題");
  EXPECT_EQ(bench.List().Items.at(2).Comment, "測定やり直し");
  EXPECT_FALSE(AnyTabDirty());
}

TEST_F(ProfileEditsTest, ABadPitchOrKpStaysInItsWarningColourAndIsNotTaken) {
  struct Case {
    int Box;
    const char* Text;
    Colour Warning;
  };
  const Case cases[] = {
      {3, "abc", kBoxNotNumeric}, {3, "0", kBoxNotPositive}, {3, "", kBoxEmpty}, {7, "x1", kBoxNotNumeric}};
  SelectOnTab1({1});
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.Text) + " in box " + std::to_string(c.Box));
    bench.TabDirty.fill(false);
    Type(c.Box, c.Text);
    const ErdRecord& erd = bench.List().Items.at(1).Erd;
    EXPECT_DOUBLE_EQ(erd.StepSize, 0.1);
    EXPECT_DOUBLE_EQ(erd.KpStart, 12.3);
    EXPECT_FALSE(AnyTabDirty());
    EXPECT_TRUE(edits->Box(c.Box)->styleSheet().contains(QtColour(c.Warning).name()))
        << edits->Box(c.Box)->styleSheet().toStdString();
    edits->Box(c.Box)->setText(c.Box == 3 ? "0.10000" : "12.30000");
  }
}

TEST_F(ProfileEditsTest, ClearEmptiesThePositionOfTheProfile) {
  SelectOnTab1({1});
  bench.TabDirty.fill(false);
  Click("cmd位置情報クリア");
  const ErdRecord& erd = bench.List().Items.at(1).Erd;
  EXPECT_EQ(erd.KpStart, kNoValue);
  EXPECT_EQ(erd.Lane, 0);
  EXPECT_TRUE(AnalysisTabsDirty());
  EXPECT_EQ(edits->Box(7)->text(), "");
  EXPECT_EQ(window->ListOf(tab::Profile)->model()->index(0, ProfileTableModel::Kp).data().toString(), "");
}

}  // namespace
}  // namespace velmora::gui
