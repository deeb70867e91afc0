#include "analysis/fft.h"

#include <string>

#include "analysis/fft_kernels.h"
#include "base/legacy_error.h"
#include "base/legacy_math.h"

namespace velmora {
namespace {

bool IsPowerOfTwo(std::int32_t n) { return n >= 1 && (n & (n - 1)) == 0; }

}  // namespace

void Fft(std::int32_t n, Array1<Complex>& x, std::int32_t sign) {
  if (!IsPowerOfTwo(n))
    throw LegacyError(ErrorNumber::InvalidData, "Fft: length " + std::to_string(n) + " is not a power of two");
  if (sign != -1 && sign != 1)
    throw LegacyError(ErrorNumber::InvalidData, "Fft: direction " + std::to_string(sign) + " is neither -1 nor 1");
  if (x.size() < n)
    RaiseSubscriptOutOfRange("Fft: " + std::to_string(n) + " points, array 1.." + std::to_string(x.size()));

  int bits = 0;
  while ((std::int32_t{1} << bits) < n) ++bits;
  detail::Transform(x.data(), bits, sign);  // x(i) is element i − 1 there
}

std::int32_t FftLengthFor(std::int64_t count) {
  std::int64_t length = 4;  // 2, doubled once: a length of 2 is never used
  while (length < count) length *= 2;
  return CheckedI32(length);
}

}  // namespace velmora
