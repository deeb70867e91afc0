#pragma once
#include <array>
#include <cstdint>

#include "base/common.h"
#include "base/conditions.h"
#include "base/one_based.h"
#include "results/wave_series.h"

namespace velmora {

// Quarter-car response and sliding-window IRI of a profile and of its bands. Responses are signed
// slopes of the model's suspension stroke in mm/m; window series are IRI in mm/m.
struct IriResults {
  std::int32_t IriResponseCount = 0;            // N' = N - IBASE of the last run
  Array1<double> IriResponseWave;               // 1..N'

  std::int32_t IriWindowCount = 0;              // length of every window series
  WaveSeries IriWindowWave;
  std::array<WaveSeries, 10> IriWindowBand;     // [1..9], [0] unused
  WaveSeries IriWindowRss;                      // sqrt of the sum of the nine band windows squared
  WaveSeries IriWindowLong;
  WaveSeries IriWindowShort;
  double IriWholeProfile = kNoValue;            // mm/m

  WaveSeries IriFilterWave;                     // the response shown as the filter kind "IRI"
  std::int32_t IriFilterCount = 0;
};

// One fixed section: its samples, its KP ends (km) and its IRI (mean |response|, mm/m).
struct SectionEntry {
  std::int32_t Count = 0;      // samples in the section
  double KpFrom = 0;
  double KpTo = 0;
  double Iri = kNoValue;       // kNoValue: no value (a merged member, or a skipped short section)
  std::int32_t Index = 0;      // number of the first sample
  std::int16_t Partial = 0;    // -1 when shorter than the nominal length
};

// One sample of the evaluated profile with its KP (km) and the caller's value.
struct SectionPoint {
  double Kp = 0;
  double KpNext = 0;
  double Value = 0;
};

// IRI over the sections of the evaluation.
struct SectionIri {
  double KpStart = 0;          // KP of the first sample, km
  double KpStep = 0;           // signed pitch, m: +DX, or -DX when the KP runs backwards
  std::int32_t PointCount = 0;
  Array1<SectionPoint> Points;  // 1..PointCount
  std::int32_t SectionCount = 0;
  Array1<SectionEntry> Sec10;   // 1..SectionCount each
  Array1<SectionEntry> Sec100;
  Array1<SectionEntry> Sec200;
};

}  // namespace velmora
