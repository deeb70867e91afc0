// Opening a project file: unpacked and read in a private folder, and only then made the working
// project, so that a file that cannot be taken leaves the open project as it was.
#include <stdlib.h>

#include <filesystem>
#include <system_error>

#include "base/error_log.h"
#include "base/file_helpers.h"
#include "base/legacy_error.h"
#include "base/path_helpers.h"
#include "base/progress.h"
#include "base/startup.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "profile/profile_reader.h"
#include "report/project_archive.h"
#include "report/user_data.h"
#include "workbench/project_commands.h"

namespace velmora::workbench {
namespace fs = std::filesystem;
namespace {

constexpr std::string_view kUserDataEntry = "Project/User.dat";

// A new folder beside the scratch folder Project (on its file system, so that it can be renamed
// into place), removed with all it holds at the end of the scope.
class PrivateFolder {
 public:
  explicit PrivateFolder(const std::string& userLocalPath) {
    if (userLocalPath.empty()) RaiseFileError(ErrorNumber::PathNotFound, "Project", "UserLocalPath が設定されていません。");
    std::string pattern = flAddDirSep(userLocalPath) + "Opening.XXXXXX";
    if (::mkdtemp(pattern.data()) == nullptr) RaiseFileError(ErrorNumber::PermissionDenied, pattern, "フォルダを作成できません。");
    path_ = pattern;
  }
  ~PrivateFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  const fs::path& Path() const { return path_; }

 private:
  fs::path path_;
};

void ReadFailure(Session& session, const std::string& archive, const std::string& why) {
  session.Ui().Inform("プロジェクトファイルの読み込みに失敗しました。\r\n\r\nファイル名：" + archive + "\r\n\r\n" + why,
                      "ReadError", MsgIcon::Exclamation);
}

bool ReadUserDataEntry(Session& session, const std::string& archive, const fs::path& project, LoadedProject& loaded) {
  const fs::path userData = project / "User.dat";
  if (!fs::is_regular_file(userData)) {
    ReadFailure(session, archive, "エントリー " + std::string(kUserDataEntry) + " がありません。");
    return false;
  }
  try {
    ParseUserData(ReadSystemTextLines(userData), session.Paths, loaded.Record, loaded.Conditions);
    return true;
  } catch (const UserDataError& error) {
    if (error.NewerVersion()) session.Ui().Inform(error.what(), "プロジェクトの読込", MsgIcon::Exclamation);
    else ReadFailure(session, archive, "エントリー " + std::string(kUserDataEntry) + " の " + error.what());
  } catch (const LegacyError& error) {
    ReadFailure(session, archive, "エントリー " + std::string(kUserDataEntry) + " : " + error.what());
  }
  return false;
}

// Every profile from its ERD file in the archive's Profile folder, with the progress display.
bool ReadProfileEntries(Session& session, const std::string& archive, const fs::path& project, LoadedProject& loaded) {
  UserInteraction& ui = session.Ui();
  ui.ProgressStart("プロファイル読み込み処理", "しばらくお待ちください。");
  ProfileList& profiles = loaded.Record.Profiles;
  for (std::int32_t i = 1; i <= profiles.Count(); ++i) {
    ReportProgress(ui, static_cast<int>(static_cast<double>(i) / profiles.Count() * 100));
    ProfileRecord& profile = profiles.Items[i];
    const std::string entry = "Project/Profile/" + profile.FileName;
    const fs::path erd = project / "Profile" / profile.FileName;
    bool read = false;
    if (!fs::is_regular_file(erd)) {
      ReadFailure(session, archive, "エントリー " + entry + " がありません。");
    } else {
      try {
        read = ReadProfile(session, erd.string(), profile);
        if (!read) ReadFailure(session, archive, "エントリー " + entry + " は ERD ファイルとして読めません。");
      } catch (const LegacyError& error) {
        ReadFailure(session, archive, "エントリー " + entry + " : " + error.what());
      }
    }
    if (!read) {
      ui.ProgressExit();
      return false;
    }
  }
  ui.ProgressExit();
  return true;
}

}  // namespace

bool LoadProjectArchive(Session& session, const std::string& archive, const std::string& folder, LoadedProject& loaded) {
  if (!flSearchPath(archive)) {
    ReadFailure(session, archive, "ファイルが見つかりません。");
    return false;
  }
  try {
    UnpackProjectArchive(archive, folder);
  } catch (const LegacyError& error) {
    ReadFailure(session, archive, error.what());
    return false;
  }
  loaded.Conditions = session.DefaultConditions;
  const fs::path project = fs::path(folder) / "Project";
  return ReadUserDataEntry(session, archive, project, loaded) && ReadProfileEntries(session, archive, project, loaded);
}

bool ReadProjectData(Workbench& bench, const std::string& path) {
  if (path.empty()) return false;
  Session& session = bench.Session();
  bool opened = false;
  Guarded(session, "frmTop", "ReadProjectData", [&] {
    const PrivateFolder folder(session.Paths.UserLocalPath);
    LoadedProject loaded;
    if (!LoadProjectArchive(session, path, folder.Path().string(), loaded)) return;
    // From here on the file is known good: the working project gives way to it.
    InitCreateFolder(session);
    InitProjectData(session);
    session.CurrentConditions = loaded.Conditions;
    bench.FormReset();
    const fs::path project = fs::path(session.Paths.UserLocalPath) / "Project";
    DeleteFolder(project.string());
    fs::rename(folder.Path() / "Project", project);
    bench.InstallProject(std::move(loaded.Record));
    session.Project.FileName = path;
    session.Project.Dirty = false;
    bench.TakeProjectSnapshot();
    bench.WindowTitle = ProjectTitle(path);
    for (int i = kProjectSaveAs; i <= kProjectDelete; ++i) bench.ProjectCommandEnabled[static_cast<std::size_t>(i)] = true;
    opened = true;
  });
  return opened;
}

}  // namespace velmora::workbench
