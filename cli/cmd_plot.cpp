// velmora plot: the chart of one tab for the files, computed as the tab's own command computes it, as
// PNG, SVG or PDF. Overlay charts (profile, iri, filter, psd) give one file for all profiles; the
// per-profile charts (octave, reduce, repair) one file per profile.
#include <fmt/format.h>

#include <stdexcept>

#include <charconv>
#include <functional>
#include <map>

#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "command_session.h"
#include "graph/chart_output.h"
#include "graph/charts.h"
#include "messages.h"
#include "profile/profile_list.h"
#include "evaluation/cross_correlation.h"
#include "repair/three_wave.h"

namespace velmora::cli {
namespace {

using graph::ChartCanvas;

struct PlotOptions {
  std::string Kind;
  std::vector<std::string> Files;
  std::string Format = "png";
  std::string Size;  // WxH, pixels
  double Dpi = 96;
  bool Bands = false;
  int Smooth = 0;
  std::string MaxShift;  // xcorr: samples
};

const std::vector<std::string> kKinds{"profile", "iri", "filter", "octave", "reduce", "psd", "repair", "xcorr", "stats"};

// The tab each kind computes on, and its default picture size (wide for one panel, tall for stacks).
struct KindSetup {
  int Tab;
  int Width;
  int Height;
  bool PerProfile;
};

KindSetup SetupOf(const std::string& kind, bool bands) {
  static const std::map<std::string, KindSetup> setups{
      {"profile", {workbench::tab::Profile, 1200, 600, false}},
      {"iri", {workbench::tab::Iri, 1200, 600, false}},
      {"filter", {workbench::tab::Filter, 1200, 0, false}},
      {"octave", {workbench::tab::Octave, 1200, 1650, true}},
      {"reduce", {workbench::tab::BandReduction, 1200, 1500, true}},
      {"psd", {workbench::tab::Psd, 1000, 750, false}},
      {"repair", {workbench::tab::Profile, 1200, 1100, true}},
      {"xcorr", {workbench::tab::Verification, 1000, 600, false}},
      {"stats", {workbench::tab::Statistics, 1200, 800, false}}};
  KindSetup setup = setups.at(kind);
  if (kind == "iri" && bands) setup.Height = 1100;
  return setup;
}

bool ParseSize(const std::string& text, int& width, int& height) {
  const auto x = text.find('x');
  if (x == std::string::npos) return false;
  const auto whole = [](std::string_view part, int& value) {
    auto [end, error] = std::from_chars(part.data(), part.data() + part.size(), value);
    return error == std::errc() && end == part.data() + part.size() && value >= 100 && value <= 20000;
  };
  return whole(std::string_view(text).substr(0, x), width) && whole(std::string_view(text).substr(x + 1), height);
}

// The study's steps in order with the boundaries and lines of Default.ini, as `velmora repair` runs them.
bool RunRepairStudy(CommandSession& session) {
  workbench::Workbench& bench = session.Bench;
  bench.MnuBunseki();
  workbench::RepairTabInputs& in = bench.Repair;
  in.Form = ThreeWaveFormFromConditions(bench.Session().CurrentConditions);
  if (!getParam_補修形状検討_3波分解(bench.Session(), in.Form, in.Stored)) return false;
  for (int t = workbench::tab::ThreeWave; t <= workbench::tab::IdealShape; ++t) bench.SelectAll(t);
  return bench.Go(workbench::tab::ThreeWave) && bench.Go(workbench::tab::MediumWave) &&
         bench.Go(workbench::tab::ShortWave) && bench.Go(workbench::tab::IdealShape);
}

// The verification with the tab's options (the shift from --max-shift), and the correlation of each
// later profile against the first at every shift.
bool RunVerification(CommandSession& session, const PlotOptions& o, std::vector<graph::CorrelationCurve>& curves) {
  workbench::Workbench& bench = session.Bench;
  CorrelationOptions& options = bench.Evaluation.Verification.Options;
  if (!o.MaxShift.empty()) ApplyMaxShift(options, o.MaxShift);
  {
    CliUi::FlagCheck check(session.Ui, {{"--max-shift", "最大ずらし量", ""}});
    if (!bench.Go(workbench::tab::Verification)) return false;
  }
  curves = graph::CorrelationCurves(bench.Session(), bench.List(), bench.Evaluation.Verification.Results,
                                     bench.Session().CurrentConditions.Iri);
  return true;
}

// What the kinds draw beyond the profile records: smoothed PSD curves, correlation curves.
struct ExtraCurves {
  std::vector<PsdCurve> Psd;
  std::vector<graph::CorrelationCurve> Correlation;
  const StatisticsPage* Sections = nullptr;  // the 100 m page of the statistics
};

// Computes what the kind draws; the smoothed PSD curves are filled for psd with --smooth.
bool Compute(CommandSession& session, const PlotOptions& o, int tab, ExtraCurves& extra) {
  std::vector<PsdCurve>& curves = extra.Psd;
  workbench::Workbench& bench = session.Bench;
  bench.DispGrp = true;
  bench.Iri.Bands = o.Bands;
  if (o.Kind == "profile") return true;
  if (o.Kind == "repair") return RunRepairStudy(session);
  if (o.Kind == "xcorr") return RunVerification(session, o, extra.Correlation);
  if (o.Kind == "stats") {
    // The whole-wavelength profile with its standard deviation and spread, as `velmora stats` by default.
    StatisticsSelection& selection = bench.Evaluation.Statistics.Selection;
    selection.ProfileBands[0] = true;
    selection.ProfileMeasures.fill(true);
    if (!bench.Go(tab)) return false;
    for (const StatisticsPage& page : bench.Evaluation.Statistics.Results.Pages)
      if (page.Caption == "100m(Prof)" && !page.Empty()) extra.Sections = &page;
    return extra.Sections != nullptr;
  }
  if (o.Kind != "psd") return bench.Go(tab);
  if (!bench.ListClick(tab, bench.Selection(tab))) return false;
  if (o.Smooth < 1) return true;
  PsdTabOptions options{bench.Psd.WindowKind, bench.Psd.MirrorFill, o.Smooth, true, false};
  std::vector<std::size_t> selected;
  for (int row : bench.Selection(tab)) selected.push_back(static_cast<std::size_t>(row - 1));
  std::span<ProfileRecord> all(&bench.Profile(1), static_cast<std::size_t>(bench.ProfileCount()));
  return Redraw_PSD(bench.Session(), all, selected, options, curves);
}

void DrawKind(const ChartCanvas& canvas, const std::string& kind, std::span<const ProfileRecord* const> profiles,
              const ExtraCurves& extra, bool bands, Colour limitColour) {
  const std::vector<PsdCurve>& curves = extra.Psd;
  if (kind == "profile") graph::DrawProfileChart(canvas, profiles);
  else if (kind == "xcorr") graph::DrawCorrelationChart(canvas, ProfileList::NameOf(*profiles[0]), extra.Correlation);
  else if (kind == "stats") graph::DrawStatisticsChart(canvas, *extra.Sections);
  else if (kind == "iri") graph::DrawIriChart(canvas, profiles, bands);
  else if (kind == "filter") graph::DrawFilterChart(canvas, profiles);
  else if (kind == "psd") graph::DrawPsdChart(canvas, profiles, curves);
  else if (kind == "octave") graph::DrawOctaveChart(canvas, *profiles[0]);
  else if (kind == "reduce") graph::DrawBandReductionChart(canvas, *profiles[0], limitColour);
  else if (kind == "repair") graph::DrawRepairChart(canvas, *profiles[0]);
}

int RunPlotCommand(const CommonOptions& common, const PlotOptions& o) {
  const graph::ChartFormat format = *graph::ParseChartFormat(o.Format);
  const KindSetup setup = SetupOf(o.Kind, o.Bands);
  int width = setup.Width, height = setup.Height;
  if (!o.Size.empty() && !ParseSize(o.Size, width, height)) {
    common.Run->UsageError = true;
    PrintProblem(*common.Run, "--size", Tr("\"{}\" is not WIDTHxHEIGHT in pixels (100 to 20000 each)", o.Size));
    return kExitUsage;
  }
  auto session = OpenSession(common, o.Files, setup.Tab);
  if (!session) return 1;
  ExtraCurves curves;
  if (!Compute(*session, o, setup.Tab, curves)) return 1;

  workbench::Workbench& bench = session->Bench;
  std::vector<const ProfileRecord*> profiles;
  for (int row : bench.Selection(setup.Tab)) profiles.push_back(&bench.Profile(row));
  if (profiles.empty())
    for (int row = 1; row <= bench.ProfileCount(); ++row) profiles.push_back(&bench.Profile(row));
  if (o.Kind == "filter" && o.Size.empty()) height = 200 + 260 * static_cast<int>(profiles.size());

  const CalcConditions& conditions = session->Engine.CurrentConditions;
  const std::string stamp = FormatDateTime(session->Run.Stamp, "YYYYMMDDHHNNSS");
  // One chart file; a fault is said naming the files drawn in it (or the chart file that could not be
  // written), and the run stops.
  const auto render = [&](const std::string& stem, std::span<const ProfileRecord* const> drawn) {
    const auto file = session->Run.Staging() / fmt::format("{}_{}{}", stem, stamp, graph::ExtensionOf(format));
    try {
      graph::RenderChart(format, file, width, height, o.Dpi,
                         [&](graph::DrawDevices& devices, graph::Hdc hdc, const graph::DrawSurface& surface) {
                           const ChartCanvas canvas{.Devices = devices,
                                                    .Target = hdc,
                                                    .Surface = surface,
                                                    .Area = {16, 12, width - 16.0, height - 12.0},
                                                    .Font = graph::FontSpec(),
                                                    .Palette = session->Engine.Settings.PaletteProfile,
                                                    .Bands = conditions.BandColours};
                           DrawKind(canvas, o.Kind, drawn, curves, o.Bands, conditions.LineColour);
                         });
    } catch (const LegacyError& error) {
      PrintProblem(session->Run, "", error.what());
      return false;
    } catch (const std::invalid_argument& error) {  // data no axis can be divided over
      std::string names;
      for (const ProfileRecord* p : drawn) names += (names.empty() ? "" : ", ") + p->FilePath;
      PrintProblem(session->Run, names, error.what());
      return false;
    }
    return true;
  };
  if (setup.PerProfile) {
    for (const ProfileRecord* p : profiles)
      if (!render(fmt::format("{}_{}", ProfileList::NameOf(*p), o.Kind), std::span(&p, 1))) return 1;
    return 0;
  }
  return render(profiles.size() == 1 ? fmt::format("{}_{}", ProfileList::NameOf(*profiles[0]), o.Kind) : o.Kind,
                profiles)
             ? 0
             : 1;
}

}  // namespace

VELMORA_COMMAND("plot",
                "chart of a tab as PNG, SVG or PDF: profile, iri, filter, octave, reduce, psd, repair, xcorr, stats "
                "(lengths in m, elevations in mm, IRI in mm/m, shifts in samples)",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<PlotOptions>();
                  cmd.add_option("KIND", o->Kind, "the chart: profile, iri, filter, octave, reduce, psd, repair, xcorr, stats")
                      ->required()
                      ->check(CLI::IsMember(kKinds));
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--format", o->Format, "file format")
                      ->check(CLI::IsMember({"png", "svg", "pdf"}))
                      ->capture_default_str();
                  cmd.add_option("--size", o->Size, "picture size WIDTHxHEIGHT, pixels of 1/96 inch (default per chart)");
                  cmd.add_option("--dpi", o->Dpi, "resolution of a PNG, dots per inch (the size stays in 1/96 inch)")
                      ->check(CLI::Range(24.0, 1200.0))
                      ->capture_default_str();
                  cmd.add_flag("--bands", o->Bands, "iri: also the nine octave bands' 10 m IRI (mm/m) of the first file");
                  cmd.add_option("--smooth", o->Smooth, "psd: also the spectrum smoothed to N points per octave")
                      ->check(WholeNumberFrom(1));
                  cmd.add_option("--max-shift", o->MaxShift, "xcorr: largest shift, in samples (whole number), or half (half the length); default as the tab");
                  return [&common, o] { return RunPlotCommand(common, *o); };
                });

}  // namespace velmora::cli
