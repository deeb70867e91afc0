#pragma once
// Start and end of the program without a screen: the steps from process start until the workbench
// may be shown, the scratch tree under the user-local folder, the reset of the project state, and
// the steps at exit. Front ends (CLI, GUI) call StartUp once, keep its lock for the life of the
// process and show the splash and the workbench as its result says.
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "base/instance_lock.h"
#include "base/session.h"

namespace velmora {

// The splash: shown when SplushTime > 0; a 500 ms timer counts ticks and the splash closes at the
// tick that makes the count exceed SplushTime × 2, so SplushTime is in seconds at half-second grain.
struct SplashTiming {
  static constexpr int kIntervalMs = 500;
  bool Show = false;
  std::int32_t Ticks = 0;  // timer ticks until the splash closes
  double Seconds = 0;      // Ticks × 0.5
};
SplashTiming SplashTimingFor(std::int32_t splushTime);

struct StartUpOptions {
  std::string CommandLine;      // the words after the program name, as one text (SWDEBUG anywhere)
  std::string AppPathOverride;  // folder of Default.ini and TOLVAVERI.ini; empty: the program's folder
  // Refuse to start beside another running instance. A rule of the desktop program, which owns one
  // scratch tree per user; the engine itself can run in any number of sessions.
  bool SingleInstance = false;
  // A folder that stands for the user-local tree in this session only (its scratch files, debug
  // tables and remembered dialog values). Command-line runs use a fresh private folder, so that any
  // number of them may overlap; empty: the user's own tree, shared with the desktop program.
  std::string ScratchRoot;
};

struct StartUpResult {
  bool MayGoOn = false;  // false: a message has been shown and the program ends
  InstanceLock Lock;     // keep for the life of the process
  SplashTiming Splash;
};

// In order: with SingleInstance, refuses a second instance (nothing else done); reads SWDEBUG, works out session.Paths, makes
// the documents, pictures and public folders, rebuilds the scratch tree, resets the project and loads
// the default conditions, checks that Default.ini exists (else its message, and the end), loads the
// general settings and writes the start line of debug.log. Folders that cannot be made are reported
// through the error log and start-up goes on.
StartUpResult StartUp(Session& session, const StartUpOptions& options);

// Rebuilds the scratch tree under UserLocalPath: its plain files deleted, "Project" and "Temp" made
// anew (with "Project/Profile" and "Project/Screening"), "Debug" emptied of files, "Resource" kept or
// made. Other sub-folders are left alone. Errors are reported under "Main->InitCreateFolder" or
// "Main->FolderCreateAndInitialize".
void InitCreateFolder(Session& session);
// Deletes every file in an existing folder (sub-folders untouched) or makes the folder. True when the
// folder is there afterwards; errors are reported under "Main->FolderCreateAndInitialize".
bool FolderCreateAndInitialize(Session& session, const std::string& path);

// Sets the global project state to that of a new project: no file name, not dirty, the hooks run,
// the default conditions loaded from Default.ini in the order 1, 2, 8, 3, 4, 5, 6, 7, 9, 10 and
// copied into the current conditions, the evaluation length of both IRI parameter sets 10 m.
void InitProjectData(Session& session);

// The close question "プログラムを終了しますか？" (Yes/No, question icon, no title): true to close.
bool ConfirmExit(Session& session);

// The five display flags of the statistics tab, kept in 前回値.ini (section "統計値", key
// "表示指定情報") as "0" or "1" joined by ",".
inline constexpr std::size_t kStatisticsFlagCount = 5;
void SaveStatisticsFlags(Session& session, const std::array<bool, kStatisticsFlagCount>& flags);
// The stored flags in order (as many as stored; a part other than a non-zero number is false).
std::vector<bool> LoadStatisticsFlags(Session& session);

}  // namespace velmora
