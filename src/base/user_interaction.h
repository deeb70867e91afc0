#pragma once
// Every message box, question, input box, file dialog and progress display of the program goes
// through this one interface. The CLI answers non-interactively, tests script the answers and record
// the texts, the desktop GUI shows real dialogs. Texts are UTF-8; line breaks are "\r\n" as built.
#include <optional>
#include <string>
#include <vector>

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

class UserInteraction {
 public:
  virtual ~UserInteraction() = default;

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

  // The progress display: start (title, message), value 0..100, exit.
  virtual void ProgressStart(const std::string& title, const std::string& message) = 0;
  virtual void ProgressValue(int percent) = 0;
  virtual void ProgressExit() = 0;

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

// The process-wide interaction in force. Until a front end installs one, a silent implementation
// answers every question with its default, cancels dialogs and writes messages to stderr.
UserInteraction& Ui();

// Installs `ui` for the lifetime of this object (front ends at start, tests per case).
class ScopedUi {
 public:
  explicit ScopedUi(UserInteraction& ui);
  ~ScopedUi();
  ScopedUi(const ScopedUi&) = delete;
  ScopedUi& operator=(const ScopedUi&) = delete;

 private:
  UserInteraction* previous_;
};

}  // namespace velmora
