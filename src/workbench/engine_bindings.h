#pragma once
// The workbench's hooks bound to the engines that exist for them: the profile tab's boxes (shown,
// checked and stored on leaving tab 1, emptied by the form reset), the conditions dialog of the menu
// and the repair-study part of the project reset. The bindings hold for as long as this object lives.
#include <functional>

#include "base/conditions_dialog.h"
#include "profile/profile_tab.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

class EngineBindings {
 public:
  explicit EngineBindings(Workbench& bench);
  ~EngineBindings();  // the project reset no longer reaches the workbench
  EngineBindings(const EngineBindings&) = delete;
  EngineBindings& operator=(const EngineBindings&) = delete;

  ProfileTabBoxes ProfileBoxes;  // the boxes of tab 1, edited by the front end
  // The front end's modal run of the conditions dialog: the user edits its Boxes and ends with Ok or
  // Close. Without one the dialog closes unchanged.
  std::function<void(ConditionsDialog&)> RunConditionsDialog;

  // Fills the boxes from the profile of `row` (from 1) with LoadingProfile set, so that filling them
  // starts no change event.
  void ShowProfile(int row);

 private:
  void StoreBoxes(int row);
  Workbench& bench_;
};

}  // namespace velmora::workbench
