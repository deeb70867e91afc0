#pragma once
// The radix-2 transform every frequency-domain analysis uses, and the rule for its lengths.
#include <cstdint>

#include "analysis/complex.h"
#include "base/one_based.h"

namespace velmora {

// In-place transform of x(1..n): X(k) = Σ x(j) · exp(sign · 2πi (j−1)(k−1) / n), element 1 the
// zero-frequency bin. sign −1 forward, +1 inverse; no scaling in either direction (callers divide by
// n). n ≥ 1 a power of two and x.size() ≥ n, else LegacyError. Twiddles are computed once per stage
// size by the same formula as the loop would use and then reused, so results do not depend on which
// lengths were transformed before. The stages run two at a time on vectors of complex values, yet each
// value goes through the very operations of the radix-2 loop, so the results keep its bits (only the
// sign of a zero may differ). Safe to call from several threads at once: they share one table, which
// is never changed once built.
void Fft(std::int32_t n, Array1<Complex>& x, std::int32_t sign);

// The transform length that holds `count` samples: start at 2, double once, go on doubling while
// below `count`; so never less than 4. Overflow error past 2^30.
std::int32_t FftLengthFor(std::int64_t count);
// For a profile of n samples: FftLength1 holds n, FftLength2 holds 2n.
inline std::int32_t FftLength1(std::int32_t n) { return FftLengthFor(n); }
inline std::int32_t FftLength2(std::int32_t n) { return FftLengthFor(2 * static_cast<std::int64_t>(n)); }

}  // namespace velmora
