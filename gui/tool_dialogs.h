#pragma once
// The profile tools' dialogs (mnuToolSub 0 to 3): the registered profiles in a list of several
// selectable rows, the tool's inputs, and 登録, which makes the new profiles with the tool's engine
// and registers them through the workbench. The dialog stays open for further runs.
#include <QCoreApplication>
#include <QDialog>
#include <QListWidget>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "profile/profile_tools.h"
#include "profile_edits.h"
#include "workbench/workbench.h"

namespace velmora::gui {

enum ToolIndex { kComposite = 0, kHeightShift = 1, kReverse = 2, kCutOut = 3 };

// The new profiles of the selected ones, or nullopt when a check refused the inputs (it has said why).
using MakeToolOutputs = std::function<std::optional<std::vector<ToolOutput>>(const std::vector<ToolItem>& selected)>;

class ToolDialog final : public QDialog {
  Q_DECLARE_TR_FUNCTIONS(ToolDialog)

 public:
  // `inputs` is the tool's own part of the form; `make` reads it.
  ToolDialog(workbench::Workbench& bench, const QString& caption, QWidget* inputs, MakeToolOutputs make,
             ListChange changeList, QWidget* parent = nullptr);

  QListWidget* Profiles() const { return profiles_; }
  // cmdProfile登録: nothing selected does nothing; true when new profiles were registered.
  bool Register();

 private:
  void FillProfiles();

  workbench::Workbench& bench_;
  MakeToolOutputs make_;
  ListChange changeList_;
  QListWidget* profiles_ = nullptr;
  std::vector<ToolItem> items_;
};

// The dialog of mnuToolSub(tool), 0 to 3; null for a tool without one here.
std::unique_ptr<ToolDialog> MakeToolDialog(int tool, workbench::Workbench& bench, ListChange changeList,
                                           QWidget* parent);

}  // namespace velmora::gui
