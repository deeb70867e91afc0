#include "analysis/fft.h"

#include <string>
#include <utility>
#include <vector>

#include "app/legacy_error.h"
#include "app/legacy_math.h"

namespace velmora {
namespace {

// The value of pi the transform has always used (not M_PI): kept so that results stay the same bits.
constexpr double kPi = 3.14159265358979;

// Twiddles of every stage of half-size m = 1, 2, 4, ...: w(m, k) = exp(i · (k−1) · sign · pi / m)
// stands at position m + k − 1. A stage's twiddles do not depend on the transform length, so one table
// per direction, grown to the largest length seen, serves every length (the nine octave bands and all
// convergence passes reuse it).
class TwiddleTable {
 public:
  const Complex* For(std::int32_t n, std::int32_t sign) {
    std::vector<Complex>& table = sign < 0 ? forward_ : inverse_;
    const auto needed = static_cast<std::size_t>(n);
    if (table.size() < needed) {
      std::size_t m = table.size() < 2 ? 1 : table.size();  // first stage not yet built
      table.resize(needed);
      for (; 2 * m <= needed; m *= 2) {
        for (std::size_t k = 1; k <= m; ++k) {
          const double theta = static_cast<double>(static_cast<std::int64_t>(k - 1) * sign) * kPi /
                               static_cast<double>(m);
          table[m + k - 1] = ComplexExp(Complex{0.0, theta});
        }
      }
    }
    return table.data();
  }

 private:
  std::vector<Complex> forward_;
  std::vector<Complex> inverse_;
};

TwiddleTable& Twiddles() {
  thread_local TwiddleTable table;
  return table;
}

// Elements whose small stages are done together: 8192 complex = 128 KiB, well inside L2.
constexpr std::int32_t kCacheRun = 1 << 13;

// The butterflies of the stage of half-size m over a[0 .. length): for each aligned run of 2m,
// x(i + m) = x(i) − w(k)·x(i + m) and x(i) = x(i) + w(k)·x(i + m), k = 1..m.
void Stage(Complex* a, std::int32_t length, std::int32_t m, const Complex* twiddles) {
  const Complex* w = twiddles + m - 1;  // w[k], k = 1..m
  for (std::int32_t base = 0; base < length; base += 2 * m) {
    for (std::int32_t k = 1; k <= m; ++k) {
      Complex& upper = a[base + k - 1];      // x(i), i = base + k
      Complex& lower = a[base + k - 1 + m];  // x(i + m)
      const Complex t = ComplexMul(w[k], lower);
      lower = ComplexSub(upper, t);
      upper = ComplexAdd(upper, t);
    }
  }
}

bool IsPowerOfTwo(std::int32_t n) { return n >= 1 && (n & (n - 1)) == 0; }

}  // namespace

void Fft(std::int32_t n, Array1<Complex>& x, std::int32_t sign) {
  if (!IsPowerOfTwo(n))
    throw LegacyError(ErrorNumber::InvalidData, "Fft: length " + std::to_string(n) + " is not a power of two");
  if (sign != -1 && sign != 1)
    throw LegacyError(ErrorNumber::InvalidData, "Fft: direction " + std::to_string(sign) + " is neither -1 nor 1");
  if (x.size() < n)
    RaiseSubscriptOutOfRange("Fft: " + std::to_string(n) + " points, array 1.." + std::to_string(x.size()));

  Complex* a = x.data();  // a[i - 1] is x(i): the index formulas stay 1-based as the algorithm has them

  // Bit reversal with 1-based indices; m = n/2 rounds to 0 only for n = 1, where nothing moves.
  std::int32_t j = 1;
  for (std::int32_t i = 1; i <= n; ++i) {
    if (i < j) std::swap(a[i - 1], a[j - 1]);
    std::int32_t m = n / 2;
    while (m >= 2 && j > m) {
      j -= m;
      m /= 2;
    }
    j += m;
  }

  // Butterflies. Those of one stage touch disjoint pairs, and a stage of half-size m only mixes
  // elements within aligned runs of 2m, so the order below (all small stages on one cache-sized run
  // after another, then the large stages over the whole array, each block by block instead of twiddle
  // by twiddle) does the very same operations on the very same values with far fewer cache misses.
  const Complex* twiddles = Twiddles().For(n, sign);
  const std::int32_t run = n < kCacheRun ? n : kCacheRun;
  for (std::int32_t start = 0; start < n; start += run)
    for (std::int32_t m = 1; m < run; m *= 2) Stage(a + start, run, m, twiddles);
  for (std::int32_t m = run; m < n; m *= 2) Stage(a, n, m, twiddles);
}

std::int32_t FftLengthFor(std::int64_t count) {
  std::int64_t length = 4;  // 2, doubled once: a length of 2 is never used
  while (length < count) length *= 2;
  return CheckedI32(length);
}

}  // namespace velmora
