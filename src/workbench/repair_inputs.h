#pragma once
// The boxes, lists and buttons of the repair-shape study's tabs (10 to 13), as the controller holds
// them. The boxes stay text until a Go checks them, so that the messages can name what was typed.
#include <array>
#include <string>
#include <vector>

#include "repair/three_wave.h"

namespace velmora::workbench {

struct RepairTabInputs {
  ThreeWaveForm Form;          // 長波側境界値, 短波側境界値 (m), IRI算出基準長 (m), the nine band lines (mm)
  bool UsePlanRange = false;   // chk補修計画範囲
  ThreeWaveParams Stored;      // the values the current splits were made with
  std::array<bool, 4> OutputEnabled{};    // the output buttons of tabs 10..13
  std::vector<std::string> StudyTargets;  // lst検討対象
  std::vector<std::string> MWaveChoices;  // lst_M波選択
  // Bumped each time a tab's computation runs, so that the later tabs see their input has changed.
  std::array<int, 4> Revision{};
  bool LastRunReset = false;   // the last Go cleared the study data (its box has been shown)
};

}  // namespace velmora::workbench
