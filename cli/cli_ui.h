#pragma once
// The command line's user interaction: nothing waits for a person. Messages go to stderr with their
// title, questions take the answer of --yes/--no or their default, input boxes their default value,
// open dialogs are cancelled, save and folder dialogs answer with -o, and progress is a bar on a terminal.
#include "base/user_interaction.h"
#include "command_registry.h"

namespace velmora::cli {

class CliUi final : public UserInteraction {
 public:
  explicit CliUi(const CommonOptions& options);

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

  int MessageCount() const { return messages_; }

 private:
  void DrawBar(int percent);

  const CommonOptions& options_;
  bool terminal_;
  std::string progressTitle_;
  int lastPercent_ = -1;
  int messages_ = 0;
};

}  // namespace velmora::cli
