#pragma once
// The ERD profile file ("ERDFILEV2.00"): a short keyed header, then one elevation per line. Files are
// Shift-JIS with CR LF; the record holds UTF-8 text, elevations in mm and the pitch in m.
//
// The KP data have no field of their own in the format; they ride in the TITLE line behind "｜":
//   TITLE   <title>｜<KP start>{+|-}{+|-|0}｜<repair start>,<repair end>
#include <string>
#include <string_view>
#include <vector>

#include "base/session.h"
#include "profile/profile_record.h"

namespace velmora {

// The separator of the TITLE fields (full-width vertical bar, 0x8162 in Shift-JIS).
inline constexpr std::string_view kTitleSeparator = "｜";
inline constexpr std::string_view kErdSignature = "ERDFILEV2.00";
// More samples than this is not a road profile but a broken or hostile file.
inline constexpr std::size_t kMaxProfileSamples = 100'000'000;

// Reads an ERD file into `rec`, line by line (memory: the samples and one line buffer). Header errors
// (signature, format code, channel count, step size, a pitch the writer could not write back) are shown
// as "読み込みエラー" messages and give false, leaving `rec` partly filled. Header bytes that are not
// Shift-JIS become U+FFFD with one warning. An unreadable file, a data line that is not one number or
// not finite in mm, a line over kMaxLineBytes or more than kMaxProfileSamples samples raise LegacyError
// naming the file (and the line).
bool ReadERD(Session& session, const std::string& path, ErdRecord& rec);

// A pitch (m) that WriteERD's "0.000000" writes as a positive number that reads back.
bool IsWritablePitch(double pitch);
// An elevation (mm) that WriteERD writes as a number that reads back: finite, and within what its 15
// significant digits can carry.
bool IsWritableElevation(double elevation);

// Writes `rec` in the program's layout: NumSamples elevations of `Elevation` (mm, 1-based), pitch in m.
// The file is replaced atomically; failure, a pitch that is not writable or an elevation that is not
// finite raises LegacyError naming the file, and the old file stays. Returns true.
bool WriteERD(const std::string& path, const ErdRecord& rec);

// The bytes WriteERD writes for `rec` (Shift-JIS, CR LF); `path` only names the file in the error
// raised when NumSamples exceeds the elevations held.
std::string ErdFileBytes(const std::string& path, const ErdRecord& rec);

// Replaces the TITLE line of an existing ERD file by "TITLE   " + newTitle; the other lines are kept.
// Shows "ファイル更新" unless `showMessage` is false. False (with a message) when the file is missing
// or cannot be rewritten; the original then stays as it was.
bool UpdateERD(Session& session, const std::string& path, const std::string& newTitle, bool showMessage = true);

// The TITLE text the writer composes: Title, then "｜" + KP text when KpStart is set, then "｜" +
// the repair range when either end of it is set.
std::string ComposeErdTitle(const ErdRecord& rec);
// KP start, sign and lane as one text: "123.45000+-". The title's form writes lane 1 "+", -1 "-",
// anything else "0"; the display form writes 1 "+", 0 "0", anything else "-". Empty when the KP
// start is unset.
std::string ComposeKpText(double kpStart, std::int32_t kpSign, std::int32_t lane, bool displayForm = false);

// The eleven header lines of the writer (UTF-8, without line ends), for the ERD and CSV exports.
std::vector<std::string> ErdHeaderLines(const ErdRecord& rec);
// One data line: the elevation in mm formatted "0.00000000" and one blank.
std::string ErdSampleText(double elevation);

}  // namespace velmora
