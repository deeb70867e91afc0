#pragma once
// Values of the three settings files: the general switches, and the calculation conditions held as
// defaults (Default.ini) and as the working copy the project carries.
#include <array>
#include <cstdint>
#include <vector>

#include "analysis/iri_types.h"
#include "app/colour.h"
#include "app/common.h"

namespace velmora {

struct AppSettings {
  std::int32_t DebugLevel = 0;
  std::int32_t SplushTime = 0;        // seconds of the splash
  std::int32_t CsvProfileLimit = 0;   // profiles per CSV export, 0 = no limit
  std::vector<std::int32_t> LongOctaves;   // octave numbers 1..9 of the long-wave sum
  std::vector<std::int32_t> ShortOctaves;  // of the short-wave sum
  std::vector<Colour> PaletteProfile;
  std::vector<Colour> PaletteRepair;
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

AppSettings& Settings();
CalcConditions& DefaultConditions();
CalcConditions& CurrentConditions();

}  // namespace velmora
