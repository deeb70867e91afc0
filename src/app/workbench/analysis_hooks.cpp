#include "app/workbench/workbench.h"

namespace velmora::workbench {

// Each analysis joins its tab here as it becomes available.
void InstallAnalyses(Workbench&) {}

}  // namespace velmora::workbench
