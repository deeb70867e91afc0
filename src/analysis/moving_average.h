#pragma once
// The moving-average filter: a running mean over a point-symmetric fold of the profile.
#include <cstdint>

#include "base/one_based.h"
#include "base/session.h"
#include "results/filter_types.h"

namespace velmora {

// Mean of `window` samples (≥ 1) around each of source(1..n) (mm) and the remainder. The profile is
// folded out by round((window − 1)/2) samples at each end first, so an odd window is centred; an even
// one stands half a sample aside. average(o) is the sum of ext(o .. o + window − 1) / window (a running
// sum, with its rounding drift), highPart(o) = source(o) − average(o); both are 1..n, and when the fold
// is one sample short (window ≡ 2 mod 4) the last element stays 0. window 0 raises division by zero,
// a fold longer than n − 1 samples raises "subscript out of range".
void MovingAverageSplit(const DebugTables& debug, std::int32_t window, std::int32_t n, const Array1<double>& source,
                        Array1<double>& highPart, Array1<double>& average);

// The moving-average filter of profile(1..n) (mm, pitch dx m, cut-offs m): window longCut/dx for the
// long side (always computed), shortCut/dx for the short side when band is not HiPass, both rounded
// half to even; HiPass profile − M1, LowPass M2, BandPass M2 − M1, BandCut profile − (M2 − M1).
// Writes "Filter.csv" at DebugLevel > 0.
Array1<double> MovingAverageFilter(const DebugTables& debug, std::int32_t n, const Array1<double>& profile, double dx, FilterKind band,
                                   double longCut, double shortCut);

}  // namespace velmora
