// velmora info and velmora convert: what an ERD file holds, and ERD files side by side in one CSV.
#include <fmt/format.h>
#include <filesystem>

#include "base/file_helpers.h"
#include "base/legacy_format.h"
#include "base/path_helpers.h"
#include "base/session.h"
#include "command_registry.h"
#include "command_session.h"
#include "profile/erd_file.h"
#include "profile/profile_export.h"
#include "profile/profile_reader.h"
#include "results/wave_series.h"

namespace velmora::cli {
namespace {

void PrintInfo(RunContext& run, const std::string& path, const ProfileRecord& profile) {
  const ErdRecord& erd = profile.Erd;
  SeriesStats stats;
  CalcSeriesStats(profile.WorkCount, profile.WorkProfile, stats);
  const double length = erd.NumSamples > 0 ? (erd.NumSamples - 1) * erd.StepSize : 0.0;
  run.Say(path);
  run.Say("  title      " + erd.Title);
  run.Say("  KP         " + (erd.KpDisplay.empty() ? std::string("-") : erd.KpDisplay));
  if (!erd.RepairRangeText.empty()) run.Say("  repair     " + erd.RepairRangeText);
  run.Say(fmt::format("  channels   {} ({})", erd.NumChannels, Trim(erd.ShortName[1])));
  run.Say(fmt::format("  samples    {} (header {})", erd.NumSamples, erd.NumSamplesHeader));
  run.Say(fmt::format("  pitch      {} m (XUNITS {})", FormatNumber(erd.StepSize, "0.000000"), erd.DistanceUnit));
  run.Say(fmt::format("  length     {} m", FormatNumber(length, "0.00000")));
  run.Say(fmt::format("  elevation  min {}  max {}  mean {}  sd {} mm", FormatNumber(stats.Minimum, "0.0000"),
                      FormatNumber(stats.Maximum, "0.0000"), FormatNumber(stats.Mean, "0.0000"),
                      FormatNumber(stats.StdDev, "0.0000")));
  run.Result({{"file", path}, {"title", erd.Title}, {"samples", erd.NumSamples}, {"pitch_m", erd.StepSize},
              {"length_m", length}, {"mean_mm", stats.Mean}, {"sd_mm", stats.StdDev}});
}

// Each file is registered as the workbench registers it and described at once, so that two files
// of one name (the second replacing the first in the list) are both described.
int RunInfo(const std::vector<std::string>& arguments, const CommonOptions& common) {
  auto session = OpenSession(common, {}, workbench::tab::Profile);
  if (!session) return kExitFailed;
  workbench::Workbench& bench = session->Bench;
  int status = kExitOk;
  for (const std::string& argument : arguments) {
    const std::vector<std::string> files = InputFiles(session->Run, {argument});
    if (files.empty()) status = kExitFailed;
    for (const std::string& path : files) {
      session->Run.Inputs.push_back(path);
      if (!bench.RegisterFiles({path}, false)) {
        status = kExitFailed;
        continue;
      }
      PrintInfo(session->Run, path, bench.Profile(bench.List().Find(flGetFileNameNonExt(path))));
    }
  }
  return status;
}

// The CSV's name in the staging folder and where it goes: -o naming a ".csv" file, else -o as a
// folder (made when missing) for "Profile_<time>.CSV"; without -o, the common output folder. A file
// the user named is replaced; a name with the time takes a free name.
void SetCsvTarget(RunContext& run, const std::string& output, std::string& name) {
  name = "Profile_" + FormatDateTime(run.Stamp, "YYYYMMDDHHNNSS") + ".CSV";
  if (output.empty()) return;
  const std::filesystem::path target(output);
  if (MatchFilePattern(target.filename().string(), "*.csv") && !std::filesystem::is_directory(target)) {
    name = target.filename().string();
    run.OutputDir = target.parent_path().empty() ? "." : target.parent_path();
    run.Replace = true;
  } else {
    run.OutputDir = target;
  }
}

int RunConvert(const std::vector<std::string>& files, const std::string& output, const CommonOptions& common) {
  auto session = OpenSession(common, files, workbench::tab::Profile);
  if (!session) return kExitFailed;
  std::vector<const ErdRecord*> records;
  for (const ProfileRecord& profile : session->Bench.List().Items) records.push_back(&profile.Erd);
  std::string name;
  SetCsvTarget(session->Run, output, name);
  WriteProfileCsv(session->Engine, (session->Run.Staging() / name).string(), records);
  return kExitOk;
}

void AddErdFiles(CLI::App& cmd, std::vector<std::string>& files) {
  cmd.add_option("FILE", files, "ERD files")->required();
}

}  // namespace

VELMORA_COMMAND("info", "header, samples, pitch (m), length (m), KP and elevation statistics (mm) of ERD files",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto files = std::make_shared<std::vector<std::string>>();
                  AddErdFiles(cmd, *files);
                  return [files, &common] { return RunInfo(*files, common); };
                });

VELMORA_COMMAND("convert", "ERD files side by side in one CSV (ERD header rows, then elevations in mm)",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto files = std::make_shared<std::vector<std::string>>();
                  auto output = std::make_shared<std::string>();
                  AddErdFiles(cmd, *files);
                  cmd.add_option("-o,--output", *output, "CSV file to write, or a folder for Profile_<date>.CSV");
                  return [files, output, &common] { return RunConvert(*files, *output, common); };
                });

}  // namespace velmora::cli
