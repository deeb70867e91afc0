#pragma once
// One masked pass exactly as the steps are written, with complex transforms of the whole length: the
// reference the filters and the octave split, which take half-length real transforms, are held to.
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "analysis/fft.h"
#include "analysis/mirror_extend.h"

namespace velmora::testing {

// Folds source(1..n) out to FftLength2(n), transforms it, divides by the length, keeps the bins of
// mask(1..length), transforms back; the real part where the profile stands, n values.
inline std::vector<double> LiteralMaskedPass(std::int32_t n, const Array1<double>& source,
                                             const Array1<std::uint8_t>& mask) {
  const std::int32_t length2 = FftLength2(n);
  Array1<double> extended;
  std::int32_t offset = 0;
  FoldOutForFft(DebugTables{}, n, FftLength1(n), length2, source, offset, extended);
  Array1<Complex> spectrum(static_cast<std::size_t>(length2));
  for (std::int32_t i = 1; i <= length2; ++i) spectrum[i] = Complex{extended[i], 0.0};
  Fft(length2, spectrum, -1);
  for (std::int32_t i = 1; i <= length2; ++i) {
    const double m = mask[i];
    spectrum[i] = Complex{spectrum[i].Re / length2 * m, spectrum[i].Im / length2 * m};
  }
  Fft(length2, spectrum, +1);
  std::vector<double> wave;
  for (std::int32_t i = 1; i <= n; ++i) wave.push_back(spectrum[i + offset].Re);
  return wave;
}

}  // namespace velmora::testing
