#include "analysis/iri_window.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/legacy_error.h"

namespace velmora {
namespace {

// |v|^p by the general power operation, as every IRI figure of the program takes it.
// |v| to the power of the weighting. The ARS power 1 and the RMS power 2 are exact without pow(),
// which is the larger part of a band pass; any other power goes through pow() as ever.
double PowerTerm(double v, int power) {
  if (power == 1) return std::fabs(v);
  if (power == 2) return v * v;
  return std::pow(std::fabs(v), static_cast<double>(power));
}

// The ARS root pow(x, 1) is x itself, bit for bit, and a million windows need not ask pow() for it.
double Root(double meanOfPowers, int power) {
  if (power == 1) return meanOfPowers;
  return std::pow(meanOfPowers, 1.0 / static_cast<double>(power));
}

// The window ending at e (1-based) from scratch, ascending from 0: its sum of terms and how many
// of them are not zero.
struct WindowTotal {
  double Sum = 0;
  std::int32_t NonZero = 0;
};
WindowTotal WindowFromScratch(std::span<const double> r, std::int32_t e, std::int32_t width, int power) {
  WindowTotal total;
  for (std::int32_t j = e - width + 1; j <= e; ++j) {
    const double term = PowerTerm(r[static_cast<std::size_t>(j - 1)], power);
    total.Sum += term;
    total.NonZero += term != 0 ? 1 : 0;
  }
  return total;
}

// A running sum kept as an unevaluated pair hi + lo: each addition's rounding error is caught exactly
// (two-sum) and gathered in lo, so adding and removing a million terms does not drift.
class RunningSum {
 public:
  void Reset(double value) {
    hi_ = value;
    lo_ = 0;
  }
  void Add(double x) {
    const double t = hi_ + x;
    const double z = t - hi_;
    lo_ += (hi_ - (t - z)) + (x - z);
    hi_ = t;
  }
  double Value() const { return hi_ + lo_; }

 private:
  double hi_ = 0;
  double lo_ = 0;
};

}  // namespace

double IriPowerMean(std::span<const double> r, std::int32_t count, int power) {
  if (count <= 0) RaiseDivisionByZero("IRI of a response with " + std::to_string(count) + " elements");
  double sum = 0;
  for (std::int32_t i = 1; i <= count; ++i) sum += PowerTerm(r[static_cast<std::size_t>(i - 1)], power);
  return Root(sum / count, power);
}

std::vector<double> SlidingWindowIri(std::span<const double> r, std::int32_t count,
                                     std::int32_t firstEnd, int power, std::int32_t atLeast) {
  const std::int32_t needed = std::max(count, firstEnd);
  if (firstEnd < 1 || static_cast<std::size_t>(needed) > r.size())
    RaiseSubscriptOutOfRange("IRI window of " + std::to_string(firstEnd) + " samples over a series of " +
                             std::to_string(r.size()));
  const std::int32_t windows = std::max<std::int32_t>(1, count - firstEnd + 1);
  const std::int32_t width = firstEnd;

  // The terms are taken again as they leave the window rather than kept: a million-sample profile
  // then needs no array beside its response and the result.
  const auto term = [&](std::int32_t j) { return PowerTerm(r[static_cast<std::size_t>(j - 1)], power); };
  // A fresh sum every so often bounds what the running sum can drift; spacing it by at least the
  // window keeps the whole pass O(count).
  const std::int32_t refreshEvery = std::max<std::int32_t>(4096, width);
  std::vector<double> out(static_cast<std::size_t>(std::max(windows, atLeast)));
  WindowTotal first = WindowFromScratch(r, firstEnd, width, power);
  RunningSum sum;
  sum.Reset(first.Sum);
  std::int32_t nonZero = first.NonZero;
  for (std::int32_t i = 1; i <= windows; ++i) {
    const std::int32_t e = firstEnd + i - 1;
    if (i > 1) {
      if ((i - 1) % refreshEvery == 0) {
        const WindowTotal fresh = WindowFromScratch(r, e, width, power);
        sum.Reset(fresh.Sum);
        nonZero = fresh.NonZero;
      } else {
        const double entering = term(e), leaving = term(e - width);
        sum.Add(entering);
        sum.Add(-leaving);
        nonZero += (entering != 0 ? 1 : 0) - (leaving != 0 ? 1 : 0);
      }
    }
    // A window of zeros is exactly zero however its sum was reached.
    const double windowSum = nonZero == 0 ? 0.0 : std::max(0.0, sum.Value());
    out[static_cast<std::size_t>(i - 1)] = Root(windowSum / width, power);
  }
  return out;
}

}  // namespace velmora
