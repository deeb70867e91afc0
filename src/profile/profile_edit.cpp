#include "profile/profile_edit.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/file_export_name.h"
#include "base/app_paths.h"
#include "base/error_log.h"
#include "base/file_helpers.h"
#include "base/legacy_format.h"
#include "base/macros.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "base/user_interaction.h"
#include "profile/profile_export.h"

namespace velmora {
namespace {

constexpr std::string_view kDialogSection = "CommonDialogPath";

std::vector<const ProfileRecord*> SelectedProfiles(const ProfileList& list) {
  std::vector<const ProfileRecord*> profiles;
  for (std::int32_t row : list.SelectedRows) profiles.push_back(&list.Items[row]);
  return profiles;
}

// Recolours every panel of every view by its position, after rows went away.
void RecolourPanels(Session& session, ProfileList& list) {
  for (ProfileListView& view : list.Views) {
    const auto& palette = view.Palette == ListPalette::Profile ? session.Settings.PaletteProfile : session.Settings.PaletteRepair;
    view.Panels.resize(view.Rows.size());
    for (std::size_t r = 0; r < view.Panels.size(); ++r) view.Panels[r] = RowColour(static_cast<std::int32_t>(r + 1), palette);
  }
}

void AddFiles(Session& session, ProfileList& list, ProfileEditResult& result) {
  std::string start = GetPrevValue(session, kDialogSection, "ERDファイル追加");
  if (start.empty() || !DirCheck(start)) start = session.Paths.AppPath;
  FileDialogRequest request;
  request.Title = "ERDファイル追加";
  request.Filter = "ERDファイル (*.ERD)|*.ERD|テキストファイル (*.txt;*.csv)|*.txt;*.csv|すべてのファイル (*.*)|*.*";
  request.InitialDirectory = start;
  request.MultiSelect = true;
  const std::vector<std::string> files = session.Ui().OpenFiles(request);
  if (files.empty()) return;
  SetPrevValue(session, kDialogSection, "ERDファイル追加", flGetPathName(files.front()));
  result = RegisterProfileFiles(session, list, files);
}

void ExportAsErd(Session& session, const ProfileList& list) {
  FileDialogRequest request;
  request.Title = "ERDファイル保存";
  request.Filter = "データファイル (*.Dummy)|*.Dummy|";
  request.DefaultName = "フォルダ名の取得に使用され、ファイル名は無視されます";
  request.InitialDirectory = GetPrevValue(session, kDialogSection, "ERDファイル保存");
  const std::string chosen = session.Ui().SaveFile(request);
  if (chosen.empty()) return;
  const std::string folder = flGetPathName(chosen);  // only the folder of the dummy name counts
  SetPrevValue(session, kDialogSection, "ERDファイル保存", folder);
  ExportProfilesAsErd(folder, SelectedProfiles(list));
  session.Ui().Inform(fmt::format("ERDファイルを保存しました。 \r\n保存先：{}", folder), "データ保存", MsgIcon::Information);
}

void ExportAsCsv(Session& session, const ProfileList& list) {
  FileDialogRequest request;
  request.Title = "CSVファイル保存";
  request.Filter = "データファイル (*.CSV)|*.CSV|";
  request.DefaultName = "Profile_" + FormatDateTime(NameTimeOf(session), "YYYYMMDDHHNNSS") + ".CSV";
  request.InitialDirectory = GetPrevValue(session, kDialogSection, "CSVファイル保存");
  const std::string chosen = session.Ui().SaveFile(request);
  if (chosen.empty()) return;
  SetPrevValue(session, kDialogSection, "CSVファイル保存", flGetPathName(chosen));
  std::vector<const ErdRecord*> records;
  for (const ProfileRecord* profile : SelectedProfiles(list)) records.push_back(&profile->Erd);
  std::string paths;
  for (const std::string& path : WriteProfileCsv(session, chosen, records)) paths += (paths.empty() ? "" : "\r\n") + path;
  session.Ui().Inform(fmt::format("CSVファイルを保存しました。 \r\n保存先：{}", paths), "データ保存", MsgIcon::Information);
}

void Export(Session& session, const ProfileList& list, ProfileExportFormat format) {
  if (list.SelectedRows.empty()) return;
  ProfileDialogChoice ticked;
  for (const ProfileRecord* profile : SelectedProfiles(list)) ticked.Names.push_back(ProfileList::NameOf(*profile));
  if (!AcceptProfileDialog(session, ProfileDialogKind::Export, ticked)) return;
  if (format == ProfileExportFormat::Erd) ExportAsErd(session, list);
  else ExportAsCsv(session, list);
}

void Rename(Session& session, ProfileList& list) {
  if (list.SelectedRows.size() != 1) return;
  const std::int32_t row = list.SelectedRows.front();
  ProfileRecord& item = list.Items[row];
  const std::string oldName = ProfileList::NameOf(item);
  std::string proposal = oldName;
  std::string newName;
  for (;;) {
    const std::optional<std::string> input = session.Ui().Input("変更後のファイル名を指定してください。", "名前の変更", proposal);
    if (!input) return;
    newName = Trim(*input);
    if (newName.empty() || newName == oldName) return;
    const std::int32_t other = list.Find(newName);
    if (other == 0 || other == row) break;
    session.Ui().Inform(fmt::format("指定されたファイルは既に存在します。\r\n\r\n指定名称：{}\r\n\r\n確認してください。", newName), "警告");
    proposal = newName;
  }
  const std::string folder = ProjectProfileFolder(session);
  const std::string newFileName = newName + ".ERD";
  uFileMove(folder + "/" + item.FileName, folder + "/" + newFileName);
  item.FileName = newFileName;
  for (ProfileListView& view : list.Views) view.Rows[static_cast<std::size_t>(row - 1)] = newName;
  if (list.Hooks.RenameStudySources) list.Hooks.RenameStudySources(oldName, newName);
  session.Project.Dirty = true;
}

void Remove(Session& session, ProfileList& list) {
  if (list.SelectedRows.empty()) return;
  const MsgAnswer answer = session.Ui().Message("選択されているプロファイルをプロジェクトリストから解除します。\r\nよろしいですか？", "警告",
                                        MsgIcon::Exclamation, MsgButtons::OkCancel, MsgAnswer::Ok);
  if (answer != MsgAnswer::Ok) return;
  const std::string folder = ProjectProfileFolder(session);
  std::vector<ProfileRecord>& items = list.Items.vector();
  // From the last row up, so the indices of the rows still to go stay valid.
  for (auto it = list.SelectedRows.rbegin(); it != list.SelectedRows.rend(); ++it) {
    const auto at = static_cast<std::size_t>(*it - 1);
    DeleteFile(folder + "/" + items[at].FileName);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(at));
    for (ProfileListView& view : list.Views) view.Rows.erase(view.Rows.begin() + static_cast<std::ptrdiff_t>(at));
  }
  RecolourPanels(session, list);
  list.SelectedRows.clear();
  list.Selected = 0;
  session.Project.Dirty = true;
}

}  // namespace

