#pragma once
// Values of the three settings files: the general switches, and the calculation conditions held as
// defaults (Default.ini) and as the working copy the project carries.
#include <array>
#include <cstdint>
#include <vector>

#include "base/colour.h"
#include "base/conditions.h"

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

}  // namespace velmora
