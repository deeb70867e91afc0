// Speed of drawing: a 10^6-sample profile chart to PNG (target under 0.3 s) and the printed octave
// sheet with its nine panels to a PDF page (target under 1 s).
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <string>

#include "graph/chart_output.h"
#include "graph/charts.h"
#include "graph/print_sheets.h"
#include "profile/profile_record.h"

namespace velmora {
namespace {

ProfileRecord RoadOf(std::int32_t n, double dx) {
  ProfileRecord record;
  record.Erd.StepSize = dx;
  record.SamplesPerMetre = 1 / dx;
  record.FileName = "bench.erd";
  record.WorkCount = n;
  record.WorkProfile.assign_zero(n);
  for (std::int32_t i = 1; i <= n; ++i) {
    const double x = i * dx;
    record.WorkProfile[i] = 5 * std::sin(x / 9.1) + 2 * std::sin(x / 1.3) + 0.5 * std::sin(x / 0.11);
  }
  record.Analysis.Count = n;
  for (std::size_t band = 1; band <= 9; ++band) {
    record.Analysis.Octave.Band[band].Values.assign_zero(n);
    const double wavelength = 102.4 / std::pow(2.0, static_cast<double>(band) - 0.5);
    for (std::int32_t i = 1; i <= n; ++i)
      record.Analysis.Octave.Band[band].Values[i] = std::sin(2 * M_PI * i * dx / wavelength) / static_cast<double>(band);
  }
  return record;
}

std::filesystem::path Scratch(const std::string& name) { return std::filesystem::temp_directory_path() / name; }

void BM_ProfileChartPng(benchmark::State& state) {
  const ProfileRecord road = RoadOf(static_cast<std::int32_t>(state.range(0)), 0.01);
  const ProfileRecord* profiles[] = {&road};
  const auto file = Scratch("velmora-chart-bench.png");
  for (auto _ : state) {
    graph::RenderChart(graph::ChartFormat::Png, file, 1200, 600, 96,
                       [&](graph::DrawDevices& devices, graph::Hdc hdc, const graph::DrawSurface& surface) {
                         const graph::ChartCanvas canvas{.Devices = devices, .Target = hdc, .Surface = surface,
                                                         .Area = {16, 12, 1184, 588}, .Font = graph::FontSpec(),
                                                         .Palette = {0x0000FF}};
                         graph::DrawProfileChart(canvas, profiles);
                       });
  }
  std::filesystem::remove(file);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_ProfileChartPng)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void BM_OctaveSheetPdf(benchmark::State& state) {
  const ProfileRecord road = RoadOf(static_cast<std::int32_t>(state.range(0)), 0.01);
  const graph::PrintOptions options = graph::DefaultPrintOptions();
  std::array<Colour, 10> bands{};
  const auto file = Scratch("velmora-sheet-bench.pdf");
  for (auto _ : state) {
    graph::PrinterTarget printer;
    printer.OutputFile = file;
    graph::PreparePrinter(printer);
    graph::DrawDevices devices;
    const graph::Hdc hdc = devices.regHDCPrinter(printer);
    graph::Print_印刷パターン_v01({devices, hdc, printer.Surface}, road, {options, false}, bands);
    devices.releaseHDC(hdc);
  }
  std::filesystem::remove(file);
}
BENCHMARK(BM_OctaveSheetPdf)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora
