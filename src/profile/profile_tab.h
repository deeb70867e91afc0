#pragma once
// The profile tab as an engine record: the header boxes filled from a profile, written back when the
// user leaves it, the two ERD buttons (title edit, sample-count repair) and the input checks.
#include <array>
#include <cstdint>
#include <string>

#include "base/session.h"
#include "base/settings.h"
#include "profile/profile_list.h"
#include "profile/profile_record.h"

namespace velmora {

inline constexpr Colour kBoxNormalBack = 0xFFFFFF;
inline constexpr Colour kBoxNormalFore = 0x000000;
inline constexpr Colour kBoxNotPositive = 32768;   // green
inline constexpr Colour kBoxNotNumeric = 0xFF0000;  // blue
inline constexpr Colour kBoxEmpty = 255;            // red

struct BoxColours {
  Colour Back = kBoxNormalBack;
  Colour Fore = kBoxNormalFore;
};

// The controls of the tab. txt緒元 index: 0 プロファイル名称, 1 高さ名称, 2 距離名称, 3 ピッチ (m),
// 4 データ件数, 5 タイトル, 6 チャンネル数, 7 始点 (KP, km), 8 コメント, 9 ヘッダー情報,
// 10 データ件数 of the header.
struct ProfileTabBoxes {
  std::array<std::string, 11> txt緒元;
  std::array<bool, 11> Enabled{true, true, true, true, true, true, true, true, true, true, true};
  std::array<bool, 11> Visible{true, true, true, true, true, true, true, true, true, true, true};
  std::array<BoxColours, 11> Colours;
  int cbo緒元 = 0;                          // 0 "LElev.", 1 "RElev."
  int optKP = 0;                            // 0 加算 (KpSign 0), 1 減算 (KpSign 1)
  int opt上下 = 2;                          // 0 lane 1 (上り), 1 lane -1 (下り), 2 lane 0 (なし)
  std::array<std::string, 2> txt補修計画範囲;  // repair range start and end, km
  bool chk補修計画範囲 = false;
  std::string lbl緒元単位1;                 // "⇒ 距離：<length>(m)"
  bool cmdERD上書きEnabled = true;
  bool cmdERD修正Enabled = true;
};

// Fills the boxes from the profile.
ProfileTabBoxes ShowProfileOnTab(const ProfileRecord& profile);
// Leaving the profile: the boxes written back (texts trimmed, an empty number box gives the no
// value); KpText is composed again from the KP boxes and stays empty without a KP start.
void StoreProfileTab(const ProfileTabBoxes& boxes, ProfileRecord& profile);

// cmdERD上書き: after an OK to "確認", the TITLE line of the profile's file becomes box 5 and, when
// box 9 is not empty, "｜" and box 9. Box 9 and the button are then disabled. False when cancelled
// or when the file could not be rewritten (UpdateERD has said why).
bool cmdERD上書き(Session& session, ProfileTabBoxes& boxes, const ProfileRecord& profile);
// cmdERD修正: after an OK, the profile's file is written again from WorkProfile, so both counts of
// its header are the real count; the record and boxes 4 and 10 follow. The caller then marks every
// tab for redrawing. False when cancelled.
bool cmdERD修正(Session& session, ProfileTabBoxes& boxes, ProfileRecord& profile);

// With the lowest bit of `check` set: false (with the message) for the first profile, in list order,
// whose Title holds "｜"; its index goes to `badIndex` so the caller can show tab 1 and focus box 5.
bool ChkDat(Session& session, int check, const ProfileList& list, std::int32_t* badIndex = nullptr);
// With the lowest bit of `check` set: colours boxes 0 to 7 by their contents (see the constants).
void ChkDatColours(int check, ProfileTabBoxes& boxes);

}  // namespace velmora
