#pragma once
// The fixed table of the nine wavelength octaves and the frequency masks that select them in a
// spectrum of the folded-out profile.
#include <array>
#include <cstdint>
#include <string>

#include "results/octave_mask.h"

namespace velmora {

// One row of the band table. Limits are frequencies in cycles per metre: a bin belongs to the band
// when Lower < ff <= Upper.
struct OctaveBandLimits {
  double Lower = 0;
  double Upper = 0;
  const char* Caption = "";      // e.g. "１ ＯＣＴ" (empty for octave 9, which shows only its range)
  const char* RangeCaption = ""; // e.g. "(波長51.2～102.4m)"
};

inline constexpr int kOctaveCount = 9;
// Index 10 is the all-pass mask kept for the debug table of the masks.
inline constexpr int kMaskCount = 10;

// Rows 1..10 of the table; row 0 is unused.
const std::array<OctaveBandLimits, kMaskCount + 1>& OctaveBandTable();

// The mask of `limits` for a transform of `length` points at pitch `dx` (m): harmonic j is in the band
// when Lower < ff <= Upper, ff = j / (length * dx). length >= 2, dx > 0.
OctaveMask MakeOctaveMask(std::int32_t length, double dx, const OctaveBandLimits& limits);

// The ten masks of the band table for one transform length; masks[0] is left empty.
void MakeOctaveMasks(std::int32_t length, double dx, OctaveMasks& masks);

}  // namespace velmora
