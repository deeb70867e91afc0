#pragma once
// The dialog of the calculation conditions (frm計算条件, caption "計算条件") as an engine: the boxes
// are a record, the buttons and labels are operations, every question and message goes through the session's interaction.
// The dialog edits a copy of session.CurrentConditions; only OK (or Yes on closing) stores it.
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/colour.h"
#include "base/session.h"
#include "base/settings.h"

namespace velmora {

// Texts of the form, for the front ends that draw it.
inline constexpr const char* kConditionsCaption = "計算条件";
inline constexpr const char* kConditionsPageCaptions[] = {"【 移動平均フィルター 】", "【 ＩＲＩ 】", "【補修予測ライン】"};
inline constexpr const char* kBandFilterHint = "値の変更は初期値設定ファイルで指定してください。";
inline constexpr const char* kPartialSectionQuestion = "評価区間長に満たない区間のIRI算出を";
inline constexpr const char* kPartialSectionChoices[] = {"する", "しない"};
inline constexpr const char* kResetLabel = "初期値に戻す";
inline constexpr const char* kSaveLabel = "初期値として保存する";

// What the boxes hold, as the user typed it.
struct ConditionsBoxes {
  std::array<std::string, 2> txtBandFilter;  // FilterLong, FilterShort, m (read-only on the form)
  std::array<bool, 2> txtBandFilterEnabled{true, true};
  std::array<std::string, 6> txt_IRI;        // Speed, KsMs, CsMs, MuMs, KtMs, InitFilter
  std::array<bool, 6> txt_IRIEnabled{true, true, true, true, true, true};
  std::int32_t optIRI_PW = 0;                // 0 ARS, 1 RMS
  bool opt_IRI算出区間条件_しない = false;    // "評価区間長に満たない区間のIRI算出を" しない
  std::array<std::string, 9> txt_バンド別低減ライン;  // the study's band lines 1..9, mm; empty: no line
  std::array<Colour, 2> cmd補修予測色{};             // line colour, colour after the lines are applied

  friend bool operator==(const ConditionsBoxes&, const ConditionsBoxes&) = default;
};

// The label pairs "初期値に戻す" / "初期値として保存する" and the group of Default.ini each stands for.
enum class ConditionsPage {
  Iri = 2,            // lbl_IRI_初期値
  RepairLines = 5,    // lbl_補修予測初期値
  RepairColours = 6,  // lbl_補修予測色
};

// The boxes showing `conditions`, and `conditions` with the boxes taken in. Numbers are shown without
// trailing zeros; a band line that is empty or not a number is no line.
ConditionsBoxes BoxesFrom(const CalcConditions& conditions);
CalcConditions ApplyBoxes(CalcConditions conditions, const ConditionsBoxes& boxes);

// Names of the boxes that fail the check ("txtBandFilter(0)", "txt_IRI(3)", ...): enabled band-filter
// and IRI boxes must hold a number. The form colours these as invalid.
std::vector<std::string> InvalidBoxes(const ConditionsBoxes& boxes);

class ConditionsDialog {
 public:
  // Opens on a copy of session.CurrentConditions. `markDependentTabsDirty` is called when OK stores a change.
  explicit ConditionsDialog(Session& session, std::function<void()> markDependentTabsDirty = {});

  ConditionsBoxes Boxes;  // edited by the user (or the front end) between operations

  bool IsOpen() const { return open_; }
  const CalcConditions& Copy() const { return copy_; }

  // OK: on a failed check shows "指定データにエラーがありました。" CR LF "修正してください。" (title
  // "エラー") and stays open (false). Otherwise stores the boxes into session.CurrentConditions, marks the
  // dependent tabs when anything changed, and closes (true).
  bool Ok();
  // Any other way of closing: when the boxes differ from the copy, asks "データが変更されています。
  // 保存しますか？" (Yes/No/Cancel, title "確認"). Cancel stays open, Yes does what OK does, No drops the
  // changes. True when the dialog is closed afterwards.
  bool Close();
  // "初期値に戻す": asks "規定値を読み込み適用します。" CR LF "よろしいですか？" (OK/Cancel, "確認"); on OK reloads
  // the page's group from Default.ini and shows it in the page's boxes. True when reloaded.
  bool ResetPage(ConditionsPage page);
  // "初期値として保存する": asks "規定値として保存します。" CR LF "よろしいですか？"; on OK takes the page's
  // boxes into session.DefaultConditions and saves the group (the IRI group is not one that is written to
  // the file). A write failure is reported through the error log. True when saved.
  bool SavePage(ConditionsPage page);

 private:
  void Store();

  Session& session_;
  std::function<void()> markDirty_;
  CalcConditions copy_;
  bool open_ = true;
};

}  // namespace velmora
