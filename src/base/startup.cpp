#include "base/startup.h"

#include <filesystem>
#include <system_error>

#include "base/app_paths.h"
#include "base/common.h"
#include "base/error_log.h"
#include "base/file_helpers.h"
#include "base/folders.h"
#include "base/legacy_error.h"
#include "base/path_helpers.h"
#include "base/settings.h"
#include "base/settings_io.h"
#include "base/user_interaction.h"

namespace velmora {
namespace {

constexpr std::string_view kModule = "basMain";
constexpr std::string_view kStatisticsSection = "統計値";
constexpr std::string_view kStatisticsKey = "表示指定情報";

std::string Under(const std::string& folder, std::string_view name) { return flAddDirSep(folder) + std::string(name); }

void MakeFolder(const std::string& path) {
  if (path.empty()) throw LegacyError(ErrorNumber::PathNotFound, "フォルダ名が空です (ユーザーフォルダが決まっていません)。");
  std::error_code ec;
  std::filesystem::create_directories(path, ec);
  if (ec || !DirCheck(path))
    RaiseFileError(ErrorNumber::PathNotFound, path,
                   "フォルダを作成できません。" + (ec ? " (" + ec.message() + ")" : std::string(" (同名のファイルがあります)")));
}

void MakeFolderIfMissing(const std::string& path) {
  if (!DirCheck(path)) MakeFolder(path);
}

// The documents, pictures and public folders: made and never read again.
void MakeLeftoverFolders(Session& session) {
  for (const std::string& folder :
       {Under(session.Paths.PersonalPath, "Velmora"), Under(session.Paths.PicturesPath, "Velmora"), session.Paths.PublicPath,
        Under(session.Paths.PublicPath, "Resource")})
    GuardedContinue(session, kModule, "Main", [&] { MakeFolderIfMissing(folder); });
}

bool CommandLineHasDebugSwitch(const std::string& commandLine) {
  for (const auto& word : uTokenSpace(commandLine))
    if (UCase(word) == "SWDEBUG") return true;
  return false;
}

// An absolute folder without a separator at the end, so that paths built on it and the macros
// that abbreviate them do not depend on the working folder.
std::string FolderName(const std::string& folder) {
  if (folder.empty()) return folder;
  std::error_code ec;
  std::string name = std::filesystem::absolute(folder, ec).lexically_normal().string();
  if (ec) name = folder;
  while (name.size() > 1 && name.back() == '/') name.pop_back();
  return name;
}

void ResolvePaths(Session& session, const StartUpOptions& options) {
  AppPaths& p = session.Paths;
  p.AppPath = FolderName(!options.AppPathOverride.empty() ? options.AppPathOverride : ProgramFolder());
  p.PersonalPath = GetFolderPath(p.AppPath, kFolderPersonal);
  p.PicturesPath = GetFolderPath(p.AppPath, kFolderPictures);
  p.WindowsPath = GetFolderPath(p.AppPath, kFolderWindows);
  p.SystemPath = GetFolderPath(p.AppPath, kFolderSystem);
  p.LocalAppDataPath = GetFolderPath(p.AppPath, kFolderLocalAppDataCreate);
  p.UserLocalPath = !options.ScratchRoot.empty() ? FolderName(options.ScratchRoot) : Under(p.LocalAppDataPath, "Velmora");
  p.PublicPath = Under(GetFolderPath(p.AppPath, kFolderCommonDocuments), "Velmora_Public");
}

std::string MissingDefaultIniText(const std::string& path) {
  return "下記の設定ファイルが見つかりませんでした。\r\n\r\n設定ファイル名：" + path + "\r\n\r\n確認してください。";
}

}  // namespace

SplashTiming SplashTimingFor(std::int32_t splushTime) {
  SplashTiming timing;
  if (splushTime <= 0) return timing;
  timing.Show = true;
  // The count goes 1, 2, ...; the splash closes at the first count above SplushTime × 2.
  timing.Ticks = splushTime * 2 + 1;
  timing.Seconds = timing.Ticks * (SplashTiming::kIntervalMs / 1000.0);
  return timing;
}

bool FolderCreateAndInitialize(Session& session, const std::string& path) {
  return GuardedContinue(session, kModule, "Main->FolderCreateAndInitialize", [&] {
    if (DirCheck(path)) DeletePath(path, "*.*");
    else MakeFolder(path);
  });
}

void InitCreateFolder(Session& session) {
  GuardedContinue(session, kModule, "Main->InitCreateFolder", [&] {
    const std::string root = session.Paths.UserLocalPath;
    // The sub-folders of a root that cannot be made cannot be made either: one report is enough.
    if (!FolderCreateAndInitialize(session, root)) return;
    DeleteFolder(Under(root, "Project"));
    DeleteFolder(Under(root, "Temp"));
    for (const char* sub : {"Project", "Project/Profile", "Project/Screening", "Temp", "Debug"})
      FolderCreateAndInitialize(session, Under(root, sub));
    MakeFolderIfMissing(Under(root, "Resource"));
  });
}

void InitProjectData(Session& session) {
  session.Project.FileName.clear();
  session.Project.Dirty = false;
  if (session.Hooks.ReleaseProject) session.Hooks.ReleaseProject();
  static constexpr int kOrder[] = {1, 2, 8, 3, 4, 5, 6, 7, 9, 10};
  LoadDefaultGroups(session, kOrder, /*copyToCurrent=*/true);
  // The evaluation length of the sliding window comes from no file.
  for (CalcConditions* c : {&session.DefaultConditions, &session.CurrentConditions}) {
    c->Iri.IriBaseLength = 10.0;
    c->RepairIri.IriBaseLength = 10.0;
  }
  if (session.Hooks.ClearRepairStudy) session.Hooks.ClearRepairStudy();
}

StartUpResult StartUp(Session& session, const StartUpOptions& options) {
  StartUpResult result;

  // 1. A second instance is refused before anything else is done. The lock file lies beside the
  //    user-local tree, not in it, because the tree's plain files are deleted at every start.
  const FolderEnvironment environment = ReadFolderEnvironment();
  const std::string dataHome = ResolveFolderPath(kFolderLocalAppDataCreate, environment);
  if (options.SingleInstance && !dataHome.empty()) {
    std::error_code ec;
    std::filesystem::create_directories(dataHome, ec);
    InstanceLock::Outcome outcome;
    result.Lock = InstanceLock::Acquire(std::filesystem::path(dataHome) / "Velmora.lock", outcome);
    if (outcome == InstanceLock::Outcome::OtherRunning) {
      session.Ui().Inform("このアプリケーションはすでに開かれています。", "APP Load Error", MsgIcon::Exclamation);
      return result;
    }
  }

  // 2.-6. Switches and folders.
  session.Paths = AppPaths{};
  session.Paths.DebugSwitch = CommandLineHasDebugSwitch(options.CommandLine);
  ResolvePaths(session, options);
  MakeLeftoverFolders(session);

  // 7.-8. The scratch tree, then the paths inside it.
  InitCreateFolder(session);
  session.Paths.TempPath = Under(session.Paths.UserLocalPath, "Temp");
  session.Paths.DebugPath = Under(session.Paths.UserLocalPath, "Debug");
  session.Paths.TempBmpPath = Under(session.Paths.TempPath, "temp.bmp");

  // 9. A new project with the default conditions (missing keys keep their built-in values).
  InitProjectData(session);

  // 11. Default.ini must be there.
  const std::string defaultIni = DefaultIniPath(session.Paths).string();
  if (!flSearchPath(defaultIni)) {
    session.Ui().Inform(MissingDefaultIniText(defaultIni), "設定ファイル", MsgIcon::Exclamation);
    return result;
  }

  // 12.-14.
  LoadGeneralSettings(session);
  // A debug.log that cannot be written follows from a folder failure already shown: logged only.
  GuardedContinue(session, kModule, "Main", [&] { DebugStart(session); }, /*quiet=*/true);
  result.Splash = SplashTimingFor(session.Settings.SplushTime);
  result.MayGoOn = true;
  return result;
}

bool ConfirmExit(Session& session) {
  return session.Ui().Message("プログラムを終了しますか？", "", MsgIcon::Question, MsgButtons::YesNo, MsgAnswer::Yes) ==
         MsgAnswer::Yes;
}

void SaveStatisticsFlags(Session& session, const std::array<bool, kStatisticsFlagCount>& flags) {
  std::string text;
  for (std::size_t i = 0; i < flags.size(); ++i) {
    if (i > 0) text += ',';
    text += flags[i] ? '1' : '0';
  }
  SetPrevValue(session, kStatisticsSection, kStatisticsKey, text);
}

std::vector<bool> LoadStatisticsFlags(Session& session) {
  std::vector<bool> flags;
  const std::string text = GetPrevValue(session, kStatisticsSection, kStatisticsKey);
  if (text.empty()) return flags;
  for (const auto& part : uToken(text, ",")) flags.push_back(uLongVal(part) != 0);
  return flags;
}

}  // namespace velmora
