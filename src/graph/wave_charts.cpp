// The charts of waves along the road: profiles, filters, octave bands, band reduction, repair study.
#include <fmt/format.h>

#include <cmath>

#include "base/common.h"
#include "graph/chart_data.h"
#include "graph/charts.h"
#include "profile/profile_list.h"
#include "repair/ideal_shape.h"

namespace velmora::graph {
namespace {

constexpr Colour kInputGrey = 0xB0B0B0;
constexpr double kTitleRoom = 22;  // pixels under the last of stacked panels for its x axis title

void Extend(std::pair<double, double>& range, std::span<const double> values, bool& any) {
  if (values.empty()) return;
  const auto [low, high] = ValueRange(values);
  range = any ? std::pair{std::fmin(range.first, low), std::fmax(range.second, high)} : std::pair{low, high};
  any = true;
}

// Distance (m) from 0 to the longest of the waves.
double LongestDistance(std::span<const ProfileRecord* const> profiles) {
  double length = 0;
  for (const ProfileRecord* p : profiles) length = std::fmax(length, ProfileLength(*p));
  return length > 0 ? length : 1;
}

// A panel of waves along one distance axis; the y axis spans them all.
struct WaveLine {
  std::span<const double> Values;
  double Pitch;
  DrawOptions Pen;
};

void WavePanel(const ChartCanvas& canvas, const Rect& area, std::string_view caption, double length,
               const std::vector<WaveLine>& lines, const std::vector<LegendEntry>& legend, bool symmetric,
               const std::string& xTitle, Colour background = kWhite,
               const std::vector<std::pair<double, DrawOptions>>& rules = {}) {
  std::pair<double, double> range{0, 1};
  bool any = false;
  for (const WaveLine& line : lines) Extend(range, line.Values, any);
  for (const auto& rule : rules) {
    range.first = std::fmin(range.first, rule.first);
    range.second = std::fmax(range.second, rule.first);
  }
  if (symmetric) {
    const double reach = std::fmax(std::fabs(range.first), std::fabs(range.second));
    range = {-reach, reach};
  }
  ChartPanel panel = CanvasPanel(canvas, area, {0, length, false, xTitle, 8}, {range.first, range.second, false, "mm", 4});
  panel.DrawAxes(caption, background);
  for (const WaveLine& line : lines) panel.Wave(0, line.Pitch, line.Values, line.Pen);
  for (const auto& rule : rules) panel.HorizontalRule(rule.first, rule.second);
  if (!legend.empty()) panel.Legend(legend);
}

std::string IriText(double iri) { return iri == kNoValue ? std::string("-") : fmt::format("{:.2f}", iri); }

}  // namespace

Colour PaletteColour(const ChartCanvas& canvas, std::size_t index) {
  return canvas.Palette.empty() ? kBlack : canvas.Palette[index % canvas.Palette.size()];
}

std::string OctaveLabel(int band) {
  static const char* const kDigits[] = {"", "１", "２", "３", "４", "５", "６", "７", "８", "９"};
  return fmt::format("{} ＯＣＴ", kDigits[band]);
}

std::string OctaveRange(int band) {
  static const char* const kRanges[] = {"",          "51.2～102.4", "25.6～51.2", "12.8～25.6", "6.4～12.8",
                                        "3.2～6.4", "1.6～3.2",    "0.8～1.6",   "0.4～0.8",   "0.2～0.4"};
  return fmt::format("(波長{}m)", kRanges[band]);
}

std::vector<Rect> StackedPanels(const Rect& area, int count, double extraForLast) {
  std::vector<Rect> panels;
  const double height = (area.Height() - extraForLast) / count;
  for (int i = 0; i < count; ++i)
    panels.push_back({area.Left, area.Top + height * i, area.Right, area.Top + height * (i + 1)});
  panels.back().Bottom = area.Bottom;
  return panels;
}

Colour LimitLineColourFor(Colour limitColour, Colour bandColour) {
  // A limit line in the band's own colour would vanish into the wave.
  return limitColour == bandColour ? kBlack : limitColour;
}

void DrawProfileChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles,
                      const ProfileMarks& marks) {
  enum Mark { Mean, Deviation, Maximum, Minimum, Iri };
  std::vector<WaveLine> lines;
  std::vector<LegendEntry> legend;
  std::vector<std::pair<double, DrawOptions>> rules;
  const auto rule = [&rules](double y, Colour colour) { rules.push_back({y, {.Width = 2, .Color = colour}}); };
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const ProfileRecord& p = *profiles[i];
    const Colour colour = PaletteColour(canvas, i);
    lines.push_back({Samples(p.WorkProfile, p.WorkCount), PitchOf(p), {.Color = colour}});
    const ProfileStatistics& s = p.Statistics;
    if (marks[Mean]) rule(s.Mean, kMarkMean);
    if (marks[Deviation]) {
      rule(s.Mean - s.StdDev, kMarkDeviation);
      rule(s.Mean + s.StdDev, kMarkDeviation);
    }
    if (marks[Maximum]) rule(s.Max, kMarkMaximum);
    if (marks[Minimum]) rule(s.Min, kMarkMinimum);
    const std::string name = ProfileList::NameOf(p);
    legend.push_back({marks[Iri] ? fmt::format("{}  IRI {} mm/m", name, IriText(p.Analysis.Iri.IriWholeProfile)) : name, colour});
  }
  const std::array<std::pair<const char*, Colour>, 4> captions{
      {{"平均", kMarkMean}, {"平均±σ", kMarkDeviation}, {"最大", kMarkMaximum}, {"最小", kMarkMinimum}}};
  for (std::size_t m = 0; m < captions.size(); ++m)
    if (marks[m]) legend.push_back({captions[m].first, captions[m].second, 0, 2});
  WavePanel(canvas, canvas.Area, "縦断プロファイル", LongestDistance(profiles), lines, legend, false, "距離 (m)",
            kWhite, rules);
}

void DrawFilterChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles) {
  const std::vector<Rect> panels = StackedPanels(canvas.Area, static_cast<int>(std::max<std::size_t>(1, profiles.size())));
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const ProfileRecord& p = *profiles[i];
    const FilterResults& filter = p.Analysis.Filter;
    const Colour colour = PaletteColour(canvas, i);
    const std::string output =
        filter.Request.CalcType == FilterCalcType::Slope ? "Slope (mm/m)" : FilterKindName(filter.Request.Band);
    WavePanel(canvas, panels[i], fmt::format("{}  フィルター処理", ProfileList::NameOf(p)), LongestDistance(profiles),
              {{Samples(p.WorkProfile, p.WorkCount), PitchOf(p), {.Color = kInputGrey}},
               {Samples(filter.FilterWave.Values, filter.FilterCount), PitchOf(p), {.Color = colour}}},
              {{"入力", kInputGrey}, {output, colour}}, false, i + 1 == profiles.size() ? "距離 (m)" : "");
  }
}

void DrawOctaveChart(const ChartCanvas& canvas, const ProfileRecord& profile) {
  const OctaveBandSet& octave = profile.Analysis.Octave;
  const std::vector<Rect> panels = StackedPanels(canvas.Area, 11, kTitleRoom);
  const double pitch = PitchOf(profile);
  const double length = ProfileLength(profile);
  for (int band = 1; band <= 9; ++band) {
    const OctaveBand& b = octave.Band[static_cast<std::size_t>(band)];
    WavePanel(canvas, panels[static_cast<std::size_t>(band - 1)],
              fmt::format("{} {}", OctaveLabel(band), OctaveRange(band)), length,
              {{Samples(b.Values, profile.Analysis.Count), pitch, {.Color = canvas.Bands[static_cast<std::size_t>(band)]}}},
              {}, true, "");
  }
  WavePanel(canvas, panels[9], "長波長成分の和", length, {{Samples(octave.LongSum), pitch, {.Color = 0x800000}}}, {},
            true, "");
  WavePanel(canvas, panels[10], "短波長成分の和", length, {{Samples(octave.ShortSum), pitch, {.Color = 0x000080}}},
            {}, true, "距離 (m)");
}

