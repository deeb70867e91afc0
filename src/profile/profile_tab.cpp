#include "profile/profile_tab.h"

#include <algorithm>

#include <fmt/format.h>

#include "base/legacy_format.h"
#include "base/number_helpers.h"
#include "base/session.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"

namespace velmora {
namespace {

bool ConfirmRewrite(Session& session, std::string_view what, const std::string& path) {
  return session.Ui().Message(fmt::format("{}\r\n\r\n{}\r\n\r\nよろしいですか？", what, path), "確認", MsgIcon::Question,
                      MsgButtons::OkCancel, MsgAnswer::Ok) == MsgAnswer::Ok;
}

std::string HeaderInfoText(const ErdRecord& erd) {
  return erd.RepairRangeText.empty() ? erd.KpText : erd.KpText + std::string(kTitleSeparator) + erd.RepairRangeText;
}

}  // namespace

ProfileTabBoxes ShowProfileOnTab(const ProfileRecord& profile) {
  const ErdRecord& erd = profile.Erd;
  ProfileTabBoxes boxes;
  auto& box = boxes.txt緒元;
  box[0] = Trim(profile.RouteName);
  box[1] = Trim(erd.YLabel);
  box[2] = Trim(erd.XLabel);
  box[3] = uDblToText(erd.StepSize, "0.00000");
  box[4] = uLongToText(erd.NumSamples);
  box[5] = erd.Title;
  box[6] = uLongToText(erd.NumChannels);
  box[7] = uDblToText(erd.KpStart, "0.00000");
  box[8] = profile.Comment;
  box[9] = HeaderInfoText(erd);
  box[10] = uLongToText(erd.NumSamplesHeader);
  boxes.cbo緒元 = uStrEqual(erd.ShortName[1], "RElev") ? 1 : 0;
  boxes.lbl緒元単位1 = "⇒ 距離：" + FormatNumber((erd.NumSamples - 1) * erd.StepSize, "0.00000") + "(m)";
  boxes.optKP = erd.KpSign != 0 ? 1 : 0;
  boxes.opt上下 = erd.Lane == 1 ? 0 : erd.Lane == -1 ? 1 : 2;
  boxes.txt補修計画範囲 = {uDblToText(erd.RepairRangeStart, "0.00000"), uDblToText(erd.RepairRangeEnd, "0.00000")};
  boxes.chk補修計画範囲 = erd.RepairRangeOn == 1;
  return boxes;
}

void StoreProfileTab(const ProfileTabBoxes& boxes, ProfileRecord& profile) {
  ErdRecord& erd = profile.Erd;
  const auto& box = boxes.txt緒元;
  // The counts (boxes 4, 6 and 10) only show what the data hold; they are not typed in.
  profile.RouteName = Trim(box[0]);
  erd.YLabel = Trim(box[1]);
  erd.XLabel = Trim(box[2]);
  erd.StepSize = uTextToDbl(box[3]);
  if (erd.StepSize > 0) profile.SamplesPerMetre = 1.0 / erd.StepSize;  // keep the two pitches one
  erd.Title = Trim(box[5]);
  erd.KpStart = uTextToDbl(box[7]);
  profile.Comment = Trim(box[8]);
  erd.ShortName[1] = boxes.cbo緒元 == 0 ? "LElev." : "RElev.";
  erd.KpSign = boxes.optKP == 1 ? 1 : 0;
  erd.Lane = boxes.opt上下 == 0 ? 1 : boxes.opt上下 == 1 ? -1 : 0;
  erd.KpText = ComposeKpText(erd.KpStart, erd.KpSign, erd.Lane);
  erd.RepairRangeOn = boxes.chk補修計画範囲 ? 1 : 0;
  erd.RepairRangeStart = uTextToDbl(boxes.txt補修計画範囲[0]);
  erd.RepairRangeEnd = uTextToDbl(boxes.txt補修計画範囲[1]);
}

bool cmdERD上書き(Session& session, ProfileTabBoxes& boxes, const ProfileRecord& profile) {
  if (!ConfirmRewrite(session, "下記のERDファイルのタイトル情報を書き換えます。", profile.FilePath)) return false;
  std::string title = Trim(boxes.txt緒元[5]);
  const std::string headerInfo = Trim(boxes.txt緒元[9]);
  if (!headerInfo.empty()) title += std::string(kTitleSeparator) + headerInfo;
  const bool done = UpdateERD(session, profile.FilePath, title, /*showMessage=*/false);
  boxes.Enabled[9] = false;
  boxes.cmdERD上書きEnabled = false;
  return done;
}

bool cmdERD修正(Session& session, ProfileTabBoxes& boxes, ProfileRecord& profile) {
  if (!ConfirmRewrite(session, "下記のERDファイルを実データ件数で書き換えます。", profile.FilePath)) return false;
  ErdRecord copy = profile.Erd;
  const std::ptrdiff_t count = std::clamp<std::ptrdiff_t>(copy.NumSamples, 0, profile.WorkProfile.size());
  copy.NumSamples = static_cast<std::int32_t>(count);
  copy.Elevation = Array1<double>(std::vector<double>(profile.WorkProfile.begin(), profile.WorkProfile.begin() + count));
  WriteERD(profile.FilePath, copy);
  profile.Erd.NumSamples = copy.NumSamples;
  profile.Erd.NumSamplesHeader = copy.NumSamples;
  profile.WorkCount = copy.NumSamples;
  profile.Erd.Elevation.resize(count);
  boxes.txt緒元[4] = uLongToText(copy.NumSamples);
  boxes.txt緒元[10] = uLongToText(copy.NumSamples);
  boxes.cmdERD修正Enabled = false;
  return true;
}

bool ChkDat(Session& session, int check, const ProfileList& list, std::int32_t* badIndex) {
  if ((check & 1) == 0) return true;
  for (std::int32_t i = 1; i <= list.Count(); ++i) {
    const ProfileRecord& profile = list.Items[i];
    if (profile.Erd.Title.find(kTitleSeparator) == std::string::npos) continue;
    if (badIndex) *badIndex = i;
    session.Ui().Inform(fmt::format("プロファイルのタイトル文字列に  \"｜\" (0x8162) は使用できません。\r\n\r\nファイル名：{}\r\n\r\n確認してください。",
                            profile.FileName),
                "プロファイルデータ不正");
    return false;
  }
  return true;
}

void ChkDatColours(int check, ProfileTabBoxes& boxes) {
  if ((check & 1) == 0) return;
  for (std::size_t i = 0; i < 10; ++i) boxes.Colours[i] = BoxColours{};
  for (std::size_t i = 0; i <= 7; ++i) {
    if (!boxes.Enabled[i] || !boxes.Visible[i]) continue;
    const std::string text = Trim(boxes.txt緒元[i]);
    Colour colour = kBoxNormalBack;
    bool marked = false;
    auto mark = [&](Colour c) { colour = c, marked = true; };
    if (i == 3 || i == 4 || i == 6 || i == 7) {
      if (!(uDblVal(text) > 0)) mark(kBoxNotPositive);
      if (!IsNumeric(text)) mark(kBoxNotNumeric);
      if (text.empty()) mark(kBoxEmpty);
    } else if (i == 5 && text.find(kTitleSeparator) != std::string::npos) {
      mark(kBoxNotPositive);
    }
    if (marked) boxes.Colours[i] = BoxColours{colour, 0xFFFFFF};
  }
}

}  // namespace velmora
