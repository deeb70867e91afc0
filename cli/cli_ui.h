#pragma once
// The command line's user interaction: nothing waits for a person. Problems go to stderr as one
// line each ("velmora: COMMAND: WHAT: why", WHAT being the file or flag at fault), questions take
// the answer of --yes/--no or their default, input boxes their default value, open dialogs are
// cancelled, save and folder dialogs answer with the run's staging folder, and progress is a bar on
// a terminal that SIGINT/SIGTERM turn into a stop.
#include <string>
#include <vector>

#include "base/user_interaction.h"
#include "command_registry.h"
#include "run_context.h"

namespace velmora::cli {

// A flag whose value the engine checks: a warning that names `Caption` is about this flag.
struct FlagCaption {
  std::string Flag;     // "--length"
  std::string Caption;  // the field's name in the engine's texts ("" matches any warning)
  std::string Unit;     // the flag's unit for the message ("m"), or ""
};

class CliUi final : public UserInteraction {
 public:
  CliUi(const CommonOptions& options, RunContext& run);

  MsgAnswer Message(const std::string& text, const std::string& title, MsgIcon icon, MsgButtons buttons,
                    MsgAnswer defaultAnswer) override;
  void ReportError(const std::string& text, const std::string& place) override;
  std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                   const std::string& defaultValue) override;
  std::vector<std::string> OpenFiles(const FileDialogRequest& request) override;
  std::string SaveFile(const FileDialogRequest& request) override;
  std::string ChooseFolder(const FileDialogRequest& request) override;
  void ProgressStart(const std::string& title, const std::string& message) override;
  bool ProgressValue(int percent) override;
  void ProgressExit() override;

  // While a FlagCheck lives, the engine's warnings are about its flags: each is named in the
  // message, and the run ends as a usage error.
  class FlagCheck {
   public:
    FlagCheck(CliUi& ui, std::vector<FlagCaption> flags) : ui_(ui), saved_(std::move(ui.flags_)) {
      ui.flags_ = std::move(flags);
    }
    ~FlagCheck() { ui_.flags_ = std::move(saved_); }
    FlagCheck(const FlagCheck&) = delete;
    FlagCheck& operator=(const FlagCheck&) = delete;

   private:
    CliUi& ui_;
    std::vector<FlagCaption> saved_;
  };

 private:
  void Problem(const std::string& text);
  void EndBar();
  void DrawBar(int percent);

  const CommonOptions& options_;
  RunContext& run_;
  bool terminal_;
  std::vector<FlagCaption> flags_;
  std::string progressTitle_;
  int lastPercent_ = -1;
};

}  // namespace velmora::cli
