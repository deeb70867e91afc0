#include "profile/channel_file.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <set>

#include <fmt/format.h>

#include "base/common.h"
#include "base/path_helpers.h"
#include "base/text_encoding.h"
#include "profile/erd_channels.h"
#include "profile/erd_file.h"
#include "profile/pro_file.h"

namespace velmora {
namespace {

struct UnitFactor {
  std::string_view Name;
  double Millimetres;
  double Metres;
};

// Exact by definition: 1 ft = 0.3048 m, 1 in = 25.4 mm, 1 mil = 0.001 in. Both columns are written
// out so that no product of rounded factors enters a conversion.
constexpr UnitFactor kUnits[] = {
    {"FT", 304.8, 0.3048},    {"FEET", 304.8, 0.3048}, {"FOOT", 304.8, 0.3048}, {"F", 304.8, 0.3048},
    {"IN", 25.4, 0.0254},     {"INCH", 25.4, 0.0254},  {"INCHES", 25.4, 0.0254}, {"I", 25.4, 0.0254},
    {"MIL", 0.0254, 2.54e-5}, {"MILS", 0.0254, 2.54e-5},
    {"MM", 1.0, 0.001},       {"CM", 10.0, 0.01},      {"M", 1000.0, 1.0},
};

const UnitFactor* FindUnit(std::string_view unit) {
  const std::string key = UCase(TrimAll(unit));
  for (const UnitFactor& factor : kUnits)
    if (factor.Name == key) return &factor;
  return nullptr;
}

// A field as an error shows it: its start, in UTF-8.
std::string Shown(std::string_view field, const std::string& path) {
  try {
    return FromSystemCodePage(field.substr(0, 40), path);
  } catch (const LegacyError&) {
    return "?";  // bytes that are not Shift-JIS
  }
}

// The format by the first line of the content.
ChannelFormat FormatOf(std::string_view head) {
  const std::string first = TrimAll(head.substr(0, head.find_first_of("\r\n")));
  if (first == kErdSignature) return ChannelFormat::Erd;
  // "HEAD3,<date>,...": the record name HEAD with its version number.
  const std::string_view record = std::string_view(first).substr(0, first.find(','));
  if (record.size() > 4 && record.starts_with("HEAD") &&
      record.find_first_not_of("0123456789", 4) == std::string_view::npos)
    return ChannelFormat::Pro;
  return ChannelFormat::None;
}

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

}  // namespace

std::vector<std::pair<std::string, std::string>> ChannelFile::HeaderIris() const {
  std::vector<std::pair<std::string, std::string>> iris;
  for (const auto& [key, value] : Info)
    if (UCase(key).starts_with("IRI")) iris.emplace_back(key, value);
  return iris;
}

ChannelFileError::ChannelFileError(std::string path, std::int32_t line, std::string problem)
    : LegacyError(ErrorNumber::InvalidData, fmt::format("{}:{}: {}", path, line, problem)),
      path_(std::move(path)),
      line_(line),
      problem_(std::move(problem)) {}

std::optional<double> MillimetresPer(std::string_view unit) {
  const UnitFactor* factor = FindUnit(unit);
  return factor ? std::optional(factor->Millimetres) : std::nullopt;
}

std::optional<double> MetresPer(std::string_view unit) {
  const UnitFactor* factor = FindUnit(unit);
  return factor ? std::optional(factor->Metres) : std::nullopt;
}

std::string WheelPath(std::string_view channelName) {
  const std::string name = UCase(TrimAll(channelName));
  for (const auto& [word, letter] : {std::pair{"LEFT", "L"}, {"RIGHT", "R"}, {"CENTRE", "C"}, {"CENTER", "C"}})
    if (name.starts_with(word)) return letter;
  if (name.empty() || (name[0] != 'L' && name[0] != 'R' && name[0] != 'C')) return {};
  // "L", "L.", "LElev.", "LWP": the letter stands alone or before a word of the profiler's own.
  const std::string_view rest = std::string_view(name).substr(1);
  if (rest.empty() || !IsLetter(rest[0]) || rest.starts_with("ELEV") || rest.starts_with("WP")) return name.substr(0, 1);
  return {};
}

std::vector<std::string_view> FileLines(std::string_view bytes) {
  std::vector<std::string_view> lines;
  std::size_t start = 0;
  while (start < bytes.size()) {
    std::size_t end = start;
    while (end < bytes.size() && bytes[end] != '\r' && bytes[end] != '\n') ++end;
    lines.push_back(bytes.substr(start, end - start));
    if (end < bytes.size()) end += (bytes[end] == '\r' && end + 1 < bytes.size() && bytes[end + 1] == '\n') ? 2 : 1;
    start = end;
  }
  return lines;
}

std::vector<std::string_view> DataFields(std::string_view line) {
  std::vector<std::string_view> fields;
  auto separator = [](char c) { return c == ' ' || c == '\t' || c == ','; };
  std::size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && separator(line[i])) ++i;
    const std::size_t start = i;
    while (i < line.size() && !separator(line[i])) ++i;
    if (i > start) fields.push_back(line.substr(start, i - start));
  }
  return fields;
}

