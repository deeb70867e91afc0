// The statistics and cross-correlation tabs joined to their computations.
#include "app/workbench/workbench.h"

namespace velmora::workbench {

void InstallEvaluation(Workbench&) {}

}  // namespace velmora::workbench
