#include "profile/profile_tools.h"

#include <algorithm>
#include <cmath>

#include "base/app_paths.h"
#include "base/common.h"
#include "base/error_log.h"
#include "base/legacy_math.h"
#include "base/number_helpers.h"
#include "base/path_helpers.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "profile/erd_file.h"

namespace velmora {
namespace {

constexpr double kKmPerMetre = 0.001;
constexpr double kWalkTolerance = 1e-9;  // KP sums of many pitches must not miss an exact hit

std::string BaseName(const std::string& fileName) { return flGetFileNameNonExt(fileName); }

double KpOrigin(const ErdRecord& erd) { return IsNoValue(erd.KpStart) ? 0.0 : erd.KpStart; }
double KpStep(const ErdRecord& erd) { return erd.StepSize * kKmPerMetre * (erd.KpSign == 1 ? -1.0 : 1.0); }

// The no-value-checked number of a box, with the two check messages of the tools.
std::optional<double> NumberBox(Session& session, const std::string& text, const std::string& caption) {
  if (Trim(text).empty()) {
    session.Ui().Inform(caption + " が指定されていません。", "Error");
    return std::nullopt;
  }
  if (!IsNumeric(text)) {
    session.Ui().Inform(caption + " は数値で指定して下さい。", "Error");
    return std::nullopt;
  }
  return uDblVal(text);
}

ErdRecord WithSamples(const ErdRecord& from, std::vector<double> samples) {
  ErdRecord rec = from;
  rec.Elevation = Array1<double>(std::move(samples));
  rec.NumSamples = static_cast<std::int32_t>(rec.Elevation.size());
  rec.NumSamplesHeader = rec.NumSamples;
  return rec;
}

// A profile as a table of (KP in km, height in mm), positions ascending.
struct Table {
  std::vector<double> X, Y;
};

Table TableOf(const ErdRecord& erd) {
  Table t;
  for (std::int32_t i = 1; i <= erd.NumSamples; ++i) {
    t.X.push_back(KpOfIndex(erd, i));
    t.Y.push_back(erd.Elevation[i]);
  }
  if (t.X.size() > 1 && t.X.front() > t.X.back()) {
    std::reverse(t.X.begin(), t.X.end());
    std::reverse(t.Y.begin(), t.Y.end());
  }
  return t;
}

// Value at x of the straight line through the two rows around x (x inside the table).
double LineValue(const Table& t, double x) {
  auto upper = std::upper_bound(t.X.begin(), t.X.end(), x);
  std::size_t i2 = static_cast<std::size_t>(std::min<std::ptrdiff_t>(upper - t.X.begin(), static_cast<std::ptrdiff_t>(t.X.size()) - 1));
  std::size_t i1 = i2 == 0 ? 0 : i2 - 1;
  if (t.X[i2] == t.X[i1]) return t.Y[i1];
  const double a = (t.Y[i2] - t.Y[i1]) / (t.X[i2] - t.X[i1]);
  const double b = t.Y[i1] - a * t.X[i1];
  return a * x + b;
}

std::optional<Table> ReadCsvBase(Session& session, const CompositeInput& input) {
  if (Trim(input.CsvPath).empty()) {
    session.Ui().Inform("CSVデータが指定されていません。", "Error");
    return std::nullopt;
  }
  if (!flSearchPath(input.CsvPath)) {
    session.Ui().Inform("指定されたファイルが見つかりません。", "Error");
    return std::nullopt;
  }
  Table t;
  const auto lines = ReadSystemTextLines(input.CsvPath);
  for (std::size_t i = input.CsvHeading ? 1 : 0; i < lines.size(); ++i) {
    if (Trim(lines[i]).empty()) continue;
    const auto cells = uToken(lines[i], ",", 2);
    t.X.push_back(uDblVal(cells[0]) * (input.CsvInKm ? 1.0 : kKmPerMetre));
    t.Y.push_back(uDblVal(cells[1]));
  }
  if (t.X.size() > 1 && t.X.front() > t.X.back()) {
    std::reverse(t.X.begin(), t.X.end());
    std::reverse(t.Y.begin(), t.Y.end());
  }
  return t;
}

}  // namespace

std::vector<ToolItem> ToolItemsOf(const ProfileList& list) {
  std::vector<ToolItem> items;
  for (std::int32_t i = 1; i <= list.Count(); ++i) items.push_back({list.Items[i].FileName, list.Items[i].Erd});
  return items;
}

double KpOfIndex(const ErdRecord& erd, std::int64_t index) {
  return KpOrigin(erd) + static_cast<double>(index - 1) * KpStep(erd);
}

std::int64_t KpToIndex(const ErdRecord& erd, double kp) {
  const double steps = (kp - KpOrigin(erd)) / KpStep(erd);
  return static_cast<std::int64_t>(std::ceil(steps - kWalkTolerance)) + 1;
}

std::vector<ToolOutput> ReverseProfiles(const std::vector<ToolItem>& selected) {
  std::vector<ToolOutput> outputs;
  for (const auto& item : selected) {
    const auto& erd = item.Erd;
    std::vector<double> samples(erd.Elevation.begin(), erd.Elevation.end());
    std::reverse(samples.begin(), samples.end());
    ErdRecord rec = WithSamples(erd, std::move(samples));
    if (!IsNoValue(erd.KpStart)) {
      rec.KpStart = KpOfIndex(erd, erd.NumSamples);
      rec.KpSign = erd.KpSign == 1 ? 0 : 1;
    }
    outputs.push_back({BaseName(item.FileName) + "_反転.ERD", std::move(rec)});
  }
  return outputs;
}

std::optional<std::vector<ToolOutput>> HeightShiftProfiles(Session& session, const std::vector<ToolItem>& selected,
                                                           const HeightShiftInput& input) {
  double kp = 0;
  if (input.Reference == ShiftReference::Kp) {
    const auto value = NumberBox(session, input.Kp, "KP");
    if (!value) return std::nullopt;
    kp = *value;
  }
  const auto height = NumberBox(session, input.Height, "調整高さ");
  if (!height) return std::nullopt;

  std::vector<ToolOutput> outputs;
  for (const auto& item : selected) {
    const auto& erd = item.Erd;
    if (erd.NumSamples < 1) continue;
    std::int64_t reference = 1;
    std::string where = "始点";
    if (input.Reference == ShiftReference::End) {
      reference = erd.NumSamples;
      where = "終点";
    } else if (input.Reference == ShiftReference::Kp) {
      // The walk stops at the profile's ends: a KP outside takes the last sample reached.
      reference = std::clamp<std::int64_t>(KpToIndex(erd, kp), 1, erd.NumSamples);
      where = "KP" + uTrimZero(kp);
    }
    const double offset = *height - erd.Elevation[reference];
    std::vector<double> samples(erd.Elevation.begin(), erd.Elevation.end());
    for (double& s : samples) s += offset;
    outputs.push_back({BaseName(item.FileName) + "_" + where + "H" + uTrimZero(*height) + "調整.ERD",
                       WithSamples(erd, std::move(samples))});
  }
  return outputs;
}

namespace {

const char* UnitWord(CutUnit unit) {
  switch (unit) {
    case CutUnit::Samples: return "個";
    case CutUnit::Km: return "km";
    case CutUnit::M: return "m";
    case CutUnit::Mm: return "mm";
  }
  return "";
}

const char* ShortfallSuffix(Shortfall fill) {
  switch (fill) {
    case Shortfall::None: return "";
    case Shortfall::Zero: return "(ゼロ埋め)";
    case Shortfall::EdgeValue: return "(始終値埋め)";
    case Shortfall::Mirror: return "(反転折返し)";
  }
  return "";
}

// Samples covered by `value` in `unit` at this pitch.
double SamplesOf(double value, CutUnit unit, double pitch) {
  switch (unit) {
    case CutUnit::Samples: return value;
    case CutUnit::Km: return value * 1000.0 / pitch;
    case CutUnit::M: return value / pitch;
    case CutUnit::Mm: return value / 1000.0 / pitch;
  }
  return value;
}

// Sample at index i (may lie outside 1..n) under the shortfall rule.
double SampleAt(const Array1<double>& e, std::int64_t i, Shortfall fill) {
  const std::int64_t n = e.size();
  if (i >= 1 && i <= n) return e[i];
  switch (fill) {
    case Shortfall::Zero: return 0.0;
    case Shortfall::EdgeValue: return i < 1 ? e[1] : e[n];
    case Shortfall::Mirror: {
      // Sample 1 - k takes 1 + k and n + k takes n - k, folding no further than the other end.
      const std::int64_t mirrored = i < 1 ? 2 - i : 2 * n - i;
      return e[std::clamp<std::int64_t>(mirrored, 1, n)];
    }
    case Shortfall::None: break;
  }
  return 0.0;
}

}  // namespace

std::optional<std::vector<ToolOutput>> CutOutProfiles(Session& session, const std::vector<ToolItem>& selected,
                                                      const CutOutInput& input) {
  std::optional<double> a, b;
  if (input.ByKp) {
    if (!(a = NumberBox(session, input.KpStart, "KP始点")) || !(b = NumberBox(session, input.KpEnd, "KP終点"))) return std::nullopt;
    if (*a > *b) std::swap(*a, *b);
  } else {
    if (!(a = NumberBox(session, input.Start, "開始位置")) || !(b = NumberBox(session, input.Length, "終了位置"))) return std::nullopt;
  }

  std::vector<ToolOutput> outputs;
  for (const auto& item : selected) {
    const auto& erd = item.Erd;
    const std::int64_t n = erd.NumSamples;
    if (n < 1) continue;
    std::int64_t first, last;
    std::string name = BaseName(item.FileName) + "_";
    if (input.ByKp) {
      first = KpToIndex(erd, *a);
      last = KpToIndex(erd, *b);
      if (first > last) std::swap(first, last);  // a falling KP walks the other way
      name += "KP始点" + uTrimZero(*a) + "_終点" + uTrimZero(*b) + "切出し";
    } else {
      // The position counts from the chosen end; the length covers that distance (or sample count).
      const std::int64_t offset = CLng(SamplesOf(*a, input.Unit, erd.StepSize));
      const std::int64_t count = input.Unit == CutUnit::Samples ? CLng(*b) : CLng(SamplesOf(*b, input.Unit, erd.StepSize)) + 1;
      first = input.FromEnd ? n - offset - count + 1 : 1 + offset;
      last = first + count - 1;
      name += uTrimZero(*a) + "_" + uTrimZero(*b) + (input.Unit == CutUnit::Samples ? "個" : UnitWord(input.Unit)) + "切出し";
    }
    if (input.Fill == Shortfall::None) {
      first = std::max<std::int64_t>(first, 1);
      last = std::min(last, n);
      if (first > last) continue;  // wholly outside: nothing to register
    }
    std::vector<double> samples;
    samples.reserve(static_cast<std::size_t>(std::max<std::int64_t>(0, last - first + 1)));
    for (std::int64_t i = first; i <= last; ++i) samples.push_back(SampleAt(erd.Elevation, i, input.Fill));
    ErdRecord rec = WithSamples(erd, std::move(samples));
    if (!IsNoValue(erd.KpStart)) rec.KpStart = KpOfIndex(erd, first);
    outputs.push_back({name + ShortfallSuffix(input.Fill) + ".ERD", std::move(rec)});
  }
  return outputs;
}

// The composite ties the target to the base: at each base row inside the overlap the difference
// d = base - (target's line there) is taken; between base rows d runs on straight lines. The result is
// the target's line plus d, on the chosen positions. It passes through the base's heights at the base
// rows and keeps the target's detail between them, which is what levelling a profiler's profile to a
// survey asks for. Positions outside the overlap are dropped.
std::optional<std::vector<ToolOutput>> CompositeProfiles(Session& session, const std::vector<ToolItem>& targets,
                                                         const CompositeInput& input) {
  std::optional<Table> base;
  std::string baseName;
  if (input.BaseIsCsv) {
    base = ReadCsvBase(session, input);
    if (!base) return std::nullopt;
    baseName = flGetFileNameNonExt(input.CsvPath);
  } else {
    base = TableOf(input.BaseProfile.Erd);
    baseName = BaseName(input.BaseProfile.FileName);
  }

  std::vector<ToolOutput> outputs;
  for (const auto& item : targets) {
    const Table target = TableOf(item.Erd);
    if (base->X.empty() || target.X.empty()) continue;
    const double from = std::max(base->X.front(), target.X.front());
    const double to = std::min(base->X.back(), target.X.back());
    Table difference;
    for (std::size_t i = 0; i < base->X.size(); ++i) {
      if (base->X[i] < from || base->X[i] > to) continue;
      difference.X.push_back(base->X[i]);
      difference.Y.push_back(base->Y[i] - LineValue(target, base->X[i]));
    }
    if (difference.X.empty()) continue;

    const ErdRecord& grid = input.PitchOfBase && !input.BaseIsCsv ? input.BaseProfile.Erd : item.Erd;
    std::vector<double> samples;
    double firstKp = kNoValue;
    for (std::int32_t i = 1; i <= grid.NumSamples; ++i) {
      const double x = KpOfIndex(grid, i);
      if (x < from - kWalkTolerance || x > to + kWalkTolerance) continue;
      if (IsNoValue(firstKp)) firstKp = x;
      samples.push_back(LineValue(target, x) + LineValue(difference, x));
    }
    if (samples.empty()) continue;
    ErdRecord rec = WithSamples(grid, std::move(samples));
    rec.Title = item.Erd.Title;
    rec.KpStart = firstKp;
    outputs.push_back({BaseName(item.FileName) + "_" + baseName + "_合成.ERD", std::move(rec)});
  }
  return outputs;
}

bool RegisterToolOutputs(Session& session, const std::vector<ToolOutput>& outputs, const RegisterPaths& add) {
  if (outputs.empty()) return false;
  if (!session.Ui().AskOkCancel("作成したプロファイルを登録します。\r\nよろしいですか？", "登録")) return false;
  bool registered = false;
  Guarded(session, "frmTools", "cmdProfile登録", [&] {
    std::vector<std::string> paths;
    for (const auto& output : outputs) {
      paths.push_back(flAddDirSep(session.Paths.TempPath) + output.FileName);
      WriteERD(paths.back(), output.Erd);
    }
    registered = add(paths);
  });
  return registered;
}

bool RegisterToolOutputs(Session& session, ProfileList& list, const std::vector<ToolOutput>& outputs) {
  return RegisterToolOutputs(session, outputs, [&session, &list](const std::vector<std::string>& paths) {
    return AddProfileList(session, list, paths, true);
  });
}

}  // namespace velmora
