#include "report/result_export.h"

#include <cmath>

#include <fmt/format.h>

#include "analysis/filter.h"
#include "analysis/iri_sections.h"
#include "analysis/psd.h"
#include "base/common.h"
#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/legacy_math.h"
#include "base/session.h"
#include "profile/profile_list.h"

namespace velmora {
namespace {

std::string CutText(double metres) { return fmt::format("{}", metres); }

std::span<const double> Head(const Array1<double>& values, std::int32_t count) {
  const auto n = std::min<std::size_t>(static_cast<std::size_t>(std::max(count, 0)), values.vector().size());
  return std::span<const double>(values.data(), n);
}

std::vector<double> NineBandSum(const OctaveBandSet& octave) {
  std::vector<double> sum(octave.Band[1].Values.vector().size(), 0.0);
  for (int k = 1; k <= 9; ++k) {
    const auto& values = octave.Band[static_cast<std::size_t>(k)].Values.vector();
    for (std::size_t i = 0; i < sum.size() && i < values.size(); ++i) sum[i] += values[i];
  }
  return sum;
}

const std::string kPsdHeadStart = "波長(m/cycle), 周期(cycle/m), ";

std::string PsdLine(double waveNumber, double value) {
  const double wavelength = waveNumber > 0 ? 1.0 / waveNumber : kNoValue;
  return JoinFields({FormatPsdField(wavelength), FormatPsdField(waveNumber), FormatPsdField(value)});
}

void RequireOctave(int octave) {
  if (octave < 1 || octave > 9) RaiseSubscriptOutOfRange("Octave " + std::to_string(octave));
}

}  // namespace

std::string FilterWord(const FilterSpec& filterSpec) {
  std::string word = FilterShortName(filterSpec);
  if (filterSpec.CalcType != FilterCalcType::MovingAverage && filterSpec.CalcType != FilterCalcType::Fourier) return word;
  switch (filterSpec.Band) {
    case FilterKind::HiPass: return word + "_" + CutText(filterSpec.LongCut) + "m";
    case FilterKind::LowPass: return word + "_" + CutText(filterSpec.ShortCut) + "m";
    default: return word + "_" + CutText(filterSpec.LongCut) + "-" + CutText(filterSpec.ShortCut) + "m";
  }
}

std::string BuiltInExportPattern(ExportKind kind) {
  constexpr const char* stamp = "$(YYYYMMDDHHNNSS)$";
  switch (kind) {
    case ExportKind::Profile: return std::string("$(PROFILENAME)$_$(CUTOFF)$_") + stamp;
    case ExportKind::OctaveAll: return std::string("$(PROFILENAME)$_Octave_") + stamp;
    case ExportKind::OctaveBand: return std::string("$(PROFILENAME)$_Octave$(OctaveNum)$_") + stamp;
    case ExportKind::OctaveSum: return std::string("$(PROFILENAME)$_Octave合算値_") + stamp;
    case ExportKind::OctaveLong: return std::string("$(PROFILENAME)$_Octave長波長_") + stamp;
    case ExportKind::OctaveShort: return std::string("$(PROFILENAME)$_Octave短波長_") + stamp;
    case ExportKind::BandAll: return std::string("$(PROFILENAME)$_バンド別低減_") + stamp;
    case ExportKind::BandOne: return std::string("$(PROFILENAME)$_バンド別低減_Octave$(OctaveNum)$_") + stamp;
    case ExportKind::BandSum: return std::string("$(PROFILENAME)$_バンド別低減_Octave合算値_") + stamp;
    case ExportKind::BandLong: return std::string("$(PROFILENAME)$_バンド別低減_Octave長波長_") + stamp;
    case ExportKind::BandShort: return std::string("$(PROFILENAME)$_バンド別低減_Octave短波長_") + stamp;
    case ExportKind::PsdRaw: return std::string("[$(PROFILENAME)$]_PSD_") + stamp;
    case ExportKind::PsdSmoothed: return std::string("[$(PROFILENAME)$]_PSD平滑化_") + stamp;
    case ExportKind::PsdRatio: return std::string("[$(PROFILENAME)$]_PSD比_") + stamp;
    case ExportKind::IriWhole: return std::string("IRI(全区間)_") + stamp;
    case ExportKind::IriContinuous:
    case ExportKind::IriFixed: return std::string("$(PROFILENAME)$_IRI($(IRI種別)$)_") + stamp;
  }
  return stamp;
}

std::string ExportSection(ExportKind kind) {
  switch (kind) {
    case ExportKind::Profile: return "Filter";
    case ExportKind::PsdRaw:
    case ExportKind::PsdSmoothed:
    case ExportKind::PsdRatio: return "PSD";
    case ExportKind::IriWhole:
    case ExportKind::IriContinuous:
    case ExportKind::IriFixed: return "IRI";
    case ExportKind::BandAll:
    case ExportKind::BandOne:
    case ExportKind::BandSum:
    case ExportKind::BandLong:
    case ExportKind::BandShort: return "BandReduction";
    default: return "Octave";
  }
}

std::string IriKindWord(ExportKind kind, double evalLength, int interval) {
  if (kind == ExportKind::IriWhole) return "全区間";
  if (kind == ExportKind::IriContinuous) return fmt::format("{}m連続", evalLength);
  return fmt::format("{}m固定", interval);
}

std::string ExportKindWord(ExportKind kind) {
  switch (kind) {
    case ExportKind::Profile: return "Profile";
    case ExportKind::OctaveAll: return "Octave";
    case ExportKind::OctaveBand: return "Octave";
    case ExportKind::OctaveSum: return "Octave合算値";
    case ExportKind::OctaveLong: return "Octave長波長";
    case ExportKind::OctaveShort: return "Octave短波長";
    case ExportKind::BandAll: return "バンド別低減";
    case ExportKind::BandOne: return "バンド別低減Octave";
    case ExportKind::BandSum: return "バンド別低減合算値";
    case ExportKind::BandLong: return "バンド別低減長波長";
    case ExportKind::BandShort: return "バンド別低減短波長";
    case ExportKind::PsdRaw: return "PSD";
    case ExportKind::PsdSmoothed: return "PSD平滑化";
    case ExportKind::PsdRatio: return "PSD比";
    case ExportKind::IriWhole: return "IRI(全区間)";
    case ExportKind::IriContinuous: return "IRI(連続)";
    case ExportKind::IriFixed: return "IRI(固定)";
  }
  return {};
}

bool HasResult(ExportKind kind, const ProfileRecord& record) {
  const AnalysisBlock& block = record.Analysis;
  switch (kind) {
    case ExportKind::Profile: return block.Filter.FilterWave.Calculated && block.Filter.FilterCount > 0;
    case ExportKind::PsdRaw:
    case ExportKind::PsdSmoothed:
    case ExportKind::PsdRatio: return block.Psd.Calculated && block.Psd.PsdCount > 0;
    case ExportKind::IriWhole: return !IsNoValue(block.Iri.IriWholeProfile);
    case ExportKind::IriContinuous: return block.Iri.IriWindowWave.Calculated;
    case ExportKind::IriFixed: return block.Sections.SectionCount > 0;
    case ExportKind::BandAll:
    case ExportKind::BandOne:
    case ExportKind::BandSum:
    case ExportKind::BandLong:
    case ExportKind::BandShort: return block.BandReduction.Calculated;
    default: return block.Octave.Calculated;
  }
}

ProfileGeometry GeometryOf(const ProfileRecord& record) {
  return {record.Erd.StepSize, record.Erd.KpStart, record.Erd.KpSign};
}

Array1<double> PointKindValues(ExportKind kind, const ProfileRecord& record, int octave) {
  const AnalysisBlock& block = record.Analysis;
  switch (kind) {
    case ExportKind::Profile: {
      Array1<double> values(static_cast<std::size_t>(block.Filter.FilterCount));
      const auto head = Head(block.Filter.FilterWave.Values, block.Filter.FilterCount);
      std::copy(head.begin(), head.end(), values.begin());
      return values;
    }
    case ExportKind::OctaveBand:
      RequireOctave(octave);
      return block.Octave.Band[static_cast<std::size_t>(octave)].Values;
    case ExportKind::OctaveSum: return Array1<double>(NineBandSum(block.Octave));
    case ExportKind::OctaveLong: return block.Octave.LongSum.Values;
    case ExportKind::OctaveShort: return block.Octave.ShortSum.Values;
    case ExportKind::BandOne:
      RequireOctave(octave);
      return block.BandReduction.Result.Reduced[static_cast<std::size_t>(octave)].Values;
    case ExportKind::BandSum: return block.BandReduction.Result.Total.Values;
    case ExportKind::BandLong: return block.BandReduction.LongSum.Values;
    case ExportKind::BandShort: return block.BandReduction.ShortSum.Values;
    default: throw LegacyError(ErrorNumber::InvalidData, "not a one-column kind: " + ExportKindWord(kind));
  }
}

void WritePointKindCsv(const LineOut& out, ExportKind kind, const ProfileRecord& record, const PositionAxis& axis,
                       int octave) {
  const std::string name = ProfileList::NameOf(record);
  const ProfileGeometry geometry = GeometryOf(record);
  if (kind == ExportKind::OctaveAll) {
    const OctaveBandSet& octaveSet = record.Analysis.Octave;
    const std::vector<double> sum = NineBandSum(octaveSet);
    std::vector<PointColumn> columns;
    for (int k = 1; k <= 9; ++k)
      columns.push_back({fmt::format("OCT-{}(mm)", k), octaveSet.Band[static_cast<std::size_t>(k)].Values.span()});
    columns.push_back({"OCT-合算(mm)", sum});
    columns.push_back({"OCT-長波長(mm)", octaveSet.LongSum.Values.span()});
    columns.push_back({"OCT-短波長(mm)", octaveSet.ShortSum.Values.span()});
    return WritePointCsv(out, axis, geometry, columns);
  }
  if (kind == ExportKind::BandAll) {
    const BandReductionBlock& band = record.Analysis.BandReduction;
    std::vector<PointColumn> columns;
    for (std::size_t k = 1; k <= 9; ++k)
      columns.push_back({fmt::format("OCT-{}({})(mm)", k, FormatNumber(band.Limits[k], "0.000")),
                         band.Result.Reduced[k].Values.span()});
    columns.push_back({"OCT-合算(mm)", band.Result.Total.Values.span()});
    columns.push_back({"OCT-長波長(mm)", band.LongSum.Values.span()});
    columns.push_back({"OCT-短波長(mm)", band.ShortSum.Values.span()});
    return WritePointCsv(out, axis, geometry, columns);
  }
  const Array1<double> values = PointKindValues(kind, record, octave);
  std::string head;
  switch (kind) {
    case ExportKind::Profile: head = "Elevetion(mm)"; break;  // the word stands so in the format
    case ExportKind::OctaveBand: head = fmt::format("{} Octave {}(mm)", name, octave); break;
    case ExportKind::OctaveSum: head = name + " 合算値(mm)"; break;
    case ExportKind::OctaveLong: head = name + " Octave 長波長(mm)"; break;
    case ExportKind::BandOne:
      head = fmt::format("{} バンド別低減 {}-Octave={}mm",  name, octave,
                         FormatNumber(record.Analysis.BandReduction.Limits[static_cast<std::size_t>(octave)], "0.00"));
      break;
    case ExportKind::BandSum: head = name + " バンド別低減(合算値)(mm)"; break;
    case ExportKind::BandLong: head = name + " バンド別低減(長波長)(mm)"; break;
    case ExportKind::BandShort: head = name + " バンド別低減(短波長)(mm)"; break;
    default: head = name + " Octave 短波長(mm)"; break;
  }
  WritePointCsv(out, axis, geometry, {{head, values.span()}});
}

std::vector<std::string> PointKindLines(ExportKind kind, const ProfileRecord& record, const PositionAxis& axis,
                                        int octave) {
  return CollectLines([&](const LineOut& out) { WritePointKindCsv(out, kind, record, axis, octave); });
}

std::vector<std::string> PsdRawLines(const ProfileRecord& record) {
  const PsdResult& psd = record.Analysis.Psd;
  const double dx = record.Erd.StepSize;
  std::vector<std::string> lines{kPsdHeadStart + "PSD(m^2-m/cycle)"};
  // Bin i holds the wave number (i - 1)/(n2 dx); bin 1 (the mean) has no wavelength and is left out.
  for (std::int32_t i = 2; i <= psd.PsdCount / 2 + 1 && i <= psd.PsdCount; ++i)
    lines.push_back(PsdLine((i - 1) / (psd.PsdCount * dx), psd.PsdValues[i]));
  return lines;
}

std::vector<std::string> PsdSmoothedLines(Session& session, const ProfileRecord& record, const ExportOptions& options) {
  std::vector<std::string> lines{kPsdHeadStart + "平滑化PSD(m^2-m/cycle)"};
  for (const PsdPair& pair : SmoothPsdValues(DebugTablesOf(session), record.Analysis.Psd.PsdValues, record.WorkCount, record.Erd.StepSize,
                                             options.BandsPerOctave))
    lines.push_back(PsdLine(pair.Wn, pair.Val));
  return lines;
}

std::vector<std::string> PsdRatioLines(Session& session, const ProfileRecord& base, const ProfileRecord& compared,
                                       const ExportOptions& options) {
  std::vector<std::string> lines{kPsdHeadStart + "Gain(PSD比の平方根)"};
  const double dx = base.Erd.StepSize;
  if (options.Smoothed) {
    const auto a = SmoothPsdValues(DebugTablesOf(session), base.Analysis.Psd.PsdValues, base.WorkCount, dx, options.BandsPerOctave);
    const auto b = SmoothPsdValues(DebugTablesOf(session), compared.Analysis.Psd.PsdValues, compared.WorkCount, dx, options.BandsPerOctave);
    // Row by row over the compared profile's rows, keeping its wave numbers.
    for (std::size_t i = 0; i < b.size() && i < a.size(); ++i) {
      if (a[i].Val == 0) RaiseDivisionByZero("PSD比 " + ProfileList::NameOf(base));
      lines.push_back(PsdLine(b[i].Wn, std::sqrt(b[i].Val / a[i].Val)));
    }
    return lines;
  }
  std::int32_t count = 0;
  std::vector<PsdPair> pairs;
  if (!PsdRatioRaw(session, base.Analysis.Psd.PsdCount, base.Analysis.Psd.PsdValues, compared.Analysis.Psd.PsdCount,
                   compared.Analysis.Psd.PsdValues, dx, count, pairs))
    RaiseDivisionByZero("PSD比 " + ProfileList::NameOf(base));
  for (const PsdPair& pair : pairs) lines.push_back(PsdLine(pair.Wn, pair.Val));
  return lines;
}

std::vector<std::string> IriWholeLines(const std::vector<const ProfileRecord*>& profiles) {
  std::vector<std::string> lines{"Profile, 区間, IRI(mm/m)"};
  for (const ProfileRecord* record : profiles) {
    const double length = std::max(record->WorkCount - 1, 0) * record->Erd.StepSize;
    lines.push_back(JoinFields({ProfileList::NameOf(*record), "全区間IRI(" + FormatNumber(length, "0.00") + "m)",
                                FormatValueField(record->Analysis.Iri.IriWholeProfile)}));
  }
  return lines;
}

void WriteIriContinuousCsv(const LineOut& out, const ProfileRecord& record, const PositionAxis& axis, double evalLength,
                           bool withBands) {
  const IriResults& iri = record.Analysis.Iri;
  const ProfileGeometry geometry = GeometryOf(record);
  const double dx = geometry.StepSize;
  const double kp0 = IsNoValue(geometry.KpStart) ? 0.0 : geometry.KpStart;
  const double kmPerSample = (geometry.KpSign == 1 ? -dx : dx) / 1000.0;
  const double windowSamples = dx > 0 ? RoundHalfAway(evalLength / dx) : 0;
  std::vector<std::string> heads{"IRI(mm/m)"};
  if (withBands) {
    for (int k = 1; k <= 9; ++k) heads.push_back(fmt::format("IRI(OCT-{})", k));
    heads.insert(heads.end(), {"IRI(OCT合算)", "IRI(OCT長波長)", "IRI(OCT短波長)"});
  }
  auto at = [](const WaveSeries& series, std::int32_t i) {
    return i <= series.Values.size() ? series.Values[i] : kNoValue;
  };
  const auto count = static_cast<std::size_t>(std::max(iri.IriWindowCount, 0));
  WriteSectionCsv(out, axis, geometry, heads, count, [&](std::size_t r, SectionRow& row) {
    const auto i = static_cast<std::int32_t>(r) + 1;
    row.KpFrom = kp0 + (i - 1) * kmPerSample;
    row.KpTo = kp0 + (i - 1 + windowSamples) * kmPerSample;
    row.Values.assign(1, at(iri.IriWindowWave, i));
    if (withBands) {
      for (int k = 1; k <= 9; ++k) row.Values.push_back(at(iri.IriWindowBand[static_cast<std::size_t>(k)], i));
      row.Values.insert(row.Values.end(), {at(iri.IriWindowRss, i), at(iri.IriWindowLong, i), at(iri.IriWindowShort, i)});
    }
  });
}

std::vector<std::string> IriFixedLines(const ProfileRecord& record, const PositionAxis& axis, int interval) {
  const SectionIri& sections = record.Analysis.Sections;
  const Array1<SectionEntry>* table = interval == 10    ? &sections.Sec10
                                      : interval == 100 ? &sections.Sec100
                                      : interval == 200 ? &sections.Sec200
                                                        : nullptr;
  if (table == nullptr) throw LegacyError(ErrorNumber::InvalidData, fmt::format("IRI固定区間 {}m はありません", interval));
  std::vector<SectionRow> rows;
  // Members of a merged unit stay at the no value: only the entries that carry a unit are rows.
  for (const SectionEntry& entry : *table)
    if (!IsNoValue(entry.Iri)) rows.push_back({entry.KpFrom, entry.KpTo, {entry.Iri}});
  std::vector<std::string> lines = SectionCsvLines(axis, GeometryOf(record), {"IRI(mm/m)"}, rows);
  lines.emplace_back();
  for (std::string& line : SectionTableLines(sections)) lines.push_back(std::move(line));
  return lines;
}

}  // namespace velmora