double ParseField(std::string_view field, const std::string& path, std::int32_t line) {
  if (field.empty()) throw ChannelFileError(path, line, "値が空です");
  std::string_view digits = field;
  if (digits.starts_with('+')) digits.remove_prefix(1);  // from_chars takes no plus sign
  double value = 0;
  const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (ec != std::errc() || end != digits.data() + digits.size() || digits.empty())
    throw ChannelFileError(path, line, fmt::format("\"{}\" は数値ではありません", Shown(field, path)));
  if (!std::isfinite(value))
    throw ChannelFileError(path, line, fmt::format("\"{}\" は有限の数ではありません", Shown(field, path)));
  return value;
}

ChannelFormat DetectChannelFormat(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::string head(4096, '\0');
  in.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(in.gcount()));
  return FormatOf(head);
}

ChannelFile ReadChannelFile(const std::string& path) {
  const std::string bytes = ReadFileBytes(path);
  switch (FormatOf(bytes)) {
    case ChannelFormat::Erd: return ReadErdChannels(path, bytes);
    case ChannelFormat::Pro: return ReadProFile(path, bytes);
    case ChannelFormat::None: break;
  }
  throw ChannelFileError(path, 1, "ERD でも PRO でもありません");
}

std::vector<std::int32_t> ChosenChannels(const ChannelFile& file, std::optional<std::int32_t> channel) {
  std::vector<std::int32_t> chosen;
  if (!channel) {
    for (std::int32_t c = 1; c <= file.ChannelCount(); ++c) chosen.push_back(c);
    return chosen;
  }
  if (*channel < 1 || *channel > file.ChannelCount())
    throw ChannelFileError(file.Path, file.ChannelLine,
                           fmt::format("チャンネル {} はありません（チャンネル数 {}）", *channel, file.ChannelCount()));
  return {*channel};
}

ErdRecord ChannelRecord(const ChannelFile& file, std::int32_t channel) {
  const std::string wheel = WheelPath(file.ChannelNames.at(channel - 1));
  const std::string fileName = flGetFileName(file.Path);
  std::string title = Trim(file.Title.empty() ? flGetFileNameNonExt(file.Path) : file.Title);
  // "｜" would start the KP fields of the title.
  for (std::size_t at; (at = title.find(kTitleSeparator)) != std::string::npos;) title.replace(at, kTitleSeparator.size(), "|");
  ErdRecord erd;
  erd.NumChannels = 1;
  erd.NumSamples = file.SampleCount();
  erd.NumSamplesHeader = file.SampleCount();
  erd.FormatCode = 5;
  erd.StepSize = file.Pitch;
  erd.Title = fmt::format("{} {} ({})", title, wheel.empty() ? Trim(file.ChannelNames[channel - 1]) : wheel, fileName);
  erd.DistanceUnit = "m";
  erd.UnitsName[1] = "mm";
  erd.ShortName[1] = wheel == "R" ? "RElev." : wheel == "C" ? "CElev." : "LElev.";
  erd.IsMetric = true;
  erd.SlopeUnitScale = 1000.0;
  erd.SlopeUnitName = " m/km";
  erd.YLabel = "Elevation";
  erd.XLabel = "Distance";
  const std::vector<double>& heights = file.Heights.at(channel - 1);
  erd.Elevation = Array1<double>(heights);
  return erd;
}

std::string ChannelProfileName(const ChannelFile& file, std::int32_t channel) {
  std::set<std::string> wheels;
  for (const std::string& name : file.ChannelNames) wheels.insert(WheelPath(name));
  const bool byWheel = !wheels.contains("") && std::ssize(wheels) == file.ChannelCount();
  const std::string suffix = byWheel ? WheelPath(file.ChannelNames.at(channel - 1)) : std::to_string(channel);
  return flGetFileNameNonExt(file.Path) + "_" + suffix;
}

std::vector<std::string> WriteChannelProfiles(Session& session, const std::vector<ChannelFile>& files,
                                              const std::vector<std::vector<std::int32_t>>& channels,
                                              const ProfileList& list) {
  std::vector<std::string> written;
  std::set<std::string> taken;
  auto isTaken = [&](const std::string& name) { return list.Find(name) != 0 || taken.contains(UCase(Trim(name))); };
  for (std::size_t f = 0; f < files.size(); ++f) {
    for (std::int32_t channel : channels.at(f)) {
      const std::string base = ChannelProfileName(files[f], channel);
      std::string name = base;
      for (int number = 1; isTaken(name) && number <= 999; ++number) name = fmt::format("{}({:03})", base, number);
      taken.insert(UCase(Trim(name)));
      const std::string path = (std::filesystem::path(session.Paths.TempPath) / (name + ".ERD")).string();
      WriteERD(path, ChannelRecord(files[f], channel));
      written.push_back(path);
    }
  }
  return written;
}

}  // namespace velmora
