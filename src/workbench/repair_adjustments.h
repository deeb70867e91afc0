#pragma once
// Adjusted points given by KP, applied as thickness studies on the workbench's profiles.
#include <string>
#include <vector>

#include "repair/kp_adjustments.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

// On each profile selected on the three-wave tab whose M wave is straightened: a thickness study
// "adjust[厚]" from `points`, calculated and chosen for the ideal shape. False when a study could not
// be calculated (the reason is in the log); a KP outside a profile raises LegacyError naming `source`.
bool AddKpThicknessStudies(Workbench& bench, const std::string& source, const std::vector<KpAdjustment>& points);

}  // namespace velmora::workbench
