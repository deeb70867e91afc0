#pragma once
// The named studies of a profile: creating, renaming and deleting them through the user's dialogs,
// the two lists that choose one, and the thickness change a study's point table gives.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/one_based.h"
#include "base/session.h"
#include "results/repair_types.h"

namespace velmora {

// First item of both study lists: the calculated M' without any study. It cannot be deleted.
inline constexpr std::string_view kStudyNoAdjustment = "----------【 調整なし 】----------";

// Where a study is made: the main form gives thickness studies, the plan form spacing studies.
enum class StudyForm { Thickness, Spacing };
// The two lists: lst検討対象 and lst_M波選択.
enum class StudyList { Targets, MWaveChoice };

inline constexpr int kKeyDelete = 46;
inline constexpr int kKeyF2 = 113;

// "[厚]" or "[間]".
std::string_view StudySuffix(StudyForm form);
// The rows of either list: the fixed item, then the names of `studies` in order.
std::vector<std::string> StudyListItems(const std::vector<StudyTarget>& studies);

// A study named `name` (suffix included) with the points and flags of the calculated point `table`.
StudyTarget NewStudy(std::string name, const std::vector<StudyPoint>& table);
// Asks for a name until it is new among `studies` or the user cancels; then appends a study with the
// points and flags of the calculated point `table`. Returns the new study's position (0-based).
std::optional<std::size_t> CreateStudy(Session& session, std::vector<StudyTarget>& studies, StudyForm form,
                                       const std::vector<StudyPoint>& table);
// Row of a list (0 is the fixed item). Asks, and removes the study on Yes. True when removed.
bool DeleteStudy(Session& session, std::vector<StudyTarget>& studies, StudyList list, int row);
// New name for the study at `row` by the creation dialog; the study keeps its suffix. True when renamed.
bool RenameStudy(Session& session, std::vector<StudyTarget>& studies, int row);
// A key on either list: Delete removes, F2 renames the selected row. True when the studies changed.
bool StudyListKeyDown(Session& session, std::vector<StudyTarget>& studies, StudyList list, int row, int keyCode);

// The user's edits of the point table of a study; both mark it adjusted.
void SetPointThickness(StudyTarget& target, std::size_t point, double thicknessMm);
void SetPointExcluded(StudyTarget& target, std::size_t point, bool excluded);

// The study's points as the rebuild takes them: index, M' there (MWaveSeed when excluded), thickness.
// `mPrime` is the calculated M' (mm, 1..n). Indices outside it raise "subscript out of range".
std::vector<StudyPoint> StudyPointsForRebuild(const StudyTarget& target, const Array1<double>& mPrime);
// UserAdjust[i]: the thickness the point table gives at sample i, that is the line through the
// adjusted points less M; 0 outside the first and last point. mm, 1..n.
Array1<double> UserAdjustOf(const Array1<double>& m, const Array1<double>& mPrime, const StudyTarget& target);

}  // namespace velmora
