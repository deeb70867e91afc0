#include "evaluation/statistics.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

#include "analysis/iri.h"
#include "analysis/iri_sections.h"
#include "analysis/octave.h"
#include "base/app_paths.h"
#include "base/error_log.h"
#include "base/legacy_format.h"
#include "base/settings.h"
#include "base/text_encoding.h"
#include "base/user_interaction.h"
#include "evaluation/profile_extent.h"

namespace velmora {
namespace {

constexpr std::array<const char*, 12> kBandTokens = {"a01_全波長", "a02_長波長", "a03_短波長", "a04_1-OCT",
                                                     "a05_2-OCT",  "a06_3-OCT",  "a07_4-OCT",  "a08_5-OCT",
                                                     "a09_6-OCT",  "a10_7-OCT",  "a11_8-OCT",  "a12_9-OCT"};
constexpr std::array<const char*, 5> kMeasureTokens = {"b01_平均", "b02_標準偏差", "b03_最大値", "b04_最小値",
                                                       "b05_最大小差"};
constexpr std::array<const char*, 4> kLengthTokens = {"d01_10m連続", "d02_10m固定", "d03_100m固定", "d04_200m固定"};
constexpr std::string_view kValueFormat = "0.00000000";
constexpr std::string_view kKpFormat = "0.000";
constexpr double kGridTolerance = 1e-9;  // km

template <std::size_t N>
bool Any(const std::array<bool, N>& group) {
  return std::any_of(group.begin(), group.end(), [](bool on) { return on; });
}

template <std::size_t N>
std::string Ticked(const std::array<bool, N>& group, const std::array<const char*, N>& names) {
  std::string text;
  for (std::size_t k = 0; k < N; ++k)
    if (group[k]) text += (text.empty() ? "" : " ,  ") + std::string(names[k]);
  return text;
}

std::string Joined(const std::vector<std::string>& words) {
  std::string text;
  for (const auto& w : words) text += (text.empty() ? "" : " ,  ") + w;
  return text;
}

double MeasureOf(const SectionStatistics& s, std::size_t measure) {
  switch (measure) {
    case 0: return s.Mean;
    case 1: return s.StdDev;
    case 2: return s.Max;
    case 3: return s.Min;
    default: return s.Spread;
  }
}

constexpr double kBlank = std::numeric_limits<double>::quiet_NaN();

// One result column: its sort key, its head cells and its figures below the head (by body row).
struct Column {
  std::string Key;
  std::vector<std::string> Head;
  std::vector<double> Cells;
  bool Kp = false;
};

// A page: label column, head rows, an optional row of captions (repeated every `width` columns),
// then the body rows. The columns are sorted by key; the body is filled row by row.
StatisticsPage MakePage(const char* caption, const std::vector<std::string>& headLabels,
                        const std::vector<std::string>& captionRow, const std::vector<std::string>& rowLabels,
                        std::vector<Column> columns, std::size_t width = 1) {
  StatisticsPage page;
  page.Caption = caption;
  if (columns.empty()) return page;
  std::stable_sort(columns.begin(), columns.end(), [](const Column& a, const Column& b) { return a.Key < b.Key; });
  std::size_t rows = rowLabels.size();
  for (const Column& c : columns) rows = std::max(rows, c.Cells.size());
  for (std::size_t h = 0; h < headLabels.size(); ++h) {
    std::vector<std::string> row{headLabels[h]};
    for (const Column& c : columns) row.push_back(c.Head[h]);
    page.Head.push_back(std::move(row));
  }
  if (!captionRow.empty()) {
    std::vector<std::string> row(columns.size() + 1);
    row[0] = captionRow[0];
    for (std::size_t c = 0; c < columns.size(); ++c) row[c + 1] = captionRow[1 + c % width];
    page.Head.push_back(std::move(row));
  }
  page.RowLabels = rowLabels;
  page.RowLabels.resize(rows);
  for (const Column& c : columns) page.KpColumn.push_back(c.Kp);
  const std::size_t stride = columns.size();
  page.Body.assign(rows * stride, kBlank);
  for (std::size_t c = 0; c < stride; ++c) {
    const std::vector<double>& cells = columns[c].Cells;
    for (std::size_t r = 0; r < cells.size(); ++r) page.Body[r * stride + c] = cells[r];
  }
  return page;
}

// The series of one band of a split profile (mm), 1-based band index as in the selection.
std::vector<double> BandSeries(const AnalysisBlock& block, std::size_t band) {
  const auto n = static_cast<std::size_t>(block.Count);
  if (band == 0) return {block.Profile.Values.begin(), block.Profile.Values.begin() + block.Count};
  if (band == 1) return {block.Octave.LongSum.Values.begin(), block.Octave.LongSum.Values.begin() + block.Count};
  if (band == 2) return {block.Octave.ShortSum.Values.begin(), block.Octave.ShortSum.Values.begin() + block.Count};
  const auto& values = block.Octave.Band[band - 2].Values;
  return {values.begin(), values.begin() + static_cast<std::ptrdiff_t>(n)};
}

// The IRI results of one band: its 10 m window series and its fixed sections.
struct BandIri {
  std::vector<double> Window;
  SectionIri Fixed;
};

// The wave of the split behind entry b >= 1 of the selection: the long sum, the short sum, bands 1..9.
int SplitWaveOfEntry(std::size_t b) {
  return b == 1 ? kLongSumWave : b == 2 ? kShortSumWave : static_cast<int>(b) - 2;
}

// The profile first, then the long and short sums and the nine bands, as in the selection. Each band's
// response is made, used and dropped in turn, so at most one is held at a time.
std::vector<BandIri> IriOfBands(const DebugTables& debug, const ProfileRecord& profile, const StatisticsRequest& request) {
  AnalysisBlock block = profile.Analysis;
  IriParams params = request.Iri;
  params.IriBaseLength = 10.0;
  CalcIriProfile(debug, block, params, false);
  const IriResults& r = block.Iri;
  const KpExtent extent = ProfileKpExtent(profile);
  const double dx = 1.0 / block.SamplesPerMetre;
  std::vector<BandIri> bands(12);
  for (std::size_t b = 0; b < 12; ++b) {
    const SplitWaveIri split = b == 0 ? SplitWaveIri{} : IriOfSplitWave(block, params, SplitWaveOfEntry(b));
    const auto& w = (b == 0 ? r.IriWindowWave : split.Window).Values;
    const Array1<double>& response = b == 0 ? r.IriResponseWave : split.Response;
    bands[b].Window.assign(w.begin(), w.begin() + std::min<std::ptrdiff_t>(r.IriWindowCount, w.size()));
    CalcFixedSections(KpStartKm(profile), dx, extent.Downward, 10.0, block.Count, block.Profile.Values.span(),
                      r.IriResponseCount, response.span(), request.SkipPartialSections, bands[b].Fixed);
  }
  return bands;
}

// The sections of one evaluation length: window values count one sample each.
std::vector<IriSectionValue> SectionsOf(const BandIri& band, std::size_t length) {
  std::vector<IriSectionValue> sections;
  if (length == 0) {
    for (double v : band.Window) sections.push_back({1, v});
    return sections;
  }
  const auto& table = length == 1 ? band.Fixed.Sec10 : length == 2 ? band.Fixed.Sec100 : band.Fixed.Sec200;
  for (const SectionEntry& e : table)
    if (!IsNoValue(e.Iri)) sections.push_back({e.Count, e.Iri});
  return sections;
}

}  // namespace

std::string StatisticsPage::Cell(std::size_t row, std::size_t column) const {
  if (row < Head.size()) return Head[row].at(column);
  const std::size_t bodyRow = row - Head.size();
  if (column == 0) return RowLabels.at(bodyRow);
  const double value = Body.at(bodyRow * KpColumn.size() + column - 1);
  if (std::isnan(value)) return {};
  return FormatNumber(value, KpColumn[column - 1] ? kKpFormat : kValueFormat);
}

std::vector<std::string> StatisticsPage::RowText(std::size_t row) const {
  std::vector<std::string> cells;
  for (std::size_t c = 0; c < Width(); ++c) cells.push_back(Cell(row, c));
  return cells;
}

bool CheckStatisticsSelection(Session& session, std::int32_t selectedCount, StatisticsSelection& selection) {
  auto refuse = [&session](const char* text) {
    session.Ui().Message(text, "警告", MsgIcon::Exclamation, MsgButtons::Ok, MsgAnswer::Ok);
    return false;
  };
  if (selectedCount < 1) return refuse("表示用プロファイルが選択されていません。");
  selection.ProfileSide = selection.ProfileBandsHeader || Any(selection.ProfileBands);
  selection.IriSide = selection.IriBandsHeader || Any(selection.IriBands);
  if (selection.ProfileSide && !Any(selection.ProfileBands))
    return refuse("帯域(プロファイル)は１個以上選択してください。");
  if (selection.ProfileSide && !Any(selection.ProfileMeasures))
    return refuse("統計値(プロファイル)は１個以上選択してください。");
  if (selection.IriSide && !Any(selection.IriBands)) return refuse("帯域(IRI)は１個以上選択してください。");
  if (selection.IriSide && !Any(selection.IriMeasures)) return refuse("統計値(IRI)は１個以上選択してください。");
  if (selection.IriSide && !Any(selection.IriLengths))
    return refuse("IRI算出基準長(IRI)は１個以上選択してください。");
  return true;
}

std::vector<std::string> StatisticsSettingLines(const StatisticsSelection& s) {
  return {"プロファイル(帯域) = " + Ticked(s.ProfileBands, kStatisticsBands),
          "プロファイル(統計値) = " + Ticked(s.ProfileMeasures, kStatisticsMeasures),
          "プロファイル(並び順) = " + Joined(s.ProfileOrder),
          "ＩＲＩ(帯域) = " + Ticked(s.IriBands, kStatisticsBands),
          "ＩＲＩ(統計値) = " + Ticked(s.IriMeasures, kStatisticsMeasures),
          "ＩＲＩ(評価延長) = " + Ticked(s.IriLengths, kIriEvaluationLengths),
          "ＩＲＩ(並び順) = " + Joined(s.IriOrder)};
}

std::string StatisticsSortKey(const std::vector<std::string>& order, std::int32_t place, std::int32_t band,
                              std::int32_t measure, std::int32_t length) {
  std::string key;
  for (const std::string& word : order) {
    if (word == "プロファイル") key += FormatNumber(place, "000");
    else if (word == "帯域") key += kBandTokens.at(static_cast<std::size_t>(band));
    else if (word == "統計値" && measure >= 0) key += kMeasureTokens.at(static_cast<std::size_t>(measure));
    else if (word == "IRI算出基準長" && length >= 0) key += kLengthTokens.at(static_cast<std::size_t>(length));
    key += "/";
  }
  return key;
}

SectionGridLine BuildSectionGrid(double lowestStartKm, double highestEndKm, std::int32_t lengthM, double pitch) {
  double boundary = 0;
  std::int32_t count = 0;
  NextSectionBoundary(lowestStartKm, pitch, lengthM, false, boundary, count);
  SectionGridLine grid;
  grid.LengthKm = lengthM / 1000.0;
  grid.FirstKp = std::abs(boundary - lowestStartKm) < kGridTolerance ? lowestStartKm : boundary - grid.LengthKm;
  std::int32_t k = 1;
  while (grid.FirstKp + (k - 1) * grid.LengthKm + kGridTolerance < highestEndKm) ++k;
  // Border k is the first at or past the end; a last sample right on it opens one more section.
  const double last = grid.FirstKp + (k - 1) * grid.LengthKm;
  grid.SectionCount = k - 1 + (std::abs(last - highestEndKm) < kGridTolerance ? 1 : 0);
  return grid;
}

bool RunStatistics(Session& session, ProfileList& list, std::span<const std::int32_t> selectedRows, StatisticsSelection selection,
                   const StatisticsRequest& request, StatisticsResults& results) {
  if (!CheckStatisticsSelection(session, static_cast<std::int32_t>(selectedRows.size()), selection)) return false;
  for (std::int32_t row : selectedRows)
    if (!DecomposeProfile(session, list.Items.at(row), request.ConvergentOctaves, request.Limits)) return false;
  return RunStatisticsOnSplit(session, list, selectedRows, selection, request, results);
}

bool RunStatisticsOnSplit(Session& session, const ProfileList& list, std::span<const std::int32_t> selectedRows,
                          StatisticsSelection selection, const StatisticsRequest& request,
                          StatisticsResults& results) {
  bool done = false;
  Guarded(session, "frmTop", "cmdGo統計値", [&] {
    if (!CheckStatisticsSelection(session, static_cast<std::int32_t>(selectedRows.size()), selection)) return;
    if (session.Settings.DebugLevel > 0 && !session.Paths.UserLocalPath.empty())
      for (const auto& line : StatisticsSettingLines(selection))
        AppendSystemTextLine(std::filesystem::path(session.Paths.UserLocalPath) / "debug.log", line);
    std::vector<std::int32_t> rows(selectedRows.begin(), selectedRows.end());
    std::sort(rows.begin(), rows.end());
    for (std::int32_t row : rows)
      if (!list.Items.at(row).Analysis.Octave.Calculated)
        RaiseSubscriptOutOfRange(ProfileList::NameOf(list.Items.at(row)) + ": octave bands not split");

    StatisticsResults fresh;
    double low = 0, high = 0, pitchOfLowest = 0;
    for (std::size_t q = 0; q < rows.size(); ++q) {
      const ProfileRecord& p = list.Items.at(rows[q]);
      const KpExtent e = ProfileKpExtent(p);
      if (q == 0 || e.Start < low) low = e.Start, pitchOfLowest = p.Erd.StepSize;
      high = q == 0 ? e.End : std::max(high, e.End);
    }
    for (std::size_t g = 0; g < 3; ++g)
      fresh.Grid[g] = BuildSectionGrid(low, high, kStatisticsSectionLengths[g], pitchOfLowest);
    std::array<std::vector<std::string>, 3> gridLabels;
    for (std::size_t g = 0; g < 3; ++g)
      for (std::int32_t k = 1; k <= fresh.Grid[g].SectionCount; ++k)
        gridLabels[g].push_back(FormatNumber(fresh.Grid[g].FirstKp + (k - 1) * fresh.Grid[g].LengthKm, kKpFormat));

    std::array<std::vector<Column>, 8> columns;
    for (std::size_t q = 0; q < rows.size(); ++q) {
      const ProfileRecord& p = list.Items.at(rows[q]);
      const std::string name = ProfileList::NameOf(p);
      const auto place = static_cast<std::int32_t>(q + 1);
      const double pitch = p.Erd.StepSize;
      const bool downward = p.Erd.KpSign != 0;
      for (std::size_t b = 0; selection.ProfileSide && b < 12; ++b) {
        if (!selection.ProfileBands[b]) continue;
        const std::vector<double> values = BandSeries(p.Analysis, b);
        for (std::size_t page = 0; page < 4; ++page) {
          std::vector<SectionStatistics> records;
          std::int32_t firstSection = 1;
          if (page == 0) {
            records = CalcSectionStatistics(values, static_cast<std::int32_t>(values.size()), 0);
          } else {
            const GridEntry entry = FindGridEntry(fresh.Grid[page - 1], KpStartKm(p), pitch, downward);
            records = CalcSectionStatistics(values, BlockSampleCount(kStatisticsSectionLengths[page - 1], pitch),
                                            entry.FirstCount);
            firstSection = entry.Section;
          }
          for (std::size_t m = 0; m < 5; ++m) {
            if (!selection.ProfileMeasures[m]) continue;
            Column column{StatisticsSortKey(selection.ProfileOrder, place, static_cast<std::int32_t>(b),
                                            static_cast<std::int32_t>(m)),
                          {name, kStatisticsBands[b], kStatisticsMeasures[m]},
                          {}};
            const std::size_t sections = page == 0 ? 1 : gridLabels[page - 1].size();
            column.Cells.assign(sections, kBlank);
            for (std::size_t r = 0; r < records.size(); ++r) {
              // Record r lies in grid section |first| + r, counted down for a downward profile.
              const std::int64_t section = page == 0 ? 1
                                           : firstSection > 0 ? firstSection + static_cast<std::int64_t>(r)
                                                              : -firstSection - static_cast<std::int64_t>(r);
              if (section >= 1 && section <= static_cast<std::int64_t>(sections))
                column.Cells[static_cast<std::size_t>(section - 1)] = MeasureOf(records[r], m);
            }
            columns[page].push_back(std::move(column));
          }
        }
      }
      if (!selection.IriSide) continue;
      const std::vector<BandIri> iri = IriOfBands(DebugTablesOf(session), p, request);
      for (std::size_t b = 0; b < 12; ++b) {
        if (!selection.IriBands[b]) continue;
        for (std::size_t e = 0; e < 4; ++e) {
          if (!selection.IriLengths[e]) continue;
          const SectionStatistics s = CalcIriStatistics(SectionsOf(iri[b], e));
          for (std::size_t m = 0; m < 5; ++m) {
            if (!selection.IriMeasures[m]) continue;
            columns[4].push_back({StatisticsSortKey(selection.IriOrder, place, static_cast<std::int32_t>(b),
                                                    static_cast<std::int32_t>(m), static_cast<std::int32_t>(e)),
                                  {name, kIriEvaluationLengths[e], kStatisticsBands[b], kStatisticsMeasures[m]},
                                  {s.Count == 0 ? kBlank : MeasureOf(s, m)}});
          }
          if (e == 0) continue;
          // The section pages list the fixed sections themselves: KP from, KP to, IRI.
          const auto& table = e == 1 ? iri[b].Fixed.Sec10 : e == 2 ? iri[b].Fixed.Sec100 : iri[b].Fixed.Sec200;
          std::array<Column, 3> three;
          for (std::size_t c = 0; c < 3; ++c) {
            three[c].Key = StatisticsSortKey(selection.IriOrder, place, static_cast<std::int32_t>(b), -1,
                                             static_cast<std::int32_t>(e)) + static_cast<char>('0' + c);
            three[c].Head = {name, kIriEvaluationLengths[e], kStatisticsBands[b], ""};
            three[c].Kp = c < 2;
          }
          for (const SectionEntry& entry : table) {
            if (IsNoValue(entry.Iri)) continue;
            three[0].Cells.push_back(entry.KpFrom);
            three[1].Cells.push_back(entry.KpTo);
            three[2].Cells.push_back(entry.Iri);
          }
          for (auto& c : three) columns[4 + e].push_back(std::move(c));
        }
      }
    }

    const std::vector<std::string> profileHead = {"プロファイル", "帯域", "統計値"};
    const std::vector<std::string> iriHead = {"プロファイル", "IRI算出基準長", "帯域", "統計値"};
    fresh.Pages[0] = MakePage(kStatisticsPages[0], profileHead, {}, {"全区間"}, std::move(columns[0]));
    for (std::size_t g = 0; g < 3; ++g)
      fresh.Pages[1 + g] = MakePage(kStatisticsPages[1 + g], profileHead, {"KP", ""}, gridLabels[g],
                                    std::move(columns[1 + g]));
    fresh.Pages[4] = MakePage(kStatisticsPages[4], iriHead, {}, {"全区間"}, std::move(columns[4]));
    for (std::size_t e = 1; e < 4; ++e)
      fresh.Pages[4 + e] = MakePage(kStatisticsPages[4 + e], iriHead, {"", "KP(自)", "KP(至)", "IRI"}, {},
                                    std::move(columns[4 + e]), 3);
    fresh.Valid = true;
    results = std::move(fresh);
    done = true;
  });
  return done;
}


}  // namespace velmora
