#pragma once
// The four profile tools: reversal, height shift, cut-out and composite. Each makes new ERD records
// from registered profiles (never changing them), and registration writes them into TempPath and adds
// them to the list. Inputs are the dialogs' boxes as texts; a failed check shows its message under
// "Error" and gives nullopt.
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/session.h"
#include "profile/profile_list.h"

namespace velmora {

// A profile as the tools see it: its file name and a copy of its ERD record.
struct ToolItem {
  std::string FileName;
  ErdRecord Erd;
};
std::vector<ToolItem> ToolItemsOf(const ProfileList& list);

// One new profile: its file name (with ".ERD") and record.
struct ToolOutput {
  std::string FileName;
  ErdRecord Erd;
};

// Samples in reverse order; the KP start becomes the old end and the KP sense flips. Name
// "<profile>_反転.ERD".
std::vector<ToolOutput> ReverseProfiles(const std::vector<ToolItem>& selected);

enum class ShiftReference { Start, End, Kp };  // 始点, 終点, 指定KP
struct HeightShiftInput {
  ShiftReference Reference = ShiftReference::Start;
  std::string Kp;      // km, only for ShiftReference::Kp
  std::string Height;  // mm: the height the profile gets at the reference sample
};
std::optional<std::vector<ToolOutput>> HeightShiftProfiles(Session& session, const std::vector<ToolItem>& selected,
                                                           const HeightShiftInput& input);

enum class CutUnit { Samples, Km, M, Mm };              // 個, km, m, mm
enum class Shortfall { None, Zero, EdgeValue, Mirror };  // 行わない, ゼロ埋め, 始めまたは、終りの値, 反転折り返し
struct CutOutInput {
  bool ByKp = true;              // KP指定; otherwise データ指定
  std::string KpStart, KpEnd;    // km
  std::string Start, Length;     // データ指定: position and length in `Unit`
  bool FromEnd = false;          // the position counts from the last sample (終点)
  CutUnit Unit = CutUnit::Samples;
  Shortfall Fill = Shortfall::None;
};
// Profiles whose range lies wholly outside with Shortfall::None give no output.
std::optional<std::vector<ToolOutput>> CutOutProfiles(Session& session, const std::vector<ToolItem>& selected,
                                                      const CutOutInput& input);

struct CompositeInput {
  bool BaseIsCsv = false;
  ToolItem BaseProfile;          // when the base is an ERD profile
  std::string CsvPath;           // when the base is a CSV file: position, height
  bool CsvHeading = false;       // 先頭行をデータの見出しとして使用する
  bool CsvInKm = false;          // unit of the CSV's positions (m or km); heights in mm
  bool PitchOfBase = false;      // 基準: the result on the base's positions; 対象: on the target's
};
// For each target: its elevation corrected by the difference between base and target along the
// overlap (see profile_tools.cpp). Name "<target>_<base>_合成.ERD".
std::optional<std::vector<ToolOutput>> CompositeProfiles(Session& session, const std::vector<ToolItem>& targets,
                                                         const CompositeInput& input);

// Takes the paths of newly written ERD files into a profile list; true when they were registered.
using RegisterPaths = std::function<bool(const std::vector<std::string>& paths)>;
// Asks under "登録", writes each output into TempPath and registers them through `add` (the
// workbench's own registration, so that its results and flags follow). Nothing to register, or the
// answer Cancel, does nothing and gives false.
bool RegisterToolOutputs(Session& session, const std::vector<ToolOutput>& outputs, const RegisterPaths& add);
// The same into a bare list, asking before a profile of the same name is replaced.
bool RegisterToolOutputs(Session& session, ProfileList& list, const std::vector<ToolOutput>& outputs);

// Index (may lie outside 1..n) of the first sample whose KP reaches `kp`, walking from the KP start
// in the profile's sense; a profile without a KP start counts from 0.
std::int64_t KpToIndex(const ErdRecord& erd, double kp);
// KP of sample `index` (1-based).
double KpOfIndex(const ErdRecord& erd, std::int64_t index);

}  // namespace velmora
