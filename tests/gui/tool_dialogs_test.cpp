// The profile tools' dialogs over a profile whose samples are known: the heights after a shift and a
// reversal are worked out by hand, the check of the inputs answers with the tool's message, and the
// menu opens the dialog through the workbench's hook.
#include "tool_dialogs.h"

#include <gtest/gtest.h>

#include <QRadioButton>

#include "import_wizard.h"
#include "window_fixture.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

class ToolDialogTest : public WindowFixture {
 protected:
  void SetUp() override {
    WindowFixture::SetUp();
    // "base": four samples 1, 2, 3, 4 mm at 0.5 m, through the import wizard.
    const auto path = scratch / "base.txt";
    testing::WriteBytes(path, "1\r\n2\r\n3\r\n4\r\n");
    ImportWizard wizard(bench, path.string(), Change());
    wizard.findChild<QLineEdit*>("txt緒元0")->setText("0.5");
    ASSERT_EQ(wizard.Finish().size(), 1u);
    ui.Log.clear();
  }
  ListChange Change() {
    return [this](const auto& change) { return window->ChangeProfiles(change, true); };
  }
  std::unique_ptr<ToolDialog> Open(int tool) { return MakeToolDialog(tool, bench, Change(), nullptr); }
  static void SelectAll(ToolDialog& dialog) { dialog.Profiles()->selectAll(); }
  std::vector<double> SamplesOf(const std::string& name) const {
    const int row = bench.List().Find(name);
    EXPECT_GT(row, 0) << name;
    if (row == 0) return {};
    const auto& elevation = bench.List().Items.at(row).Erd.Elevation;
    return {elevation.begin(), elevation.end()};
  }
};

TEST_F(ToolDialogTest, AHeightShiftMovesTheProfileToTheHeightAtItsReference) {
  struct Case {
    const char* Reference;
    const char* Height;
    const char* Name;
    std::vector<double> Samples;
  };
  // The offset is the height less the reference sample: 10 - 1 = 9 at the start, 0 - 4 = -4 at the end.
  const Case cases[] = {{"opt調整位置0", "10", "base_始点H10調整", {10, 11, 12, 13}},
                        {"opt調整位置1", "0", "base_終点H0調整", {-3, -2, -1, 0}}};
  auto dialog = Open(kHeightShift);
  EXPECT_EQ(dialog->windowTitle(), "プロファイルの高さシフト");
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Name);
    dialog->Profiles()->clearSelection();
    dialog->Profiles()->item(0)->setSelected(true);  // base
    dialog->findChild<QRadioButton*>(c.Reference)->click();
    dialog->findChild<QLineEdit*>("txt高さ")->setText(c.Height);
    bench.TabDirty.fill(false);
    ASSERT_TRUE(dialog->Register());
    EXPECT_EQ(SamplesOf(c.Name), c.Samples);
    EXPECT_TRUE(bench.TabDirty[tab::Iri]);
  }
  // The input is untouched, and the dialog's list has the new profiles for the next run.
  EXPECT_EQ(SamplesOf("base"), (std::vector<double>{1, 2, 3, 4}));
  EXPECT_EQ(dialog->Profiles()->count(), 3);
  EXPECT_EQ(window->ListOf(tab::Profile)->model()->rowCount(), 3);
}

TEST_F(ToolDialogTest, TheShiftsChecksAnswerWithTheToolsMessages) {
  struct Case {
    const char* Reference;
    const char* Kp;
    const char* Height;
    const char* Message;
  };
  const Case cases[] = {{"opt調整位置0", "", "", "調整高さ が指定されていません。"},
                        {"opt調整位置0", "", "a", "調整高さ は数値で指定して下さい。"},
                        {"opt調整位置2", "", "1", "KP が指定されていません。"},
                        {"opt調整位置2", "k", "1", "KP は数値で指定して下さい。"}};
  auto dialog = Open(kHeightShift);
  SelectAll(*dialog);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.Message);
    ui.Log.clear();
    dialog->findChild<QRadioButton*>(c.Reference)->click();
    dialog->findChild<QLineEdit*>("txtKP")->setText(c.Kp);
    dialog->findChild<QLineEdit*>("txt高さ")->setText(c.Height);
    EXPECT_FALSE(dialog->Register());
    ASSERT_EQ(ui.Messages().size(), 1u);
    EXPECT_EQ(ui.Messages().front().Text, c.Message);
    EXPECT_EQ(ui.Messages().front().Title, "Error");
    EXPECT_EQ(bench.ProfileCount(), 1);
  }
}

TEST_F(ToolDialogTest, NothingSelectedDoesNothing) {
  auto dialog = Open(kReverse);
  EXPECT_FALSE(dialog->Register());
  EXPECT_TRUE(ui.Log.empty());
  EXPECT_EQ(bench.ProfileCount(), 1);
}

TEST_F(ToolDialogTest, TheMenuOpensTheReversalWhichRegistersTheReversedSamples) {
  WithModal<ToolDialog>([this] { window->OpenTool(kReverse); },
                        [](ToolDialog& dialog) {
                          EXPECT_EQ(dialog.windowTitle(), "プロファイルの反転");
                          SelectAll(dialog);
                          EXPECT_TRUE(dialog.Register());
                          dialog.reject();
                        });
  EXPECT_EQ(SamplesOf("base_反転"), (std::vector<double>{4, 3, 2, 1}));
  EXPECT_EQ(bench.Selection(tab::Iri), (std::vector<int>{1, 2}));
}

TEST_F(ToolDialogTest, ACutOutByDataTakesTheRangeAndFillsTheShortfall) {
  auto dialog = Open(kCutOut);
  SelectAll(*dialog);
  dialog->findChild<QRadioButton*>("opt位置指定1")->click();  // データ指定
  // Two samples in from the start, five samples long: 3, 4, and three past the end filled with the last.
  dialog->findChild<QLineEdit*>("txtデータ指定0")->setText("2");
  dialog->findChild<QLineEdit*>("txtデータ指定1")->setText("5");
  dialog->findChild<QRadioButton*>("opt不足データ処理2")->click();
  ASSERT_TRUE(dialog->Register()) << (ui.Messages().empty() ? "" : ui.Messages().front().Text);
  EXPECT_EQ(SamplesOf("base_2_5個切出し(始終値埋め)"), (std::vector<double>{3, 4, 4, 4, 4}));
}

}  // namespace
}  // namespace velmora::gui
