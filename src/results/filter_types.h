#pragma once
// What the filter tab asks for, and what it keeps per profile.
#include <cstdint>
#include <string>

#include "results/iri_types.h"
#include "results/wave_series.h"

namespace velmora {

// Pass kind of the moving-average and Fourier filters (option order of the tab).
enum class FilterKind : std::int32_t { HiPass = 0, LowPass = 1, BandPass = 2, BandCut = 3 };

// Calculation type (option order of the tab: "移動平均", "フーリエ変換", "IRI", "Slope").
enum class FilterCalcType : std::int32_t { MovingAverage = 0, Fourier = 1, Iri = 2, Slope = 3 };

struct FilterSpec {
  FilterCalcType CalcType = FilterCalcType::MovingAverage;
  FilterKind Band = FilterKind::HiPass;  // moving average and Fourier only
  bool SlopeMode = false;                // Slope only: false "Slopeプロファイル", true "Slope ≧" (cut)
  double LongCut = 11;                   // m, "Long CutOff"
  double ShortCut = 11;                  // m, "Short CutOff"
  double SlopeCut = 50;                  // mm/m
  bool Converge = false;                 // Fourier only: "FFT収束演算"
  friend bool operator==(const FilterSpec&, const FilterSpec&) = default;
};

// Results of the filter tab kept per profile.
struct FilterResults {
  WaveSeries FilterWave;         // the filtered profile (mm) or the slopes (mm/m), 1..FilterCount
  std::int32_t FilterCount = 0;  // the profile's count; shorter by the base length for the IRI type
  WaveSeries SlopeWave;          // the Slope type's output, also copied to FilterWave
  FilterSpec Request;  // the settings FilterWave was calculated with
  IriParams Iri;                 // and the IRI parameters, for the IRI type
};

// "HiPass", "LowPass", "BandPass", "BandCut": the pass kind in file names, legends and debug tables.
std::string FilterKindName(FilterKind kind);

}  // namespace velmora
