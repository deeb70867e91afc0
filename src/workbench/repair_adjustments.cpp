#include "workbench/repair_adjustments.h"

#include "repair/ideal_shape.h"
#include "repair/study_targets.h"
#include "workbench/tab_table.h"

namespace velmora::workbench {

bool AddKpThicknessStudies(Workbench& bench, const std::string& source, const std::vector<KpAdjustment>& points) {
  for (int row : bench.Selection(tab::ThreeWave)) {
    ProfileRecord& record = bench.Profile(row);
    if (!record.RepairStudy.MiddleValid || record.RepairStudy.PointTable.empty()) continue;
    record.Studies.push_back(
        ThicknessStudyAtKps(record, "adjust" + std::string(StudySuffix(StudyForm::Thickness)), points, source));
    if (!CalcStudyAdjustment(bench.Session(), record, record.Studies.back(), bench.Repair.Form)) return false;
    record.RepairStudy.ChosenStudy = static_cast<std::int32_t>(record.Studies.size());
  }
  return true;
}

}  // namespace velmora::workbench
