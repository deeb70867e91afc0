#pragma once
// The charts of the tabs, drawn through the drawing layer into an area of a surface whose y runs
// downwards. They read the results a profile record holds and change nothing.
#include <array>
#include <span>
#include <string>
#include <vector>

#include "analysis/psd_view.h"
#include "evaluation/cross_correlation.h"
#include "evaluation/cross_correlation_kernel.h"
#include "evaluation/statistics.h"
#include "graph/chart_panel.h"
#include "graph/chart_window.h"
#include "profile/profile_record.h"

namespace velmora::graph {

// Where a chart goes and the colours it uses.
struct ChartCanvas {
  DrawDevices& Devices;
  Hdc Target = 0;
  const DrawSurface& Surface;
  Rect Area;
  FontSpec Font{};
  std::vector<Colour> Palette{};   // one colour per profile, in list order, repeating
  std::array<Colour, 10> Bands{};  // [1..9] octave band colours
  ChartWindow* Window = nullptr;   // on screen: the zoomed ranges, and the panels' places written back
};

// A panel of a chart on the canvas: in the ranges of the canvas' window when it has one, and
// recorded in it.
ChartPanel CanvasPanel(const ChartCanvas& canvas, const Rect& outer, AxisSpec x, AxisSpec y);

Colour PaletteColour(const ChartCanvas& canvas, std::size_t index);
// The octave's label and wavelength range as the print sheets show them ("１ ＯＣＴ", "(波長51.2～102.4m)").
std::string OctaveLabel(int band);
std::string OctaveRange(int band);

// The display marks chk統計値, in their order 平均, 分散(σ), 最大, 最小, IRI: what a profile chart
// annotates of each profile's whole length. The mean, the mean less and plus one standard deviation,
// the highest and the lowest elevation are rules across the panel in the marks' colours; the IRI
// stands in the legend beside the profile's name.
using ProfileMarks = std::array<bool, 5>;
inline constexpr Colour kMarkMean = 0x3C14DC;       // crimson
inline constexpr Colour kMarkDeviation = 0x008CFF;  // orange
inline constexpr Colour kMarkMaximum = 0x8B8B00;    // dark cyan
inline constexpr Colour kMarkMinimum = 0x8B008B;    // dark magenta

// Elevation (mm) against distance (m), the profiles overlaid in their list colours, with `marks`.
void DrawProfileChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles,
                      const ProfileMarks& marks = {});
// The filter's input (light) and output (the profile's colour) for each profile.
void DrawFilterChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles);
// 10 m continuous IRI as a line, 10/100/200 m section IRIs as steps; with `bands` a second panel of
// the nine band IRIs of the first profile.
void DrawIriChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles, bool bands);
// The nine octave bands and the long and short sums of one profile, stacked.
void DrawOctaveChart(const ChartCanvas& canvas, const ProfileRecord& profile);
// Each band before and after reduction with its limit lines, and the reduced total against the profile.
void DrawBandReductionChart(const ChartCanvas& canvas, const ProfileRecord& profile, Colour limitColour);
// PSD (mm²/(cycle/m)) against wave number (cycle/m), log-log: raw spectra, the smoothed curves when
// given, and the ISO 8608 class boundaries A-H.
void DrawPsdChart(const ChartCanvas& canvas, std::span<const ProfileRecord* const> profiles,
                  const std::vector<PsdCurve>& smoothed);
// The repair study of one profile: profile, corrected and ideal shape with their IRIs; L; M and M';
// S and S'.
void DrawRepairChart(const ChartCanvas& canvas, const ProfileRecord& profile);

// One compared profile of the verification: its correlation with the base at shifts -MaxShift..MaxShift
// (samples) and the peak the run reported.
struct CorrelationCurve {
  std::string Name;
  std::vector<double> Rho;
  std::int32_t MaxShift = 0;
  CorrelationPeak Peak;
};
// The curves of a verification run: each later profile of `results` against the first, over the
// series the run compared (`iri` as for the run), at every shift up to the run's largest.
std::vector<CorrelationCurve> CorrelationCurves(Session& session, const ProfileList& list,
                                                const CorrelationResults& results, const IriParams& iri);
// Correlation against shift of each profile compared with `baseName`, its peak marked with value and shift.
void DrawCorrelationChart(const ChartCanvas& canvas, const std::string& baseName,
                          const std::vector<CorrelationCurve>& curves);

// The standard deviation and the spread (mm) per section of a statistics page against KP (km), one step
// line per profile and band of the page, in palette order.
void DrawStatisticsChart(const ChartCanvas& canvas, const StatisticsPage& page);

// The colour of a band's limit lines: the limit colour, or black where the band is drawn in it.
Colour LimitLineColourFor(Colour limitColour, Colour bandColour);

// Splits an area into `count` panels one above the other; the last one also gets `extraForLast`
// (room for the x axis title under it) so that all plots are of one height.
std::vector<Rect> StackedPanels(const Rect& area, int count, double extraForLast = 0);

}  // namespace velmora::graph
