#include "analysis/real_fft.h"

#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "analysis/fft.h"
#include "analysis/fft_kernels.h"
#include "base/legacy_error.h"

namespace velmora {
namespace {

// The same value of pi as the transform's own twiddles.
constexpr double kPi = 3.14159265358979;

static_assert(sizeof(Complex) == 2 * sizeof(double), "a packed real sequence is plain doubles");

using JoinTable = std::shared_ptr<const std::vector<Complex>>;

// w(k) = exp(−2πi·k/n), k = 0 .. n/4: the twiddles that join the even and the odd samples (bins k
// and n/2 − k are made together, so a quarter of the circle is enough). Built once per length and
// shared by all threads; a table is never changed once built.
struct JoinCache {
  std::mutex Mutex;
  std::map<std::int32_t, JoinTable> Tables;
};
JoinCache& Joins() {
  static JoinCache cache;
  return cache;
}

JoinTable JoinTwiddles(std::int32_t n) {
  JoinCache& cache = Joins();
  const std::lock_guard<std::mutex> lock(cache.Mutex);
  JoinTable& table = cache.Tables[n];
  if (!table) {
    auto built = std::make_shared<std::vector<Complex>>(static_cast<std::size_t>(n / 4 + 1));
    for (std::int32_t k = 0; k <= n / 4; ++k) {
      const double theta = -2.0 * kPi * k / n;
      (*built)[static_cast<std::size_t>(k)] = {std::cos(theta), std::sin(theta)};
    }
    table = std::move(built);
  }
  return table;
}

Complex Conj(Complex a) { return {a.Re, -a.Im}; }

void CheckLength(const char* what, std::int32_t n, std::ptrdiff_t size, std::ptrdiff_t needed) {
  if (n < 2 || (n & (n - 1)) != 0)
    throw LegacyError(ErrorNumber::InvalidData, std::string(what) + ": length " + std::to_string(n) +
                                                    " is not a power of two of at least 2");
  if (size < needed)
    RaiseSubscriptOutOfRange(std::string(what) + ": " + std::to_string(n) + " points, array 1.." +
                             std::to_string(size));
}

}  // namespace

void ReleaseTransformTables() {
  detail::ReleaseTwiddles();
  JoinCache& cache = Joins();
  const std::lock_guard<std::mutex> lock(cache.Mutex);
  cache.Tables.clear();
}

void RealForwardFft(std::int32_t n, const Array1<double>& x, Array1<Complex>& half) {
  CheckLength("RealForwardFft", n, x.size(), n);
  const std::int32_t m = n / 2;
  half.resize(m + 1);
  // z(j) = x(2j − 1) + i·x(2j): the samples as they lie in memory.
  std::memcpy(static_cast<void*>(half.data()), x.data(), static_cast<std::size_t>(n) * sizeof(double));
  Fft(m, half, -1);

  // Z = E + i·O with E, O the spectra of the odd- and even-numbered samples; bin k of the whole is
  // E(k) + w(k)·O(k), and bin m − k its mirror, computed from the same pair of Z.
  Complex* z = half.data();  // z[k] is bin k (0-based) from here on
  const JoinTable table = JoinTwiddles(n);
  const Complex* w = table->data();
  const Complex z0 = z[0];
  z[0] = {z0.Re + z0.Im, 0.0};
  z[m] = {z0.Re - z0.Im, 0.0};
  for (std::int32_t k = 1; k <= m / 2; ++k) {
    const Complex a = z[k], b = Conj(z[m - k]);
    const Complex even = {(a.Re + b.Re) / 2, (a.Im + b.Im) / 2};
    const Complex odd = {(a.Im - b.Im) / 2, -(a.Re - b.Re) / 2};  // (a − b) / 2i
    const Complex t = ComplexMul(w[k], odd);
    z[k] = ComplexAdd(even, t);
    if (k != m - k) z[m - k] = Conj(ComplexSub(even, t));
  }
}

void RealInverseFft(std::int32_t n, Array1<Complex>& half) {
  CheckLength("RealInverseFft", n, half.size(), n / 2 + 1);
  const std::int32_t m = n / 2;
  Complex* x = half.data();  // x[k] is bin k (0-based)
  const JoinTable table = JoinTwiddles(n);
  const Complex* w = table->data();

  // The even samples have the spectrum E(k) = X(k) + X(k + m), the odd ones O(k) = (X(k) − X(k + m))
  // · conj(w(k)); X(k + m) = conj(X(m − k)). Z = E + i·O transforms back to the samples in pairs.
  const double x0 = x[0].Re, xm = x[m].Re;
  x[0] = {x0 + xm, x0 - xm};
  for (std::int32_t k = 1; k <= m / 2; ++k) {
    const Complex a = x[k], b = Conj(x[m - k]);
    const Complex even = ComplexAdd(a, b);
    const Complex odd = ComplexMul(ComplexSub(a, b), Conj(w[k]));
    x[k] = {even.Re - odd.Im, even.Im + odd.Re};
    // E(m − k) = conj(E(k)) and O(m − k) = conj(O(k)).
    if (k != m - k) x[m - k] = {even.Re + odd.Im, -even.Im + odd.Re};
  }
  Fft(m, half, +1);
}

void UnpackReal(const Array1<Complex>& packed, std::int32_t first, std::int32_t count, double* out) {
  if (first < 0 || count < 0 || 2 * static_cast<std::int64_t>(packed.size()) < static_cast<std::int64_t>(first) + count)
    RaiseSubscriptOutOfRange("UnpackReal: samples " + std::to_string(first + 1) + ".." +
                             std::to_string(first + count) + " of " + std::to_string(2 * packed.size()));
  std::memcpy(out, reinterpret_cast<const unsigned char*>(packed.data()) + static_cast<std::size_t>(first) * sizeof(double),
              static_cast<std::size_t>(count) * sizeof(double));
}

}  // namespace velmora