ProfileEditResult cmdProfileEdit(Session& session, ProfileList& list, int index, ProfileExportFormat exportFormat) {
  ProfileEditResult result;
  Guarded(session, "frmTop", "cmdProfileEdit_Click", [&] {
    switch (index) {
      case 0: AddFiles(session, list, result); break;
      case 1: session.Ui().Inform("この機能は現在対応していません。", "", MsgIcon::Information); break;
      case 2: Export(session, list, exportFormat); break;
      case 3: Rename(session, list); break;
      case 4: Remove(session, list); break;
      default: break;
    }
  });
  return result;
}

ProfileEditResult RegisterProfileFiles(Session& session, ProfileList& list, const std::vector<std::string>& paths) {
  ProfileEditResult result;
  std::vector<std::string> erdFiles;
  for (const std::string& path : paths) {
    const std::string extension = UCase(flGetExtension(path));
    if (extension == "ERD") erdFiles.push_back(path);
    else if (extension == "CSV" || extension == "TXT") result.TextImports.push_back(path);
  }
  if (!erdFiles.empty()) AddProfileList(session, list, erdFiles, true);
  return result;
}

void SelectProfileRows(ProfileList& list, std::vector<std::int32_t> rows) {
  std::erase_if(rows, [&](std::int32_t r) { return r < 1 || r > list.Count(); });
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  if (rows == list.SelectedRows) return;
  if (list.Selected > 0 && list.Hooks.StoreProfileTab) list.Hooks.StoreProfileTab(list.Selected);
  list.SelectedRows = std::move(rows);
  list.Selected = list.SelectedRows.size() == 1 ? list.SelectedRows.front() : 0;
  if (list.Selected > 0 && list.Hooks.ShowProfileTab) list.Hooks.ShowProfileTab(list.Selected);
}

ProfileListButtons ProfileButtonStates(const ProfileList& list) {
  ProfileListButtons buttons;
  const std::size_t selected = list.SelectedRows.size();
  buttons.Export = selected >= 1;
  buttons.Remove = selected >= 1;
  buttons.Rename = selected == 1;
  const bool movable = selected == 1 && list.Count() >= 2;
  buttons.MoveUp = movable && list.SelectedRows.front() > 1;
  buttons.MoveDown = movable && list.SelectedRows.front() < list.Count();
  return buttons;
}

bool cmd上下移動(Session& session, ProfileList& list, int button) {
  const ProfileListButtons buttons = ProfileButtonStates(list);
  if (!(button == 0 ? buttons.MoveUp : button == 1 && buttons.MoveDown)) return false;
  const std::int32_t row = list.SelectedRows.front();
  const std::int32_t other = button == 0 ? row - 1 : row + 1;
  std::swap(list.Items[row], list.Items[other]);
  for (ProfileListView& view : list.Views)
    std::swap(view.Rows[static_cast<std::size_t>(row - 1)], view.Rows[static_cast<std::size_t>(other - 1)]);
  list.SelectedRows = {other};
  if (list.Selected == row) list.Selected = other;
  session.Project.Dirty = true;
  return true;
}

std::optional<ProfileDialogChoice> AcceptProfileDialog(Session& session, ProfileDialogKind kind, ProfileDialogChoice ticked) {
  if (ticked.Names.empty()) return std::nullopt;
  if (ticked.Names.size() > kProfilesPerAction) {
    const bool registering = kind == ProfileDialogKind::Register;
    session.Ui().Inform(std::string(registering ? "同時に登録できるプロファイル数は５０個までです。"
                                        : "同時に出力できるプロファイル数は５０個までです。") +
                    "\r\n調整してください。",
                registering ? "プロファイル登録" : "プロファイル出力", MsgIcon::Exclamation);
    return std::nullopt;
  }
  return ticked;
}

std::string RegistrationNameSample(std::string_view pattern, std::string_view profileName, std::string_view cutoff,
                                   const std::tm& now) {
  if (Trim(pattern).empty())
    return fmt::format("{}_MAHP{}m_{}", profileName, cutoff, FormatDateTime(now, "YYYYMMDDHHNNSS"));
  std::string name = uExpandDate(pattern, now);
  name = uReplaceMacro(name, "$(PROFILENAME)$", profileName);
  return uReplaceMacro(name, "$(CUTOFF)$", cutoff);
}

}  // namespace velmora
