#pragma once
// Power spectral density of a profile, its smoothing to a constant number of points per octave, and
// the ratio of two spectra. Errors are logged under the module "basPasMain" and give false.
#include <cstdint>
#include <vector>

#include "base/one_based.h"
#include "base/session.h"
#include "results/psd_types.h"

namespace velmora {

// The transform length of the PSD: the profile's FftLength1, never below 4. A profile of one sample
// cannot be folded out to that length and ends through the error path.
std::int32_t PsdLength(std::int32_t n);

// Raw PSD of x(1..n) (mm) at pitch dx (m): the profile brought to n2 = PsdLength(n) points by the
// point-symmetric fold (mirrorFill) or by zeros, windowed by windowKind (0 none, 1 Hanning,
// 2 Hamming, always of length n2), transformed; out(i) = |c(i)|² / ((1/dx)·n2) / U · π, i = 1..n2,
// with U the mean square of the window. n >= 1, dx > 0. Writes "PSD.csv" under SWDEBUG.
bool PsdCalc(Session& session, std::int32_t n, const Array1<double>& x, double dx, std::int32_t windowKind, bool mirrorFill,
             Array1<double>& out);

// Smoothing of a raw spectrum `psd` (1..n2, from PsdCalc of n samples at dx) to bandsPerOctave points
// per octave: where the transform's grid is coarser than the wanted one its own points are kept,
// elsewhere each point is the mean of the raw values in its band. The zero wave number is dropped.
// Returns the points up to the Nyquist wave number. Writes "PSD平滑化.csv" under SWDEBUG.
std::vector<PsdPair> SmoothPsdValues(const DebugTables& debug, const Array1<double>& psd, std::int32_t n, double dx,
                                     std::int32_t bandsPerOctave);

// PsdCalc followed by SmoothPsdValues; outCount = outPairs.size().
bool PsdSmooth(Session& session, std::int32_t n, const Array1<double>& x, double dx, std::int32_t windowKind, bool mirrorFill,
               std::int32_t bandsPerOctave, std::int32_t& outCount, std::vector<PsdPair>& outPairs);

// Gain sqrt(psdB/psdA) of two raw spectra of equal length, rows k = 1.. with Wn = k/(countA·dx) up to
// 1/(2·dx). Unequal lengths give outCount 0, a length below 2 gives -1; no rows in both cases.
// A zero in psdA is an arithmetic error (logged, false).
bool PsdRatioRaw(Session& session, std::int32_t countA, const Array1<double>& psdA, std::int32_t countB,
                 const Array1<double>& psdB, double dx, std::int32_t& outCount, std::vector<PsdPair>& outPairs);

}  // namespace velmora
