#pragma once
// The commands of the profile list: its five edit buttons (cmdProfileEdit), the selection and the
// buttons it enables, the move buttons, dropped files, and the two selection dialogs with their
// limit of fifty profiles per action.
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/session.h"
#include "profile/profile_list.h"

namespace velmora {

enum class ProfileExportFormat { Erd, Csv };

// What the window must go on with after a command: delimited-text files for the import wizard, to
// be taken one at a time (by the import timer), in order.
struct ProfileEditResult {
  std::vector<std::string> TextImports;
};

// cmdProfileEdit(session, index): 0 ERD追加 (file dialog, then RegisterProfileFiles), 1 PMS追加 (refused),
// 2 ﾌｧｲﾙ出力 (the selected rows, as ERD files or one CSV), 3 リネーム (the one selected row),
// 4 登録解除 (the selected rows). Run-time errors are logged under "cmdProfileEdit_Click".
ProfileEditResult cmdProfileEdit(Session& session, ProfileList& list, int index, ProfileExportFormat exportFormat = ProfileExportFormat::Erd);

// Files chosen in the add dialog or dropped on the list, by extension: when all are ERD they are
// registered with the replace question; otherwise the ERD files among them are registered and the
// CSV and TXT files go to the import wizard. Files of other kinds are left out.
ProfileEditResult RegisterProfileFiles(Session& session, ProfileList& list, const std::vector<std::string>& paths);

// A click on lstProfile that leaves `rows` (1-based) selected. When the selection changes, the
// profile tab's boxes are first stored into the item shown there. Exactly one row selected shows
// that item; otherwise none is shown.
void SelectProfileRows(ProfileList& list, std::vector<std::int32_t> rows);

struct ProfileListButtons {
  bool Export = false;    // cmdProfileEdit(session, 2): at least one row selected
  bool Rename = false;    // cmdProfileEdit(session, 3): exactly one
  bool Remove = false;    // cmdProfileEdit(session, 4): at least one
  bool MoveUp = false;    // cmd上下移動(session, 0) ▲: one row, two or more in the list, not the first
  bool MoveDown = false;  // cmd上下移動(session, 1) ▼: likewise, not the last
};
ProfileListButtons ProfileButtonStates(const ProfileList& list);

// cmd上下移動(session, button): swaps the one selected item with the one above (0) or below (1), in Items and
// in every view; the colour panels stay with their positions and the moved row stays selected.
// False when the button is disabled.
bool cmd上下移動(Session& session, ProfileList& list, int button);

enum class ProfileDialogKind { Register, Export };  // frmプロファイル登録, frmプロファイル出力

struct ProfileDialogChoice {
  std::vector<std::string> Names;      // the ticked profiles
  std::int32_t AppendProcessName = 0;  // chk登録種別(0), 0 or 1
  std::int32_t AppendDateTime = 0;     // chk登録種別(1), 0 or 1
};
inline constexpr std::size_t kProfilesPerAction = 50;

// OK of a selection dialog: the choice when it may close; nullopt keeps it open, silently for no
// tick and with the message of the limit for more than fifty.
std::optional<ProfileDialogChoice> AcceptProfileDialog(Session& session, ProfileDialogKind kind, ProfileDialogChoice ticked);

// lblSample of frmプロファイル登録: the name a registered filter result would get. `pattern` is the
// "FileExportName" setting of section "Filter"; empty gives "<profile>_MAHP<cutoff>m_<now>".
std::string RegistrationNameSample(std::string_view pattern, std::string_view profileName, std::string_view cutoff,
                                   const std::tm& now);

}  // namespace velmora
