#pragma once
// The brick-wall filter in the frequency domain over a folded-out profile, as a single pass and as a
// pass repeated on its own output until what it takes away stops shrinking.
#include <cstdint>

#include "base/one_based.h"
#include "base/session.h"
#include "results/filter_types.h"
#include "results/wave_series.h"

namespace velmora {

// Limits of the repeated pass, section "収束判定値" of the settings.
struct FilterConvergence {
  double StdRatio = 1.1;        // "標準偏差比": converged when previous / current std falls below
  std::int32_t MaxPasses = 10;  // "最大収束回数"
};
// The limits in force, from TOLVAVERI.ini; a key that is missing, blank or not a number keeps its
// default. Read at the start of every convergent run, so an edited file counts at once.
FilterConvergence ReadFilterConvergence(const AppPaths& paths);

// mask(1..n) of an n-point spectrum of samples at pitch dx (m): element p is 1 when the wavelength
// n·dx / j lies in [lower, upper) (m), j = p for p ≤ n/2 + 1 and j = n + 2 − p above, i.e. one bin
// above the element's own harmonic — an offset that is part of the filter and kept. mask is resized
// to n and zeroed first.
void MakeFilterMask(std::int32_t n, double dx, double lower, double upper, Array1<std::uint8_t>& mask);
// Swaps 0 and 1 on mask(1..n).
void InvertFilterMask(std::int32_t n, Array1<std::uint8_t>& mask);
// The mask of a pass kind: HiPass [0, longCut), LowPass [shortCut, 1e30), BandPass
// [shortCut, longCut), BandCut the inverse of BandPass.
void MakeFilterMaskOfKind(std::int32_t n, double dx, FilterKind kind, double longCut, double shortCut,
                          Array1<std::uint8_t>& mask);

// One pass over source(1..n) (mm, pitch dx m, cut-offs in m): fold to length2 (length1, length2 from
// FftLength1/FftLength2 of n), one forward transform, then the masked and the inverse-masked spectrum
// back; `result` gets what the mask passes, `other` the rest (source ≈ result + other), both 1..n
// with statistics. iteration 0 outside a repeated run; debugSeq numbers the debug tables. Errors are
// logged under the procedure's name; returns false then.
bool Cal_FFTフィルタ_単体処理(Session& session, std::int32_t& debugSeq, std::int32_t iteration, std::int32_t n,
                         std::int32_t length1, std::int32_t length2, double dx, FilterKind kind,
                         double longCut, double shortCut, const Array1<double>& source, WaveSeries& result,
                         WaveSeries& other);

// The single pass repeated on its own output, at most limits.MaxPasses times, until the ratio of the
// previous to the current standard deviation of `other` falls below limits.StdRatio (never on the
// first pass). `result` gets the last pass's output. Progress goes to the session's display, which may
// stop the run (Cancelled, `result` untouched).
// A pass that takes nothing away (std of `other` 0) is a division by zero: logged, `result` untouched,
// false.
bool Cal_FFTフィルタ_収束計算(Session& session, std::int32_t n, std::int32_t length1, std::int32_t length2, double dx,
                         FilterKind kind, double longCut, double shortCut, const Array1<double>& source,
                         WaveSeries& result, const FilterConvergence& limits);

}  // namespace velmora
