#pragma once
// Verification of profilers against each other: every pair of the selected profiles is correlated
// over a range of shifts, and six measures are read from the best shift. The options are what the
// tab's controls give; the results stay with the caller (the workbench) for the tables, the save and
// the registration of shifted copies.
#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "base/session.h"
#include "evaluation/cross_correlation_kernel.h"
#include "profile/profile_list.h"
#include "results/iri_types.h"

namespace velmora {

struct CorrelationOptions {
  std::int32_t MaxShiftMode = 1;     // 0 "MAX/2", 1 "データ数指定"
  std::string MaxShiftText = "10";   // the box beside "データ数指定", samples ("個")
  std::int32_t MaxShiftCount = 10;   // read from MaxShiftText by the check
  std::int32_t Measure = 1;          // 0 相互相関値, 1 一致度, 2 ずらし量, 3 標準偏差比, 4 IRI誤差率, 5 PSD誤差率
  std::int32_t FilterMode = 1;       // 0 なし, 1 IRI
  std::int32_t TableLayout = 0;      // 0 クロス表, 1 単一表
  std::int32_t Alignment = 0;        // 0 先頭, 1 中央, 2 KP
  bool ShowIri = false;
  bool ShowPsd = false;
};

// The six measures' captions, in Measure order.
inline constexpr std::array<const char*, 6> kMeasureCaptions = {"相互相関値", "一致度",   "ずらし量",
                                                                  "標準偏差比", "IRI誤差率", "PSD誤差率"};

// What the selection gives a run.
struct CorrelationSelection {
  std::int32_t ProfileCount = 0;
  std::vector<std::string> Names;         // in list order
  std::vector<std::int32_t> ListIndices;  // 1-based places in the ProfileList
  std::int32_t CommonCount = 0;           // samples all selected profiles share
  double CommonKpStart = 0;               // km, "KP" alignment only
  double CommonKpEnd = 0;
  bool SelectMaxShiftText = false;        // the check asks for the shift box's text to be selected
};

// How the PSD value of a profile is taken (the PSD tab's options at their start values by default).
struct CorrelationPsdOptions {
  std::int32_t WindowKind = 1;  // Hanning
  bool MirrorFill = true;
};

// The results of one run, kept for the tables, the save and the registration.
struct CorrelationResults {
  CorrelationOptions Options;
  CorrelationSelection Selection;
  std::vector<CorrelationCell> Matrix;  // ProfileCount x ProfileCount, only i <= j computed
  std::vector<double> IriValues;        // per profile in selection order, mm/m
  std::vector<double> PsdValues;
  bool UsedIriFilter = false;
  bool Valid = false;

  CorrelationCell& Cell(std::int32_t i, std::int32_t j) { return Matrix[Index(i, j)]; }
  const CorrelationCell& Cell(std::int32_t i, std::int32_t j) const { return Matrix[Index(i, j)]; }

 private:
  std::size_t Index(std::int32_t i, std::int32_t j) const {
    return static_cast<std::size_t>((i - 1) * Selection.ProfileCount + (j - 1));
  }
};

// Fills the selection's derived values for `options` and checks them: equal pitches, a common part,
// the shift range. Each failure shows its warning ("警告") and gives false. selectedRows: 1-based
// places in `list`, any order.
bool CheckCorrelationOptions(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                             CorrelationOptions& options, CorrelationSelection& selection);

// The elevations a profile contributes under the chosen alignment: CommonCount samples (mm), a
// downward profile reversed in "KP" alignment.
std::vector<double> AlignedSamples(const ProfileRecord& profile, const CorrelationOptions& options,
                                   const CorrelationSelection& selection);

// The largest shift (samples) a run takes for series of `size` samples: half of them for "MAX/2",
// else the count given.
std::int32_t MaxShiftFor(const CorrelationOptions& options, std::size_t size);

// The series the run that gave `results` compared, in selection order: the aligned samples of each
// profile, or their IRI filter series when the run used the filter. `iri` as for the run.
std::vector<std::vector<double>> ComparedSeries(Session& session, const ProfileList& list,
                                                const CorrelationResults& results, const IriParams& iri);

// "実行": checks, builds the aligned copies (with the IRI filter when FilterMode is 1 and not
// `withoutFilter`), the IRI and PSD value of each and every pair i <= j. The results are replaced
// only by a complete run; false after a refused check or a run-time error (logged as
// "cmdGO相互相関"). `iri` are the IRI tab's parameters.
bool RunCrossCorrelation(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                         const CorrelationOptions& options, const IriParams& iri, CorrelationResults& results,
                         bool withoutFilter = false, const CorrelationPsdOptions& psd = {});

// "ずらし量適用登録": a copy of each later profile moved by its shift against the first, written as ERD
// in the project's profile folder and registered in `list` at once. Returns the new names (none when
// every shift is 0). Errors are logged as "cmd精度検証ずらし量登録" and give an empty list.
std::vector<std::string> RegisterShiftedProfiles(Session& session, ProfileList& list, const CorrelationResults& results);
// The same with the registration left to the caller (the workbench's own): `registerFiles` gets the
// paths of the written copies at once and answers whether they were registered.
std::vector<std::string> RegisterShiftedProfiles(Session& session, 
    const ProfileList& list, const CorrelationResults& results,
    const std::function<bool(const std::vector<std::string>& paths)>& registerFiles);

// Name and title of the copy moved by `shift` samples: "<name>-3P" and "(-3P)" for shift 3,
// "<name>+3P" and "(+3P)" for shift -3.
std::string ShiftedProfileName(const std::string& name, std::int32_t shift);
std::string ShiftedTitleSuffix(std::int32_t shift);

}  // namespace velmora
