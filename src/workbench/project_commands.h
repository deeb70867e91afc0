#pragma once
// The project commands (cmdProject and the menu mnuFileSub): new, open, save, save as, rename, copy
// and delete of the project file, the unsaved-work question before them, and the window title.
#include <string>
#include <string_view>

#include "base/conditions.h"
#include "report/project_record.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

// cmdProject(index); mnuFileSub uses indices 0, 1, 2, 3, 5, 6, 8 for the same commands.
enum ProjectCommand : int {
  kProjectNew = 0,     // 新規作成
  kProjectOpen = 1,    // 開く
  kProjectSave = 2,    // 上書保存
  kProjectSaveAs = 3,  // 別名保存
  kProjectRename = 4,  // リネーム
  kProjectCopy = 5,    // コピー
  kProjectDelete = 6,  // 削除
};

// The project command of the menu item mnuFileSub(menuIndex); -1 for 終了 (10, which closes the
// form) and the separators.
int ProjectCommandOfMenu(int menuIndex);

// " velmora : [ <project name> ]", the name being the file's name without its extension.
std::string ProjectTitle(std::string_view projectFile);

// Unsaved work: ProjectDirty set, or the project differs from the snapshot of its last load or save.
bool ProjectDirty(const Workbench& bench);

// A project file read whole: its record (profiles with their ERD data and studies) and conditions.
struct LoadedProject {
  ProjectRecord Record;
  CalcConditions Conditions;
};
// Unpacks `archive` into `folder` (a fresh private one, which then holds "Project"), reads its
// User.dat and every ERD file it names. Conditions the file does not hold come from the defaults.
// False, with the message naming the archive and what is wrong with it, when any of that fails.
bool LoadProjectArchive(Session& session, const std::string& archive, const std::string& folder,
                        LoadedProject& loaded);

// Opens the project file `path` into the workbench. It is unpacked and read in a private folder
// first; only when all of it could be read does it replace the working project (scratch tree, list,
// conditions), and the snapshot, title and buttons follow. A file that cannot be taken leaves the
// open project as it was, and gives false.
bool ReadProjectData(Workbench& bench, const std::string& path);
// Packs the scratch folder Project into `path` (its "*.bin" files deleted first); with
// `showMessage` says where. The project is then saved: not dirty, named `path` in the title.
bool SaveProjectData(Workbench& bench, const std::string& path, bool showMessage);
// Asks for a path (the folder remembered under "プロジェクト読込みフォルダ") and packs with the message.
bool SaveAsProjectData(Workbench& bench);
// What Save and Save As share: User.dat and each profile's ERD file written into the scratch
// folder, then packed into the project file (asked for when there is none); the snapshot follows.
bool SaveProject(Workbench& bench, bool showMessage);

// The command `index` (ProjectCommand). Failures are logged under "cmdProject_Click".
void cmdProject(Workbench& bench, int index);

}  // namespace velmora::workbench
