#pragma once
// Everything one run of the program holds in common: the settings, the default conditions and those
// in force, the run-time folders, the project state, the project-reset hooks and the user interaction
// in force. Front ends make one and hand it to what needs it; tests make a fresh one per case, and
// any number can exist side by side.
#include <ctime>
#include <functional>
#include <optional>
#include <string>

#include "base/app_paths.h"
#include "base/settings.h"
#include "base/user_interaction.h"

namespace velmora {

// The state of the project as a whole (the profiles themselves are the workbench's).
struct ProjectState {
  std::string FileName;  // empty for a new project
  bool Dirty = false;
};

// The parts of the project state that other layers own; each may be left empty.
struct ProjectResetHooks {
  // Releases every profile (count 0), sets the project's range slots to unset and the selection to -1.
  std::function<void()> ReleaseProject;
  // Clears the repair study's working values and its band and line colours.
  std::function<void()> ClearRepairStudy;
};

class Session {
 public:
  Session() = default;
  explicit Session(UserInteraction& ui) : ui_(&ui) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  AppSettings Settings;
  CalcConditions DefaultConditions;
  CalcConditions CurrentConditions;
  AppPaths Paths;
  ProjectState Project;
  ProjectResetHooks Hooks;
  // The time written into file names. A command-line run fixes it once, so that all its files carry
  // one stamp; unset, each save takes the clock.
  std::optional<std::tm> NameTime;

  // The interaction in force: the silent one until a front end installs its own.
  UserInteraction& Ui() const { return ui_ != nullptr ? *ui_ : silent_; }
  void SetUi(UserInteraction& ui) { ui_ = &ui; }

 private:
  UserInteraction* ui_ = nullptr;
  mutable SilentInteraction silent_;
};

// Where and whether the computations write their intermediate tables: the Debug folder when
// DebugLevel is above 0 (On), and the PSD tables with SWDEBUG on the command line (Switch).
struct DebugTables {
  bool On = false;
  bool Switch = false;
  std::string Folder;
};
inline DebugTables DebugTablesOf(const Session& session) {
  return {session.Settings.DebugLevel > 0, session.Paths.DebugSwitch, session.Paths.DebugPath};
}

// Installs `ui` in a session for the lifetime of this object (a dialog's scripted answers, a
// worker's marshalling interaction) and puts the previous one back.
class ScopedUi {
 public:
  ScopedUi(Session& session, UserInteraction& ui) : session_(session), previous_(&session.Ui()) { session.SetUi(ui); }
  ~ScopedUi() { session_.SetUi(*previous_); }
  ScopedUi(const ScopedUi&) = delete;
  ScopedUi& operator=(const ScopedUi&) = delete;

 private:
  Session& session_;
  UserInteraction* previous_;
};

}  // namespace velmora
