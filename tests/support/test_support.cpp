#include "support/test_support.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>

namespace velmora::testing {

std::vector<RecordedMessage> ScriptedUi::Messages() const {
  std::vector<RecordedMessage> out;
  for (const auto& m : Log)
    if (m.Kind == "message") out.push_back(m);
  return out;
}

std::string ScriptedUi::OnlyMessageText() const {
  const auto messages = Messages();
  EXPECT_EQ(messages.size(), 1u);
  return messages.empty() ? std::string() : messages.front().Text;
}

MsgAnswer ScriptedUi::Message(const std::string& text, const std::string& title, MsgIcon icon,
                              MsgButtons buttons, MsgAnswer defaultAnswer) {
  Log.push_back({"message", text, title, icon, buttons});
  if (Answers.empty()) return defaultAnswer;
  const MsgAnswer answer = Answers.front();
  Answers.pop_front();
  return answer;
}

std::optional<std::string> ScriptedUi::Input(const std::string& prompt, const std::string& title,
                                             const std::string&) {
  Log.push_back({"input", prompt, title});
  if (Inputs.empty()) return std::nullopt;
  std::string value = Inputs.front();
  Inputs.pop_front();
  return value;
}

std::vector<std::string> ScriptedUi::OpenFiles(const FileDialogRequest& request) {
  Log.push_back({"open", request.InitialDirectory, request.Title});
  if (Files.empty()) return {};
  auto files = Files.front();
  Files.pop_front();
  return files;
}

std::string ScriptedUi::NextFile() {
  if (Files.empty() || Files.front().empty()) return {};
  auto file = Files.front().front();
  Files.pop_front();
  return file;
}

std::string ScriptedUi::SaveFile(const FileDialogRequest& request) {
  Log.push_back({"save", request.DefaultName, request.Title});
  return NextFile();
}

std::string ScriptedUi::ChooseFolder(const FileDialogRequest& request) {
  Log.push_back({"folder", request.InitialDirectory, request.Title});
  return NextFile();
}

void ScriptedUi::ProgressStart(const std::string& title, const std::string& message) {
  Log.push_back({"progress-start", message, title});
}
bool ScriptedUi::ProgressValue(int percent) {
  ProgressValues.push_back(percent);
  return StopAfterValues < 0 || static_cast<int>(ProgressValues.size()) <= StopAfterValues;
}
void ScriptedUi::ProgressExit() { Log.push_back({"progress-exit", "", ""}); }

TempDir::TempDir() {
  std::random_device random;
  path_ = std::filesystem::temp_directory_path() /
          ("velmora-test-" + std::to_string(::getpid()) + "-" + std::to_string(random()));
  std::filesystem::create_directories(path_);
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ec);
  std::filesystem::remove_all(path_, ec);
}

std::tm Noon() {
  std::tm t{};
  t.tm_year = 124;
  t.tm_mon = 2;
  t.tm_mday = 5;
  t.tm_hour = 12;
  return t;
}

std::string ReadBytes(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream out(path, std::ios::binary);
  out << bytes;
}

ScopedEnvironment::ScopedEnvironment(std::initializer_list<std::pair<const char*, const char*>> values) {
  for (const auto& [name, value] : values) {
    const char* former = std::getenv(name);
    saved_.emplace_back(name, former ? std::optional<std::string>(former) : std::nullopt);
    if (value) ::setenv(name, value, 1);
    else ::unsetenv(name);
  }
}

ScopedEnvironment::~ScopedEnvironment() {
  // Backwards, so that a name given twice ends with its first former value.
  for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) {
    if (it->second) ::setenv(it->first.c_str(), it->second->c_str(), 1);
    else ::unsetenv(it->first.c_str());
  }
}

std::filesystem::path SourceDir() { return VELMORA_SOURCE_DIR; }
std::filesystem::path SharedDataDir() { return SourceDir().parent_path() / "shared" / "data"; }

}  // namespace velmora::testing
