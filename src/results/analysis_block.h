#pragma once
// The analysis block of a profile: its prepared working copy and the results of every signal
// analysis, each kept as the analysis that fills it defines.
#include <array>
#include <cstdint>

#include "base/one_based.h"
#include "results/band_reduction_types.h"
#include "results/filter_types.h"
#include "results/iri_types.h"
#include "results/octave_mask.h"
#include "results/octave_types.h"
#include "results/psd_types.h"
#include "results/wave_series.h"

namespace velmora {

struct AnalysisBlock {
  double SamplesPerMetre = 0;
  std::int32_t Count = 0;             // samples of the prepared profile
  WaveSeries Profile;                 // the prepared copy of WorkProfile
  std::int32_t FftLength1 = 0;        // smallest power of two >= N (from 4)
  std::int32_t FftLength2 = 0;        // the same for 2N
  OctaveMasks Masks;                  // made by the first band split that needs them

  FilterResults Filter;
  IriResults Iri;
  SectionIri Sections;
  OctaveBandSet Octave;
  BandReductionBlock BandReduction;
  PsdResult Psd;
};

}  // namespace velmora
