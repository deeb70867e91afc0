// The IRI and PSD charts.
#include <fmt/format.h>

#include <cmath>

#include "base/common.h"
#include "graph/chart_data.h"
#include "graph/charts.h"
#include "profile/profile_list.h"

namespace velmora::graph {
namespace {

Colour Lighter(Colour colour) {
  const ColourParts parts = uColourSplit(colour);
  const auto light = [](int c) { return c + (255 - c) * 3 / 5; };
  return MakeColour(light(parts.Red), light(parts.Green), light(parts.Blue));
}

std::vector<double> WindowPositions(const ProfileRecord& p) {
  const double first = FirstIriWindowAt(p), dx = PitchOf(p);
  std::vector<double> xs(static_cast<std::size_t>(std::max(0, p.Analysis.Iri.IriWindowCount)));
  for (std::size_t k = 0; k < xs.size(); ++k) xs[k] = first + static_cast<double>(k) * dx;
  return xs;
}

struct SectionSteps {
  std::vector<double> From, To, Iri;
};

SectionSteps StepsOf(const SectionIri& sections, const Array1<SectionEntry>& entries) {
  SectionSteps steps;
  for (std::ptrdiff_t i = 1; i <= entries.size(); ++i) {
    const SectionEntry& e = entries[i];
    steps.From.push_back(std::fabs(e.KpFrom - sections.KpStart) * 1000);
    steps.To.push_back(std::fabs(e.KpTo - sections.KpStart) * 1000);
    steps.Iri.push_back(e.Iri);
  }
  return steps;
}

// A window series of the profile: only its first IriWindowCount values are windows.
std::span<const double> Windows(const ProfileRecord& p, const WaveSeries& wave) {
  return Samples(wave.Values, p.Analysis.Iri.IriWindowCount);
}

// A window series as a line. On screen a long one is drawn from its column envelope, so that a
// redraw stays quick; pictures and pages written to files keep every point, as they always have.
void WindowLine(const ChartCanvas& canvas, ChartPanel& panel, const ProfileRecord& p, const WaveSeries& wave,
                const DrawOptions& pen) {
  if (canvas.Window != nullptr) panel.Wave(FirstIriWindowAt(p), PitchOf(p), Windows(p, wave), pen);
  else panel.Line(WindowPositions(p), Windows(p, wave), pen);
}

}  // namespace

void DrawIriChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles, bool bands) {
  const bool withBands = bands && !profiles.empty() && profiles[0]->Analysis.Iri.IriWindowBand[1].Values.size() > 0;
  std::vector<Rect> panels = withBands ? StackedPanels(canvas.Area, 2) : std::vector<Rect>{canvas.Area};
  double length = 1, top = 0;
  for (const ProfileRecord* p : profiles) {
    length = std::fmax(length, ProfileLength(*p));
    top = std::fmax(top, ValueRange(Windows(*p, p->Analysis.Iri.IriWindowWave)).second);
  }
  ChartPanel panel = CanvasPanel(canvas, panels[0], {0, length, false, "距離 (m)", 8}, {0, top, false, "IRI (mm/m)", 5});
  panel.DrawAxes("IRI  (10m 連続 と 10/100/200m 区間)");
  std::vector<LegendEntry> legend;
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const ProfileRecord& p = *profiles[i];
    const Colour colour = PaletteColour(canvas, i);
    WindowLine(canvas, panel, p, p.Analysis.Iri.IriWindowWave, {.Color = Lighter(colour)});
    const SectionIri& sections = p.Analysis.Sections;
    const SectionSteps s10 = StepsOf(sections, sections.Sec10), s100 = StepsOf(sections, sections.Sec100),
                       s200 = StepsOf(sections, sections.Sec200);
    panel.Steps(s10.From, s10.To, s10.Iri, {.Style = 2, .Color = colour});
    panel.Steps(s100.From, s100.To, s100.Iri, {.Width = 2, .Color = colour});
    panel.Steps(s200.From, s200.To, s200.Iri, {.Style = 1, .Width = 3, .Color = colour});
    legend.push_back({fmt::format("{}  IRI {:.2f}", ProfileList::NameOf(p), p.Analysis.Iri.IriWholeProfile), colour});
  }
  const Colour key = PaletteColour(canvas, 0);
  legend.push_back({"10m 連続", Lighter(key)});
  legend.push_back({"10m 区間", key, 2});
  legend.push_back({"100m 区間", key, 0, 2});
  legend.push_back({"200m 区間", key, 1, 3});
  panel.Legend(legend);
  if (!withBands) return;

  const ProfileRecord& first = *profiles[0];
  double bandTop = 0;
  for (int band = 1; band <= 9; ++band)
    bandTop = std::fmax(bandTop, ValueRange(Windows(first, first.Analysis.Iri.IriWindowBand[static_cast<std::size_t>(band)])).second);
  ChartPanel bandPanel =
      CanvasPanel(canvas, panels[1], {0, length, false, "距離 (m)", 8}, {0, bandTop, false, "IRI (mm/m)", 5});
  bandPanel.DrawAxes(fmt::format("{}  バンド別 IRI (10m 連続)", ProfileList::NameOf(first)));
  std::vector<LegendEntry> bandLegend;
  for (int band = 1; band <= 9; ++band) {
    const Colour colour = canvas.Bands[static_cast<std::size_t>(band)];
    WindowLine(canvas, bandPanel, first, first.Analysis.Iri.IriWindowBand[static_cast<std::size_t>(band)], {.Color = colour});
    bandLegend.push_back({OctaveLabel(band), colour});
  }
  bandPanel.Legend(bandLegend);
}

void DrawPsdChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles,
                  const std::vector<PsdCurve>& smoothed) {
  struct Raw {
    std::vector<double> Wn, Value;
  };
  std::vector<Raw> raws;
  double wnLow = 1e30, wnHigh = 0, high = 0;
  for (const ProfileRecord* p : profiles) {
    const PsdResult& psd = p->Analysis.Psd;
    const double dx = PitchOf(*p);
    Raw raw;
    // Wave numbers above 0 up to the Nyquist one, 1/(2 pitch).
    for (std::int32_t i = 2; i <= psd.PsdCount / 2 + 1 && i <= psd.PsdValues.size(); ++i) {
      raw.Wn.push_back((i - 1) / (psd.PsdCount * dx));
      raw.Value.push_back(psd.PsdValues[i]);
      high = std::fmax(high, psd.PsdValues[i]);
    }
    if (!raw.Wn.empty()) {
      wnLow = std::fmin(wnLow, raw.Wn.front());
      wnHigh = std::fmax(wnHigh, raw.Wn.back());
    }
    raws.push_back(std::move(raw));
  }
  if (wnHigh <= 0) {
    wnLow = 0.01;
    wnHigh = 10;
  }
  if (high <= 0) high = 1;
  // Ten decades below the peak is all a reader can tell apart; lower values would squeeze the rest.
  const double low = high * 1e-10;
  ChartPanel panel = CanvasPanel(canvas, canvas.Area, {wnLow, wnHigh, true, "波数 (cycle/m)", 5},
                                 {low, high, true, "PSD (mm²/(cycle/m))", 5});
  panel.DrawAxes("パワースペクトル密度");

  // ISO 8608 class boundaries: Gd(n) = Gd(n0) (n/n0)^-2 with n0 = 0.1 cycle/m, Gd(n0) = 32·4^k mm²/(cycle/m).
  const double xs[] = {panel.XEnds().Low, panel.XEnds().High};
  for (int k = 0; k <= 7; ++k) {
    const double atN0 = 32 * std::pow(4.0, k);
    const double ys[] = {atN0 * std::pow(xs[0] / 0.1, -2), atN0 * std::pow(xs[1] / 0.1, -2)};
    if (k <= 6) panel.Line(xs, ys, {.Style = 2, .Color = 0xA0A0A0});  // class H has no upper bound
    const double labelN = xs[1] / 1.5;  // near the right edge, where the spectra have fallen away
    const double labelY = atN0 / 2 * std::pow(labelN / 0.1, -2);
    if (labelY > panel.YEnds().Low && labelY < panel.YEnds().High)
      canvas.Devices.drText(canvas.Target, panel.X(labelN), panel.Y(labelY), std::string(1, static_cast<char>('A' + k)),
                            {.Font = canvas.Font, .Color = 0x808080});
  }
  std::vector<LegendEntry> legend;
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const Colour colour = PaletteColour(canvas, i);
    panel.Line(raws[i].Wn, raws[i].Value, {.Color = smoothed.empty() ? colour : Lighter(colour)});
    legend.push_back({ProfileList::NameOf(*profiles[i]), colour});
  }
  for (const PsdCurve& curve : smoothed) {
    std::vector<double> wn, value;
    for (const PsdPair& pair : curve.Points) {
      wn.push_back(pair.Wn);
      value.push_back(pair.Val);
    }
    panel.Line(wn, value, {.Width = 2, .Color = PaletteColour(canvas, curve.Profile)});
  }
  panel.Legend(legend);
}

}  // namespace velmora::graph
