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

void MakeOctaveMask(std::int32_t length, double dx, const OctaveBandLimits& limits,
                    Array1<std::uint8_t>& mask) {
  mask.assign_zero(length);
  const double span = static_cast<double>(length) * dx;
  std::ptrdiff_t p = 1;
  auto judge = [&](std::int32_t j) {
    const double ff = static_cast<double>(j) / span;
    mask[p] = (limits.Lower < ff && ff <= limits.Upper) ? 1 : 0;
    ++p;
  };
  for (std::int32_t j = 1; j <= length / 2 + 1; ++j) judge(j);
  for (std::int32_t j = length / 2; j >= 2; --j) judge(j);
}

void MakeOctaveMasks(std::int32_t length, double dx, std::array<Array1<std::uint8_t>, 11>& masks) {
  const auto& table = OctaveBandTable();
  masks[0].clear();
  for (int k = 1; k <= kMaskCount; ++k) MakeOctaveMask(length, dx, table[static_cast<std::size_t>(k)], masks[static_cast<std::size_t>(k)]);
}

}  // namespace velmora