void DrawBandReductionChart(const ChartCanvas& canvas, const ProfileRecord& profile, Colour limitColour) {
  const BandReductionBlock& reduction = profile.Analysis.BandReduction;
  const OctaveBandSet& octave = profile.Analysis.Octave;
  const std::vector<Rect> panels = StackedPanels(canvas.Area, 10, kTitleRoom);
  const double pitch = PitchOf(profile);
  const double length = ProfileLength(profile);
  for (int band = 1; band <= 9; ++band) {
    const auto at = static_cast<std::size_t>(band);
    const double limit = reduction.Limits[at];
    std::vector<std::pair<double, DrawOptions>> rules;
    std::string caption = fmt::format("{} {}", OctaveLabel(band), OctaveRange(band));
    if (limit > 0 && limit < 1e30) {
      const Colour colour = LimitLineColourFor(limitColour, canvas.Bands[at]);
      rules = {{limit, {.Style = 1, .Color = colour}}, {-limit, {.Style = 1, .Color = colour}}};
      caption += fmt::format("  低減ライン ±{:.2f} mm", limit);
    }
    WavePanel(canvas, panels[at - 1], caption, length,
              {{Samples(octave.Band[at].Values, profile.Analysis.Count), pitch, {.Color = kInputGrey}},
               {Samples(reduction.Result.Reduced[at]), pitch, {.Color = canvas.Bands[at]}}},
              band == 1 ? std::vector<LegendEntry>{{"低減前", kInputGrey}, {"低減後", canvas.Bands[1]}}
                        : std::vector<LegendEntry>{},
              true, "", kWhite, rules);
  }
  WavePanel(canvas, panels[9], "低減後の合計", length,
            {{Samples(profile.Analysis.Profile), pitch, {.Color = kInputGrey}},
             {Samples(reduction.Result.Total), pitch, {.Color = 0x000080}}},
            {{"プロファイル", kInputGrey}, {"低減後合計", 0x000080}}, false, "距離 (m)");
}

void DrawRepairChart(const ChartCanvas& canvas, const ProfileRecord& profile) {
  const ThreeWaveSplit& split = profile.ThreeWave;
  const RepairStudyData& study = profile.RepairStudy;
  const MWaveOutcome& outcome = ChosenOutcome(profile);
  const std::vector<Rect> panels = StackedPanels(canvas.Area, 4, kTitleRoom);
  const double pitch = PitchOf(profile);
  const double length = ProfileLength(profile);
  const Colour kProfile = 0x808080, kCorrected = 0x00A000, kIdeal = 0xE00000;
  WavePanel(canvas, panels[0],
            fmt::format("補修形状  IRI: プロファイル {}  修正 {}  理想形状 {} (mm/m)",
                        IriText(study.ProfileIri), IriText(outcome.Corrected.IriWholeProfile),
                        IriText(study.IdealShape.IriWholeProfile)),
            length,
            {{Samples(profile.WorkProfile, profile.WorkCount), pitch, {.Color = kProfile}},
             {Samples(study.IdealShape.Wave), pitch, {.Width = 2, .Color = kIdeal}},
             {Samples(outcome.Corrected.Wave), pitch, {.Color = kCorrected}}},
            {{"プロファイル", kProfile}, {"修正 (L+M'+S)", kCorrected}, {"理想形状 (L+M'+S')", kIdeal, 0, 2}}, false,
            "");
  WavePanel(canvas, panels[1], fmt::format("L波 (波長 {:g} m 以上)", split.LongBoundary), length,
            {{Samples(split.LongWave), pitch, {.Color = 0x800000}}}, {}, false, "");
  WavePanel(canvas, panels[2], fmt::format("M波 と M' ({:g}～{:g} m)", split.ShortBoundary, split.LongBoundary), length,
            {{Samples(split.MiddleWave), pitch, {.Color = kProfile}},
             {Samples(outcome.MPrime.Wave), pitch, {.Width = 2, .Color = 0x0080FF}}},
            {{"M波", kProfile}, {"M'", 0x0080FF, 0, 2}}, true, "");
  WavePanel(canvas, panels[3], fmt::format("S波 と S' (波長 {:g} m 以下)", split.ShortBoundary), length,
            {{Samples(split.ShortWave), pitch, {.Color = kProfile}},
             {Samples(study.ShortReduced), pitch, {.Color = 0x800080}}},
            {{"S波", kProfile}, {"S'", 0x800080}}, true, "距離 (m)");
}

}  // namespace velmora::graph
