// Saving and opening a project of 50 profiles of 100,000 samples each (5 km at 0.05 m apiece, the
// most a registration takes at once): User.dat, the 50 ERD files written and packed, and the
// archive unpacked, checked and read back into a workbench. The target is under 2 s for each.
#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>

#include "base/session.h"
#include "base/startup.h"
#include "report/project_archive.h"
#include "synthetic_erd.h"
#include "workbench/project_commands.h"

namespace {

namespace fs = std::filesystem;

constexpr int kProfiles = 50;
constexpr std::int32_t kSamples = 100'000;

// A session whose scratch tree is a fresh folder under the system temporary folder, and a workbench
// with the 50 profiles registered in it.
struct BenchProject {
  BenchProject() : root(fs::temp_directory_path() / "velmora_project_bench") {
    fs::remove_all(root);
    session.Paths.UserLocalPath = (root / "local").string();
    session.Paths.TempPath = (root / "local" / "Temp").string();
    session.Paths.DebugPath = (root / "local" / "Debug").string();
    velmora::InitCreateFolder(session);
    velmora::InitProjectData(session);
    bench.FormLoad();
    for (int p = 1; p <= kProfiles; ++p) {
      velmora::ProfileRecord record;
      record.FileName = "road" + std::to_string(p) + ".erd";
      record.Erd = velmora::bench::SyntheticErd(kSamples, 0.05, [p](std::int32_t i) {
        return std::round(1e5 * (5.0 * std::sin(0.001 * i + p) + 0.3 * std::sin(0.37 * i))) / 1e5;
      });
      record.WorkCount = kSamples;
      record.WorkProfile = record.Erd.Elevation;
      bench.AddProfile(std::move(record));
    }
  }
  ~BenchProject() { fs::remove_all(root); }

  fs::path root;
  velmora::Session session;
  velmora::workbench::Workbench bench{session};
};

BenchProject& Project() {
  static BenchProject project;
  return project;
}

void BM_SaveProject_50x100k(benchmark::State& state) {
  BenchProject& project = Project();
  const std::string target = (project.root / "bench.prj").string();
  project.session.Project.FileName = target;
  for (auto _ : state)
    if (!velmora::workbench::SaveProject(project.bench, false)) state.SkipWithError("save failed");
  state.counters["MB"] = static_cast<double>(fs::file_size(target)) / 1e6;
  state.SetItemsProcessed(state.iterations() * kProfiles * kSamples);
}
BENCHMARK(BM_SaveProject_50x100k)->Unit(benchmark::kMillisecond)->UseRealTime();

// The packing alone, of the folder the save above wrote: the larger part of a save.
void BM_PackProjectFolder_50x100k(benchmark::State& state) {
  BenchProject& project = Project();
  project.session.Project.FileName = (project.root / "bench.prj").string();
  if (!velmora::workbench::SaveProject(project.bench, false)) state.SkipWithError("save failed");
  const std::string target = (project.root / "pack.prj").string();
  for (auto _ : state) velmora::PackProjectFolder(project.root / "local" / "Project", target);
}
BENCHMARK(BM_PackProjectFolder_50x100k)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_OpenProject_50x100k(benchmark::State& state) {
  BenchProject& project = Project();
  const std::string target = (project.root / "open.prj").string();
  project.session.Project.FileName = target;
  if (!velmora::workbench::SaveProject(project.bench, false)) state.SkipWithError("save failed");
  velmora::Session session;
  session.Paths = project.session.Paths;
  session.Paths.UserLocalPath = (project.root / "opening").string();
  velmora::InitCreateFolder(session);
  velmora::workbench::Workbench bench{session};
  for (auto _ : state) {
    if (!velmora::workbench::ReadProjectData(bench, target) || bench.ProfileCount() != kProfiles)
      state.SkipWithError("open failed");
  }
  state.SetItemsProcessed(state.iterations() * kProfiles * kSamples);
}
BENCHMARK(BM_OpenProject_50x100k)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
