// velmora project: project files (.prj) made from ERD files, added to, described and unpacked.
#include <filesystem>

#include <fmt/format.h>

#include "base/legacy_format.h"
#include "base/path_helpers.h"
#include "command_session.h"
#include "messages.h"
#include "workbench/project_commands.h"

namespace velmora::cli {
namespace {

namespace fs = std::filesystem;

struct ProjectOptions {
  std::string Project;
  std::vector<std::string> Files;
};

// Writes the workbench's project into `path` (User.dat, its ERD files, packed in one step).
int SaveInto(CommandSession& session, const std::string& path) {
  session.Engine.Project.FileName = path;
  if (!workbench::SaveProject(session.Bench, /*showMessage=*/false)) return kExitFailed;
  session.Run.Written.push_back(path);
  session.Run.Say(path);
  return kExitOk;
}

int RunNew(const CommonOptions& common, const ProjectOptions& o) {
  if (fs::exists(o.Project)) {
    PrintProblem(*common.Run, o.Project, Tr("exists already (add to it with project add)"));
    return kExitFailed;
  }
  auto session = OpenSession(common, o.Files, workbench::tab::Profile);
  return session ? SaveInto(*session, o.Project) : kExitFailed;
}

// A name already in the project is replaced only after --yes.
int RunAdd(const CommonOptions& common, const ProjectOptions& o) {
  auto session = OpenSession(common, {}, workbench::tab::Profile);
  if (!session || !workbench::ReadProjectData(session->Bench, o.Project)) return kExitFailed;
  const std::vector<std::string> files = InputFiles(session->Run, o.Files);
  if (files.empty() || !session->Bench.RegisterFiles(files, /*ask=*/true)) return kExitFailed;
  session->Run.Inputs = files;
  return SaveInto(*session, o.Project);
}

void SayIri(RunContext& run, const char* what, const IriParams& p) {
  run.Say(fmt::format("  {:<11}speed {} km/h, Ks/Ms {}, Cs/Ms {}, Mu/Ms {}, Kt/Ms {}, init {} m, {}", what,
                      FormatNumber(p.Speed, "0.00###"), FormatNumber(p.KsMs, "0.00###"), FormatNumber(p.CsMs, "0.00###"),
                      FormatNumber(p.MuMs, "0.00###"), FormatNumber(p.KtMs, "0.00###"),
                      FormatNumber(p.InitFilter, "0.00###"), p.PowerWeighting == 0 ? "ARS" : "RMS"));
}

int RunInfo(const CommonOptions& common, const ProjectOptions& o) {
  auto session = OpenSession(common, {}, workbench::tab::Profile);
  if (!session || !workbench::ReadProjectData(session->Bench, o.Project)) return kExitFailed;
  RunContext& run = session->Run;
  run.Inputs = {o.Project};
  const workbench::Workbench& bench = session->Bench;
  run.Say(fmt::format("{}: {} profiles", o.Project, bench.ProfileCount()));
  for (const ProfileRecord& p : bench.List().Items) {
    const ErdRecord& erd = p.Erd;
    const double length = erd.NumSamples > 1 ? (erd.NumSamples - 1) * erd.StepSize : 0.0;
    run.Say(fmt::format("{}  {} samples at {} m, {} m, KP {}", ProfileList::NameOf(p), erd.NumSamples,
                        FormatNumber(erd.StepSize, "0.000000"), FormatNumber(length, "0.00000"),
                        erd.KpDisplay.empty() ? std::string("-") : erd.KpDisplay));
    run.Say("  route      " + p.RouteName);
    run.Say("  source     " + (p.FilePath.empty() ? std::string("-") : p.FilePath));
    if (!p.Comment.empty()) run.Say("  comment    " + ReplaceAll(p.Comment, "\r\n", " / "));
    nlohmann::json studies = nlohmann::json::array();
    for (const StudyTarget& s : p.Studies) {
      run.Say(fmt::format("  study      {} ({} points)", s.Name, s.Points.size()));
      studies.push_back({{"name", s.Name}, {"points", s.Points.size()}});
    }
    run.Result({{"profile", ProfileList::NameOf(p)}, {"file", p.FileName}, {"samples", erd.NumSamples},
                {"pitch_m", erd.StepSize}, {"length_m", length}, {"route", p.RouteName}, {"studies", studies}});
  }
  const CalcConditions& c = session->Engine.CurrentConditions;
  run.Say("conditions");
  run.Say(fmt::format("  filter     long {} m, short {} m", c.FilterLong, c.FilterShort));
  SayIri(run, "IRI", c.Iri);
  SayIri(run, "repair IRI", c.RepairIri);
  return kExitOk;
}

// User.dat and the ERD files of a project, checked as opening it checks them, into -o.
int RunExtract(const CommonOptions& common, const ProjectOptions& o) {
  auto session = OpenSession(common, {}, workbench::tab::Profile);
  if (!session) return kExitFailed;
  RunContext& run = session->Run;
  run.Inputs = {o.Project};
  const fs::path folder = run.Scratch / "Extract";
  fs::create_directory(folder);
  workbench::LoadedProject loaded;
  if (!workbench::LoadProjectArchive(session->Engine, o.Project, folder.string(), loaded)) return kExitFailed;
  fs::copy_file(folder / "Project" / "User.dat", run.Staging() / "User.dat");
  for (const ProfileRecord& p : loaded.Record.Profiles.Items)
    fs::copy_file(folder / "Project" / "Profile" / p.FileName, run.Staging() / p.FileName);
  return kExitOk;
}

using Runner = int (*)(const CommonOptions&, const ProjectOptions&);

// One action of the command, with its own PROJECT (and FILE) arguments; parsing it chooses its runner.
void AddAction(CLI::App& cmd, const std::shared_ptr<ProjectOptions>& o, const std::shared_ptr<Runner>& chosen,
               const char* name, const char* description, Runner runner, bool files) {
  CLI::App* sub = cmd.add_subcommand(name, description);
  sub->add_option("PROJECT", o->Project, "project file (.prj)")->required();
  if (files) sub->add_option("FILE", o->Files, "ERD profile files, folders of them, or - for a list on stdin")->required();
  sub->callback([chosen, runner] { *chosen = runner; });
}

}  // namespace

VELMORA_COMMAND("project", "project files (.prj): new from ERD files, add files, describe, extract",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<ProjectOptions>();
                  auto chosen = std::make_shared<Runner>(nullptr);
                  cmd.require_subcommand(1);
                  AddAction(cmd, o, chosen, "new", "a new project file of the ERD files", RunNew, true);
                  AddAction(cmd, o, chosen, "add", "the ERD files added to a project file (a name it has "
                            "already is replaced with --yes)", RunAdd, true);
                  AddAction(cmd, o, chosen, "info", "the profiles, studies and conditions of a project file",
                            RunInfo, false);
                  AddAction(cmd, o, chosen, "extract", "User.dat and the ERD files of a project file into -o",
                            RunExtract, false);
                  return [&common, o, chosen] { return *chosen ? (*chosen)(common, *o) : kExitUsage; };
                });

}  // namespace velmora::cli
