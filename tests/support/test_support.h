#pragma once
// Shared test helpers: a scripted user interaction that records every text, a temporary folder, and the
// one fixture for tests that need the program's common state: a fresh session per test whose interaction
// is a scripted one, with TempPath and DebugPath in a temporary folder ("Temp", "Debug").
#include <gtest/gtest.h>

#include <ctime>
#include <deque>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/session.h"
#include "base/user_interaction.h"

namespace velmora::testing {

// One recorded interaction, with the exact texts.
struct RecordedMessage {
  std::string Kind;  // "message", "input", "open", "save", "folder", "progress-start", ...
  std::string Text;
  std::string Title;
  MsgIcon Icon = MsgIcon::None;
  MsgButtons Buttons = MsgButtons::Ok;
};

// Answers come from queues the test fills; an empty queue gives the question's default answer,
// a cancelled input and cancelled dialogs. Given a session, it is that session's interaction for its
// lifetime.
class ScriptedUi final : public UserInteraction {
 public:
  ScriptedUi() = default;
  explicit ScriptedUi(Session& session) { scope_.emplace(session, *this); }

  std::deque<MsgAnswer> Answers;
  std::deque<std::string> Inputs;
  std::deque<std::vector<std::string>> Files;  // for OpenFiles, SaveFile (first item), ChooseFolder
  std::vector<RecordedMessage> Log;
  std::vector<int> ProgressValues;
  // The progress display asks to stop at the value after this many (never when negative).
  int StopAfterValues = -1;

  // Only the message boxes, in order.
  std::vector<RecordedMessage> Messages() const;
  // The text of the only message box; fails the test when there is not exactly one.
  std::string OnlyMessageText() const;

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
  std::string NextFile();  // the first item of the next answer, or none
  std::optional<ScopedUi> scope_;
};

// A fresh folder under the system temporary folder, removed with everything in it at the end.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;
  const std::filesystem::path& path() const { return path_; }
  std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

// Sets environment variables for its lifetime, a null value unsetting one; the former values come
// back at the end.
class ScopedEnvironment {
 public:
  ScopedEnvironment(std::initializer_list<std::pair<const char*, const char*>> values);
  ~ScopedEnvironment();
  ScopedEnvironment(const ScopedEnvironment&) = delete;
  ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

 private:
  std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};

// A fixed clock for names with a time stamp: 5 March 2024, 12:00:00.
std::tm Noon();

// Raw bytes of a file, and writing raw bytes (fixtures in Shift-JIS are written byte for byte).
std::string ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, const std::string& bytes);

// The repository's folders, for fixtures and example data.
std::filesystem::path SourceDir();
std::filesystem::path SharedDataDir();  // measured road profiles beside the repository, may be absent

class SessionTest : public ::testing::Test {
 protected:
  SessionTest() {
    session.Paths.TempPath = (dir_ / "Temp").string();
    session.Paths.DebugPath = (dir_ / "Debug").string();
    std::filesystem::create_directories(session.Paths.TempPath);
  }

  TempDir dir_;
  ScriptedUi ui_;
  Session session{ui_};
};

}  // namespace velmora::testing
