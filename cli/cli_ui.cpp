#include "cli_ui.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>

namespace velmora::cli {
namespace {

std::string WithNewlines(std::string text) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    out += text[i];
  }
  return out;
}

const char* AnswerWord(MsgAnswer answer) {
  switch (answer) {
    case MsgAnswer::Ok: return "OK";
    case MsgAnswer::Cancel: return "Cancel";
    case MsgAnswer::Yes: return "Yes";
    case MsgAnswer::No: return "No";
  }
  return "";
}

}  // namespace

CliUi::CliUi(const CommonOptions& options) : options_(options), terminal_(::isatty(STDERR_FILENO) != 0) {}

MsgAnswer CliUi::Message(const std::string& text, const std::string& title, MsgIcon icon, MsgButtons buttons,
                         MsgAnswer defaultAnswer) {
  ++messages_;
  // --quiet drops confirmations ("saved to ..."); warnings, errors and questions are always shown.
  if (options_.Quiet && icon == MsgIcon::Information && buttons == MsgButtons::Ok) return MsgAnswer::Ok;
  if (lastPercent_ >= 0 && terminal_) std::fputc('\n', stderr);
  MsgAnswer answer = defaultAnswer;
  if (buttons != MsgButtons::Ok) {
    if (options_.Yes) answer = buttons == MsgButtons::OkCancel ? MsgAnswer::Ok : MsgAnswer::Yes;
    if (options_.No) answer = buttons == MsgButtons::OkCancel ? MsgAnswer::Cancel : MsgAnswer::No;
  } else {
    answer = MsgAnswer::Ok;
  }
  std::string line = title.empty() ? WithNewlines(text) : "[" + title + "] " + WithNewlines(text);
  if (buttons != MsgButtons::Ok) line += std::string(" → ") + AnswerWord(answer);
  std::fprintf(stderr, "%s\n", line.c_str());
  return answer;
}

std::optional<std::string> CliUi::Input(const std::string& prompt, const std::string& title,
                                        const std::string& defaultValue) {
  std::fprintf(stderr, "[%s] %s → %s\n", title.c_str(), WithNewlines(prompt).c_str(), defaultValue.c_str());
  return defaultValue;
}

std::vector<std::string> CliUi::OpenFiles(const FileDialogRequest&) { return {}; }

// Save and folder dialogs answer with -o: result files go there (the folder is made when missing).
std::string CliUi::SaveFile(const FileDialogRequest& request) {
  std::error_code ec;
  std::filesystem::create_directories(options_.OutputDir, ec);
  return (std::filesystem::path(options_.OutputDir) / (request.DefaultName.empty() ? "result" : request.DefaultName))
      .string();
}
std::string CliUi::ChooseFolder(const FileDialogRequest&) {
  std::error_code ec;
  std::filesystem::create_directories(options_.OutputDir, ec);
  return options_.OutputDir;
}

void CliUi::ProgressStart(const std::string& title, const std::string& message) {
  progressTitle_ = title.empty() ? message : title;
  lastPercent_ = -1;
  DrawBar(0);
}

bool CliUi::ProgressValue(int percent) {
  if (percent >= 0 && percent <= 100 && percent != lastPercent_) DrawBar(percent);
  return true;
}

void CliUi::ProgressExit() {
  if (lastPercent_ >= 0 && terminal_ && !options_.Quiet) std::fputc('\n', stderr);
  lastPercent_ = -1;
}

void CliUi::DrawBar(int percent) {
  lastPercent_ = percent;
  if (!terminal_ || options_.Quiet) return;
  const int width = 30, filled = percent * width / 100;
  std::fprintf(stderr, "\r%s [%s%s] %3d%%", progressTitle_.c_str(), std::string(static_cast<std::size_t>(filled), '#').c_str(),
               std::string(static_cast<std::size_t>(width - filled), ' ').c_str(), percent);
  std::fflush(stderr);
}

}  // namespace velmora::cli
