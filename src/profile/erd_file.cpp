#include "profile/erd_file.h"

#include <charconv>
#include <cmath>
#include <filesystem>

#include <fmt/format.h>

#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/line_reader.h"
#include "base/number_helpers.h"
#include "base/session.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"

namespace velmora {
namespace {

constexpr int kMaxHeaderLines = 100;
// The signature line must end within this many bytes, or the file is not an ERD file.
constexpr std::size_t kSignatureWithin = 64 * 1024;
constexpr std::string_view kCrLf = "\r\n";

std::string_view TrimBlanks(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

void ShowReadError(Session& session, std::string_view text, const std::string& path) {
  session.Ui().Inform(fmt::format("{}\r\n\r\nファイル名：{}", text, path), "読み込みエラー", MsgIcon::Exclamation);
}

// A data line as the legacy CDbl took it. The plain decimal form goes through from_chars (the hot
// path); anything else (a "+" sign, grouping commas, "D" exponents, full-width digits) through the
// lenient parser. Not one number: a type mismatch naming the file and the line.
double ParseSample(std::string_view trimmed, const std::string& path, long lineNumber) {
  double value = 0;
  const auto [end, ec] = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), value);
  if (ec == std::errc() && end == trimmed.data() + trimmed.size() && std::isfinite(value)) return value;
  std::optional<double> lenient;
  try {
    lenient = ParseNumber(FromSystemCodePage(trimmed, path));
  } catch (const LegacyError&) {
    lenient.reset();  // bytes that are not Shift-JIS are not a number either
  }
  if (!lenient) {
    RaiseTypeMismatch(fmt::format("{}: {} 行目のデータが数値ではありません: \"{}\"", path, lineNumber,
                                  std::string(trimmed.substr(0, 60))));
  }
  return *lenient;
}

// The header line's key and value: the key fills columns 1-8 and the value starts in column 9, but
// TITLE, GENNAME, XLABEL and XUNITS are also recognised with less padding.
void SplitHeaderLine(const std::string& rawLine, std::string& key, std::string& value) {
  const std::string line = Trim(rawLine);
  key = Trim(CharLeft(line, 8));
  value = Trim(CharMid(line, 9));
  struct ShortKey {
    std::string_view name;
    std::size_t width;
  };
  static constexpr ShortKey shortKeys[] = {{"TITLE", 5}, {"GENNAME", 7}, {"XLABEL", 6}, {"XUNITS", 6}};
  for (const auto& shortKey : shortKeys) {
    if (UCase(Trim(CharLeft(line, shortKey.width))) == shortKey.name) {
      key = shortKey.name;
      value = Trim(CharMid(line, shortKey.width + 1));
    }
  }
}

std::vector<std::string> SplitAt(std::string_view text, std::string_view separator) {
  std::vector<std::string> fields;
  std::size_t start = 0;
  for (std::size_t hit; (hit = text.find(separator, start)) != std::string_view::npos; start = hit + separator.size())
    fields.emplace_back(text.substr(start, hit - start));
  fields.emplace_back(text.substr(start));
  return fields;
}

// TITLE: the title and, behind "｜", the KP text and the repair range.
void ReadTitle(const std::string& value, ErdRecord& rec) {
  rec.KpStart = kNoValue;
  rec.KpSign = 0;
  rec.Lane = 0;
  rec.KpText.clear();
  rec.RepairRangeText.clear();
  rec.RepairRangeOn = 0;
  rec.RepairRangeStart = kNoValue;
  rec.RepairRangeEnd = kNoValue;
  const std::vector<std::string> fields = SplitAt(value, kTitleSeparator);
  rec.Title = fields[0];
  if (fields.size() >= 2) {
    rec.KpText = fields[1];
    const std::size_t length = CharLength(rec.KpText);
    // A KP text shorter than its two flag characters gives a KP of 0 and no flags.
    rec.KpStart = uDblVal(CharLeft(rec.KpText, length >= 2 ? length - 2 : 0));
    if (length >= 2) {
      const std::string signFlag = CharMid(rec.KpText, length - 1, 1);
      const std::string laneFlag = CharRight(rec.KpText, 1);
      if (signFlag == "+") rec.KpSign = 0;
      if (signFlag == "-") rec.KpSign = 1;
      if (laneFlag == "+") rec.Lane = 1;
      if (laneFlag == "-") rec.Lane = -1;
      if (laneFlag == "0") rec.Lane = 0;
    }
  }
  if (fields.size() >= 3) {
    rec.RepairRangeText = fields[2];
    const std::vector<std::string> range = uToken(rec.RepairRangeText, ",", 2);
    rec.RepairRangeStart = uTextToDbl(range[0]);
    rec.RepairRangeEnd = uTextToDbl(range[1]);
  }
}

// One channel's 8-column slice of UNITSNAM or SHORTNAM, for channels 1..NumChannels.
void ReadChannelColumns(const std::string& value, std::int32_t channels, std::array<std::string, 3>& target) {
  for (std::int32_t c = 1; c <= channels && c <= 2; ++c)
    target[static_cast<std::size_t>(c)] = CharMid(value, static_cast<std::size_t>(8 * (c - 1) + 1), 8);
}

double DistanceFactor(const std::string& unit) { return UCase(unit) == "FT" ? 0.3048 : 1.0; }

// Heights in cm or m are brought to mm. The column is compared without its padding, so that a
// two-channel header "cm      cm" still counts as centimetres.
double HeightFactor(const std::string& unitsName) {
  const std::string unit = UCase(Trim(unitsName));
  if (unit == "CM") return 10.0;
  if (unit == "M") return 1000.0;
  return 1.0;
}

// A count of the second header line. A value outside 32 bits overflows as the legacy CLng did, but
// the message names the file.
std::int32_t HeaderLong(const std::string& token, const std::string& path) {
  const auto value = ParseNumber(token);
  if (value && !(std::fabs(*value) < 2147483647.5))
    RaiseFileError(ErrorNumber::Overflow, path, fmt::format("オーバーフローしました。 (2 行目 \"{}\")", Trim(token)));
  return uLongVal(token);
}

// "######0": the integer right-aligned in seven columns.
std::string Right7(double value) { return uFormatRight(value, "######0"); }

}  // namespace

