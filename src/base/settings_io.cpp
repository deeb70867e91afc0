#include "base/settings_io.h"

#include <fmt/format.h>

#include <optional>
#include <vector>

#include "base/app_paths.h"
#include "base/colour.h"
#include "base/common.h"
#include "base/error_log.h"
#include "base/ini_file.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/macros.h"
#include "base/text_encoding.h"

namespace velmora {
namespace {

constexpr std::string_view kModule = "basInitialize";
constexpr std::string_view kBandColourSection = "バンド別色分けリスト";
constexpr Colour kWhite = 0xFFFFFF;
constexpr Colour kLineColour = 0xFF00FF;
constexpr Colour kAppliedColour = 0x00FF00;
// More colours than any palette needs; a larger count is a typing error, not a wish.
constexpr std::int32_t kMaxPaletteColours = 256;

// The GetPrivateProfileString buffer: 255 bytes including the closing NUL.
constexpr std::size_t kIniBufferBytes = 254;

std::size_t SystemCodePageLength(std::string_view utf8Character) {
  if (utf8Character.size() == 1) return 1;
  // Half-width katakana (U+FF61..U+FF9F) are single bytes in Shift-JIS; other characters are two.
  if (utf8Character.size() == 3 && static_cast<unsigned char>(utf8Character[0]) == 0xEF) {
    const unsigned code = ((static_cast<unsigned char>(utf8Character[1]) & 0x3Fu) << 6) |
                          (static_cast<unsigned char>(utf8Character[2]) & 0x3Fu);
    const unsigned full = 0xF000u | code;
    if (full >= 0xFF61 && full <= 0xFF9F) return 1;
  }
  return 2;
}

std::string CutToBuffer(const std::string& value) {
  std::size_t bytes = 0, at = 0;
  while (at < value.size()) {
    std::size_t next = at + 1;
    while (next < value.size() && (static_cast<unsigned char>(value[next]) & 0xC0) == 0x80) ++next;
    const std::size_t width = SystemCodePageLength(std::string_view(value).substr(at, next - at));
    if (bytes + width > kIniBufferBytes) break;
    bytes += width;
    at = next;
  }
  return value.substr(0, at);
}

std::string OctKey(int band) { return std::to_string(band) + "-Oct"; }

// Reads the keys of one section and collects the values that are not numbers, so that one report
// names all of them and every good key is still taken.
class SectionReader {
 public:
  SectionReader(const IniDocument& document, std::string_view section) : document_(document), section_(section) {}

  std::optional<std::string> Text(std::string_view key) const {
    auto value = document_.Get(section_, key);
    if (value && value->empty()) return std::nullopt;  // a key written empty reads as absent
    return value;
  }
  // Sets `target` when the key holds a number; a non-numeric value is noted and `target` kept.
  void Number(std::string_view key, double& target) {
    if (const auto text = Text(key)) {
      if (const auto value = ParseNumber(*text)) target = *value;
      else Note(key, *text);
    }
  }
  void Integer(std::string_view key, std::int32_t& target) {
    double value = target;
    Number(key, value);
    try {
      target = CLng(value);
    } catch (const LegacyError&) {
      Note(key, fmt::format("{}", value));
    }
  }
  // Raises one LegacyError naming the file, the section and every bad key.
  void RaiseIfProblems() const {
    if (problems_.empty()) return;
    std::string list;
    for (const auto& p : problems_) list += (list.empty() ? "" : ", ") + p;
    throw LegacyError(ErrorNumber::TypeMismatch, fmt::format("{}: [{}] 数値として読めない値があります: {}",
                                                             document_.path().string(), section_, list));
  }

