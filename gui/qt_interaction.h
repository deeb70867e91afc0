#pragma once
// The desktop's answer to the program's interaction: message boxes with the program's titles and
// icons, input boxes, file and folder dialogs and a progress dialog whose Cancel stops the computation
// at its next progress report. Every call runs on the window's thread.
#include <QPointer>
#include <QProgressDialog>
#include <QString>
#include <QWidget>

#include "base/user_interaction.h"

namespace velmora::gui {

// "ERDファイル (*.ERD)|*.ERD|..." (description and patterns in turns, patterns split by ";") as a Qt
// name filter ("ERDファイル (*.ERD);;...", patterns split by spaces, as Qt reads them), the
// descriptions in the language in force.
QString QtNameFilter(const std::string& filter);
// A text of the program as a dialog shows it: each line in the language in force (base/language.h),
// the "\r\n" it builds its texts with as plain line breaks.
QString DialogText(const std::string& text);

class QtInteraction final : public UserInteraction {
 public:
  // Dialogs are centred over this window (none: over the screen).
  void SetParentWindow(QWidget* window) { parent_ = window; }

  MsgAnswer Message(const std::string& text, const std::string& title, MsgIcon icon, MsgButtons buttons,
                    MsgAnswer defaultAnswer) override;
  std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                   const std::string& defaultValue) override;
  std::vector<std::string> OpenFiles(const FileDialogRequest& request) override;
  std::string SaveFile(const FileDialogRequest& request) override;
  std::string ChooseFolder(const FileDialogRequest& request) override;
  void ProgressStart(const std::string& title, const std::string& message) override;
  bool ProgressValue(int percent) override;
  void ProgressExit() override;

 private:
  QPointer<QWidget> parent_;
  QPointer<QProgressDialog> progress_;
};

}  // namespace velmora::gui
