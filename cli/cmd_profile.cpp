// velmora info and velmora convert: what an ERD file holds, and ERD files side by side in one CSV.
#include <cstdio>
#include <filesystem>

#include "base/legacy_error.h"
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

void PrintInfo(const std::string& path, const ProfileRecord& profile) {
  const ErdRecord& erd = profile.Erd;
  SeriesStats stats;
  CalcSeriesStats(profile.WorkCount, profile.WorkProfile, stats);
  const double length = erd.NumSamples > 0 ? (erd.NumSamples - 1) * erd.StepSize : 0.0;
  std::printf("%s\n", path.c_str());
  std::printf("  title      %s\n", erd.Title.c_str());
  std::printf("  KP         %s\n", erd.KpDisplay.empty() ? "-" : erd.KpDisplay.c_str());
  if (!erd.RepairRangeText.empty()) std::printf("  repair     %s\n", erd.RepairRangeText.c_str());
  std::printf("  channels   %d (%s)\n", erd.NumChannels, Trim(erd.ShortName[1]).c_str());
  std::printf("  samples    %d (header %d)\n", erd.NumSamples, erd.NumSamplesHeader);
  std::printf("  pitch      %s m (XUNITS %s)\n", FormatNumber(erd.StepSize, "0.000000").c_str(), erd.DistanceUnit.c_str());
  std::printf("  length     %s m\n", FormatNumber(length, "0.00000").c_str());
  std::printf("  elevation  min %s  max %s  mean %s  sd %s mm\n", FormatNumber(stats.Minimum, "0.0000").c_str(),
              FormatNumber(stats.Maximum, "0.0000").c_str(), FormatNumber(stats.Mean, "0.0000").c_str(),
              FormatNumber(stats.StdDev, "0.0000").c_str());
}

// Each file is registered as the workbench registers it and described at once, so that two files
// of one name (the second replacing the first in the list) are both described.
int RunInfo(const std::vector<std::string>& files, const CommonOptions& common) {
  auto session = OpenSession(common, {}, workbench::tab::Profile);
  if (!session) return 1;
  workbench::Workbench& bench = session->Bench;
  int status = 0;
  for (const std::string& path : files) {
    if (!std::filesystem::is_regular_file(path)) {
      std::fprintf(stderr, "velmora: %s: no such file\n", path.c_str());
      status = 1;
      continue;
    }
    if (!bench.RegisterFiles({path}, false)) {
      status = 1;
      continue;
    }
    PrintInfo(path, bench.Profile(bench.List().Find(flGetFileNameNonExt(path))));
  }
  return status;
}

// The CSV target: -o as a file name, or as a folder (then "Profile_<now>.CSV" in it); without -o,
// the common output folder.
std::string CsvTarget(const std::string& output, const CommonOptions& common) {
  const std::string defaultName = "Profile_" + FormatDateTime(LocalNow(), "YYYYMMDDHHNNSS") + ".CSV";
  if (output.empty()) return (std::filesystem::path(common.OutputDir) / defaultName).string();
  if (std::filesystem::is_directory(output)) return (std::filesystem::path(output) / defaultName).string();
  return output;
}

int RunConvert(const std::vector<std::string>& files, const std::string& output, const CommonOptions& common) {
  auto session = OpenSession(common, files, workbench::tab::Profile);
  if (!session) return 1;
  std::vector<const ErdRecord*> records;
  for (const ProfileRecord& profile : session->Bench.List().Items) records.push_back(&profile.Erd);
  try {
    for (const std::string& written : WriteProfileCsv(session->Engine, CsvTarget(output, common), records))
      std::printf("%s\n", written.c_str());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "velmora: %s\n", error.what());
    return 1;
  }
  return 0;
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
