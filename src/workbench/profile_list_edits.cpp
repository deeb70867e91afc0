// The edits of the profile list through the workbench: the list's own commands do the work, and the
// workbench keeps what it holds per row (results' keys, the tabs' selections) on the same rows.
#include <algorithm>

#include "profile/profile_edit.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

bool Workbench::RenameProfile(int row) {
  const std::string before = ProfileList::NameOf(list_.Items.at(row));
  list_.SelectedRows = {row};
  cmdProfileEdit(session_, list_, 3);
  if (ProfileList::NameOf(list_.Items.at(row)) == before) return false;
  MarkAllDirty();
  return true;
}

bool Workbench::RemoveProfiles(const std::vector<int>& rows) {
  std::vector<int> gone = rows;
  std::sort(gone.begin(), gone.end());
  gone.erase(std::unique(gone.begin(), gone.end()), gone.end());
  if (gone.empty()) return false;
  for (int row : gone) (void)list_.Items.at(row);  // a row that is not there is refused before the question
  const std::int32_t countBefore = list_.Count();
  list_.SelectedRows.assign(gone.begin(), gone.end());
  cmdProfileEdit(session_, list_, 4);
  if (list_.Count() == countBefore) return false;
  // From the last row up, as the list removed them.
  for (auto it = gone.rbegin(); it != gone.rend(); ++it) resultKeys_.erase(resultKeys_.begin() + (*it - 1));
  // A tab keeps the rows it had selected that stay, under their new numbers.
  for (auto& selected : selection_) {
    std::vector<int> kept;
    for (int row : selected)
      if (!std::binary_search(gone.begin(), gone.end(), row))
        kept.push_back(row - static_cast<int>(std::lower_bound(gone.begin(), gone.end(), row) - gone.begin()));
    selected = std::move(kept);
  }
  MarkAllDirty();
  return true;
}

bool Workbench::MoveProfile(int row, int button) {
  list_.SelectedRows = {row};
  if (!cmd上下移動(session_, list_, button)) return false;
  const int other = list_.SelectedRows.front();
  std::swap(resultKeys_.at(static_cast<std::size_t>(row - 1)), resultKeys_.at(static_cast<std::size_t>(other - 1)));
  for (auto& selected : selection_) {
    for (int& r : selected) r = r == row ? other : r == other ? row : r;
    std::sort(selected.begin(), selected.end());
  }
  MarkAllDirty();
  return true;
}

void Workbench::ExportProfiles(const std::vector<int>& rows, ProfileExportFormat format) {
  for (int row : rows) (void)list_.Items.at(row);
  list_.SelectedRows.assign(rows.begin(), rows.end());
  std::sort(list_.SelectedRows.begin(), list_.SelectedRows.end());
  cmdProfileEdit(session_, list_, 2, format);
}

void Workbench::AddPmsProfiles() { cmdProfileEdit(session_, list_, 1); }

}  // namespace velmora::workbench
