#include "base/conditions_dialog.h"

#include <string>

#include "base/common.h"
#include "base/error_log.h"
#include "base/number_helpers.h"
#include "base/settings_io.h"
#include "base/user_interaction.h"

namespace velmora {
namespace {

constexpr std::string_view kForm = "frm計算条件";

std::array<double*, 6> IriFields(IriParams& iri) {
  return {&iri.Speed, &iri.KsMs, &iri.CsMs, &iri.MuMs, &iri.KtMs, &iri.InitFilter};
}

std::string NumberText(double value) { return IsNoValue(value) ? std::string() : uTrimZero(value); }

void ShowIri(const CalcConditions& c, ConditionsBoxes& boxes) {
  IriParams iri = c.Iri;
  const auto fields = IriFields(iri);
  for (std::size_t i = 0; i < fields.size(); ++i) boxes.txt_IRI[i] = NumberText(*fields[i]);
  boxes.optIRI_PW = c.Iri.PowerWeighting == 0 ? 0 : 1;
  boxes.opt_IRI算出区間条件_しない = c.SkipPartialSections;
}

void ShowRepairLines(const CalcConditions& c, ConditionsBoxes& boxes) {
  for (std::size_t i = 0; i < 9; ++i) boxes.txt_バンド別低減ライン[i] = NumberText(c.RepairBandLines.Value[i + 1]);
}

void ShowRepairColours(const CalcConditions& c, ConditionsBoxes& boxes) {
  boxes.cmd補修予測色 = {c.RepairLineColour, c.RepairAppliedColour};
}

void TakeIri(const ConditionsBoxes& boxes, CalcConditions& c) {
  const auto fields = IriFields(c.Iri);
  for (std::size_t i = 0; i < fields.size(); ++i) *fields[i] = uDblVal(boxes.txt_IRI[i]);
  c.Iri.PowerWeighting = boxes.optIRI_PW == 0 ? 0 : 1;
  c.SkipPartialSections = boxes.opt_IRI算出区間条件_しない;
}

void TakeRepairLines(const ConditionsBoxes& boxes, CalcConditions& c) {
  // As in Default.ini, a band whose text is not a number has no line rather than a line at 0 mm.
  for (std::size_t i = 0; i < 9; ++i) {
    const auto value = ParseNumber(boxes.txt_バンド別低減ライン[i]);
    c.RepairBandLines.Value[i + 1] = value ? *value : kNoValue;
  }
}

void TakeRepairColours(const ConditionsBoxes& boxes, CalcConditions& c) {
  c.RepairLineColour = boxes.cmd補修予測色[0];
  c.RepairAppliedColour = boxes.cmd補修予測色[1];
}

bool BoxFails(const std::string& text, bool enabled) { return enabled && (Trim(text).empty() || !IsNumeric(text)); }

}  // namespace

ConditionsBoxes BoxesFrom(const CalcConditions& conditions) {
  ConditionsBoxes boxes;
  boxes.txtBandFilter = {std::to_string(conditions.FilterLong), std::to_string(conditions.FilterShort)};
  ShowIri(conditions, boxes);
  ShowRepairLines(conditions, boxes);
  ShowRepairColours(conditions, boxes);
  return boxes;
}

CalcConditions ApplyBoxes(CalcConditions conditions, const ConditionsBoxes& boxes) {
  // The band-filter boxes are read-only: their values change only through Default.ini.
  TakeIri(boxes, conditions);
  TakeRepairLines(boxes, conditions);
  TakeRepairColours(boxes, conditions);
  return conditions;
}

std::vector<std::string> InvalidBoxes(const ConditionsBoxes& boxes) {
  std::vector<std::string> invalid;
  for (std::size_t i = 0; i < boxes.txtBandFilter.size(); ++i)
    if (BoxFails(boxes.txtBandFilter[i], boxes.txtBandFilterEnabled[i]))
      invalid.push_back("txtBandFilter(" + std::to_string(i) + ")");
  for (std::size_t i = 0; i < boxes.txt_IRI.size(); ++i)
    if (BoxFails(boxes.txt_IRI[i], boxes.txt_IRIEnabled[i])) invalid.push_back("txt_IRI(" + std::to_string(i) + ")");
  return invalid;
}

ConditionsDialog::ConditionsDialog(Session& session, std::function<void()> markDependentTabsDirty)
    : Boxes(BoxesFrom(session.CurrentConditions)),
      session_(session),
      markDirty_(std::move(markDependentTabsDirty)),
      copy_(session.CurrentConditions) {}

void ConditionsDialog::Store() {
  copy_ = ApplyBoxes(copy_, Boxes);
  const bool changed = !(copy_ == session_.CurrentConditions);
  session_.CurrentConditions = copy_;
  if (changed && markDirty_) markDirty_();
  open_ = false;
}

bool ConditionsDialog::Ok() {
  if (!InvalidBoxes(Boxes).empty()) {
    session_.Ui().Inform("指定データにエラーがありました。\r\n修正してください。", "エラー", MsgIcon::Exclamation);
    return false;
  }
  Store();
  return true;
}

bool ConditionsDialog::Close() {
  if (ApplyBoxes(copy_, Boxes) == copy_) {
    open_ = false;
    return true;
  }
  const MsgAnswer answer = session_.Ui().Message("データが変更されています。保存しますか？", "確認", MsgIcon::Question,
                                        MsgButtons::YesNoCancel, MsgAnswer::Yes);
  if (answer == MsgAnswer::Cancel) return false;
  if (answer == MsgAnswer::Yes) return Ok();
  open_ = false;
  return true;
}

bool ConditionsDialog::ResetPage(ConditionsPage page) {
  if (!session_.Ui().AskOkCancel("規定値を読み込み適用します。\r\nよろしいですか？", "確認")) return false;
  LoadDefaults(session_, static_cast<int>(page));
  const CalcConditions& defaults = session_.DefaultConditions;
  switch (page) {
    case ConditionsPage::Iri: ShowIri(defaults, Boxes); break;
    case ConditionsPage::RepairLines: ShowRepairLines(defaults, Boxes); break;
    case ConditionsPage::RepairColours: ShowRepairColours(defaults, Boxes); break;
  }
  return true;
}

bool ConditionsDialog::SavePage(ConditionsPage page) {
  if (!session_.Ui().AskOkCancel("規定値として保存します。\r\nよろしいですか？", "確認")) return false;
  CalcConditions& defaults = session_.DefaultConditions;
  switch (page) {
    case ConditionsPage::Iri: TakeIri(Boxes, defaults); break;
    case ConditionsPage::RepairLines: TakeRepairLines(Boxes, defaults); break;
    case ConditionsPage::RepairColours: TakeRepairColours(Boxes, defaults); break;
  }
  return GuardedContinue(session_, kForm, "SaveDefaults", [&] { SaveDefaults(session_, static_cast<int>(page)); });
}

}  // namespace velmora
