#include "report/position_axis.h"

#include "base/common.h"

namespace velmora {

double SamplePosition(const PositionAxis& axis, std::int64_t i, double stepSize, double kpStart,
                      std::int32_t kpSign) {
  const double fromStart = static_cast<double>(i - 1) * stepSize;
  if (axis.Mode == PositionMode::ZeroBased) return fromStart;
  const double startKm = IsNoValue(kpStart) ? 0.0 : kpStart;
  const double km = kpSign == 1 ? startKm - fromStart / 1000.0 : startKm + fromStart / 1000.0;
  return axis.Unit == KpUnit::Km ? km : km * 1000.0;
}

std::string PositionUnitWord(const PositionAxis& axis, bool withSuffix) {
  if (axis.Mode == PositionMode::ZeroBased || axis.Unit == KpUnit::M) return "m";
  return withSuffix ? "km" : "KP";
}

}  // namespace velmora
