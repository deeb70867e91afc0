#include "workbench/engine_bindings.h"

#include "base/number_helpers.h"
#include "base/session.h"
#include "base/startup.h"
#include "repair/three_wave.h"

namespace velmora::workbench {

EngineBindings::EngineBindings(Workbench& bench) : bench_(bench) {
  WorkbenchHooks& hooks = bench.Hooks;
  hooks.ClearProfileBoxes = [this] { ProfileBoxes = ProfileTabBoxes{}; };
  // Leaving tab 1 colours its boxes; the checks of tabs 2 and 4 stay with whoever set them before.
  hooks.CheckTabInputs = [this, earlier = hooks.CheckTabInputs](int code) {
    if (code == 1)
      ChkDatColours(1, ProfileBoxes);
    else if (earlier)
      earlier(code);
  };
  hooks.StoreProfileBoxes = [this](int row) { StoreBoxes(row); };
  // The workbench marks its tabs and refills its boxes itself when this reports a change.
  hooks.EditConditions = [this] {
    bool changed = false;
    ConditionsDialog dialog(bench_.Session(), [&changed] { changed = true; });
    if (RunConditionsDialog) RunConditionsDialog(dialog);
    if (dialog.IsOpen()) dialog.Close();
    return changed;
  };
  bench_.Session().Hooks.ClearRepairStudy = [this] {
    for (int row = 1; row <= bench_.ProfileCount(); ++row) ClearRepairStudy(bench_.Profile(row));
  };
}

EngineBindings::~EngineBindings() {
  bench_.Session().Hooks.ClearRepairStudy = nullptr;
  bench_.Hooks.ClearProfileBoxes = nullptr;
  bench_.Hooks.CheckTabInputs = nullptr;
  bench_.Hooks.StoreProfileBoxes = nullptr;
  bench_.Hooks.EditConditions = nullptr;
}

void EngineBindings::ShowProfile(int row) {
  bench_.LoadingProfile = true;
  ProfileBoxes = ShowProfileOnTab(bench_.Profile(row));
  bench_.LoadingProfile = false;
}

void EngineBindings::StoreBoxes(int row) {
  ProfileRecord& record = bench_.Profile(row);
  const double pitch = record.Erd.StepSize;
  const double kpStart = record.Erd.KpStart;
  const std::int32_t kpSign = record.Erd.KpSign;
  const std::int32_t lane = record.Erd.Lane;
  StoreProfileTab(ProfileBoxes, record);
  // A new pitch or KP (its start, sense or lane) changes every result drawn along the profile.
  if (!uNearlyEqual(record.Erd.StepSize, pitch) || !uNearlyEqual(record.Erd.KpStart, kpStart) ||
      record.Erd.KpSign != kpSign || record.Erd.Lane != lane)
    bench_.ProfileEdited(row);
}

}  // namespace velmora::workbench
