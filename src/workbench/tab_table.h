#pragma once
// The tabs of the main window (SSTab1): what each one is, to which mode it belongs, what happens on
// entry and which Go button it has.
#include <array>
#include <string_view>

namespace velmora::workbench {

inline constexpr int kTabCount = 15;

enum class TabGroup { Both, Analysis, Repair };

enum class EntryAction {
  None,                // nothing is redrawn on entry
  RedrawWhenDirty,     // the tab's redraw procedure when its TabDirty flag stands
  RedrawThenLegend,    // tab 5: the redraw when dirty, then always the legend update
  AlwaysRefill,        // tab 8: the list refill every time
};

struct TabInfo {
  int Index;
  std::string_view Purpose;
  TabGroup Group;
  EntryAction OnEntry;
  std::string_view Redraw;  // the redraw procedure's name, empty when none
  std::string_view Go;      // the Go button's control name, empty when none
};

const std::array<TabInfo, kTabCount>& TabTable();

// Named tab indices used by the controller and its front ends.
namespace tab {
inline constexpr int Project = 0, Profile = 1, Filter = 2, Octave = 3, BandReduction = 4, Psd = 5, Iri = 6,
                     Statistics = 7, Report = 8, Print = 9, ThreeWave = 10, MediumWave = 11, ShortWave = 12,
                     IdealShape = 13, Verification = 14;
}

}  // namespace velmora::workbench
