#include "report/exel_grid.h"

#include <algorithm>
#include <string>

#include "analysis/iri_sections.h"
#include "base/legacy_math.h"

namespace velmora {
namespace {

// Where one profile lies on the grid, in the report's unit.
struct Placement {
  double Low = 0;
  double High = 0;
  double Scale = 1;  // report unit per metre
  bool Descending = false;
  std::int32_t Points = 0;
};

Placement PlaceProfile(const ProfileRecord& record, const PositionAxis& axis, ExelProfileSlot& slot) {
  slot.StartPosition = IsNoValue(record.Erd.KpStart) ? 0.0 : record.Erd.KpStart;
  slot.Pitch = record.Erd.StepSize;
  slot.Descending = record.Erd.KpSign == 1;
  Placement p;
  p.Points = record.WorkCount;
  double start = 0;
  if (axis.Mode == PositionMode::Kp) {
    start = slot.StartPosition;
    p.Scale = 1.0 / 1000.0;
    p.Descending = slot.Descending;
  } else {
    p.Scale = axis.Unit == KpUnit::Km ? 1.0 / 1000.0 : 1.0;
  }
  const double length = (p.Points - 1) * slot.Pitch * p.Scale;
  const double other = p.Descending ? start - length : start + length;
  p.Low = std::min(start, other);
  p.High = std::max(start, other);
  return p;
}

bool AskToGoOnWith(Session& session, std::int32_t rows) {
  for (const char* question : {"処理を継続しますか？", "本当に処理を継続しますか？"}) {
    const std::string text = "データの行数が３万行を超えています。\r\n\r\n出力データ行数：" + std::to_string(rows) +
                             "\r\n\r\n" + question;
    if (session.Ui().Message(text, "警告", MsgIcon::Exclamation, MsgButtons::OkCancel, MsgAnswer::Cancel) !=
        MsgAnswer::Ok)
      return false;
  }
  return true;
}

void CopyRow(const ProfileRecord& record, std::int32_t point, ExelRowData& row) {
  const auto valueAt = [point](const Array1<double>& values) {
    return point <= values.size() ? values[point] : kNoValue;
  };
  const OctaveBandSet& octave = record.Analysis.Octave;
  row.All = valueAt(record.WorkProfile);
  row.Long = valueAt(octave.LongSum.Values);
  row.Short = valueAt(octave.ShortSum.Values);
  for (std::size_t band = 1; band <= 9; ++band) row.Oct[band] = valueAt(octave.Band[band].Values);
}

void PlaceSamples(const ProfileRecord& record, const Placement& p, std::int32_t first, ExelProfileSlot& slot) {
  for (std::int32_t i = 1; i <= p.Points; ++i)
    CopyRow(record, i, slot.Rows.at(p.Descending ? first + p.Points - i : first + i - 1));
  // Each 10 m window's value stands at its window's middle, 5 m after its first sample.
  const Array1<double>& iri = record.Analysis.Iri.IriWindowWave.Values;
  const double half = 5.0 / slot.Pitch;
  for (std::int32_t i = 1; i <= iri.size(); ++i) {
    const double at = p.Descending ? first + p.Points - i - 1 - half + 1e-10 : first + i - 1 + half + 1e-10;
    const std::int32_t row = CLng(at);
    if (row >= 1 && row <= slot.RowCount) slot.Rows[row].Iri10 = iri[i];
  }
}

// The sections of one length from the first boundary at or after the grid's start, their IRI read
// from the 10 m values every 10 m, averaged over 10 or 20 of them; one null makes a section null.
void FillSectionTable(const ExelProfileSlot& slot, std::int32_t length, double low, double high, double scale,
                      Array1<ExelSection>& table, std::int32_t& count) {
  double boundaryKm = 0;
  std::int32_t samples = 0;
  NextSectionBoundary(low / scale / 1000.0, slot.Pitch, length, false, boundaryKm, samples);
  const double boundary = boundaryKm * 1000.0 * scale;
  const double step = length * scale;
  std::vector<ExelSection> sections;
  for (double d = boundary; length == 10 ? d < high : d <= high; d = boundary + static_cast<double>(sections.size()) * step)
    sections.push_back({d, kNoValue});

  // Grid distances are sums of steps: a hair below the boundary still counts as on it.
  std::int32_t firstRow = 1;
  while (firstRow <= slot.RowCount && slot.Distance[firstRow] + 1e-10 < boundary) ++firstRow;
  const std::int32_t k = static_cast<std::int32_t>(Int(10.0 / slot.Pitch + 0.5));
  const std::int32_t perSection = length / 10;
  std::int32_t row = firstRow + k / 2;
  for (ExelSection& section : sections) {
    double sum = 0;
    for (std::int32_t m = 0; m < perSection; ++m, row += k) {
      const double value = row <= slot.RowCount ? slot.Rows[row].Iri10 : kNoValue;
      if (IsNoValue(sum) || IsNoValue(value)) sum = kNoValue;
      else sum += value;
    }
    section.Iri = IsNoValue(sum) ? kNoValue : sum / perSection;
  }
  count = static_cast<std::int32_t>(sections.size());
  table = Array1<ExelSection>(std::move(sections));
}

// The last section index, from slot 1's count down, where any slot has a value becomes every count.
void EqualiseCounts(ExelScriptState& state, std::int32_t ExelProfileSlot::*countOf,
                    Array1<ExelSection> ExelProfileSlot::*tableOf) {
  std::int32_t last = state.Slots[1].*countOf;
  const auto anyValue = [&](std::int32_t index) {
    for (std::int32_t s = 1; s <= state.SlotCount; ++s) {
      const ExelProfileSlot& slot = state.Slots[s];
      if (index <= slot.*countOf && !IsNoValue((slot.*tableOf)[index].Iri)) return true;
    }
    return false;
  };
  while (last > 0 && !anyValue(last)) --last;
  for (std::int32_t s = 1; s <= state.SlotCount; ++s) state.Slots[s].*countOf = last;
}

}  // namespace

bool SetupExelData(Session& session, const ExelTemplate& report, const ProfileList& profiles,
                   const PositionAxis& axis, ExelScriptState& state) {
  std::vector<ExelProfileSlot> slots;
  for (const ExelParamRow& param : report.Params) {
    if (param.Kind.find("選択") == std::string::npos) continue;
    const std::int32_t choice = GetProfileChoice(state, param.Name);
    if (choice <= 0 || choice > profiles.Count()) continue;
    ExelProfileSlot& slot = slots.emplace_back();
    slot.Name = param.Name;
    slot.ProfileIndex = choice;
  }
  if (slots.empty()) {
    session.Ui().Inform("出力対象プロファイルが一個も指定されていません。", "警告");
    return false;
  }
  state.UnitText = axis.Mode == PositionMode::Kp ? "KP" : axis.Unit == KpUnit::Km ? "km" : "m";

  std::vector<Placement> placements;
  double low = 1e30, high = -1e30;
  for (ExelProfileSlot& slot : slots) {
    placements.push_back(PlaceProfile(profiles.Items[slot.ProfileIndex], axis, slot));
    low = std::min(low, placements.back().Low);
    high = std::max(high, placements.back().High);
  }
  // Profiles of different pitch are not refused: the last one's pitch makes the grid.
  const double step = slots.back().Pitch * placements.back().Scale;
  const std::int32_t rows = CLng((high - low + 1e-10) / step + 1);
  if (rows > kExelRowsWithoutQuestion && !AskToGoOnWith(session, rows)) return false;

  for (std::size_t s = 0; s < slots.size(); ++s) {
    ExelProfileSlot& slot = slots[s];
    const Placement& p = placements[s];
    slot.RowCount = rows;
    slot.Distance.assign_zero(rows);
    for (std::int32_t i = 1; i <= rows; ++i) slot.Distance[i] = low + (i - 1) * step;
    slot.Rows = Array1<ExelRowData>(static_cast<std::size_t>(rows));
    PlaceSamples(profiles.Items[slot.ProfileIndex], p, CLng((p.Low - low + 1e-10) / step + 1), slot);
    FillSectionTable(slot, 10, low, high, p.Scale, slot.Table10, slot.Count10);
    FillSectionTable(slot, 100, low, high, p.Scale, slot.Table100, slot.Count100);
    FillSectionTable(slot, 200, low, high, p.Scale, slot.Table200, slot.Count200);
  }
  state.Slots = Array1<ExelProfileSlot>(std::move(slots));
  state.SlotCount = static_cast<std::int32_t>(state.Slots.size());
  EqualiseCounts(state, &ExelProfileSlot::Count10, &ExelProfileSlot::Table10);
  EqualiseCounts(state, &ExelProfileSlot::Count100, &ExelProfileSlot::Table100);
  EqualiseCounts(state, &ExelProfileSlot::Count200, &ExelProfileSlot::Table200);
  return true;
}

}  // namespace velmora
