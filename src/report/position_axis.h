#pragma once
// Where a sample of a profile stands along the road, as charts and result files show it: metres from
// the first sample, or the kilometre post (KP) in km or m, falling when the KP runs backwards.
#include <cstdint>
#include <string>

namespace velmora {

enum class PositionMode { ZeroBased, Kp };  // optKP位置表示 (0) "ゼロ始まり", (1) "ＫＰ"
enum class KpUnit { Km, M };                 // optKP単位

struct PositionAxis {
  PositionMode Mode = PositionMode::ZeroBased;
  KpUnit Unit = KpUnit::Km;
  bool Reversed = false;  // chkX軸反転: the chart's axis runs right to left; positions are unchanged

  friend bool operator==(const PositionAxis&, const PositionAxis&) = default;
};

// Position of sample i (1-based) of a profile with pitch `stepSize` (m), KP of the first sample
// `kpStart` (km; the no value counts as 0) and `kpSign` (1: KP falls along the profile).
// Zero-based: (i - 1) * stepSize in m. KP: kpStart ± (i - 1) * stepSize, in km or m by the unit.
double SamplePosition(const PositionAxis& axis, std::int64_t i, double stepSize, double kpStart,
                      std::int32_t kpSign);

// The unit word of positions in the current setting: "m", "km", or "KP" for KP in km when
// `withSuffix` is false (a KP is a kilometre figure by nature, so its plain head says "KP").
std::string PositionUnitWord(const PositionAxis& axis, bool withSuffix);

}  // namespace velmora