bool ReadERD(Session& session, const std::string& path, ErdRecord& rec) {
  LineReader lines(path);
  // The signature is ASCII and compared on the bytes, so that a binary file, a byte-order mark or a
  // file without a line end in its first 64 KB gets the format's own message.
  std::optional<std::string_view> first;
  try {
    first = lines.Next(kSignatureWithin);
  } catch (const LineTooLong&) {
    first.reset();
  }
  if (!first || TrimBlanks(*first) != kErdSignature) {
    ShowReadError(session, "指定されたファイルは ERD フォマットではありません。", path);
    return false;
  }
  bool warned = false;
  auto nextText = [&]() -> std::optional<std::string> {
    const auto line = lines.Next();
    if (!line) return std::nullopt;
    bool replaced = false;
    std::string text = FromSystemCodePageReplacing(*line, replaced);
    if (replaced && !warned) {
      warned = true;
      session.Ui().Inform(fmt::format("{} 行目の Shift-JIS として読めないバイトを \uFFFD に置き換えました。\r\n\r\nファイル名：{}",
                                      lines.LineNumber(), path),
                          "読み込み警告", MsgIcon::Information);
    }
    return text;
  };

  const std::vector<std::string> tokens = uToken(nextText().value_or(""), ",", 7);
  rec.NumChannels = HeaderLong(tokens[0], path);
  rec.NumSamplesHeader = HeaderLong(tokens[1], path);
  rec.FormatCode = HeaderLong(tokens[4], path);
  rec.StepSize = uDblVal(tokens[5]);
  if (rec.FormatCode != 5) {
    ShowReadError(session, "Data not stored in correct format.", path);
    return false;
  }
  if (rec.NumChannels < 1 || rec.NumChannels > 2) {
    ShowReadError(session, "File must have 1 or 2 channels.", path);
    return false;
  }
  if (!(rec.StepSize > 0)) {
    ShowReadError(session, "Illegal step size.", path);
    return false;
  }

  for (int n = 0; n < kMaxHeaderLines; ++n) {
    const auto text = nextText();
    if (!text) break;
    std::string key, value;
    SplitHeaderLine(*text, key, value);
    if (key == "END") break;
    const std::string upperKey = UCase(key);
    if (upperKey == "TITLE") ReadTitle(value, rec);
    else if (upperKey == "XUNITS") rec.DistanceUnit = value;
    else if (upperKey == "UNITSNAM") ReadChannelColumns(value, rec.NumChannels, rec.UnitsName);
    else if (upperKey == "SHORTNAM") ReadChannelColumns(value, rec.NumChannels, rec.ShortName);
    else if (upperKey == "GENNAME") rec.YLabel = value;
    else if (upperKey == "XLABEL") rec.XLabel = value;
  }

  rec.StepSize *= DistanceFactor(rec.DistanceUnit);
  if (!IsWritablePitch(rec.StepSize)) {
    ShowReadError(session, fmt::format("ピッチ {} m は使えません (0.000001 m 以上の有限の数が必要です)。", rec.StepSize), path);
    return false;
  }
  const double heightFactor = HeightFactor(rec.UnitsName[1]);

  // One pass over the rest of the file. The legacy array grew by 1,000 at a time; the vector is
  // sized from the declared count, bounded by what the file's bytes can hold.
  std::vector<double>& samples = rec.Elevation.vector();
  samples.clear();
  const std::uintmax_t fits = lines.FileSize() / 2 + 1;
  samples.reserve(static_cast<std::size_t>(std::min<std::uintmax_t>(
      {static_cast<std::uintmax_t>(std::max(rec.NumSamplesHeader, 0)), fits, kMaxProfileSamples})));
  while (const auto line = lines.Next()) {
    const std::string_view trimmed = TrimBlanks(*line);
    if (trimmed.empty()) continue;
    if (samples.size() == kMaxProfileSamples) {
      RaiseFileError(ErrorNumber::InvalidData, path,
                     fmt::format("サンプルが {} 個を超えています。", FormatNumber(kMaxProfileSamples, "#,##0")));
    }
    const double value = ParseSample(trimmed, path, lines.LineNumber()) * heightFactor;
    if (!IsWritableElevation(value)) {
      RaiseFileError(ErrorNumber::InvalidData, path,
                     fmt::format("{} 行目の値 \"{}\" は mm にすると扱える範囲を超えます。", lines.LineNumber(),
                                 std::string(trimmed.substr(0, 60))));
    }
    samples.push_back(value);
  }
  if (samples.capacity() > samples.size() + samples.size() / 8) samples.shrink_to_fit();
  rec.NumSamples = CheckedI32(static_cast<long long>(samples.size()));

  const std::string unit = UCase(rec.DistanceUnit);
  if (unit == "FT") {
    rec.IsMetric = false;
    rec.SlopeUnitScale = 63360.0;
    rec.SlopeUnitName = " in/mi";
  } else if (unit == "M") {
    rec.IsMetric = true;
    rec.SlopeUnitScale = 1000.0;
    rec.SlopeUnitName = " m/km";
  }
  return true;
}

