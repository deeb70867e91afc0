#pragma once
// The ordered list of the project's registered profiles and the parallel lists of the tabs that show
// it. Row i of every list is item i; a profile's name is its FileName without the extension, and
// names are unique within the list (compared trimmed and without case).
#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/one_based.h"
#include "base/session.h"
#include "base/settings.h"
#include "profile/profile_record.h"

namespace velmora {

enum class ListPalette { Profile, Repair };

// One tab's list with its colour panels. The panels are fixed to row positions: a row's colour is
// taken from the palette by its position when the row appears.
struct ProfileListView {
  std::string Name;                 // control name, e.g. "lstProfile"
  ListPalette Palette = ListPalette::Profile;
  std::vector<std::string> Rows;    // [0] is row 1
  std::vector<Colour> Panels;       // one per row
};

// What the list asks of the window around it. Each may be left empty (the engine then does nothing
// for it), so the list works without a screen.
struct ProfileListHooks {
  // Writes the profile tab's boxes back into the item shown there (before the selection changes).
  std::function<void(std::int32_t index)> StoreProfileTab;
  // Shows item `index` on the profile tab again and redraws it.
  std::function<void(std::int32_t index)> ShowProfileTab;
  // A study target that names `oldName` as its source now names `newName`.
  std::function<void(const std::string& oldName, const std::string& newName)> RenameStudySources;
};

class ProfileList {
 public:
  ProfileList();

  Array1<ProfileRecord> Items;          // 1..Count(), in list order
  std::int32_t Selected = 0;            // item on the profile tab; 0 (or -1): none
  std::vector<std::int32_t> SelectedRows;  // rows selected in lstProfile, 1-based, ascending
  std::array<ProfileListView, 12> Views;   // lstProfile first
  ProfileListHooks Hooks;

  std::int32_t Count() const { return static_cast<std::int32_t>(Items.size()); }
  // The item's name in all lists: FileName without its extension.
  static std::string NameOf(const ProfileRecord& profile);
  // Index (1-based) of the item with this name, or 0.
  std::int32_t Find(std::string_view name) const;
  // Empties the list, its views and the selection.
  void Clear();
};

// Colour of row n (from 1): palette entry ((n - 1) mod size) + 1. An empty palette gives 0.
Colour RowColour(std::int32_t row, const std::vector<Colour>& palette);

// Registers the ERD files in `paths`, in order (count = paths.size()): reads each (ReadProfile),
// copies it to UserLocalPath/Project/Profile and adds it, or replaces the item of the same name.
// With `ask`, a name already listed is first asked about ("置き換えますか？"); No skips that file.
// A file that cannot be read stops the loop: what was registered so far stays, and the result is
// false. Run-time errors are logged under "AddProfileList" and give false.
bool AddProfileList(Session& session, ProfileList& list, const std::vector<std::string>& paths, bool ask);

// The folder the registered ERD files are copied to: UserLocalPath + "/Project/Profile".
std::string ProjectProfileFolder(Session& session);

// Today as a date serial: whole days since 1899-12-30.
std::int32_t TodayDateSerial();

}  // namespace velmora
