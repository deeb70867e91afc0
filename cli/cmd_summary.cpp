// velmora summary: the IRI tab's Go (which splits the octaves first) over the files and one table line
// per profile: length and pitch (m), whole IRI and the mean 100 m fixed-section IRI (mm/m), and the
// octave band with the largest standard deviation (mm). Writes no files.
#include <cstdio>

#include <fmt/format.h>

#include "command_session.h"
#include "report/profile_summary.h"

namespace velmora::cli {
namespace {

struct SummaryOptions {
  std::vector<std::string> Files;
  std::string Length = "10";
};

int RunSummaryCommand(const CommonOptions& common, const SummaryOptions& o) {
  auto session = OpenSession(common, o.Files, workbench::tab::Iri);
  if (!session) return 1;
  workbench::Workbench& bench = session->Bench;
  bench.Iri.EvalLength = o.Length;
  bench.DispGrp = true;
  if (!CheckIriLengthFlag(*session) || !bench.Go(workbench::tab::Iri)) return 1;
  std::vector<ProfileSummary> rows;
  for (int row : bench.Selection(workbench::tab::Iri)) rows.push_back(SummarizeProfile(bench.Profile(row)));
  for (const std::string& line : SummaryTableLines(rows)) session->Run.Say(line);
  return 0;
}

}  // namespace

VELMORA_COMMAND("summary",
                "one line per profile: length and pitch (m), whole and mean 100 m IRI (mm/m), strongest octave "
                "band (standard deviation, mm)",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<SummaryOptions>();
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--length", o->Length, "IRI evaluation length, m")->capture_default_str();
                  return [&common, o] { return RunSummaryCommand(common, *o); };
                });

}  // namespace velmora::cli
