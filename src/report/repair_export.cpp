#include "report/repair_export.h"

#include <cmath>

#include <fmt/format.h>

#include "app/common.h"
#include "app/legacy_error.h"
#include "app/legacy_math.h"
#include "report/result_csv.h"
#include "report/result_export.h"
#include "repair/ideal_shape.h"

namespace velmora {
namespace {

// Real parts of the nine bands of an octave split, each 1..n as a plain vector.
std::array<std::vector<double>, 10> BandWaves(const OctaveBandSet& octave) {
  std::array<std::vector<double>, 10> waves;
  for (std::size_t k = 1; k <= 9; ++k)
    for (const Complex& c : octave.Band[k].Values) waves[k].push_back(c.Re);
  return waves;
}

void AddBandColumns(std::vector<PointColumn>& columns, const std::array<std::vector<double>, 10>& waves,
                    const char* mark) {
  for (std::size_t k = 1; k <= 9; ++k) columns.push_back({fmt::format("{}-OCT({})", k, mark), waves[k]});
}

std::vector<std::string> ThreeWaveProfileLines(const ProfileRecord& record, const PositionAxis& axis) {
  const ThreeWaveSplit& split = record.ThreeWave;
  return PointCsvLines(axis, GeometryOf(record),
                       {{"Profile", record.WorkProfile.span()},
                        {"L波", split.LongWave.Values.span()},
                        {"M波", split.MiddleWave.Values.span()},
                        {"S波", split.ShortWave.Values.span()}});
}

// One row per window position, as the IRI tab's continuous file: from the window's first sample over
// the base length.
std::vector<std::string> ThreeWaveIriLines(const ProfileRecord& record, const PositionAxis& axis, const IriParams& iri) {
  const ThreeWaveSplit& split = record.ThreeWave;
  const double pitch = record.Erd.StepSize;
  std::array<StudyWave, 3> waves;
  const WaveSeries* sources[] = {&split.LongWave, &split.MiddleWave, &split.ShortWave};
  for (std::size_t w = 0; w < 3; ++w)
    if (!AnalyseStudyWave(sources[w]->Values, pitch, &iri, false, 0, waves[w]))
      throw LegacyError(ErrorNumber::InvalidData, "3波分解のIRIを計算できません");
  const ProfileGeometry geometry = GeometryOf(record);
  const double kp0 = IsNoValue(geometry.KpStart) ? 0.0 : geometry.KpStart;
  const double kmPerSample = (geometry.KpSign == 1 ? -pitch : pitch) / 1000.0;
  const double windowSamples = pitch > 0 ? RoundHalfAway(iri.IriBaseLength / pitch) : 0;
  auto at = [](const WaveSeries& series, std::int32_t i) {
    return i <= series.Values.size() ? series.Values[i] : kNoValue;
  };
  std::vector<SectionRow> rows;
  for (std::int32_t i = 1; i <= waves[0].Iri.IriWindowCount; ++i)
    rows.push_back({kp0 + (i - 1) * kmPerSample, kp0 + (i - 1 + windowSamples) * kmPerSample,
                    {at(waves[0].Iri.IriWindowWave, i), at(waves[1].Iri.IriWindowWave, i),
                     at(waves[2].Iri.IriWindowWave, i)}});
  return SectionCsvLines(axis, geometry, {"L波-IRI(mm/m)", "M波-IRI(mm/m)", "S波-IRI(mm/m)"}, rows);
}

std::vector<std::string> ShortWaveLines(const ProfileRecord& record, const PositionAxis& axis) {
  const RepairStudyData& study = record.RepairStudy;
  std::vector<PointColumn> columns{{"Profile", record.WorkProfile.span()},
                                   {"S波Profile", record.ThreeWave.ShortWave.Values.span()},
                                   {"S'波Profile", study.ShortReduced.Values.span()}};
  for (std::size_t k = 1; k <= 9; ++k)
    columns.push_back({fmt::format("{}-OCT(S'波)", k), study.ShortReducedBands[k].Values.span()});
  return PointCsvLines(axis, GeometryOf(record), columns);
}

std::vector<std::string> IdealShapeLines(const ProfileRecord& record, const PositionAxis& axis) {
  const RepairStudyData& study = record.RepairStudy;
  const MWaveOutcome& outcome = ChosenOutcome(record);
  const Array1<double>& m = record.ThreeWave.MiddleWave.Values;
  const Array1<double>& mPrime = outcome.MPrime.Wave.Values;
  std::vector<double> thickness;  // M - M', as the column is headed: a fill shows negative
  for (std::ptrdiff_t i = 1; i <= m.size() && i <= mPrime.size(); ++i) thickness.push_back(m[i] - mPrime[i]);
  const auto bandsM = BandWaves(study.Middle.Octave);
  const auto bandsMPrime = BandWaves(outcome.MPrime.Octave);
  const auto bandsMSecond = BandWaves(outcome.CorrectedMiddleOctave);
  std::vector<PointColumn> columns{{"Profile", record.WorkProfile.span()}, {"M波Profile", m.span()}};
  AddBandColumns(columns, bandsM, "M");
  columns.push_back({"M'波(直線化)Profile", mPrime.span()});
  AddBandColumns(columns, bandsMPrime, "M'");
  columns.push_back({"M''波Profile", outcome.CorrectedSplit.MiddleWave.Values.span()});
  AddBandColumns(columns, bandsMSecond, "M''");
  columns.push_back({"L+M'+S", outcome.Corrected.Wave.Values.span()});
  // The ideal shape itself, which this file is named after.
  columns.push_back({"L+M'+S'", study.IdealShape.Wave.Values.span()});
  columns.push_back({"M-M'(厚さ変化)", thickness});
  return PointCsvLines(axis, GeometryOf(record), columns);
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
    case RepairExportKind::IdealShape: return "理想形状";
  }
  return {};
}

bool HasRepairResult(RepairExportKind kind, const ProfileRecord& record) {
  switch (kind) {
    case RepairExportKind::ThreeWaveProfile:
    case RepairExportKind::ThreeWaveIri: return record.ThreeWave.Valid;
    case RepairExportKind::ShortWave: return record.ThreeWave.Valid && record.RepairStudy.ShortReducedValid;
    case RepairExportKind::IdealShape: return record.RepairStudy.MiddleValid && record.RepairStudy.IdealValid;
  }
  return false;
}

bool IsRepairErdKind(RepairExportKind kind) {
  return kind == RepairExportKind::ShortWave || kind == RepairExportKind::IdealShape;
}

std::vector<std::string> RepairKindLines(RepairExportKind kind, const ProfileRecord& record, const PositionAxis& axis,
                                         const IriParams& iri) {
  switch (kind) {
    case RepairExportKind::ThreeWaveProfile: return ThreeWaveProfileLines(record, axis);
    case RepairExportKind::ThreeWaveIri: return ThreeWaveIriLines(record, axis, iri);
    case RepairExportKind::ShortWave: return ShortWaveLines(record, axis);
    case RepairExportKind::IdealShape: return IdealShapeLines(record, axis);
  }
  return {};
}

const Array1<double>& RepairKindValues(RepairExportKind kind, const ProfileRecord& record) {
  if (kind == RepairExportKind::ShortWave) return record.RepairStudy.ShortReduced.Values;
  if (kind == RepairExportKind::IdealShape) return record.RepairStudy.IdealShape.Wave.Values;
  throw LegacyError(ErrorNumber::InvalidData, "ERD形式で出力できない種別です: " + RepairKindWord(kind));
}

}  // namespace velmora