std::string ComposeKpText(double kpStart, std::int32_t kpSign, std::int32_t lane, bool displayForm) {
  if (IsNoValue(kpStart)) return {};
  std::string laneFlag = lane == 1 ? "+" : lane == -1 ? "-" : "0";
  if (displayForm) laneFlag = lane == 1 ? "+" : lane == 0 ? "0" : "-";
  return FormatNumber(kpStart, "0.00000") + (kpSign != 0 ? "-" : "+") + laneFlag;
}

std::string ComposeErdTitle(const ErdRecord& rec) {
  std::string title = rec.Title;
  if (IsNoValue(rec.KpStart)) return title;
  title += kTitleSeparator;
  title += ComposeKpText(rec.KpStart, rec.KpSign, rec.Lane);
  if (IsNoValue(rec.RepairRangeStart) && IsNoValue(rec.RepairRangeEnd)) return title;
  auto rangeValue = [](double v) { return IsNoValue(v) ? std::string("-99999") : FormatNumber(v, "0.00000"); };
  title += kTitleSeparator;
  title += rangeValue(rec.RepairRangeStart) + "," + rangeValue(rec.RepairRangeEnd);
  return title;
}

std::vector<std::string> ErdHeaderLines(const ErdRecord& rec) {
  // The record is in mm and m after reading, so units and format are constant. The LONGNAME test
  // compares with "RElev" without its full stop: "RElev." gets "Left Elevation" (kept as it was).
  const bool right = uStrEqual(rec.ShortName[1], "RElev");
  return {
      std::string(kErdSignature),
      Right7(rec.NumChannels) + "," + Right7(rec.NumSamples) + "," + Right7(rec.NumSamples) + "," +
          Right7(1) + "," + Right7(5) + ", " + FormatNumber(rec.StepSize, "0.000000") + "    ," + Right7(-1) + ",",
      "TITLE   " + ComposeErdTitle(rec),
      "SHORTNAM" + rec.ShortName[1],
      std::string("LONGNAME") + (right ? "Right Elevation" : "Left Elevation"),
      "UNITSNAMmm",
      "GENNAME " + rec.YLabel,
      "XLABEL  " + rec.XLabel,
      "XUNITS  m",
      "FORMAT  (G14.6)",
      "END",
  };
}