 private:
  void Note(std::string_view key, std::string_view text) { problems_.push_back(fmt::format("{}={}", key, text)); }
  const IniDocument& document_;
  std::string section_;
  std::vector<std::string> problems_;
};

void ReadIriGroup(const IniDocument& document, std::string_view section, IriParams& iri, bool* skipPartial) {
  iri.Speed = iri.KsMs = iri.CsMs = iri.MuMs = iri.KtMs = iri.InitFilter = 0;
  iri.PowerWeighting = 0;
  SectionReader reader(document, section);
  reader.Number("Speed", iri.Speed);
  reader.Number("KsMs", iri.KsMs);
  reader.Number("CsMs", iri.CsMs);
  reader.Number("MuMs", iri.MuMs);
  reader.Number("KtMs", iri.KtMs);
  reader.Number("InitFilter", iri.InitFilter);
  reader.Integer("PowerWeighting", iri.PowerWeighting);
  if (skipPartial) {
    std::int32_t skip = 0;
    reader.Integer("SkipPartialSections", skip);
    *skipPartial = skip != 0;
  }
  reader.RaiseIfProblems();
}

// Band lines: a band is taken only when its value is a number; otherwise it has no line, in silence.
void ReadBandGroup(const IniDocument& document, std::string_view section, BandReductionLines& lines,
                   std::array<Colour, 10>& colours) {
  SectionReader reader(document, section);
  SectionReader colourReader(document, kBandColourSection);
  for (int band = 1; band <= 9; ++band) {
    const auto text = reader.Text(OctKey(band));
    const auto value = text ? ParseNumber(*text) : std::nullopt;
    lines.Value[static_cast<std::size_t>(band)] = value ? *value : kNoValue;
    const auto colour = colourReader.Text(OctKey(band));
    colours[static_cast<std::size_t>(band)] = colour ? ParseColourText(*colour) : kWhite;
  }
}

void ReadColourPair(const IniDocument& document, std::string_view section, Colour& line, Colour& applied) {
  SectionReader reader(document, section);
  line = kLineColour;
  applied = kAppliedColour;
  if (const auto text = reader.Text("低減ライン値の表示色")) line = ParseColourText(*text);
  if (const auto text = reader.Text("低減ライン値適用後のグラフ表示色")) applied = ParseColourText(*text);
}

void ReadBoundaries(const IniDocument& document, std::string_view section, double& longSide, double& shortSide) {
  longSide = 51.2;
  shortSide = 6.4;
  SectionReader reader(document, section);
  reader.Number("長波側境界値", longSide);
  reader.Number("短波側境界値", shortSide);
  reader.RaiseIfProblems();
}

void ReadGroup(const IniDocument& document, int group, CalcConditions& c) {
  switch (group) {
    case 1: {
      c.FilterLong = 50;
      c.FilterShort = 10;
      SectionReader reader(document, "移動平均パラメータ");
      reader.Integer("LongCutOffWavelength", c.FilterLong);
      reader.Integer("ShortCutOffWavelength", c.FilterShort);
      reader.RaiseIfProblems();
      break;
    }
    case 2: ReadIriGroup(document, "IRI解析パラメータ", c.Iri, &c.SkipPartialSections); break;
    case 3: ReadBandGroup(document, "プロファイル分解_バンド別低減ラインパラメータ", c.BandLines, c.BandColours); break;
    case 4: ReadColourPair(document, "プロファイル分解_表示オプション", c.LineColour, c.AppliedColour); break;
    case 5:
      ReadBandGroup(document, "補修形状検討_バンド別低減ラインパラメータ", c.RepairBandLines, c.RepairBandColours);
      break;
    case 6: ReadColourPair(document, "補修形状検討_表示オプション", c.RepairLineColour, c.RepairAppliedColour); break;
    case 7: ReadBoundaries(document, "補修形状検討_3波長境界値", c.LongBoundary, c.ShortBoundary); break;
    case 8: ReadIriGroup(document, "補修形状検討_IRI解析パラメータ", c.RepairIri, nullptr); break;
    case 9:
      ReadBandGroup(document, "スクリーニング_バンド別低減ラインパラメータ", c.ScreenBandLines, c.ScreenBandColours);
      break;
    case 10: ReadBoundaries(document, "スクリーニング_3波長境界値", c.ScreenLongBoundary, c.ScreenShortBoundary); break;
    default: break;
  }
}

void WriteBandLines(IniDocument& document, std::string_view section, const BandReductionLines& lines) {
  for (int band = 1; band <= 9; ++band) {
    const double value = lines.Value[static_cast<std::size_t>(band)];
    document.Set(section, OctKey(band), IsNoValue(value) ? std::string() : FormatNumber(value, "0.00000"));
  }
}

void WriteColourPair(IniDocument& document, std::string_view section, Colour line, Colour applied) {
  document.Set(section, "低減ライン値の表示色", ColourText(line, ", "));
  document.Set(section, "低減ライン値適用後のグラフ表示色", ColourText(applied, ", "));
}

// An unreadable file stands for an empty one, after one report.
IniDocument LoadReported(Session& session, const std::filesystem::path& path, std::string_view proc) {
  IniDocument document(path);
  GuardedContinue(session, kModule, proc, [&] { document = IniDocument::Load(path); });
  return document;
}

std::vector<std::int32_t> OctaveList(const std::optional<std::string>& text) {
  std::vector<std::int32_t> octaves;
  if (!text) return octaves;
  for (const auto& token : uToken(*text, ",")) {
    const auto value = ParseNumber(token);
    if (value && *value >= 1 && *value <= 9 && *value == static_cast<double>(static_cast<int>(*value)))
      octaves.push_back(static_cast<std::int32_t>(*value));
  }
  return octaves;
}

std::vector<Colour> Palette(const IniDocument& document, std::string_view section) {
  SectionReader reader(document, section);
  std::int32_t count = 0;
  reader.Integer("numColor", count);
  reader.RaiseIfProblems();
  if (count < 0 || count > kMaxPaletteColours)
    throw LegacyError(ErrorNumber::InvalidData, fmt::format("{}: [{}] numColor={} は 0 から {} の範囲にありません",
                                                            document.path().string(), section, count,
                                                            kMaxPaletteColours));
  std::vector<Colour> palette(static_cast<std::size_t>(count), 0);
  for (std::int32_t i = 1; i <= count; ++i)
    if (const auto text = reader.Text("Color-" + std::to_string(i)))
      palette[static_cast<std::size_t>(i - 1)] = ParseColourText(Trim(*text));
  return palette;
}

}  // namespace

std::filesystem::path GeneralIniPath(const AppPaths& paths) { return std::filesystem::path(paths.AppPath) / paths.IniFileName; }
std::filesystem::path DefaultIniPath(const AppPaths& paths) {
  return std::filesystem::path(paths.AppPath) / paths.DefaultIniFileName;
}
std::filesystem::path PrevValueIniPath(const AppPaths& paths) {
  return std::filesystem::path(paths.UserLocalPath) / "Resource" / "前回値.ini";
}

bool ReadIni(const std::filesystem::path& file, std::string_view section, std::string_view key, std::string& value) {
  const auto text = ReadIniValue(file, section, key);
  if (!text || text->empty()) return false;
  value = CutToBuffer(*text);
  return true;
}

void LoadGeneralSettings(Session& session) {
  AppSettings& s = session.Settings;
  s = AppSettings{};
  const IniDocument general = LoadReported(session, GeneralIniPath(session.Paths), "LoadGeneralSettings");
  GuardedContinue(session, kModule, "LoadGeneralSettings", [&] {
    SectionReader reader(general, "General");
    reader.Integer("DebugLevel", s.DebugLevel);
    reader.Integer("SplushTime", s.SplushTime);
    reader.Integer("CSV出力プロファイル数制限", s.CsvProfileLimit);
    s.LongOctaves = OctaveList(reader.Text("長波長合算Octave"));
    s.ShortOctaves = OctaveList(reader.Text("短波長合算Octave"));
    reader.RaiseIfProblems();
  });
  const IniDocument defaults = LoadReported(session, DefaultIniPath(session.Paths), "LoadGeneralSettings");
  GuardedContinue(session, kModule, "LoadGeneralSettings",
                  [&] { s.PaletteProfile = Palette(defaults, "ColorPalette_プロファイル分析"); });
  GuardedContinue(session, kModule, "LoadGeneralSettings",
                  [&] { s.PaletteRepair = Palette(defaults, "ColorPalette_補修形状検討"); });
}

void LoadDefaults(Session& session, int group) {
  const int groups[] = {group};
  LoadDefaultGroups(session, groups, false);
}

void LoadDefaultGroups(Session& session, std::span<const int> groups, bool copyToCurrent) {
  const IniDocument document = LoadReported(session, DefaultIniPath(session.Paths), "LoadDefaults");
  for (const int group : groups) {
    if (group < 1 || group > kDefaultGroupCount) continue;
    GuardedContinue(session, kModule, "LoadDefaults", [&] { ReadGroup(document, group, session.DefaultConditions); });
    if (copyToCurrent) CopyConditionsGroup(group, session.DefaultConditions, session.CurrentConditions);
  }
}

void CopyConditionsGroup(int group, const CalcConditions& from, CalcConditions& to) {
  switch (group) {
    case 1:
      to.FilterLong = from.FilterLong;
      to.FilterShort = from.FilterShort;
      break;
    case 2:
      to.Iri = from.Iri;
      to.SkipPartialSections = from.SkipPartialSections;
      break;
    case 3:
      to.BandLines = from.BandLines;
      to.BandColours = from.BandColours;
      break;
    case 4:
      to.LineColour = from.LineColour;
      to.AppliedColour = from.AppliedColour;
      break;
    case 5:
      to.RepairBandLines = from.RepairBandLines;
      to.RepairBandColours = from.RepairBandColours;
      break;
    case 6:
      to.RepairLineColour = from.RepairLineColour;
      to.RepairAppliedColour = from.RepairAppliedColour;
      break;
    case 7:
      to.LongBoundary = from.LongBoundary;
      to.ShortBoundary = from.ShortBoundary;
      break;
    case 8: to.RepairIri = from.RepairIri; break;
    case 9:
      to.ScreenBandLines = from.ScreenBandLines;
      to.ScreenBandColours = from.ScreenBandColours;
      break;
    case 10:
      to.ScreenLongBoundary = from.ScreenLongBoundary;
      to.ScreenShortBoundary = from.ScreenShortBoundary;
      break;
    default: break;
  }
}

void SaveDefaults(Session& session, int group) {
  if (group < 3 || group > 7) return;
  const CalcConditions& c = session.DefaultConditions;
  IniDocument document = IniDocument::Load(DefaultIniPath(session.Paths));
  switch (group) {
    case 3: WriteBandLines(document, "プロファイル分解_バンド別低減ラインパラメータ", c.BandLines); break;
    case 4: WriteColourPair(document, "プロファイル分解_表示オプション", c.LineColour, c.AppliedColour); break;
    case 5: WriteBandLines(document, "補修形状検討_バンド別低減ラインパラメータ", c.RepairBandLines); break;
    case 6: WriteColourPair(document, "補修形状検討_表示オプション", c.RepairLineColour, c.RepairAppliedColour); break;
    case 7:
      document.Set("補修形状検討_3波長境界値", "長波側境界値", FormatNumber(c.LongBoundary, "0.00000"));
      document.Set("補修形状検討_3波長境界値", "短波側境界値", FormatNumber(c.ShortBoundary, "0.00000"));
      break;
    default: break;
  }
  document.Save();
}

std::string GetIniValue(Session& session, const std::filesystem::path& file, std::string_view section, std::string_view key) {
  std::string value;
  GuardedContinue(session, kModule, "GetIniValue", [&] {
    if (const auto text = ReadIniValue(file, section, key)) value = uExpandPathMacro(session.Paths, Trim(*text));
  });
  return value;
}

std::string GetPrevValue(Session& session, std::string_view section, std::string_view key) {
  return GetIniValue(session, PrevValueIniPath(session.Paths), section, key);
}

void SetPrevValue(Session& session, std::string_view section, std::string_view key, std::string_view value) {
  GuardedContinue(session, 
      kModule, "SetPrevValue", [&] { WriteIniValue(PrevValueIniPath(session.Paths), section, key, uAbbreviatePathMacro(session.Paths, value)); },
      /*quiet=*/true);
}

}  // namespace velmora
