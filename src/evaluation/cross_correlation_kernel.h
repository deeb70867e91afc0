#pragma once
// Cross-correlation of two equally long series over a range of shifts, on plain arrays. The sums run
// in index order for every shift, so the figures do not depend on how the work is spread over cores.
#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace velmora {

// One best value of a correlation series and the shift (samples) where it stands.
struct CorrelationPeak {
  double Value = 0;
  std::int32_t Shift = 0;
};

// Rows of a correlation cell, 1-based as the tables number them.
enum class CorrelationRow : int {
  SumOfProducts = 1,       // S
  OverOverlap = 2,         // S / overlap
  OverCount = 3,           // S / n
  OverDeviations = 4,      // R = S / (sdA sdB)
  Rho = 5,                 // R / n: "相互相関値"; its shift is "ずらし量"
  DeviationsTimesRatio = 6,
  Agreement = 7,           // Rho x SdRatio: "一致度"
};
inline constexpr int kCorrelationRowCount = 7;

// The result for one pair: the seven peaks, the ratio of the standard deviations, and whether the
// pair was computed at all.
struct CorrelationCell {
  std::array<CorrelationPeak, kCorrelationRowCount> Peaks{};
  double SdRatio = 0;
  bool Computed = false;

  CorrelationPeak& Peak(CorrelationRow row) { return Peaks[static_cast<std::size_t>(row) - 1]; }
  const CorrelationPeak& Peak(CorrelationRow row) const { return Peaks[static_cast<std::size_t>(row) - 1]; }
};

// The seven peaks and SdRatio of a[0..n) against b[0..n) for shifts -maxShift..maxShift. A positive
// shift pairs a[i] with b[i + shift]. Needs 0 <= maxShift < n; raises division by zero for a
// constant series.
// Work: (2*maxShift + 1) * n multiply-adds, spread over the machine's cores.
CorrelationCell CrossCorrelatePair(std::int32_t n, std::span<const double> a, std::span<const double> b,
                                   std::int32_t maxShift);

// The correlation coefficient rho = R / n ("相互相関値") at each shift -maxShift..maxShift, element k
// for shift k - maxShift: the values whose peak CrossCorrelatePair reports as row Rho. Same needs.
std::vector<double> CorrelationByShift(std::int32_t n, std::span<const double> a, std::span<const double> b,
                                       std::int32_t maxShift);

// Ratio of the smaller to the larger standard deviation (both >= 0); raises division by zero when
// both are 0. Never above 1.
double SdRatio(double sdA, double sdB);

namespace detail {
// S[k], k = 0..2*maxShift, for shift k - maxShift: the index-order sum of dA[i] * dB[i + shift] over
// the overlap. `threads` 0 means one per core. Identical, bit for bit, to ShiftSumsPlain.
std::vector<double> ShiftSums(std::span<const double> dA, std::span<const double> dB, std::int32_t maxShift,
                              unsigned threads = 0);
// The plain double loop that defines the sums; kept as the reference for tests and benchmarks.
std::vector<double> ShiftSumsPlain(std::span<const double> dA, std::span<const double> dB,
                                   std::int32_t maxShift);
}  // namespace detail

}  // namespace velmora