std::string ErdSampleText(double elevation) { return FormatNumber(elevation, "0.00000000") + " "; }

bool IsWritablePitch(double pitch) { return std::isfinite(pitch) && pitch >= 0.0000005; }

// The writer keeps 15 significant digits, as the legacy format did: the largest such number below the
// largest double is the largest elevation that reads back.
bool IsWritableElevation(double elevation) { return std::fabs(elevation) <= 1.79769313486231e308; }

std::string ErdFileBytes(const std::string& path, const ErdRecord& rec) {
  // Nothing is written that the reader would refuse.
  if (!IsWritablePitch(rec.StepSize))
    RaiseFileError(ErrorNumber::InvalidData, path, fmt::format("ピッチ {} m は書き込めません。", rec.StepSize));
  std::string header;
  for (const std::string& line : ErdHeaderLines(rec)) {
    header += line;
    header += kCrLf;
  }
  std::string bytes = ToSystemCodePage(header);
  const std::ptrdiff_t count = std::min<std::ptrdiff_t>(rec.NumSamples, rec.Elevation.size());
  if (rec.NumSamples > count)
    RaiseSubscriptOutOfRange(fmt::format("{}: {} / {}", path, rec.NumSamples, rec.Elevation.size()));
  bytes.reserve(bytes.size() + static_cast<std::size_t>(count) * 16);
  for (std::ptrdiff_t i = 1; i <= count; ++i) {
    if (!IsWritableElevation(rec.Elevation[i]))
      RaiseFileError(ErrorNumber::InvalidData, path, fmt::format("{} 番目の標高 {} は書き込めません。", i, rec.Elevation[i]));
    bytes += ErdSampleText(rec.Elevation[i]);
    bytes += kCrLf;
  }
  return bytes;
}

bool WriteERD(const std::string& path, const ErdRecord& rec) {
  WriteFileBytesAtomically(path, ErdFileBytes(path, rec));
  return true;
}

bool UpdateERD(Session& session, const std::string& path, const std::string& newTitle, bool showMessage) {
  std::error_code ec;
  if (!std::filesystem::is_regular_file(path, ec)) {
    session.Ui().Message(fmt::format("ファイルが見つかりませんでした。\r\n\r\nファイル名：{}\r\n\r\n確認してください。", path), "",
                 MsgIcon::Information, MsgButtons::Ok, MsgAnswer::Ok);
    return false;
  }
  try {
    const std::string titleLine = ToSystemCodePage("TITLE   " + newTitle);
    // Read line by line and written beside the file, then renamed over it: a failure leaves the
    // original in place.
    LineReader lines(path);
    SystemTextWriter out(path);
    std::string chunk;
    while (const auto line = lines.Next()) {
      // The key is ASCII, so its first eight bytes decide as the first eight characters would.
      chunk += TrimBlanks(line->substr(0, 8)) == "TITLE" ? std::string_view(titleLine) : *line;
      chunk += kCrLf;
      if (chunk.size() >= (1 << 16)) out.Bytes(chunk), chunk.clear();
    }
    out.Bytes(chunk);
    out.Commit();
  } catch (const std::exception& error) {
    session.Ui().Message(fmt::format("{}\r\nUpdateERD", error.what()), "", MsgIcon::Critical, MsgButtons::Ok, MsgAnswer::Ok);
    return false;
  }
  if (showMessage) {
    session.Ui().Inform(fmt::format("以下のファイルを書き換えました\r\n\r\n対象ファイル名：{}", path), "ファイル更新",
                MsgIcon::Information);
  }
  return true;
}

}  // namespace velmora
