#pragma once
// Window functions and the small statistics of the spectrum module.
#include <cstdint>
#include <span>

namespace velmora {

// Window kinds of the PSD tab, by the index of its option.
enum PsdWindowKind : std::int32_t { kWindowNone = 0, kWindowHanning = 1, kWindowHamming = 2 };

// Fills w (its size n) with the Hanning (0.5 − 0.5 cos t) or Hamming (0.54 − 0.46 cos t) window,
// t = (i − 1)/(n − 1) · 6.28318530717958 for i = 1..n. n = 1 raises "division by zero".
void MakeWindow(bool isHamming, std::span<double> w);

// Σ a(i)·b(i) over the common length; the mean; the sample standard deviation (divides by n − 1,
// n >= 2 else "division by zero").
double SumOfProducts(std::span<const double> a, std::span<const double> b);
double Mean(std::span<const double> a);
double SampleStdDev(std::span<const double> a);

}  // namespace velmora
