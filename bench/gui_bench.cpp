// Speed of the window's redraw: a tab's chart drawn into the picture the window shows, at the size
// of a maximised window, for the three bundled examples after their Go. This is the work a resize
// does once it settles, so it must stay well under the time a user notices (about 0.1 s). Also the
// print tab's preview: the first sheet of each pattern drawn into a picture at 144 dpi.
#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include <cmath>

#include "base/startup.h"
#include "graph/paper_size.h"
#include "synthetic_erd.h"
#include "tab_charts.h"
#include "tab_print.h"
#include "workbench/workbench.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

// The program's start-up with its shipped settings, the examples registered and selected on `tab`,
// and the tab's Go run.
struct ComputedBench {
  explicit ComputedBench(int tab) {
    StartUpOptions options;
    options.AppPathOverride = VELMORA_BIN_DIR;
    options.ScratchRoot = scratch.path().toStdString();
    start = StartUp(session, options);
    bench.FormLoad();
    const std::string examples = VELMORA_SOURCE_DIR "/examples/";
    ok = start.MayGoOn &&
         bench.RegisterFiles({examples + "road_a_kp.erd", examples + "road_b.erd", examples + "road_c_rough.erd"}, false);
    bench.SelectAll(tab);
    ok = ok && (tab == tab::Profile || bench.Go(tab));
  }
  QTemporaryDir scratch;
  Session session;
  StartUpResult start;
  workbench::Workbench bench{session};
  bool ok = false;
};

void BM_TabChartImage(benchmark::State& state) {
  const int tab = static_cast<int>(state.range(0));
  ComputedBench computed(tab);
  if (!computed.ok) {
    state.SkipWithError("the examples could not be computed");
    return;
  }
  const QSize size(1900, 1000);
  for (auto _ : state) benchmark::DoNotOptimize(RenderTabChart(computed.bench, tab, computed.bench.Selection(tab), size));
}
BENCHMARK(BM_TabChartImage)
    ->ArgName("tab")
    ->Arg(tab::Profile)
    ->Arg(tab::Filter)
    ->Arg(tab::Octave)
    ->Arg(tab::Iri)
    ->Unit(benchmark::kMillisecond);

// One long road, 10^6 samples at 0.05 m (50 km), registered as a user opens it; each tab's Go runs the
// first time the tab is asked for, as entering it would.
struct MillionSampleBench {
  MillionSampleBench() {
    StartUpOptions options;
    options.AppPathOverride = VELMORA_BIN_DIR;
    options.ScratchRoot = scratch.path().toStdString();
    ok = StartUp(session, options).MayGoOn;
    const std::string file = scratch.filePath("long_road.erd").toStdString();
    ok = ok && WriteERD(file, velmora::bench::SyntheticErd(1'000'000, 0.05, [](std::int32_t i) {
           return 8 * std::sin(i * 0.0011) + 2 * std::sin(i * 0.031) + 0.5 * std::sin(i * 0.9);
         }));
    bench.FormLoad();
    ok = ok && bench.RegisterFiles({file}, false);
  }
  bool Computed(int tab) {
    bench.SelectAll(tab);
    return ok && (tab == tab::Profile || HasTabResults(tab, bench.List().Items.at(1)) || bench.Go(tab));
  }
  QTemporaryDir scratch;
  Session session;
  workbench::Workbench bench{session};
  bool ok = false;
};

MillionSampleBench& LongRoad() {
  static auto* road = new MillionSampleBench;
  return *road;
}

// A chart redraw on entering a tab with the long road; with arg 1, zoomed to a tenth of the road.
void BM_MillionSampleChart(benchmark::State& state) {
  const int tab = static_cast<int>(state.range(0));
  MillionSampleBench& road = LongRoad();
  if (!road.Computed(tab)) {
    state.SkipWithError("the long road could not be computed");
    return;
  }
  graph::ChartWindow window;
  if (state.range(1) != 0) window.X = graph::AxisRange{20'000, 25'000};
  const QSize size(1900, 1000);
  for (auto _ : state) {
    window.Panels.clear();
    benchmark::DoNotOptimize(RenderTabChart(road.bench, tab, road.bench.Selection(tab), size, &window));
  }
}
BENCHMARK(BM_MillionSampleChart)
    ->ArgNames({"tab", "zoomed"})
    ->ArgsProduct({{tab::Profile, tab::Filter, tab::Octave, tab::BandReduction, tab::Iri}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
void BM_PrintPreview(benchmark::State& state) {
  const auto sheet = static_cast<workbench::PrintSheet>(state.range(0));
  ComputedBench computed(tab::Iri);
  std::vector<int> rows{1, 2, 3};
  if (!computed.ok || !workbench::ComputePrintSheet(computed.bench, sheet, rows)) {
    state.SkipWithError("the examples could not be computed");
    return;
  }
  const workbench::PrintBook book = workbench::MakePrintBook(computed.bench, sheet, rows, graph::DefaultPrintOptions(), false);
  for (auto _ : state) benchmark::DoNotOptimize(PreviewPage(computed.session, book, graph::kPaperA4, 144));
}
BENCHMARK(BM_PrintPreview)->ArgName("pattern")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora::gui
