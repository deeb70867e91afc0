// The text import wizard: the preview of the split file, the check of 完了 with the wizard's own
// messages, and the import through the workbench into profiles whose samples the file spells out.
#include "import_wizard.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QHeaderView>

#include "window_fixture.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

class ImportWizardTest : public WindowFixture {
 protected:
  std::string WriteText(const std::string& name, const std::string& text) {
    const auto path = scratch / name;
    testing::WriteBytes(path, text);
    return path.string();
  }
  std::unique_ptr<ImportWizard> Open(const std::string& file) {
    return std::make_unique<ImportWizard>(bench, file,
                                          [this](const auto& change) { return window->ChangeProfiles(change, true); });
  }
  static void Set(QWidget& wizard, const char* box, const QString& text) {
    wizard.findChild<QLineEdit*>(box)->setText(text);
  }
  static void Tick(QWidget& wizard, const char* box, bool on) { wizard.findChild<QCheckBox*>(box)->setChecked(on); }
  std::vector<double> Samples(int row) const {
    const auto& elevation = bench.List().Items.at(row).Erd.Elevation;
    return {elevation.begin(), elevation.end()};
  }
};

// Two columns under a heading; the second has a hole in its third row.
constexpr const char* kTwoColumns = "left;right\r\n1.5;10\r\n2.5;20\r\n3.5;\r\n4.5;40\r\n";

TEST_F(ImportWizardTest, ThePreviewSplitsTheFileAtTheChosenDelimiters) {
  auto wizard = Open(WriteText("two.csv", kTwoColumns));
  Tick(*wizard, "chk区切文字0", true);
  Tick(*wizard, "chk区切文字2", false);
  auto* grid = wizard->findChild<QTableWidget*>("ss");
  EXPECT_EQ(grid->columnCount(), 1);    // no comma in the file: one cell a line
  Tick(*wizard, "chk区切文字2", true);  // セミコロン
  Tick(*wizard, "chkHeader", true);
  ASSERT_EQ(grid->columnCount(), 2);
  EXPECT_EQ(grid->rowCount(), 4);
  EXPECT_EQ(grid->horizontalHeaderItem(1)->text(), "right");
  EXPECT_EQ(grid->item(1, 1)->text(), "20");
  EXPECT_EQ(grid->item(2, 1)->text(), "");
}

TEST_F(ImportWizardTest, EachColumnBecomesAProfileOfItsSamples) {
  auto wizard = Open(WriteText("two.csv", kTwoColumns));
  Tick(*wizard, "chk区切文字2", true);
  Tick(*wizard, "chkHeader", true);
  Tick(*wizard, "chkタイトル使用", true);
  Set(*wizard, "txt緒元0", "0.25");
  const std::vector<std::string> written = wizard->Finish();
  ASSERT_EQ(written.size(), 2u) << (ui.Messages().empty() ? "" : ui.Messages().front().Text);
  ASSERT_EQ(bench.ProfileCount(), 2);
  // The file's name with the column number; the first column whole, the second up to its hole.
  EXPECT_EQ(ProfileList::NameOf(bench.List().Items.at(1)), "two(001)");
  EXPECT_EQ(ProfileList::NameOf(bench.List().Items.at(2)), "two(002)");
  EXPECT_EQ(Samples(1), (std::vector<double>{1.5, 2.5, 3.5, 4.5}));
  EXPECT_EQ(Samples(2), (std::vector<double>{10, 20}));
  EXPECT_EQ(bench.List().Items.at(2).Erd.Title, "right");
  EXPECT_DOUBLE_EQ(bench.List().Items.at(1).Erd.StepSize, 0.25);
  // In every list, selected as added files are.
  EXPECT_EQ(window->ListOf(tab::Profile)->model()->rowCount(), 2);
  EXPECT_EQ(bench.Selection(tab::Iri), (std::vector<int>{1, 2}));
  EXPECT_TRUE(ui.Messages().empty());
}

TEST_F(ImportWizardTest, ARangeOfRowsAndOneColumnGivesOneProfileNamedAfterTheFile) {
  auto wizard = Open(WriteText("runs.txt", "1,5\r\n2,6\r\n3,7\r\n4,8\r\n"));
  Tick(*wizard, "chk区切文字0", true);
  Tick(*wizard, "chkHeader", false);
  for (const auto& [box, text] :
       {std::pair{"txt緒元0", "0.1"}, {"txt緒元1", "2"}, {"txt緒元2", "3"}, {"txt緒元3", "2"}, {"txt緒元4", "2"}})
    Set(*wizard, box, text);
  ASSERT_EQ(wizard->Finish().size(), 1u);
  ASSERT_EQ(bench.ProfileCount(), 1);
  EXPECT_EQ(ProfileList::NameOf(bench.List().Items.at(1)), "runs");
  EXPECT_EQ(Samples(1), (std::vector<double>{6, 7}));
}

TEST_F(ImportWizardTest, TheCheckRefusesBadBoxesWithTheWizardsMessages) {
  struct Case {
    const char* Box;
    const char* Text;
    const char* Message;
  };
  const Case cases[] = {
      {"txt緒元0", "", "ピッチが指定されていません。"},
      {"txt緒元0", "x", "数値で指定してください。"},
      {"txt緒元1", "0", "データ開始行（開始位置）は１以上で指定してください"},
      {"txt緒元2", "9", "データ開始行（終了位置）は 4 以下で指定してください"},
      {"txt緒元4", "3", "データ開始列（終了位置）は 2 以下で指定してください"},
  };
  const std::string file = WriteText("two.csv", kTwoColumns);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Message);
    ui.Log.clear();
    auto wizard = Open(file);
    Tick(*wizard, "chk区切文字2", true);
    Tick(*wizard, "chkHeader", true);
    Set(*wizard, "txt緒元0", "0.1");
    Set(*wizard, c.Box, c.Text);
    EXPECT_TRUE(wizard->Finish().empty());
    ASSERT_EQ(ui.Messages().size(), 1u);
    EXPECT_EQ(ui.Messages().front().Text, c.Message);
    EXPECT_EQ(ui.Messages().front().Title, "データ不正");
    EXPECT_EQ(bench.ProfileCount(), 0);
  }
}

TEST_F(ImportWizardTest, AFileThatCannotBeReadIsNamedAndNoWizardOpens) {
  const std::string missing = (scratch / "nowhere.csv").string();
  EXPECT_FALSE(RunImportWizard(
      bench, missing, [](const auto& change) { return change(); }, nullptr));
  ASSERT_EQ(ui.Messages().size(), 1u);
  EXPECT_NE(ui.Messages().front().Text.find("nowhere.csv"), std::string::npos) << ui.Messages().front().Text;
  EXPECT_EQ(bench.ProfileCount(), 0);
}

}  // namespace
}  // namespace velmora::gui
