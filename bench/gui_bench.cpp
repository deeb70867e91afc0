// Speed of the window's redraw: a tab's chart drawn into the picture the window shows, at the size
// of a maximised window, for the three bundled examples after their Go. This is the work a resize
// does once it settles, so it must stay well under the time a user notices (about 0.1 s). Also the
// print tab's preview: the first sheet of each pattern drawn into a picture at 144 dpi.
#include <benchmark/benchmark.h>

#include <QTemporaryDir>

#include "base/startup.h"
#include "graph/paper_size.h"
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
