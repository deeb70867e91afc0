#include "base/user_interaction.h"

#include <cstdio>

namespace velmora {
namespace {

class DefaultUi final : public UserInteraction {
 public:
  MsgAnswer Message(const std::string& text, const std::string& title, MsgIcon, MsgButtons,
                    MsgAnswer defaultAnswer) override {
    std::fprintf(stderr, "[%s] %s\n", title.c_str(), text.c_str());
    return defaultAnswer;
  }
  std::optional<std::string> Input(const std::string&, const std::string&, const std::string&) override {
    return std::nullopt;
  }
  std::vector<std::string> OpenFiles(const FileDialogRequest&) override { return {}; }
  std::string SaveFile(const FileDialogRequest&) override { return {}; }
  std::string ChooseFolder(const FileDialogRequest&) override { return {}; }
  void ProgressStart(const std::string&, const std::string&) override {}
  void ProgressValue(int) override {}
  void ProgressExit() override {}
};

DefaultUi& DefaultInstance() {
  static DefaultUi instance;
  return instance;
}

UserInteraction* current = nullptr;

}  // namespace

UserInteraction& Ui() { return current ? *current : DefaultInstance(); }

ScopedUi::ScopedUi(UserInteraction& ui) : previous_(current) { current = &ui; }
ScopedUi::~ScopedUi() { current = previous_; }

}  // namespace velmora
