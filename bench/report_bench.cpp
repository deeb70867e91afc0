// A scripted spreadsheet report at the size the program warns about: 4 profiles of 30,000 samples at
// 0.1 m (3 km) on one grid of 30,000 rows, 20 columns mixing rows, sections, bands and arithmetic.
// Timed: the grid (placements and section tables), the column scripts over every row, and the whole
// report with its interface file and the workbook written from the example template.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>

#include "report/exel_report.h"

namespace velmora {
namespace {

constexpr std::int32_t kRows = 30000;
constexpr double kPitch = 0.1;
const char* const kNames[] = {"p1", "p2", "p3", "p4"};

ProfileRecord Profile(int which) {
  ProfileRecord p;
  p.FileName = std::string(kNames[which]) + ".erd";
  p.Erd.StepSize = kPitch;
  p.WorkCount = kRows;
  p.WorkProfile.assign_zero(kRows);
  for (std::int32_t i = 1; i <= kRows; ++i) p.WorkProfile[i] = std::sin(0.01 * i + which) * 5;
  p.Analysis.Octave.LongSum.Values = p.WorkProfile;
  p.Analysis.Octave.ShortSum.Values = p.WorkProfile;
  for (std::size_t band = 1; band <= 9; ++band) p.Analysis.Octave.Band[band].Values = p.WorkProfile;
  Array1<double>& iri = p.Analysis.Iri.IriWindowWave.Values;
  iri.assign_zero(kRows - 100);
  for (std::int32_t i = 1; i <= iri.size(); ++i) iri[i] = 2 + std::cos(0.001 * i + which);
  return p;
}

ProfileList FourProfiles() {
  ProfileList list;
  for (int k = 0; k < 4; ++k) list.Items.vector().push_back(Profile(k));
  return list;
}

ExelTemplate TwentyColumns() {
  std::vector<ExelOptionRow> rows;
  const auto add = [&rows](std::string code, std::string f5, std::string f6, std::string f7) {
    ExelOptionRow row;
    row.Fields[4] = std::move(code);
    row.Fields[5] = std::move(f5);
    row.Fields[6] = std::move(f6);
    row.Fields[7] = std::move(f7);
    rows.push_back(std::move(row));
  };
  add("A001", "データ", "", "");
  add("A002", "B4", "", "");
  add("B001", "start", "start", "入力");
  add("B002", "end", "end", "入力");
  for (const char* name : kNames) add("B00x", name, name, "選択");
  const std::vector<std::string> scripts = {
      "#DIST(, start, end)", "#DIST(10, start, end)", "#DIST(100, start, end)"};
  int column = 0;
  for (const std::string& script : scripts) add("C" + std::to_string(++column), "", script, "\"t\"");
  for (const char* name : kNames) {
    const std::string p(name);
    add("C", "", "#PROF(ALL, " + p + ", start, end)", "#GETPROFILENAME(" + p + ")");
    add("C", "", "#IRI(10B, " + p + ", start, end)", "\"IRI\"");
    add("C", "", "#PROF(3OCT, " + p + ", start, end) * 2 + #PROF(LONG, " + p + ", start, end)", "\"calc\"");
    add("C", "", "#IRI(100A, " + p + ", start, end)", "\"IRI100\"");
  }
  add("C", "", "(#PROF(ALL, p1, start, end) + #PROF(ALL, p2, start, end)) / 2", "\"mean\"");
  return MakeExelTemplate(std::filesystem::path(VELMORA_SOURCE_DIR) / "examples/report/iri_report.xlsm", rows);
}

ExelReportRequest Request(const ExelTemplate& report, const ProfileList& list) {
  std::vector<std::string> titles;
  for (const ProfileRecord& p : list.Items) titles.push_back(ProfileList::NameOf(p));
  ExelReportRequest request;
  request.Params = MakeParamTable(report, titles);
  for (ExelParamEntry& entry : request.Params)
    if (entry.Choice) entry.Value = entry.Param.Name;
  request.Axis = {PositionMode::ZeroBased, KpUnit::M, false};
  request.Folder = std::filesystem::temp_directory_path();
  return request;
}

void BM_Grid(benchmark::State& state) {
  Session session;
  const ProfileList list = FourProfiles();
  const ExelTemplate report = TwentyColumns();
  const ExelReportRequest request = Request(report, list);
  for (auto _ : state) {
    ExelScriptState script;
    script.ProfileTitles = {"p1", "p2", "p3", "p4"};
    MakeScriptInputs(request.Params, script.ProfileTitles, script);
    benchmark::DoNotOptimize(SetupExelData(session, report, list, request.Axis, script));
  }
}
BENCHMARK(BM_Grid)->Unit(benchmark::kMillisecond);

void BM_ColumnScripts(benchmark::State& state) {
  Session session;
  const ProfileList list = FourProfiles();
  const ExelTemplate report = TwentyColumns();
  const ExelReportRequest request = Request(report, list);
  ExelScriptState script;
  script.ProfileTitles = {"p1", "p2", "p3", "p4"};
  MakeScriptInputs(request.Params, script.ProfileTitles, script);
  SetupExelData(session, report, list, request.Axis, script);
  SilentInteraction quiet;
  for (auto _ : state) benchmark::DoNotOptimize(MakeExelTable(quiet, report, script));
  state.SetItemsProcessed(state.iterations() * kRows * static_cast<std::int64_t>(report.Columns.size()));
}
BENCHMARK(BM_ColumnScripts)->Unit(benchmark::kMillisecond);

void BM_WholeReport(benchmark::State& state) {
  Session session;
  const ProfileList list = FourProfiles();
  const ExelTemplate report = TwentyColumns();
  const ExelReportRequest request = Request(report, list);
  for (auto _ : state) {
    const auto files = cmxExlsCreate(session, report, list, request);
    if (!files) state.SkipWithError("the report failed");
    else std::filesystem::remove(files->Workbook), std::filesystem::remove(files->Interface);
  }
}
BENCHMARK(BM_WholeReport)->Unit(benchmark::kMillisecond);

// The table alone written into the template's data sheet: 30,000 rows of 20 numbers.
void BM_WorkbookWrite(benchmark::State& state) {
  const std::filesystem::path source = std::filesystem::path(VELMORA_SOURCE_DIR) / "examples/report/iri_report.xlsm";
  const std::filesystem::path target = std::filesystem::temp_directory_path() / "velmora_report_bench.xlsm";
  std::vector<CellWrite> cells;
  for (std::int32_t r = 1; r <= kRows; ++r)
    for (std::int32_t c = 1; c <= 20; ++c) cells.push_back({r + 3, c + 1, std::to_string(r * 0.001 + c), true});
  for (auto _ : state) WriteWorkbookCopy(source, target, "データ", cells);
  std::filesystem::remove(target);
}
BENCHMARK(BM_WorkbookWrite)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace velmora
