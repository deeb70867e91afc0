#include "profile/profile_list.h"

#include <chrono>
#include <filesystem>

#include <fmt/format.h>

#include "base/app_paths.h"
#include "base/error_log.h"
#include "base/file_helpers.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/path_helpers.h"
#include "base/user_interaction.h"
#include "profile/profile_reader.h"

namespace velmora {
namespace {

constexpr std::array<std::pair<const char*, ListPalette>, 12> kViews{{
    {"lstProfile", ListPalette::Profile},
    {"lstFilter", ListPalette::Profile},
    {"lstプロファイル分解", ListPalette::Profile},
    {"lstバンド別低減", ListPalette::Profile},
    {"lstPSD", ListPalette::Profile},
    {"lstIRI", ListPalette::Profile},
    {"lst統計値", ListPalette::Profile},
    {"lst相互相関", ListPalette::Profile},
    {"lst3波長分解", ListPalette::Repair},
    {"lst中波長", ListPalette::Repair},
    {"lst短波長", ListPalette::Repair},
    {"lst理想形状", ListPalette::Repair},
}};

const std::vector<Colour>& PaletteOf(Session& session, ListPalette palette) {
  return palette == ListPalette::Profile ? session.Settings.PaletteProfile : session.Settings.PaletteRepair;
}

bool ReplaceQuestion(Session& session, const std::string& name) {
  return session.Ui().AskYesNo(
      fmt::format("指定されたプロファイル名は既に登録されています。\r\n\r\nプロファイル名：{}\r\n\r\n置き換えますか？", name),
      "確認", MsgAnswer::No);
}

// Appends one row with its colour panel to every view.
void AppendRow(Session& session, ProfileList& list, const std::string& name) {
  for (ProfileListView& view : list.Views) {
    view.Rows.push_back(name);
    view.Panels.push_back(RowColour(static_cast<std::int32_t>(view.Rows.size()), PaletteOf(session, view.Palette)));
  }
}

}  // namespace

ProfileList::ProfileList() {
  for (std::size_t v = 0; v < kViews.size(); ++v) {
    Views[v].Name = kViews[v].first;
    Views[v].Palette = kViews[v].second;
  }
}

std::string ProfileList::NameOf(const ProfileRecord& profile) { return flGetFileNameNonExt(profile.FileName); }

std::int32_t ProfileList::Find(std::string_view name) const {
  const auto& rows = Views[0].Rows;
  for (std::size_t r = 0; r < rows.size(); ++r)
    if (uStrEqual(rows[r], name)) return static_cast<std::int32_t>(r + 1);
  return 0;
}

void ProfileList::Clear() {
  Items.clear();
  Selected = 0;
  SelectedRows.clear();
  for (ProfileListView& view : Views) {
    view.Rows.clear();
    view.Panels.clear();
  }
}

Colour RowColour(std::int32_t row, const std::vector<Colour>& palette) {
  if (palette.empty() || row < 1) return 0;
  return palette[static_cast<std::size_t>(row - 1) % palette.size()];
}

std::string ProjectProfileFolder(Session& session) {
  // Without a user-local folder the copy would land in the file system's root.
  if (session.Paths.UserLocalPath.empty())
    RaiseFileError(ErrorNumber::PathNotFound, "Project/Profile", "UserLocalPath が設定されていません。");
  return flAddDirSep(session.Paths.UserLocalPath) + "Project/Profile";
}

std::int32_t TodayDateSerial() {
  const std::tm now = LocalNow();
  const std::chrono::year_month_day today{std::chrono::year{now.tm_year + 1900},
                                          std::chrono::month{static_cast<unsigned>(now.tm_mon + 1)},
                                          std::chrono::day{static_cast<unsigned>(now.tm_mday)}};
  const std::chrono::sys_days epoch = std::chrono::year{1899} / std::chrono::December / 30;
  return static_cast<std::int32_t>((std::chrono::sys_days{today} - epoch).count());
}

bool AddProfileList(Session& session, ProfileList& list, const std::vector<std::string>& paths, bool ask) {
  bool allDone = false;
  bool changed = false;
  const std::vector<std::int32_t> selectedRows = list.SelectedRows;
  Guarded(session, "frmTop", "AddProfileList", [&] {
    for (const std::string& path : paths) {
      const std::string name = flGetFileNameNonExt(path);
      const std::int32_t hit = list.Find(name);
      if (hit > 0 && ask && !ReplaceQuestion(session, name)) continue;

      ProfileRecord fresh;
      if (!ReadProfile(session, path, fresh)) return;

      std::int32_t index = hit;
      if (hit > 0) {
        // The item keeps its FileName, so that its row and its copy in the project stay one.
        fresh.FileName = list.Items[hit].FileName;
      } else {
        AppendRow(session, list, name);
        list.Items.resize(list.Count() + 1);
        index = list.Count();
        fresh.FileName = flGetFileName(path);
      }
      fresh.SourceType = 0;
      fresh.FilePath = path;
      std::filesystem::create_directories(ProjectProfileFolder(session));
      uFileCopy_A(path, ProjectProfileFolder(session) + "/" + fresh.FileName);
      fresh.RouteName = name;
      fresh.MeasureDate = TodayDateSerial();
      fresh.Comment.clear();
      list.Items[index] = std::move(fresh);
      changed = true;
      if (selectedRows.size() == 1 && selectedRows[0] == index && list.Hooks.ShowProfileTab)
        list.Hooks.ShowProfileTab(index);
    }
    allDone = true;
  });
  // Also after a stop: what was registered before it is part of the project now.
  if (changed) session.Project.Dirty = true;
  return allDone;
}

}  // namespace velmora
