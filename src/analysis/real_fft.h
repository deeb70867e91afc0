#pragma once
// The transform of a real sequence through a complex one of half its length. A folded-out profile is
// real, and the band masks keep the spectrum symmetric (position p and n + 2 − p are kept or dropped
// together), so what comes back is real as well: half the arithmetic and half the memory of a full
// complex transform, with the same bins as `Fft` within rounding.
#include <cstdint>

#include "analysis/complex.h"
#include "base/one_based.h"

namespace velmora {

// Forward transform (sign −1, no scaling) of x(1..n), n a power of two ≥ 2, x.size() ≥ n.
// half(1..n/2 + 1) gets the bins of Fft(n, (x, 0), −1) from zero frequency up to n/2; the others
// follow as bin(n + 2 − p) = conj(bin(p)). Bins 1 and n/2 + 1 come out exactly real. half is resized.
void RealForwardFft(std::int32_t n, const Array1<double>& x, Array1<Complex>& half);

// Inverse transform (sign +1, no scaling) in place: half(1..n/2 + 1) holds the bins from zero
// frequency up to n/2 of a spectrum taken as symmetric (the imaginary parts of bins 1 and n/2 + 1 are
// not used). On return half(1..n/2) holds the real result packed two samples to an element:
// sample 2m − 1 in half(m).Re and sample 2m in half(m).Im. Read it with `UnpackReal`.
void RealInverseFft(std::int32_t n, Array1<Complex>& half);

// The transforms keep their twiddle tables from one call to the next (33 MB for a 10^6-sample profile's
// octave split). Once the analyses are over, this lets them go; a later transform builds them again,
// to the same bits.
void ReleaseTransformTables();

// Samples first + 1 .. first + count of a packed real sequence into out[0 .. count).
void UnpackReal(const Array1<Complex>& packed, std::int32_t first, std::int32_t count, double* out);

}  // namespace velmora
