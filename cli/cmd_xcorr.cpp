// velmora xcorr: verification of profilers against each other: the cross-correlation tab's run over
// the files, its table on stdout, the six CSV files in -o and, on request, the shifted copies.
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include <fmt/format.h>

#include "command_session.h"
#include "evaluation/correlation_tables.h"
#include "profile/profile_list.h"

namespace velmora::cli {
namespace {

struct XcorrOptions {
  std::vector<std::string> Files;
  std::string Align = "head";
  std::string MaxShift = "10";
  std::string Measure = "agreement";
  std::string Filter = "iri";
  std::string Layout = "cross";
  bool ShowIri = false;
  bool ShowPsd = false;
  bool RegisterShifted = false;
};

const std::vector<std::string> kMeasureWords = {"correlation", "agreement", "shift", "sd-ratio", "iri-error",
                                                "psd-error"};

int IndexOf(const std::vector<std::string>& words, const std::string& word) {
  return static_cast<int>(std::find(words.begin(), words.end(), word) - words.begin());
}

int RunXcorrCommand(const CommonOptions& common, const XcorrOptions& o) {
  auto session = OpenSession(common, o.Files, workbench::tab::Verification);
  if (!session) return 1;
  workbench::Workbench& bench = session->Bench;
  CorrelationOptions& options = bench.Evaluation.Verification.Options;
  options.Alignment = IndexOf({"head", "center", "kp"}, o.Align);
  ApplyMaxShift(options, o.MaxShift);
  options.Measure = IndexOf(kMeasureWords, o.Measure);
  options.FilterMode = o.Filter == "iri" ? 1 : 0;
  options.TableLayout = o.Layout == "single" ? 1 : 0;
  options.ShowIri = o.ShowIri;
  options.ShowPsd = o.ShowPsd;
  bench.DispGrp = true;
  {
    CliUi::FlagCheck check(session->Ui, {{"--max-shift", "最大ずらし量", ""}});
    if (!bench.Go(workbench::tab::Verification)) return 1;
  }

  for (const auto& row : BuildCorrelationTable(bench.Evaluation.Verification.Results)) {
    std::string line;
    for (std::size_t c = 0; c < row.size(); ++c) line += (c == 0 ? "" : "\t") + row[c];
    session->Run.Say(line);
    session->Run.Result(row);
  }
  if (!workbench::SaveVerificationTab(bench)) return 1;
  if (!o.RegisterShifted) return 0;
  // The copies are registered in the session's project; the user gets them beside the CSV files.
  for (const std::string& name : workbench::RegisterShiftedProfilesTab(bench))
    if (!StageProjectProfile(*session, name + ".ERD")) return 1;
  return 0;
}

}  // namespace

VELMORA_COMMAND("xcorr", "verification of profilers: every pair of files correlated over a range of shifts",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<XcorrOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--align", o->Align,
                                 "line-up: head (first samples), center (middles), kp (common KP range, km)")
                      ->check(CLI::IsMember({"head", "center", "kp"}))->capture_default_str();
                  cmd.add_option("--max-shift", o->MaxShift,
                                 "largest shift tried, in samples (whole number), or half (half the length)")
                      ->capture_default_str();
                  cmd.add_option("--measure", o->Measure,
                                 "measure in the table: correlation (coefficient), agreement (coefficient x "
                                 "sd-ratio), shift (samples), sd-ratio, iri-error, psd-error (plain ratios)")
                      ->check(CLI::IsMember(kMeasureWords))->capture_default_str();
                  cmd.add_option("--filter", o->Filter, "series compared: none (elevations, mm) or iri (IRI filter)")
                      ->check(CLI::IsMember({"none", "iri"}))->capture_default_str();
                  cmd.add_option("--layout", o->Layout, "table: cross or single")
                      ->check(CLI::IsMember({"cross", "single"}))->capture_default_str();
                  cmd.add_flag("--show-iri", o->ShowIri, "show each profile's IRI value (mm/m)");
                  cmd.add_flag("--show-psd", o->ShowPsd, "show each profile's mean PSD (mm² per cycle/m)");
                  cmd.add_flag("--register-shifted", o->RegisterShifted,
                               "write copies of the later files moved by their shift against the first "
                               "(KP start moved by shift x pitch) into -o");
                  return [&common, o] { return RunXcorrCommand(common, *o); };
                });

}  // namespace velmora::cli
