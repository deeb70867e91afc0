#include "report/repair_export.h"

#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "analysis/iri.h"
#include "analysis/octave.h"
#include "analysis/prepare_profile.h"
#include "base/common.h"
#include "base/legacy_error.h"
#include "base/legacy_math.h"
#include "base/session.h"
#include "profile/profile_list.h"
#include "repair/ideal_shape.h"
#include "report/column_spill.h"
#include "report/result_csv.h"
#include "report/result_export.h"

namespace velmora {
namespace {

// The octave split of a study wave, for a file that shows its bands.
OctaveBands BandsOf(Session& session, const ProfileRecord& record, const Array1<double>& wave) {
  OctaveBands bands;
  if (!StudyWaveOctave(session, wave, record.Erd.StepSize, 0, bands))
    throw LegacyError(ErrorNumber::InvalidData, ProfileList::NameOf(record) + ": オクターブ分解できません");
  return bands;
}

// The nine bands of a wave parked in `spill` (after what it holds) and their columns, headed by `mark`.
// Only one wave's bands are in memory at a time: the ideal-shape file has three waves' bands, more
// than fits beside the study on a long road.
void AddSpilledBandColumns(std::vector<PointColumn>& columns, ColumnSpill& spill, Session& session,
                           const ProfileRecord& record, const Array1<double>& wave, const char* mark) {
  const OctaveBands bands = BandsOf(session, record, wave);
  for (std::size_t k = 1; k <= 9; ++k) {
    columns.push_back({fmt::format("{}-OCT({})", k, mark), {}, &spill, spill.Columns()});
    spill.Append(bands[k].Values.span());
  }
}

void ThreeWaveProfileLines(const LineOut& out, const ProfileRecord& record, const PositionAxis& axis) {
  const ThreeWaveSplit& split = record.ThreeWave;
  WritePointCsv(out, axis, GeometryOf(record),
                       {{"Profile", record.WorkProfile.span()},
                        {"L波", split.LongWave.Values.span()},
                        {"M波", split.MiddleWave.Values.span()},
                        {"S波", split.ShortWave.Values.span()}});
}

// The sliding-window IRI (mm/m) of a wave of the record with the study's parameters.
WaveSeries WindowIri(Session& session, const ProfileRecord& record, const Array1<double>& wave, const IriParams& iri) {
  IriResults out;
  if (!StudyWaveIri(session, wave, record.Erd.StepSize, iri, out))
    throw LegacyError(ErrorNumber::InvalidData, ProfileList::NameOf(record) + ": IRIを計算できません");
  return std::move(out.IriWindowWave);
}

// The window IRI of a wave and of each of its nine octave bands, split as the octave tab splits a
// profile. A band is dropped as soon as its window is made: only the windows go into the file.
struct WindowsWithBands {
  WaveSeries Wave;
  std::array<WaveSeries, 10> Band;  // [1..9]
};

WindowsWithBands WindowIriWithBands(Session& session, const ProfileRecord& record, const Array1<double>& wave,
                                    const IriParams& iri) {
  const auto n = static_cast<std::int32_t>(wave.size());
  AnalysisBlock block;
  PrepareAnalysis(DebugTablesOf(session), block, n, wave, record.Erd.StepSize);
  EnsureOctaveMasks(block);
  OctaveBands bands;
  std::int32_t debugSeq = 0;
  if (!Cal_プロファイル分解_単体処理(session, 1, debugSeq, 0, n, block.FftLength1, block.FftLength2, block.Masks,
                                  block.Profile.Values, bands))
    throw LegacyError(ErrorNumber::InvalidData, ProfileList::NameOf(record) + ": オクターブ分解できません");
  block.Masks = {};
  CalcIriProfile(DebugTablesOf(session), block, iri, false);
  block.Iri.IriResponseWave = {};
  WindowsWithBands windows;
  windows.Wave = std::move(block.Iri.IriWindowWave);
  for (std::size_t k = 1; k <= 9; ++k) {
    windows.Band[k] = IriOfDerivedWave(block, bands[k].Values, iri).Window;
    bands[k].Values = {};
  }
  return windows;
}

// One row per window position, as the IRI tab's continuous file: from the window's first sample over
// the base length; `columns` are window series of equal length. Rows are made as they are written.
void WindowLines(const LineOut& out, const ProfileRecord& record, const PositionAxis& axis, const IriParams& iri,
                 const std::vector<std::string>& heads, const std::vector<const WaveSeries*>& columns) {
  const ProfileGeometry geometry = GeometryOf(record);
  const double pitch = geometry.StepSize;
  const double kp0 = IsNoValue(geometry.KpStart) ? 0.0 : geometry.KpStart;
  const double kmPerSample = (geometry.KpSign == 1 ? -pitch : pitch) / 1000.0;
  const double windowSamples = pitch > 0 ? RoundHalfAway(iri.IriBaseLength / pitch) : 0;
  const std::ptrdiff_t count = columns.empty() ? 0 : columns.front()->Values.size();
  WriteSectionCsv(out, axis, geometry, heads, static_cast<std::size_t>(count), [&](std::size_t r, SectionRow& row) {
    const auto i = static_cast<std::ptrdiff_t>(r) + 1;
    row.KpFrom = kp0 + static_cast<double>(i - 1) * kmPerSample;
    row.KpTo = kp0 + (static_cast<double>(i - 1) + windowSamples) * kmPerSample;
    row.Values.clear();
    for (const WaveSeries* column : columns) row.Values.push_back(i <= column->Values.size() ? column->Values[i] : kNoValue);
  });
}

void ThreeWaveIriLines(const LineOut& out, Session& session, const ProfileRecord& record, const PositionAxis& axis, const IriParams& iri) {
  const ThreeWaveSplit& split = record.ThreeWave;
  const WaveSeries l = WindowIri(session, record, split.LongWave.Values, iri);
  const WaveSeries m = WindowIri(session, record, split.MiddleWave.Values, iri);
  const WaveSeries s = WindowIri(session, record, split.ShortWave.Values, iri);
  WindowLines(out, record, axis, iri, {"L波-IRI(mm/m)", "M波-IRI(mm/m)", "S波-IRI(mm/m)"}, {&l, &m, &s});
}

void ShortWaveIriLines(const LineOut& out, Session& session, const ProfileRecord& record, const PositionAxis& axis, const IriParams& iri) {
  const WaveSeries profile = WindowIri(session, record, record.WorkProfile, iri);
  const WindowsWithBands shortWave = WindowIriWithBands(session, record, record.ThreeWave.ShortWave.Values, iri);
  const WaveSeries reduced = WindowIri(session, record, record.RepairStudy.ShortReduced.Values, iri);
  const std::string window = fmt::format("IRI({}m連続)", iri.IriBaseLength);
  std::vector<std::string> heads{"Profile", "S波" + window};
  std::vector<const WaveSeries*> columns{&profile, &shortWave.Wave};
  for (std::size_t k = 1; k <= 9; ++k) {
    heads.push_back(fmt::format("{}-OCT(S波)", k));
    columns.push_back(&shortWave.Band[k]);
  }
  // What the reduction achieves, beside what it started from.
  heads.push_back("S'波" + window);
  columns.push_back(&reduced);
  WindowLines(out, record, axis, iri, heads, columns);
}

void ShortWaveLines(const LineOut& out, Session& session, const ProfileRecord& record, const PositionAxis& axis) {
  const RepairStudyData& study = record.RepairStudy;
  BandReductionResult reduced;
  if (!ReduceShortWave(session, record, study.ShortReducedBy, reduced))
    throw LegacyError(ErrorNumber::InvalidData, ProfileList::NameOf(record) + ": S波を低減できません");
  reduced.Total = {};  // S' is the study's own
  std::vector<PointColumn> columns{{"Profile", record.WorkProfile.span()},
                                   {"S波Profile", record.ThreeWave.ShortWave.Values.span()},
                                   {"S'波Profile", study.ShortReduced.Values.span()}};
  for (std::size_t k = 1; k <= 9; ++k)
    columns.push_back({fmt::format("{}-OCT(S'波)", k), reduced.Reduced[k].Values.span()});
  WritePointCsv(out, axis, GeometryOf(record), columns);
}

void IdealShapeLines(const LineOut& out, Session& session, const ProfileRecord& record, const PositionAxis& axis) {
  const RepairStudyData& study = record.RepairStudy;
  const MWaveOutcome& outcome = ChosenOutcome(record);
  const Array1<double>& m = record.ThreeWave.MiddleWave.Values;
  const Array1<double>& mPrime = outcome.MPrime.Wave.Values;
  std::vector<double> thickness;  // M - M', as the column is headed: a fill shows negative
  thickness.reserve(static_cast<std::size_t>(std::min(m.size(), mPrime.size())));
  for (std::ptrdiff_t i = 1; i <= m.size() && i <= mPrime.size(); ++i) thickness.push_back(m[i] - mPrime[i]);
  ColumnSpill spill(session.Paths.TempPath);
  std::vector<PointColumn> columns{{"Profile", record.WorkProfile.span()}, {"M波Profile", m.span()}};
  AddSpilledBandColumns(columns, spill, session, record, m, "M");
  columns.push_back({"M'波(直線化)Profile", mPrime.span()});
  AddSpilledBandColumns(columns, spill, session, record, mPrime, "M'");
  columns.push_back({"M''波Profile", outcome.CorrectedMiddle.Values.span()});
  AddSpilledBandColumns(columns, spill, session, record, outcome.CorrectedMiddle.Values, "M''");
  columns.push_back({"L+M'+S", outcome.Corrected.Wave.Values.span()});
  // The ideal shape itself, which this file is named after.
  columns.push_back({"L+M'+S'", study.IdealShape.Wave.Values.span()});
  columns.push_back({"M-M'(厚さ変化)", thickness});
  WritePointCsv(out, axis, GeometryOf(record), columns);
}

}  // namespace

std::string RepairNamePart(RepairExportKind kind) { return "_" + RepairKindWord(kind) + "_"; }

std::string BuiltInRepairPattern(RepairExportKind kind) {
  return "$(PROFILENAME)$" + RepairNamePart(kind) + "$(YYYYMMDDHHNNSS)$";
}

std::string RepairKindWord(RepairExportKind kind) {
  switch (kind) {
    case RepairExportKind::ThreeWaveProfile: return "3波分解(Profile)";
    case RepairExportKind::ThreeWaveIri: return "3波分解(IRI)";
    case RepairExportKind::ShortWave: return "S波";
    // Named apart from the point form so that both may be written into one folder in one second.
    case RepairExportKind::ShortWaveIri: return "S波(IRI)";
    case RepairExportKind::IdealShape: return "理想形状";
  }
  return {};
}

bool HasRepairResult(RepairExportKind kind, const ProfileRecord& record) {
  switch (kind) {
    case RepairExportKind::ThreeWaveProfile:
    case RepairExportKind::ThreeWaveIri: return record.ThreeWave.Valid;
    case RepairExportKind::ShortWave:
    case RepairExportKind::ShortWaveIri: return record.ThreeWave.Valid && record.RepairStudy.ShortReducedValid;
    case RepairExportKind::IdealShape: return record.RepairStudy.MiddleValid && record.RepairStudy.IdealValid;
  }
  return false;
}

bool IsRepairErdKind(RepairExportKind kind) {
  return kind == RepairExportKind::ShortWave || kind == RepairExportKind::IdealShape;
}

void WriteRepairKindCsv(const LineOut& out, Session& session, RepairExportKind kind, const ProfileRecord& record,
                        const PositionAxis& axis, const IriParams& iri) {
  switch (kind) {
    case RepairExportKind::ThreeWaveProfile: return ThreeWaveProfileLines(out, record, axis);
    case RepairExportKind::ThreeWaveIri: return ThreeWaveIriLines(out, session, record, axis, iri);
    case RepairExportKind::ShortWave: return ShortWaveLines(out, session, record, axis);
    case RepairExportKind::ShortWaveIri: return ShortWaveIriLines(out, session, record, axis, iri);
    case RepairExportKind::IdealShape: return IdealShapeLines(out, session, record, axis);
  }
}

const Array1<double>& RepairKindValues(RepairExportKind kind, const ProfileRecord& record) {
  if (kind == RepairExportKind::ShortWave) return record.RepairStudy.ShortReduced.Values;
  if (kind == RepairExportKind::IdealShape) return record.RepairStudy.IdealShape.Wave.Values;
  throw LegacyError(ErrorNumber::InvalidData, "ERD形式で出力できない種別です: " + RepairKindWord(kind));
}

}  // namespace velmora
