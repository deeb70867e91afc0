// frm計算条件 on the desktop: the boxes show the conditions in force, OK stores a change and marks the
// tabs, a box that is not a number is refused with the form's message and its colour, and closing
// asks about changes as the form does. Opened from the menu, it is the workbench's hook that runs it.
#include "conditions_dialog.h"

#include <gtest/gtest.h>

#include <QRadioButton>

#include "base/number_helpers.h"
#include "window_fixture.h"

namespace velmora::gui {
namespace {

constexpr const char* kRefusal = "指定データにエラーがありました。\r\n修正してください。";

class ConditionsFormTest : public WindowFixture {
 protected:
  QLineEdit* BoxOf(QWidget& form, const QString& name) {
    auto* box = form.findChild<QLineEdit*>(name);
    EXPECT_NE(box, nullptr) << name.toStdString();
    return box;
  }
  static void Press(QWidget& form, const char* name) { form.findChild<QPushButton*>(name)->click(); }
};

TEST_F(ConditionsFormTest, TheBoxesShowTheConditionsInForce) {
  const CalcConditions& now = session.CurrentConditions;
  ConditionsDialog engine(session);
  ConditionsForm form(engine);
  EXPECT_EQ(form.windowTitle(), "計算条件");
  EXPECT_EQ(BoxOf(form, "txt_IRI0")->text().toStdString(), uTrimZero(now.Iri.Speed));
  EXPECT_EQ(BoxOf(form, "txt_IRI4")->text().toStdString(), uTrimZero(now.Iri.KtMs));
  EXPECT_EQ(BoxOf(form, "txtBandFilter0")->text().toStdString(), std::to_string(now.FilterLong));
  EXPECT_TRUE(BoxOf(form, "txtBandFilter0")->isReadOnly());
  EXPECT_EQ(form.findChild<QRadioButton*>("optIRI_PW1")->isChecked(), now.Iri.PowerWeighting != 0);
}

TEST_F(ConditionsFormTest, OkStoresTheChangedValuesAndMarksTheDependentTabs) {
  const double speed = session.CurrentConditions.Iri.Speed + 10;
  const int weighting = session.CurrentConditions.Iri.PowerWeighting == 0 ? 1 : 0;
  bool marked = false;
  ConditionsDialog engine(session, [&marked] { marked = true; });
  ConditionsForm form(engine);
  form.show();
  BoxOf(form, "txt_IRI0")->setText(QString::fromStdString(uTrimZero(speed)));
  form.findChild<QRadioButton*>(QString("optIRI_PW%1").arg(weighting))->click();
  form.findChild<QRadioButton*>("opt_IRI算出区間条件1")->click();
  BoxOf(form, "txt_バンド別低減ライン0")->setText("2.5");
  BoxOf(form, "txt_バンド別低減ライン8")->setText("");
  Press(form, "ok");
  EXPECT_EQ(form.result(), QDialog::Accepted);
  EXPECT_TRUE(marked);
  const CalcConditions& now = session.CurrentConditions;
  EXPECT_DOUBLE_EQ(now.Iri.Speed, speed);
  EXPECT_EQ(now.Iri.PowerWeighting, weighting);
  EXPECT_TRUE(now.SkipPartialSections);
  EXPECT_DOUBLE_EQ(now.RepairBandLines.Value[1], 2.5);
  EXPECT_EQ(now.RepairBandLines.Value[9], kNoValue);  // an empty band line is no line
  EXPECT_TRUE(ui.Messages().empty());
}

TEST_F(ConditionsFormTest, ABoxThatIsNotANumberIsRefusedWithTheFormsMessage) {
  for (const char* bad : {"abc", "", " "}) {
    SCOPED_TRACE(std::string("\"") + bad + "\"");
    ui.Log.clear();
    const CalcConditions before = session.CurrentConditions;
    ConditionsDialog engine(session);
    ConditionsForm form(engine);
    form.show();
    BoxOf(form, "txt_IRI0")->setText("123");
    BoxOf(form, "txt_IRI2")->setText(bad);
    Press(form, "ok");
    EXPECT_TRUE(form.isVisible());
    EXPECT_TRUE(engine.IsOpen());
    ASSERT_EQ(ui.Messages().size(), 1u);
    EXPECT_EQ(ui.Messages().front().Text, kRefusal);
    EXPECT_EQ(ui.Messages().front().Title, "エラー");
    EXPECT_TRUE(session.CurrentConditions == before);
    EXPECT_TRUE(BoxOf(form, "txt_IRI2")->styleSheet().contains("#ff0000"));
    EXPECT_TRUE(BoxOf(form, "txt_IRI0")->styleSheet().isEmpty());
    form.done(QDialog::Rejected);
  }
}

TEST_F(ConditionsFormTest, CancelAsksAboutAChangeAndDoesWhatTheAnswerSays) {
  struct Case {
    MsgAnswer Answer;
    bool StaysOpen;
    bool Stored;
  };
  for (const Case c :
       {Case{MsgAnswer::Cancel, true, false}, Case{MsgAnswer::No, false, false}, Case{MsgAnswer::Yes, false, true}}) {
    SCOPED_TRACE(static_cast<int>(c.Answer));
    ui.Log.clear();
    const double speed = session.CurrentConditions.Iri.Speed + 1;
    ConditionsDialog engine(session);
    ConditionsForm form(engine);
    form.show();
    BoxOf(form, "txt_IRI0")->setText(QString::fromStdString(uTrimZero(speed)));
    ui.Answers = {c.Answer};
    Press(form, "cancel");
    ASSERT_EQ(ui.Messages().size(), 1u);
    EXPECT_EQ(ui.Messages().front().Text, "データが変更されています。保存しますか？");
    EXPECT_EQ(form.isVisible(), c.StaysOpen);
    EXPECT_EQ(session.CurrentConditions.Iri.Speed == speed, c.Stored);
    form.done(QDialog::Rejected);
  }
  // Nothing changed: closes without a question.
  ui.Log.clear();
  ConditionsDialog engine(session);
  ConditionsForm form(engine);
  form.show();
  Press(form, "cancel");
  EXPECT_FALSE(form.isVisible());
  EXPECT_TRUE(ui.Messages().empty());
}

TEST_F(ConditionsFormTest, TheMenuOpensItAndAStoredChangeMarksEveryTab) {
  auto* longCut = window->findChild<QLineEdit*>("longCut");
  longCut->setText("37");  // typed, not yet taken by a Go
  bench.TabDirty.fill(false);
  const double speed = session.CurrentConditions.Iri.Speed + 5;
  WithModal<ConditionsForm>([this] { window->EditConditions(); },
                            [&](ConditionsForm& form) {
                              BoxOf(form, "txt_IRI0")->setText(QString::fromStdString(uTrimZero(speed)));
                              Press(form, "ok");
                            });
  EXPECT_DOUBLE_EQ(session.CurrentConditions.Iri.Speed, speed);
  EXPECT_TRUE(std::all_of(bench.TabDirty.begin(), bench.TabDirty.end(), [](bool d) { return d; }));
  // The tab's inputs are set from the conditions again, and the box shows what Go will take.
  EXPECT_EQ(bench.Filter.LongCut, std::to_string(session.CurrentConditions.FilterLong));
  EXPECT_EQ(longCut->text().toStdString(), bench.Filter.LongCut);
}

}  // namespace
}  // namespace velmora::gui
