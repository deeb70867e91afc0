#include "repair/kp_adjustments.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "base/common.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "profile/profile_list.h"
#include "repair/study_targets.h"

namespace velmora {

std::optional<std::int32_t> SampleAtKp(const ProfileRecord& record, double kp) {
  const double first = IsNoValue(record.Erd.KpStart) ? 0.0 : record.Erd.KpStart;
  const double metres = (record.Erd.KpSign == 1 ? first - kp : kp - first) * 1000.0;
  const double index = std::round(metres / record.Erd.StepSize) + 1;
  if (index < 1 || index > record.WorkCount) return std::nullopt;
  return static_cast<std::int32_t>(index);
}

StudyTarget ThicknessStudyAtKps(const ProfileRecord& record, std::string name,
                                const std::vector<KpAdjustment>& points, const std::string& source) {
  const std::vector<StudyPoint>& table = record.RepairStudy.PointTable;
  StudyTarget study = NewStudy(std::move(name), table);
  study.Thickness.assign(table.size(), 0.0);
  for (const KpAdjustment& a : points) {
    const std::optional<std::int32_t> at = SampleAtKp(record, a.Kp);
    if (!at)
      throw LegacyError(ErrorNumber::InvalidData, source + ": KP " + FormatNumber(a.Kp, "0.000") +
                                                      " km lies outside the profile " + ProfileList::NameOf(record));
    const auto nearest = std::min_element(table.begin(), table.end(), [&](const StudyPoint& x, const StudyPoint& y) {
      return std::abs(x.Index - *at) < std::abs(y.Index - *at);
    });
    SetPointThickness(study, static_cast<std::size_t>(nearest - table.begin()), a.Thickness);
  }
  return study;
}

}  // namespace velmora
