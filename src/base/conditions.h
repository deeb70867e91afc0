#pragma once
// The calculation conditions: what Default.ini holds as defaults and the project carries as the
// conditions in force. The settings files are read here, below every analysis, so the parameter
// records the conditions are made of live here too.
#include <array>
#include <cstdint>

#include "base/colour.h"
#include "base/common.h"

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

// Nine limit lines, index 1..9 ([0] unused); kNoValue means no line for that band.
struct BandReductionLines {
  std::array<double, 10> Value{};
  friend bool operator==(const BandReductionLines&, const BandReductionLines&) = default;
};

struct CalcConditions {
  std::int32_t FilterLong = 50;   // m, moving-average cut-offs
  std::int32_t FilterShort = 10;
  IriParams Iri;
  IriParams RepairIri;
  // "評価区間長に満たない区間のIRI算出を" しない: the short first and last sections do not count.
  bool SkipPartialSections = false;
  BandReductionLines BandLines;
  std::array<Colour, 10> BandColours{};  // [1..9]
  Colour LineColour = 0xFF00FF;
  Colour AppliedColour = 0x00FF00;
  BandReductionLines RepairBandLines;
  std::array<Colour, 10> RepairBandColours{};
  Colour RepairLineColour = 0xFF00FF;
  Colour RepairAppliedColour = 0x00FF00;
  double LongBoundary = 51.2;     // m, three-wave boundaries
  double ShortBoundary = 6.4;
  BandReductionLines ScreenBandLines;
  std::array<Colour, 10> ScreenBandColours{};
  double ScreenLongBoundary = 51.2;
  double ScreenShortBoundary = 6.4;

  friend bool operator==(const CalcConditions&, const CalcConditions&) = default;
};

}  // namespace velmora
