#pragma once
// cmdProfile登録_3波分解 and cmdProfile登録_理想形状 on the workbench: the chosen waves of the rows
// selected on the three-wave tab (or the ideal shapes of those selected on the ideal-shape tab) are
// written as ERD files in the project's profile folder and registered as new profiles.
#include <string>
#include <vector>

#include "repair/ideal_shape.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

// What was registered: the new rows' file names, in order. `ok` is false when a wave could not be
// made, written or registered (the reason is in the log or was shown).
struct RegisteredWaves {
  bool Ok = true;
  std::vector<std::string> FileNames;
};

// Names from the "FileExportName" pattern of the study's section, or the built-in
// "<profile>_L波_<date>" and "<profile>_理想形状案_<date>"; titles get "(L)", "(M)", "(S)" or "(理想形状案)".
RegisteredWaves RegisterStudyWaves(Workbench& bench, const WaveChoice& waves, bool idealShape);

}  // namespace velmora::workbench
