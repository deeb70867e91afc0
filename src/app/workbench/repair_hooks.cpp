// The repair-shape study's tabs joined to their computations.
#include "app/workbench/workbench.h"

namespace velmora::workbench {

void InstallRepair(Workbench&) {}

}  // namespace velmora::workbench
