// Saving the project and the commands of the project menu.
#include "workbench/project_commands.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <future>
#include <thread>

#include "base/error_log.h"
#include "base/file_helpers.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/startup.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"
#include "profile/profile_tab.h"
#include "report/project_archive.h"
#include "report/user_data.h"

namespace velmora::workbench {
namespace {

constexpr std::string_view kDialogSection = "CommonDialogPath";
constexpr std::string_view kDialogKey = "プロジェクト読込みフォルダ";

std::string ProjectFolder(const Session& session) { return flAddDirSep(session.Paths.UserLocalPath) + "Project"; }

std::string StartFolder(Session& session) {
  const std::string remembered = GetPrevValue(session, kDialogSection, kDialogKey);
  return DirCheck(remembered) ? remembered : session.Paths.AppPath;
}

void RememberFolder(Session& session, const std::string& path) {
  SetPrevValue(session, kDialogSection, kDialogKey, flGetPathName(path));
}

std::string AskSavePath(Session& session) {
  FileDialogRequest request;
  request.Filter = "データファイル (*.prj)|*.prj|すべてのファイル (*.*)|*.*";
  request.InitialDirectory = StartFolder(session);
  const std::string path = session.Ui().SaveFile(request);
  if (!path.empty()) RememberFolder(session, path);
  return path;
}

bool RefuseEmptyProject(Workbench& bench) {
  if (bench.ProfileCount() > 0) return false;
  bench.Session().Ui().Inform("プロファイルデータが１個も指定されていません。\r\n保存処理は中止します。", "警告");
  return true;
}

// The ERD file of each profile into `folder`. The files are independent, so the cores share them
// (a project of fifty long profiles is mostly this and the packing); the first error is raised.
// They are scratch copies: only the archive made of them waits for the disk.
void WriteProfileCopies(const ProfileList& profiles, const std::string& folder) {
  const std::int32_t count = profiles.Count();
  const std::int32_t workers = std::clamp<std::int32_t>(static_cast<std::int32_t>(std::thread::hardware_concurrency()), 1, 4);
  std::vector<std::future<void>> done;
  for (std::int32_t w = 0; w < workers; ++w)
    done.push_back(std::async(std::launch::async, [&profiles, &folder, count, workers, w] {
      for (std::int32_t i = w + 1; i <= count; i += workers) {
        const std::string path = folder + UserDataText(profiles.Items[i].FileName);
        WriteFileBytesAtomically(path, ErdFileBytes(path, profiles.Items[i].Erd), FlushTo::System);
      }
    }));
  for (auto& worker : done) worker.wait();
  for (auto& worker : done) worker.get();
}

void EnableFileCommands(Workbench& bench) {
  for (int i = kProjectSaveAs; i <= kProjectDelete; ++i) bench.ProjectCommandEnabled[static_cast<std::size_t>(i)] = true;
}

// The question before New, Open, Rename and Copy. False when the command is to end here.
bool SettleUnsavedWork(Workbench& bench) {
  if (!ProjectDirty(bench)) return true;
  const MsgAnswer answer = bench.Session().Ui().Message("プロジェクトデータが変更されています。保存しますか？", "確認",
                                                        MsgIcon::Question, MsgButtons::YesNoCancel, MsgAnswer::Yes);
  if (answer == MsgAnswer::Cancel) return false;
  return answer == MsgAnswer::No || SaveProject(bench, /*showMessage=*/false);
}

void NewProject(Workbench& bench) {
  Session& session = bench.Session();
  InitCreateFolder(session);
  InitProjectData(session);
  bench.FormReset();
  bench.TakeProjectSnapshot();
}

void OpenProject(Workbench& bench) {
  Session& session = bench.Session();
  FileDialogRequest request;
  request.Filter = "プロジェクトファイル (*.prj)|*.prj|すべてのファイル (*.*)|*.*";
  request.InitialDirectory = StartFolder(session);
  const std::vector<std::string> chosen = session.Ui().OpenFiles(request);
  if (chosen.empty() || chosen.front().empty()) return;
  RememberFolder(session, chosen.front());
  ReadProjectData(bench, chosen.front());
}

void SaveCommand(Workbench& bench, bool saveAs) {
  if (RefuseEmptyProject(bench) || !ChkDat(bench.Session(), 1, bench.List())) return;
  ProjectState& state = bench.Session().Project;
  const std::string before = state.FileName;
  if (saveAs) state.FileName.clear();
  if (SaveProject(bench, /*showMessage=*/true)) EnableFileCommands(bench);
  else state.FileName = before;
}

void RenameProject(Workbench& bench) {
  Session& session = bench.Session();
  const std::string current = session.Project.FileName;
  if (current.empty()) return;
  const std::optional<std::string> answer =
      session.Ui().Input("変更後のプロジェクト名を指定してください。", "名前の変更", flGetFileNameNonExt(current));
  if (!answer || Trim(*answer).empty() || Trim(*answer) == flGetFileNameNonExt(current)) return;
  const std::string name = Trim(*answer);
  const std::string target = flAddDirSep(flGetPathName(current)) + name + ".prj";
  if (flSearchPath(target) &&
      !session.Ui().AskYesNo("指定されたプロジェクト名は既に存在します。\r\n\r\n指定名称：" + name + "\r\n\r\n上書きしますか？",
                             "警告"))
    return;
  uFileMove(current, target);
  session.Project.FileName = target;
  bench.WindowTitle = ProjectTitle(target);
}

void CopyProject(Workbench& bench) {
  if (RefuseEmptyProject(bench)) return;
  Session& session = bench.Session();
  const std::string target = AskSavePath(session);
  if (!target.empty()) uFileCopy_A(session.Project.FileName, target);
}

void DeleteProject(Workbench& bench) {
  Session& session = bench.Session();
  const std::string current = session.Project.FileName;
  if (current.empty()) return;
  const std::string name = flGetFileNameNonExt(current);
  if (!session.Ui().AskOkCancel(
          "現時読み込み中のプロジェクトを削除します。\r\n\r\nプロジェクト名：" + name + "\r\n\r\nよろしいですか？", "警告"))
    return;
  if (!session.Ui().AskYesNo(
          "削除したプロジェクトは元に戻りません。\r\n\r\nプロジェクト名：" + name + "\r\n\r\n本当によろしいですか？", "確認",
          MsgAnswer::No))
    return;
  DeleteFile(current);
  NewProject(bench);
}

}  // namespace

int ProjectCommandOfMenu(int menuIndex) {
  static constexpr std::array<int, 11> kCommands{kProjectNew,    kProjectOpen, kProjectSave, kProjectSaveAs,
                                                 -1,             kProjectRename, kProjectCopy, -1,
                                                 kProjectDelete, -1,           -1};
  return menuIndex >= 0 && menuIndex < static_cast<int>(kCommands.size()) ? kCommands[static_cast<std::size_t>(menuIndex)] : -1;
}

std::string ProjectTitle(std::string_view projectFile) {
  return " velmora : [ " + flGetFileNameNonExt(projectFile) + " ]";
}

bool ProjectDirty(const Workbench& bench) { return bench.Session().Project.Dirty || bench.ProjectChanged(); }

bool SaveProjectData(Workbench& bench, const std::string& path, bool showMessage) {
  Session& session = bench.Session();
  const bool packed = Guarded(session, "basProject", "SaveProjectData", [&] {
    DeletePath(ProjectFolder(session), "*.bin");
    PackProjectFolder(ProjectFolder(session), path);
  });
  if (!packed) return false;
  session.Project.FileName = path;
  if (showMessage)
    session.Ui().Inform("プロジェクトファイルを保存しました。\r\n\r\n保存先：" + path, "SAVE", MsgIcon::Information);
  session.Project.Dirty = false;
  bench.WindowTitle = ProjectTitle(path);
  return true;
}

bool SaveAsProjectData(Workbench& bench) {
  const std::string path = AskSavePath(bench.Session());
  return !path.empty() && SaveProjectData(bench, path, /*showMessage=*/true);
}

bool SaveProject(Workbench& bench, bool showMessage) {
  Session& session = bench.Session();
  const std::string folder = ProjectFolder(session);
  // The header edits go into the project's copy; the source file stays as it is. The copy takes
  // the name User.dat gives it, so that a "," in the name cannot part them.
  const bool written = Guarded(session, "basProject", "SaveProject", [&] {
    std::filesystem::create_directories(folder + "/Profile");
    WriteProfileCopies(bench.List(), folder + "/Profile/");
  }) && funWriteUserData(session, folder + "/User.dat", bench.Project(), session.CurrentConditions);
  if (!written) return false;
  const std::string& file = session.Project.FileName;
  const bool saved = file.empty() ? SaveAsProjectData(bench) : SaveProjectData(bench, file, showMessage);
  if (saved) bench.TakeProjectSnapshot();
  return saved;
}

void cmdProject(Workbench& bench, int index) {
  Session& session = bench.Session();
  Guarded(session, "frmTop", "cmdProject_Click", [&] {
    const auto& profileRows = bench.Selection(tab::Profile);
    if (!profileRows.empty() && bench.Hooks.StoreProfileBoxes) bench.Hooks.StoreProfileBoxes(profileRows.front());
    switch (index) {
      case kProjectNew:
        if (SettleUnsavedWork(bench)) NewProject(bench);
        break;
      case kProjectOpen:
        if (SettleUnsavedWork(bench)) OpenProject(bench);
        break;
      case kProjectSave: SaveCommand(bench, /*saveAs=*/false); break;
      case kProjectSaveAs: SaveCommand(bench, /*saveAs=*/true); break;
      case kProjectRename:
        if (SettleUnsavedWork(bench)) RenameProject(bench);
        break;
      case kProjectCopy:
        if (SettleUnsavedWork(bench)) CopyProject(bench);
        break;
      case kProjectDelete: DeleteProject(bench); break;
      default: RaiseSubscriptOutOfRange("cmdProject " + std::to_string(index));
    }
  });
}

}  // namespace velmora::workbench
