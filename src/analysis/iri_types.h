#pragma once
#include <cstdint>

#include "profile/wave_series.h"

namespace velmora {

// Parameters of the quarter-car model; one set for the IRI tab, one for the repair-shape study.
struct IriParams {
  double Speed = 0;                  // km/h
  double KsMs = 0;                   // suspension spring rate / sprung mass (K2)
  double CsMs = 0;                   // damper rate / sprung mass (C)
  double MuMs = 0;                   // unsprung / sprung mass (MU)
  double KtMs = 0;                   // tyre spring rate / sprung mass (K1)
  double InitFilter = 0;             // initialisation distance, m
  std::int32_t PowerWeighting = 0;   // 0 ARS (power 1), other RMS (power 2)
  double IriBaseLength = 0;          // sliding-window length, m

  friend bool operator==(const IriParams&, const IriParams&) = default;
};

// Quarter-car response and sliding-window IRI of a profile and of its bands.
struct IriResults {};
// IRI over the sections of the evaluation.
struct SectionIri {};

}  // namespace velmora
