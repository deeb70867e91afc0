#include "cli_ui.h"

#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "messages.h"

namespace velmora::cli {
namespace {

// Lines of a message box text, without the empty ones.
std::vector<std::string> LinesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::size_t from = 0;
  while (from <= text.size()) {
    std::size_t end = text.find('\n', from);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(from, end - from);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    while (!line.empty() && line.back() == ' ') line.pop_back();
    if (!line.empty()) lines.push_back(line);
    from = end + 1;
  }
  return lines;
}

// The labels before a file name in the engine's messages: that file is what the message is about.
constexpr const char* kFileLabels[] = {"対象ファイル名：", "設定ファイル名：", "ファイル名："};

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

CliUi::CliUi(const CommonOptions& options, RunContext& run)
    : options_(options), run_(run), terminal_(::isatty(STDERR_FILENO) != 0) {}

namespace {

// A message box's text as one line: the file its "ファイル名：" line names, and the rest translated.
void FileAndReason(const std::string& text, std::string& what, std::string& why) {
  for (const std::string& line : LinesOf(text)) {
    bool file = false;
    for (const char* label : kFileLabels)
      if (line.rfind(label, 0) == 0) {
        what = line.substr(std::string(label).size());
        file = true;
        break;
      }
    if (!file) why += (why.empty() ? "" : " ") + TrEngine(line);
  }
}

}  // namespace

void CliUi::Problem(const std::string& text) {
  std::string what, why;
  FileAndReason(text, what, why);
  // Inside a flag check, the flag whose caption comes first in the text is the one at fault.
  const FlagCaption* flag = nullptr;
  std::size_t first = std::string::npos;
  for (const FlagCaption& candidate : flags_) {
    const std::size_t at = candidate.Caption.empty() ? text.size() : text.find(candidate.Caption);
    if (at != std::string::npos && (flag == nullptr || at < first)) flag = &candidate, first = at;
  }
  // A text that names a file is about the file, not about a flag.
  if (flag && what.empty()) {
    what = flag->Unit.empty() ? flag->Flag : flag->Flag + " (" + flag->Unit + ")";
    run_.UsageError = true;
  }
  EndBar();
  PrintProblem(run_, what, why);
}

MsgAnswer CliUi::Message(const std::string& text, const std::string& title, MsgIcon icon, MsgButtons buttons,
                         MsgAnswer defaultAnswer) {
  if (buttons == MsgButtons::Ok) {
    // The "saved to" confirmations give way to the list of written files on stdout.
    if (title == "データ保存") return MsgAnswer::Ok;
    if (icon == MsgIcon::Information || icon == MsgIcon::None) {
      if (!options_.Quiet) {
        EndBar();
        std::string what, why;
        FileAndReason(text, what, why);
        PrintProblem(run_, what, why);
      }
      return MsgAnswer::Ok;
    }
    Problem(text);
    return MsgAnswer::Ok;
  }
  MsgAnswer answer = defaultAnswer;
  if (options_.Yes) answer = buttons == MsgButtons::OkCancel ? MsgAnswer::Ok : MsgAnswer::Yes;
  if (options_.No) answer = buttons == MsgButtons::OkCancel ? MsgAnswer::Cancel : MsgAnswer::No;
  std::string question;
  for (const std::string& line : LinesOf(text)) question += (question.empty() ? "" : " ") + TrEngine(line);
  EndBar();
  PrintProblem(run_, "", question + " → " + AnswerWord(answer));
  return answer;
}

void CliUi::ReportError(const std::string& text, const std::string& place) {
  (void)place;  // recorded in the error log, which the run keeps; internal names stay off the screen
  Problem(text);
}

std::optional<std::string> CliUi::Input(const std::string& prompt, const std::string&, const std::string& defaultValue) {
  std::string question;
  for (const std::string& line : LinesOf(prompt)) question += (question.empty() ? "" : " ") + TrEngine(line);
  if (!options_.Quiet) PrintProblem(run_, "", question + " → " + defaultValue);
  return defaultValue;
}

std::vector<std::string> CliUi::OpenFiles(const FileDialogRequest&) { return {}; }

// Save and folder dialogs answer with the staging folder: the run's files move to -o when it succeeds.
std::string CliUi::SaveFile(const FileDialogRequest& request) {
  return (run_.Staging() / (request.DefaultName.empty() ? "result" : request.DefaultName)).string();
}
std::string CliUi::ChooseFolder(const FileDialogRequest&) {
  return run_.Staging().string();
}

void CliUi::ProgressStart(const std::string& title, const std::string& message) {
  progressTitle_ = TrEngine(title.empty() ? message : title);
  lastPercent_ = -1;
  DrawBar(0);
}

bool CliUi::ProgressValue(int percent) {
  if (percent >= 0 && percent <= 100 && percent != lastPercent_) DrawBar(percent);
  return !run_.Interrupted;
}

void CliUi::ProgressExit() { EndBar(); }

void CliUi::EndBar() {
  if (lastPercent_ >= 0 && terminal_ && !options_.Quiet) std::fputc('\n', stderr);
  lastPercent_ = -1;
}

void CliUi::DrawBar(int percent) {
  lastPercent_ = percent;
  if (!terminal_ || options_.Quiet) return;
  const int width = 30, filled = percent * width / 100;
  std::fprintf(stderr, "\r%s [%s%s] %3d%%", progressTitle_.c_str(),
               std::string(static_cast<std::size_t>(filled), '#').c_str(),
               std::string(static_cast<std::size_t>(width - filled), ' ').c_str(), percent);
  std::fflush(stderr);
}

}  // namespace velmora::cli
