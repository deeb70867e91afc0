#pragma once
// The three-wave split of the repair-shape study: the tab's parameters with their checks, the run over
// the selected profiles with its change detection, the split of one series by three FFT filter passes
// and the convergent variant.
#include <array>
#include <cstdint>
#include <span>
#include <string>

#include "base/one_based.h"
#include "base/session.h"
#include "base/settings.h"
#include "profile/profile_record.h"
#include "results/repair_types.h"

namespace velmora {

// The tab's boxes as typed: the two boundaries (m), the IRI base length (m), nine band lines ([1..9]).
struct ThreeWaveForm {
  std::string LongBoundary;   // "長波側境界値"
  std::string ShortBoundary;  // "短波側境界値"
  std::string IriLength;      // "IRI算出基準長"
  std::array<std::string, 10> Lines;
  friend bool operator==(const ThreeWaveForm&, const ThreeWaveForm&) = default;
};

// The box that gets the focus after a failed check.
enum class ThreeWaveField { None, LongBoundary, ShortBoundary, IriLength };

// The checked parameters. They are also what a split is compared against to find a change.
struct ThreeWaveParams {
  double LongBoundary = 0;  // m
  double ShortBoundary = 0;
  double IriLength = 0;     // m
  std::array<std::string, 10> Lines;  // trimmed texts, [1..9]
  friend bool operator==(const ThreeWaveParams&, const ThreeWaveParams&) = default;
};

// The boxes as the conditions fill them (an empty line where a band has no value).
ThreeWaveForm ThreeWaveFormFromConditions(const CalcConditions& conditions);
// The values the study holds before any run: those of the conditions.
ThreeWaveParams ThreeWaveParamsFromConditions(const CalcConditions& conditions);

// Checks the boxes in order (empty, then numeric); a failure shows its message titled "警告", names the
// box in `focus` and answers false.
bool getParam_補修形状検討_3波分解(Session& session, const ThreeWaveForm& form, ThreeWaveParams& params,
                                  ThreeWaveField* focus = nullptr);

// Split of profile(1..n) (mm, pitch m) into L, M and S (each resized to n, with statistics) by three
// separate FFT filter passes; L + M + S differs from the profile by what the passes lose. With debug
// output on, writes "<short> ～ <long>.csv". False after an error, which is in the log.
bool Cal_補修形状3波分解_SUB(Session& session, double longBoundary, double shortBoundary, std::int32_t n, double pitch,
                           const Array1<double>& profile, WaveSeries& L, WaveSeries& M, WaveSeries& S);

// The split repeated on what the parts have not yet taken of the profile, until their sum no longer
// changes at all or `maxCount` (settings "最大収束回数") runs are done. Same outputs as _SUB.
bool Cal_収束計算による波形分解(Session& session, double longBoundary, double shortBoundary, std::int32_t n, double pitch,
                           const Array1<double>& profile, std::int32_t maxCount, WaveSeries& L, WaveSeries& M,
                           WaveSeries& S);
// One run of the convergent variant: `remainder` split at each wavelength of `wavelengths` (m,
// ascending), shortest part first; parts[k] gets what lies below wavelengths[k] and above the one
// before; parts.back() (one more than the wavelengths) what lies above the last.
bool Cal_収束計算による波形分解_SUB(Session& session, std::int32_t iteration, std::int32_t n, double pitch,
                               std::span<const double> wavelengths, const Array1<double>& remainder,
                               std::vector<Array1<double>>& parts);

// Clears the three-wave split and the M-wave, S-wave and ideal-shape data of a profile, its studies too.
void ClearRepairStudy(ProfileRecord& record);

// What a run of the split did.
struct ThreeWaveRun {
  bool Ok = true;          // false when a split failed (logged)
  bool StudyReset = false; // the values changed: every profile's study data was cleared; the study
                           // tabs without data and the two study lists are to be cleared by the caller
};

// The run over the list rows `selected` (1-based: row r is profiles[r - 1]): a change of the boundaries, the IRI length
// or a line against `stored` clears the study data of every profile and stores the new values; then
// every selected profile without a valid split is split. Progress "３波長分解"; after a reset the box
// titled "確認" tells that the study data were cleared.
ThreeWaveRun PubCal_補修形状検討_3波分解(Session& session, std::span<ProfileRecord> profiles, std::span<const std::int32_t> selected,
                                   const ThreeWaveParams& params, ThreeWaveParams& stored);

}  // namespace velmora
