#pragma once
// The statistics tab: mean, deviation, extremes and spread of the band-split profiles and of their
// IRI, over the whole length and over 10, 100 and 200 m sections common to all selected profiles.
// The selection is what the tab's check boxes give; the result is eight pages kept by the caller for
// display and for the save. Pages hold their figures as numbers: a full run makes millions of them,
// and only the few shown or saved are turned into text.
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "analysis/fft_filter.h"
#include "base/session.h"
#include "evaluation/section_statistics.h"
#include "profile/profile_list.h"
#include "results/iri_types.h"

namespace velmora {

inline constexpr std::array<const char*, 12> kStatisticsBands = {
    "全波長", "長波長", "短波長", "1-OCT", "2-OCT", "3-OCT", "4-OCT", "5-OCT", "6-OCT", "7-OCT", "8-OCT", "9-OCT"};
inline constexpr std::array<const char*, 5> kStatisticsMeasures = {"平均 μ", "標準偏差 σ", "最大値", "最小値",
                                                                   "最大最小差"};
inline constexpr std::array<const char*, 4> kIriEvaluationLengths = {"10m連続", "10m固定", "100m固定", "200m固定"};
// Result pages in display order: four of the profile, four of the IRI.
inline constexpr std::array<const char*, 8> kStatisticsPages = {
    "全区間(Prof)", "10m(Prof)", "100m(Prof)", "200m(Prof)", "全区間(IRI)", "10m(IRI)", "100m(IRI)", "200m(IRI)"};
// Section lengths of the grid, m.
inline constexpr std::array<std::int32_t, 3> kStatisticsSectionLengths = {10, 100, 200};

// The tab's check boxes. Nothing is ticked by default. A header check ("帯域", "統計値",
// "IRI算出基準長") switches its whole group; the band group's header also says whether its side is
// wanted when no band of it is ticked.
struct StatisticsSelection {
  std::array<bool, 12> ProfileBands{};
  bool ProfileBandsHeader = false;
  std::array<bool, 5> ProfileMeasures{};
  std::array<bool, 12> IriBands{};
  bool IriBandsHeader = false;
  std::array<bool, 5> IriMeasures{};
  std::array<bool, 4> IriLengths{};
  // The two ordering lists, most significant first; the user moves words with ▲ and ▼.
  std::vector<std::string> ProfileOrder = {"プロファイル", "帯域", "統計値"};
  std::vector<std::string> IriOrder = {"プロファイル", "IRI算出基準長", "帯域", "統計値"};
  // Set by the check: which sides the run computes.
  bool ProfileSide = false;
  bool IriSide = false;
};

// A header check switched: every member of its group follows it.
template <std::size_t N>
void SwitchGroup(std::array<bool, N>& group, bool on) {
  group.fill(on);
}

// Shows the first failing check's warning ("警告") and gives false; otherwise sets the two side flags.
bool CheckStatisticsSelection(Session& session, std::int32_t selectedCount, StatisticsSelection& selection);

// The debug lines of the selection ("プロファイル(帯域) = ..." and the like), items joined by " ,  ".
std::vector<std::string> StatisticsSettingLines(const StatisticsSelection& selection);

// The sort key of a result column: the level tokens in the order of `order` ("プロファイル" is the
// profile's place in the selection as "000"). A level absent from `order` is left out.
std::string StatisticsSortKey(const std::vector<std::string>& order, std::int32_t place, std::int32_t band,
                              std::int32_t measure, std::int32_t length = -1);

// The common grid of one section length (m) over the selected profiles' KP ranges. `pitch` is the
// pitch (m) of the profile with the smallest start.
SectionGridLine BuildSectionGrid(double lowestStartKm, double highestEndKm, std::int32_t lengthM, double pitch);

// One result page: head rows of text (names, bands, statistics, captions), then body rows of a label
// and one number per column. Blank body cells are NaN. Columns of KP use "0.000", the others
// "0.00000000".
struct StatisticsPage {
  std::string Caption;
  std::vector<std::vector<std::string>> Head;  // each row Width() cells, label first
  std::vector<std::string> RowLabels;          // first cell of each body row
  std::vector<bool> KpColumn;                  // per body column (without the label)
  std::vector<double> Body;                    // row-major, RowLabels.size() x KpColumn.size()

  bool Empty() const { return Head.empty(); }
  std::size_t Width() const { return KpColumn.size() + 1; }
  std::size_t RowCount() const { return Empty() ? 0 : Head.size() + RowLabels.size(); }
  // The cell as shown: row and column from 0 over the whole page, label column 0.
  std::string Cell(std::size_t row, std::size_t column) const;
  std::vector<std::string> RowText(std::size_t row) const;
};

struct StatisticsRequest {
  IriParams Iri;                      // the IRI tab's parameters (the window length is 10 m here)
  bool SkipPartialSections = false;   // "評価区間長に満たない区間のIRI算出を" "しない"
  bool ConvergentOctaves = false;     // the octave split with repeated passes
  FilterConvergence Limits;           // of that split
};

struct StatisticsResults {
  std::array<SectionGridLine, 3> Grid{};  // 10, 100, 200 m
  std::array<StatisticsPage, 8> Pages;
  bool Valid = false;
};

// "実行": checks, splits each selected profile into its bands (unless current), builds the grid and
// fills the pages. selectedRows: 1-based places in `list`. False after a refused check or a run-time
// error (logged as "cmdGo統計値"); the results are replaced only by a complete run.
bool RunStatistics(Session& session, ProfileList& list, std::span<const std::int32_t> selectedRows, StatisticsSelection selection,
                   const StatisticsRequest& request, StatisticsResults& results);
// The same over profiles whose octave split is already made (a profile without it is an error).
bool RunStatisticsOnSplit(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                          StatisticsSelection selection, const StatisticsRequest& request,
                          StatisticsResults& results);

}  // namespace velmora
