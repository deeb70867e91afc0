#pragma once
// The computing part of the PSD tab: the stored spectra of the registered profiles, and the curves
// the tab draws from them (spectra, smoothed spectra or gains against the first selected profile).
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "analysis/psd_window.h"
#include "base/session.h"
#include "results/psd_types.h"

namespace velmora {

struct ProfileRecord;

// The tab's controls.
struct PsdTabOptions {
  std::int32_t WindowKind = kWindowHanning;  // optPsdWindow
  bool MirrorFill = true;                    // optPsd不足処理: "折り返し反転" (true) or "ゼロ埋め"
  std::int32_t BandsPerOctave = 12;          // txt_平滑化処理
  bool Smooth = false;                       // chk平滑化
  bool Ratio = false;                        // chkPSD比
};

// One curve of the chart: the profile it belongs to (index into the list) and its points, wave
// numbers in cycle/m. A ratio curve that cannot be formed (spectra of unequal length) has no points.
struct PsdCurve {
  std::size_t Profile = 0;
  std::vector<PsdPair> Points;
};

// Computes PsdResult for every profile whose stored spectrum is missing or was made with other
// options, under the progress display "パワースペクトル計算". False when one fails (it is logged).
bool CalcStoredPsd(Session& session, std::span<ProfileRecord> profiles, std::int32_t windowKind, bool mirrorFill);

// What the PSD tab draws for the `selected` profiles (indices into `profiles`, in list order):
// refreshes the stored spectra, then one curve per selected profile, or in ratio mode one gain
// sqrt(compared/base) per further profile against the first. A BandsPerOctave below 1 is refused with
// the warning the tab shows. False when nothing may be drawn.
bool Redraw_PSD(Session& session, std::span<ProfileRecord> profiles, std::span<const std::size_t> selected,
                const PsdTabOptions& options, std::vector<PsdCurve>& curves);

}  // namespace velmora
