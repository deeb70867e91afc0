#include "analysis/octave_bands.h"

namespace velmora {

const std::array<OctaveBandLimits, kMaskCount + 1>& OctaveBandTable() {
  // Octave 1 takes every wavelength from 51.2 m upward and octave 9 every one below 0.4 m, so the
  // outer bands collect all that lies beyond the table. 999 stands for "no upper limit".
  static const std::array<OctaveBandLimits, kMaskCount + 1> table = {{
      {},
      {0.0, 1 / 51.2, "１ ＯＣＴ", "(波長51.2～102.4m)"},
      {1 / 51.2, 1 / 25.6, "２ ＯＣＴ", "(波長25.6～51.2m)"},
      {1 / 25.6, 1 / 12.8, "３ ＯＣＴ", "(波長12.8～25.6m)"},
      {1 / 12.8, 1 / 6.4, "４ ＯＣＴ", "(波長6.4～12.8m)"},
      {1 / 6.4, 1 / 3.2, "５ ＯＣＴ", "(波長3.2～6.4m)"},
      {1 / 3.2, 1 / 1.6, "６ ＯＣＴ", "(波長1.6～3.2m)"},
      {1 / 1.6, 1 / 0.8, "７ ＯＣＴ", "(波長0.8～1.6m)"},
      {1 / 0.8, 1 / 0.4, "８ ＯＣＴ", "(波長0.4～0.8m)"},
      {1 / 0.4, 999.0, "", "(波長0.2～0.4m)"},
      {0.0, 999.0, "", ""},
  }};
  return table;
}

OctaveMask MakeOctaveMask(std::int32_t length, double dx, const OctaveBandLimits& limits) {
  const double span = static_cast<double>(length) * dx;
  const auto ff = [span](std::int32_t j) { return static_cast<double>(j) / span; };
  // The first harmonic in 1..top for which `beyond` holds, top + 1 when none: ff grows with j (a
  // correctly rounded quotient never falls as its numerator grows), so each limit is one search.
  const std::int32_t top = length / 2 + 1;
  const auto firstWhere = [top](auto beyond) {
    std::int32_t low = 1, high = top + 1;
    while (low < high) {
      const std::int32_t middle = low + (high - low) / 2;
      if (beyond(middle)) high = middle; else low = middle + 1;
    }
    return low;
  };
  const std::int32_t first = firstWhere([&](std::int32_t j) { return limits.Lower < ff(j); });
  const std::int32_t last = firstWhere([&](std::int32_t j) { return limits.Upper < ff(j); }) - 1;
  return OctaveMask(length, first, last);
}

void MakeOctaveMasks(std::int32_t length, double dx, OctaveMasks& masks) {
  const auto& table = OctaveBandTable();
  masks[0] = OctaveMask();
  for (int k = 1; k <= kMaskCount; ++k)
    masks[static_cast<std::size_t>(k)] = MakeOctaveMask(length, dx, table[static_cast<std::size_t>(k)]);
}

}  // namespace velmora
