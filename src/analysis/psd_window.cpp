#include "analysis/psd_window.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "base/legacy_error.h"

namespace velmora {

void MakeWindow(bool isHamming, std::span<double> w) {
  const std::size_t n = w.size();
  if (n == 0) return;
  if (n == 1) RaiseDivisionByZero("MakeWindow: a window of 1 point has n − 1 = 0");
  // The program's own 2π literal, not a full-precision one: windows stay bit for bit as before.
  constexpr double kTwoPi = 6.28318530717958;
  const double a = isHamming ? 0.54 : 0.5;
  const double b = isHamming ? 0.46 : 0.5;
  for (std::size_t i = 1; i <= n; ++i) {
    const double t = (static_cast<double>(i - 1) / static_cast<double>(n - 1)) * kTwoPi;
    w[i - 1] = a - b * std::cos(t);
  }
}

double SumOfProducts(std::span<const double> a, std::span<const double> b) {
  double sum = 0;
  for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i) sum += a[i] * b[i];
  return sum;
}

double Mean(std::span<const double> a) {
  if (a.empty()) RaiseDivisionByZero("Mean of no values");
  double sum = 0;
  for (double v : a) sum += v;
  return sum / static_cast<double>(a.size());
}

double SampleStdDev(std::span<const double> a) {
  if (a.size() < 2) RaiseDivisionByZero("SampleStdDev needs two values, has " + std::to_string(a.size()));
  const double mean = Mean(a);
  double squares = 0;
  for (double v : a) squares += (v - mean) * (v - mean);
  return std::sqrt(squares / static_cast<double>(a.size() - 1));
}

}  // namespace velmora
