#pragma once
// Every message box, question, input box, file dialog and progress display of the program goes
// through this one interface. The CLI answers non-interactively, tests script the answers and record
// the texts, the desktop GUI shows real dialogs. Texts are UTF-8; line breaks are "\r\n" as built.
#include <optional>
#include <string>
#include <vector>

#include "base/progress.h"

namespace velmora {

enum class MsgIcon { None, Information, Exclamation, Question, Critical };
enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgAnswer { Ok, Cancel, Yes, No };

struct FileDialogRequest {
  std::string Title;
  std::string Filter;            // e.g. "ERD ファイル (*.erd)|*.erd"
  std::string InitialDirectory;  // may be empty
  std::string DefaultName;       // may be empty
  bool MultiSelect = false;
};

class UserInteraction : public ProgressSink {
 public:

  // A message box. For a question, `defaultAnswer` is the button that has the focus.
  virtual MsgAnswer Message(const std::string& text, const std::string& title, MsgIcon icon,
                            MsgButtons buttons, MsgAnswer defaultAnswer) = 0;
  // An input box; nullopt when cancelled.
  virtual std::optional<std::string> Input(const std::string& prompt, const std::string& title,
                                           const std::string& defaultValue) = 0;
  // File and folder dialogs: empty result when cancelled.
  virtual std::vector<std::string> OpenFiles(const FileDialogRequest& request) = 0;
  virtual std::string SaveFile(const FileDialogRequest& request) = 0;
  virtual std::string ChooseFolder(const FileDialogRequest& request) = 0;

  // A run-time error that the error log has recorded under `place` ("module : procedure"). The
  // desktop shows the place in the title, as its users are used to; a front end that keeps internal
  // names off the screen overrides this.
  virtual void ReportError(const std::string& text, const std::string& place) {
    Inform("ERROR : " + text, "[ " + place + " ]", MsgIcon::Exclamation);
  }

  // Shorthands used all over the program.
  void Inform(const std::string& text, const std::string& title, MsgIcon icon = MsgIcon::Exclamation) {
    Message(text, title, icon, MsgButtons::Ok, MsgAnswer::Ok);
  }
  bool AskOkCancel(const std::string& text, const std::string& title) {
    return Message(text, title, MsgIcon::Question, MsgButtons::OkCancel, MsgAnswer::Ok) == MsgAnswer::Ok;
  }
  bool AskYesNo(const std::string& text, const std::string& title, MsgAnswer defaultAnswer = MsgAnswer::Yes) {
    return Message(text, title, MsgIcon::Question, MsgButtons::YesNo, defaultAnswer) == MsgAnswer::Yes;
  }
};

// Answers every question with its default, cancels dialogs, never stops a computation and writes
// messages to stderr (unless `echo` is false): what a session uses until a front end installs its own.
class SilentInteraction final : public UserInteraction {
 public:
  explicit SilentInteraction(bool echo = true) : echo_(echo) {}
  MsgAnswer Message(const std::string& text, const std::string& title, MsgIcon icon, MsgButtons buttons,
                    MsgAnswer defaultAnswer) override;
  std::optional<std::string> Input(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::vector<std::string> OpenFiles(const FileDialogRequest&) override { return {}; }
  std::string SaveFile(const FileDialogRequest&) override { return {}; }
  std::string ChooseFolder(const FileDialogRequest&) override { return {}; }
  void ProgressStart(const std::string&, const std::string&) override {}
  bool ProgressValue(int) override { return true; }
  void ProgressExit() override {}

 private:
  bool echo_;
};

}  // namespace velmora
