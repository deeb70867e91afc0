// The desktop's dialogs behind the interaction: file dialog filters and texts as Qt takes them, the
// message box's title, icon, buttons and answer, and the Cancel of the progress dialog.
#include "qt_interaction.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>

#include "gui/qt_app.h"

namespace velmora::gui {
namespace {

TEST(QtNameFilterTest, DescriptionAndPatternsInTurnsBecomeQtFilters) {
  const struct {
    const char* Given;
    const char* Expected;
  } cases[] = {
      {"ERDファイル (*.ERD)|*.ERD|すべてのファイル (*.*)|*.*", "ERDファイル (*.ERD);;すべてのファイル (*.*)"},
      // Qt separates patterns by spaces only.
      {"テキストファイル (*.txt;*.csv)|*.txt;*.csv", "テキストファイル (*.txt *.csv)"},
      // The trailing bar of the program's filters adds no filter.
      {"データファイル (*.Dummy)|*.Dummy|", "データファイル (*.Dummy)"},
      // A description without brackets gets its patterns.
      {"Profiles|*.erd", "Profiles (*.erd)"},
      {"", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(QtNameFilter(c.Given), QString::fromUtf8(c.Expected)) << c.Given;
}

TEST(DialogTextTest, LineBreaksOfTheProgramBecomePlain) {
  EXPECT_EQ(DialogText("保存しました。 \r\n保存先：C:\\x"), QString::fromUtf8("保存しました。 \n保存先：C:\\x"));
  EXPECT_EQ(DialogText("\r\n\r\n"), QString("\n\n"));
}

// What the box showed, and which of its buttons the user pressed.
struct SeenBox {
  QString Title, Text;
  QMessageBox::Icon Icon = QMessageBox::NoIcon;
  QMessageBox::StandardButtons Buttons;
  QMessageBox::StandardButton Default = QMessageBox::NoButton;
};

MsgAnswer Answer(QtInteraction& ui, MsgIcon icon, MsgButtons buttons, MsgAnswer defaultAnswer,
                 QMessageBox::StandardButton press, SeenBox& seen) {
  QTimer::singleShot(0, [&] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    seen = {box->windowTitle(), box->text(), box->icon(), box->standardButtons(), box->standardButton(box->defaultButton())};
    box->button(press)->click();
  });
  return ui.Message("確認してください。\r\n指定名称：A", "警告", icon, buttons, defaultAnswer);
}

TEST(QtInteractionTest, AMessageBoxShowsTheProgramsTitleIconAndButtonsAndGivesThePressedOne) {
  TestApplication();
  QtInteraction ui;
  const struct {
    MsgIcon Icon;
    MsgButtons Buttons;
    MsgAnswer Default;
    QMessageBox::StandardButton Press;
    QMessageBox::Icon ShownIcon;
    QMessageBox::StandardButtons ShownButtons;
    QMessageBox::StandardButton ShownDefault;
    MsgAnswer Expected;
  } cases[] = {
      {MsgIcon::Exclamation, MsgButtons::Ok, MsgAnswer::Ok, QMessageBox::Ok, QMessageBox::Warning, QMessageBox::Ok,
       QMessageBox::Ok, MsgAnswer::Ok},
      {MsgIcon::Question, MsgButtons::YesNo, MsgAnswer::No, QMessageBox::Yes, QMessageBox::Question,
       QMessageBox::Yes | QMessageBox::No, QMessageBox::No, MsgAnswer::Yes},
      {MsgIcon::Critical, MsgButtons::OkCancel, MsgAnswer::Ok, QMessageBox::Cancel, QMessageBox::Critical,
       QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Ok, MsgAnswer::Cancel},
      {MsgIcon::Information, MsgButtons::YesNoCancel, MsgAnswer::Cancel, QMessageBox::No, QMessageBox::Information,
       QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, QMessageBox::Cancel, MsgAnswer::No},
  };
  for (const auto& c : cases) {
    SeenBox seen;
    EXPECT_EQ(Answer(ui, c.Icon, c.Buttons, c.Default, c.Press, seen), c.Expected);
    EXPECT_EQ(seen.Title, QString::fromUtf8("警告"));
    EXPECT_EQ(seen.Text, QString::fromUtf8("確認してください。\n指定名称：A"));
    EXPECT_EQ(seen.Icon, c.ShownIcon);
    EXPECT_EQ(seen.Buttons, c.ShownButtons);
    EXPECT_EQ(seen.Default, c.ShownDefault);
  }
}

TEST(QtInteractionTest, CancelOfTheProgressDialogStopsUntilTheNextStart) {
  TestApplication();
  QWidget window;
  QtInteraction ui;
  ui.SetParentWindow(&window);
  ui.ProgressStart("IRI計算", "しばらくお待ちください。");
  auto* dialog = window.findChild<QProgressDialog*>();
  ASSERT_NE(dialog, nullptr);
  EXPECT_EQ(dialog->windowTitle(), QString::fromUtf8("IRI計算"));
  EXPECT_EQ(dialog->labelText(), QString::fromUtf8("しばらくお待ちください。"));
  EXPECT_TRUE(ui.ProgressValue(40));
  EXPECT_EQ(dialog->value(), 40);
  EXPECT_TRUE(ui.ProgressValue(150));  // outside the bar: not shown, not a stop
  EXPECT_EQ(dialog->value(), 40);
  dialog->cancel();
  EXPECT_FALSE(ui.ProgressValue(50));
  ui.ProgressExit();
  EXPECT_FALSE(dialog->isVisible());
  ui.ProgressStart("IRI計算", "しばらくお待ちください。");
  EXPECT_TRUE(ui.ProgressValue(10));
  ui.ProgressExit();
}

}  // namespace
}  // namespace velmora::gui
