#include "evaluation/cross_correlation_kernel.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <string>
#include <thread>

#include <fmt/format.h>

#include "analysis/psd_window.h"
#include "base/legacy_error.h"
#include "base/legacy_math.h"

namespace velmora {
namespace detail {
namespace {

// A negative shift s pairs dA[i + |s|] with dB[i]; as a product commutes exactly, that is the
// positive lag |s| of (dB, dA). Every shift is therefore a lag m >= 0 of some (x, y):
// sum over i = 0 .. n-m-1 of x[i] * y[i + m], added in index order.
double LagSum(const double* x, const double* y, std::size_t n, std::size_t m) {
  double sum = 0;
  for (std::size_t i = 0; i + m < n; ++i) sum += x[i] * y[i + m];
  return sum;
}

using Lanes4 = double __attribute__((vector_size(32)));
constexpr std::size_t kBlockLanes = 16;  // four vectors of four lanes: enough sums in flight to hide latency

// Sixteen lags m0..m0+15 at once, one lane each, every lane adding in index order exactly as LagSum
// does (a multiply, then an add: no fused multiply-add, whose single rounding would change the
// figures). All lanes share the first n - (m0 + 15) products; each then finishes its own tail.
// Needs m0 + 15 < n.
[[gnu::target_clones("avx2", "default")]] void LagBlock(const double* x, const double* y, std::size_t n,
                                                        std::size_t m0, double* out) {
  const std::size_t common = n - (m0 + kBlockLanes - 1);
  const double* yb = y + m0;
  Lanes4 acc0{}, acc1{}, acc2{}, acc3{};
  for (std::size_t i = 0; i < common; ++i) {
    const Lanes4 xi = {x[i], x[i], x[i], x[i]};
    Lanes4 y0, y1, y2, y3;
    std::memcpy(&y0, yb + i, sizeof y0);
    std::memcpy(&y1, yb + i + 4, sizeof y1);
    std::memcpy(&y2, yb + i + 8, sizeof y2);
    std::memcpy(&y3, yb + i + 12, sizeof y3);
    const Lanes4 p0 = xi * y0, p1 = xi * y1, p2 = xi * y2, p3 = xi * y3;
    acc0 += p0;
    acc1 += p1;
    acc2 += p2;
    acc3 += p3;
  }
  std::memcpy(out, &acc0, sizeof acc0);
  std::memcpy(out + 4, &acc1, sizeof acc1);
  std::memcpy(out + 8, &acc2, sizeof acc2);
  std::memcpy(out + 12, &acc3, sizeof acc3);
  for (std::size_t lane = 0; lane < kBlockLanes; ++lane) {
    const std::size_t m = m0 + lane;
    double sum = out[lane];
    for (std::size_t i = common; i + m < n; ++i) sum += x[i] * y[i + m];
    out[lane] = sum;
  }
}

// One piece of work: `lanes` consecutive lags from m0 of (x, y), written to out[slot(m)].
struct LagTask {
  bool negative;  // lags of (dB, dA), i.e. shifts -m
  std::size_t m0;
  std::size_t lanes;  // kBlockLanes or 1
};

}  // namespace

std::vector<double> ShiftSumsPlain(std::span<const double> dA, std::span<const double> dB, std::int32_t maxShift) {
  const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(std::min(dA.size(), dB.size()));
  const std::ptrdiff_t shifts = 2 * static_cast<std::ptrdiff_t>(maxShift) + 1;
  std::vector<double> sums(static_cast<std::size_t>(shifts));
  for (std::ptrdiff_t k = 1; k <= shifts; ++k) {
    const std::ptrdiff_t shift = k - 1 - maxShift;
    const std::ptrdiff_t len = n - std::abs(shift);
    const std::ptrdiff_t startA = shift < 0 ? std::abs(shift) + 1 : 1;
    const std::ptrdiff_t startB = shift >= 1 ? std::abs(shift) + 1 : 1;
    double sum = 0;
    for (std::ptrdiff_t i = 1; i <= len; ++i)
      sum += dA[static_cast<std::size_t>(startA + i - 2)] * dB[static_cast<std::size_t>(startB + i - 2)];
    sums[static_cast<std::size_t>(k - 1)] = sum;
  }
  return sums;
}

std::vector<double> ShiftSums(std::span<const double> dA, std::span<const double> dB, std::int32_t maxShift,
                              unsigned threads) {
  const std::size_t n = std::min(dA.size(), dB.size());
  const auto s = static_cast<std::size_t>(maxShift);
  std::vector<double> sums(2 * s + 1);

  // Lag 0 belongs to the positive side only. Longest overlaps (small lags) first on both sides,
  // interleaved, so the last tasks handed out are the short ones.
  auto side = [s, n](bool negative, std::size_t first) {
    std::vector<LagTask> list;
    std::size_t m = first;
    for (; m + kBlockLanes - 1 <= s && m + kBlockLanes - 1 < n; m += kBlockLanes) list.push_back({negative, m, kBlockLanes});
    for (; m <= s; ++m) list.push_back({negative, m, 1});
    return list;
  };
  const std::vector<LagTask> positive = side(false, 0);
  const std::vector<LagTask> negative = side(true, 1);
  std::vector<LagTask> tasks;
  for (std::size_t t = 0; t < std::max(positive.size(), negative.size()); ++t) {
    if (t < positive.size()) tasks.push_back(positive[t]);
    if (t < negative.size()) tasks.push_back(negative[t]);
  }

  auto run = [&](const LagTask& task) {
    const double* x = task.negative ? dB.data() : dA.data();
    const double* y = task.negative ? dA.data() : dB.data();
    double block[kBlockLanes];
    if (task.lanes == kBlockLanes) {
      LagBlock(x, y, n, task.m0, block);
    } else {
      block[0] = LagSum(x, y, n, task.m0);
    }
    for (std::size_t lane = 0; lane < task.lanes; ++lane) {
      const std::size_t lag = task.m0 + lane;
      sums[task.negative ? s - lag : s + lag] = block[lane];
    }
  };

  if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
  // Below a few million products a thread costs more than it saves.
  if (static_cast<double>(sums.size()) * static_cast<double>(n) < 4e6) threads = 1;
  std::atomic<std::size_t> next{0};
  auto worker = [&] {
    for (std::size_t t = next++; t < tasks.size(); t = next++) run(tasks[t]);
  };
  std::vector<std::jthread> helpers;
  for (unsigned t = 1; t < threads; ++t) helpers.emplace_back(worker);
  worker();
  return sums;
}

}  // namespace detail

double SdRatio(double sdA, double sdB) {
  // Max and min keep the first argument unless the second is strictly beyond it.
  const double larger = sdB > sdA ? sdB : sdA;
  const double smaller = sdB < sdA ? sdB : sdA;
  if (larger == 0) RaiseDivisionByZero("standard deviation ratio of two constant series");
  return smaller / larger;
}

namespace {

// The shift sums of the deviations of a and b with their sample standard deviations, checked as
// CrossCorrelatePair states.
struct ShiftedProducts {
  std::vector<double> Sums;
  double SdA = 0;
  double SdB = 0;
};

ShiftedProducts ShiftedProductsOf(std::int32_t n, std::span<const double> a, std::span<const double> b,
                                  std::int32_t maxShift) {
  if (n < 1 || a.size() < static_cast<std::size_t>(n) || b.size() < static_cast<std::size_t>(n))
    RaiseSubscriptOutOfRange(fmt::format("cross-correlation of {} samples over series of {} and {}", n, a.size(),
                                         b.size()));
  if (maxShift < 0 || maxShift >= n)
    RaiseSubscriptOutOfRange(fmt::format("shift {} for {} samples leaves no overlap", maxShift, n));
  const auto count = static_cast<std::size_t>(n);
  auto deviations = [count](std::span<const double> x) {
    const double mean = Mean(x.first(count));
    std::vector<double> d(count);
    for (std::size_t i = 0; i < count; ++i) d[i] = x[i] - mean;
    return d;
  };
  const std::vector<double> dA = deviations(a);
  const std::vector<double> dB = deviations(b);
  // Divisor n - 1 (a single sample is a division by zero there).
  ShiftedProducts products;
  products.SdA = SampleStdDev(dA);
  products.SdB = SampleStdDev(dB);
  products.Sums = detail::ShiftSums(dA, dB, maxShift);
  return products;
}

}  // namespace

CorrelationCell CrossCorrelatePair(std::int32_t n, std::span<const double> a, std::span<const double> b,
                                   std::int32_t maxShift) {
  // Any shift count and length that fit in memory: the 16-bit shift counter and the 32-bit n * n
  // of old are gone. sqrt(n * n) is n exactly, so results below those limits are unchanged.
  const std::int64_t shifts = 2LL * maxShift + 1;
  const ShiftedProducts products = ShiftedProductsOf(n, a, b, maxShift);
  const double sdA = products.SdA;
  const double sdB = products.SdB;

  CorrelationCell cell;
  cell.SdRatio = SdRatio(sdA, sdB);
  const double sdProduct = sdA * sdB;
  if (sdProduct == 0) RaiseDivisionByZero("correlation with a constant series");
  const double rootNSquared = static_cast<double>(n);

  const std::vector<double>& sums = products.Sums;
  bool first = true;
  for (std::int64_t k = 1; k <= shifts; ++k) {
    const auto shift = static_cast<std::int32_t>(k - 1 - maxShift);
    const double sum = sums[static_cast<std::size_t>(k - 1)];
    const double r = sum / sdProduct;
    const double rho = r / rootNSquared;
    const std::array<double, kCorrelationRowCount> rows = {
        sum, sum / static_cast<double>(n - std::abs(shift)), sum / static_cast<double>(n), r, rho, cell.SdRatio * r, cell.SdRatio * rho};
    // The first of equal values wins: a later one replaces it only when strictly greater.
    for (std::size_t row = 0; row < rows.size(); ++row) {
      if (first || rows[row] > cell.Peaks[row].Value) cell.Peaks[row] = {rows[row], shift};
    }
    first = false;
  }
  cell.Computed = true;
  return cell;
}

std::vector<double> CorrelationByShift(std::int32_t n, std::span<const double> a, std::span<const double> b,
                                       std::int32_t maxShift) {
  const ShiftedProducts products = ShiftedProductsOf(n, a, b, maxShift);
  const double sdProduct = products.SdA * products.SdB;
  if (sdProduct == 0) RaiseDivisionByZero("correlation with a constant series");
  std::vector<double> rho;
  rho.reserve(products.Sums.size());
  // The same two divisions as the peaks', so that the curve's top is the reported value exactly.
  for (double sum : products.Sums) rho.push_back(sum / sdProduct / static_cast<double>(n));
  return rho;
}

}  // namespace velmora
