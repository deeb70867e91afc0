#include "repair/study_targets.h"

#include <algorithm>

#include "base/common.h"
#include "base/session.h"
#include "base/user_interaction.h"
#include "repair/m_wave.h"

namespace velmora {
namespace {

constexpr const char* kNameTitle = "新規作成";
constexpr const char* kNamePrompt = "検討対象名を指定してください。";

bool NameTaken(const std::vector<StudyTarget>& studies, const std::string& name, std::size_t except) {
  for (std::size_t k = 0; k < studies.size(); ++k)
    if (k != except && uStrEqual(studies[k].Name, name)) return true;
  return false;
}

bool EndsWith(std::string_view text, std::string_view tail) {
  return text.size() >= tail.size() && text.substr(text.size() - tail.size()) == tail;
}

// The creation dialog: a name with the suffix that no other study (but `except`) holds, or nullopt.
std::optional<std::string> AskStudyName(Session& session, const std::vector<StudyTarget>& studies, std::string_view suffix,
                                        std::string typed, std::size_t except) {
  for (;;) {
    const std::optional<std::string> answer = session.Ui().Input(kNamePrompt, kNameTitle, typed);
    if (!answer || Trim(*answer).empty()) return std::nullopt;
    typed = Trim(*answer);
    std::string name = typed + std::string(suffix);
    if (!NameTaken(studies, name, except)) return name;
    session.Ui().Inform("指定された検討対象名は既に登録されています。\r\n指定検討対象名：" + name, "警告");
  }
}

// The study of a list row; rows start at 1 after the fixed item.
StudyTarget* StudyAtRow(std::vector<StudyTarget>& studies, int row) {
  if (row < 1 || static_cast<std::size_t>(row) > studies.size()) return nullptr;
  return &studies[static_cast<std::size_t>(row - 1)];
}

}  // namespace

std::string_view StudySuffix(StudyForm form) { return form == StudyForm::Thickness ? "[厚]" : "[間]"; }

std::vector<std::string> StudyListItems(const std::vector<StudyTarget>& studies) {
  std::vector<std::string> items{std::string(kStudyNoAdjustment)};
  for (const StudyTarget& s : studies) items.push_back(s.Name);
  return items;
}

StudyTarget NewStudy(std::string name, const std::vector<StudyPoint>& table) {
  StudyTarget study;
  study.Name = std::move(name);
  for (const StudyPoint& p : table) {
    study.Flags.push_back(p.Flag);
    study.Points.push_back(p.Index);
  }
  // The working set starts as the calculated one; a save writes it only once the user adjusted it.
  study.AdjFlags = study.Flags;
  study.AdjPoints = study.Points;
  return study;
}

std::optional<std::size_t> CreateStudy(Session& session, std::vector<StudyTarget>& studies, StudyForm form,
                                       const std::vector<StudyPoint>& table) {
  const std::optional<std::string> name = AskStudyName(session, studies, StudySuffix(form), "", studies.size());
  if (!name) return std::nullopt;
  StudyTarget study = NewStudy(*name, table);
  study.Thickness.assign(table.size(), 0.0);
  studies.push_back(std::move(study));
  return studies.size() - 1;
}

bool DeleteStudy(Session& session, std::vector<StudyTarget>& studies, StudyList list, int row) {
  const StudyTarget* study = StudyAtRow(studies, row);
  if (study == nullptr) return false;
  const char* what = list == StudyList::Targets ? " を検討対象から削除します。" : " をM波選択から削除します。";
  // A deletion cannot be undone, so No has the focus.
  if (!session.Ui().AskYesNo(study->Name + what + "\r\nよろしいですか？", "確認", MsgAnswer::No)) return false;
  studies.erase(studies.begin() + (row - 1));
  return true;
}

bool RenameStudy(Session& session, std::vector<StudyTarget>& studies, int row) {
  StudyTarget* study = StudyAtRow(studies, row);
  if (study == nullptr) return false;
  const std::string_view suffix =
      EndsWith(study->Name, StudySuffix(StudyForm::Spacing)) ? StudySuffix(StudyForm::Spacing)
                                                            : StudySuffix(StudyForm::Thickness);
  const std::string bare =
      EndsWith(study->Name, suffix) ? study->Name.substr(0, study->Name.size() - suffix.size()) : study->Name;
  const auto name = AskStudyName(session, studies, suffix, bare, static_cast<std::size_t>(row - 1));
  if (!name || *name == study->Name) return false;
  study->Name = *name;
  return true;
}

bool StudyListKeyDown(Session& session, std::vector<StudyTarget>& studies, StudyList list, int row, int keyCode) {
  if (keyCode == kKeyDelete) return DeleteStudy(session, studies, list, row);
  if (keyCode == kKeyF2) return RenameStudy(session, studies, row);
  return false;
}

void SetPointThickness(StudyTarget& target, std::size_t point, double thicknessMm) {
  if (target.Thickness.size() < target.AdjPoints.size()) target.Thickness.resize(target.AdjPoints.size(), 0.0);
  target.Thickness.at(point) = thicknessMm;
  target.Adjusted = true;
}

void SetPointExcluded(StudyTarget& target, std::size_t point, bool excluded) {
  std::uint8_t& flag = target.AdjFlags.at(point);
  flag = excluded ? static_cast<std::uint8_t>(flag | kPointExcluded)
                  : static_cast<std::uint8_t>(flag & ~kPointExcluded);
  target.Adjusted = true;
}

std::vector<StudyPoint> StudyPointsForRebuild(const StudyTarget& target, const Array1<double>& mPrime) {
  std::vector<StudyPoint> points;
  for (std::size_t k = 0; k < target.AdjPoints.size(); ++k) {
    StudyPoint p;
    p.Index = static_cast<std::int32_t>(target.AdjPoints[k]);
    p.Flag = k < target.AdjFlags.size() ? target.AdjFlags[k] : 0;
    p.Value = (p.Flag & kPointExcluded) != 0 ? MWaveSeed : mPrime.at(p.Index);
    p.Adjust = k < target.Thickness.size() ? target.Thickness[k] : 0.0;
    points.push_back(p);
  }
  return points;
}

Array1<double> UserAdjustOf(const Array1<double>& m, const Array1<double>& mPrime, const StudyTarget& target) {
  Array1<double> adjust = RebuildFromPoints(m, StudyPointsForRebuild(target, mPrime));
  for (std::ptrdiff_t i = 1; i <= adjust.size(); ++i) adjust[i] -= m[i];
  return adjust;
}

}  // namespace velmora
