// velmora report: a spreadsheet report from a template whose Option sheet scripts the columns, or the
// fixed export of one profile. The IRI tab's Go (with the octave split) runs first with 10 m windows,
// which the reports read; the workbook and its interface file land in -o.
#include <algorithm>
#include <filesystem>

#include "command_session.h"
#include "messages.h"
#include "report/exel_fixed_export.h"
#include "report/exel_report.h"
#include "workbench/report_analyses.h"

namespace velmora::cli {
namespace {

struct ReportOptions {
  std::vector<std::string> Arguments;  // TEMPLATE FILE..., or with --fixed FILE
  std::vector<std::string> Params;     // LABEL=VALUE
  bool Fixed = false;
  bool Reversed = false;
};

// The analyses every report reads (bands and the 10 m continuous IRI), without drawing.
bool RunReportAnalyses(CommandSession& session) {
  session.Bench.DispGrp = true;
  return workbench::RunReportAnalyses(session.Bench, [&session] { return CheckIriLengthFlag(session); }) ==
         workbench::GoOutcome::Completed;
}

// Fills the parameter table from --param LABEL=VALUE (a parameter's name is accepted for its label);
// false, said as a usage error, for a malformed or unknown one.
bool FillParams(RunContext& run, const std::vector<std::string>& given, const std::string& templateName,
                std::vector<ExelParamEntry>& table) {
  for (const std::string& item : given) {
    const std::size_t equals = item.find('=');
    const std::string label = Trim(item.substr(0, equals));
    auto entry = std::find_if(table.begin(), table.end(), [&](const ExelParamEntry& e) { return e.Param.Label == label; });
    if (entry == table.end())
      entry = std::find_if(table.begin(), table.end(), [&](const ExelParamEntry& e) { return e.Param.Name == label; });
    if (equals == std::string::npos || entry == table.end()) {
      run.UsageError = true;
      PrintProblem(run, "--param", equals == std::string::npos
                                       ? Tr("\"{}\" is not LABEL=VALUE", item)
                                       : Tr("{} has no parameter \"{}\"", templateName, label));
      return false;
    }
    entry->Value = item.substr(equals + 1);
    if (entry->Choice && std::find(entry->Items.begin(), entry->Items.end(), entry->Value) == entry->Items.end()) {
      run.UsageError = true;
      PrintProblem(run, "--param", Tr("no profile named \"{}\" among the files", entry->Value));
      return false;
    }
  }
  return true;
}

int RunScriptedReport(const CommonOptions& common, const ReportOptions& o) {
  RunContext& run = *common.Run;
  const std::filesystem::path templatePath = o.Arguments.front();
  const std::vector<std::string> files(o.Arguments.begin() + 1, o.Arguments.end());
  if (files.empty()) {
    run.UsageError = true;
    PrintProblem(run, "FILE", Tr("a template and at least one profile file are needed"));
    return kExitFailed;
  }
  auto session = OpenSession(common, files, workbench::tab::Iri);
  if (!session) return kExitFailed;
  ExelTemplate report;
  if (!ReadExelTemplateFile(session->Engine, templatePath, report)) return kExitFailed;
  const ProfileList& list = session->Bench.List();
  std::vector<std::string> titles;
  for (const ProfileRecord& record : list.Items) titles.push_back(ProfileList::NameOf(record));
  ExelReportRequest request;
  request.Params = MakeParamTable(report, titles);
  if (!FillParams(run, o.Params, templatePath.filename().string(), request.Params)) return kExitFailed;
  if (!RunReportAnalyses(*session)) return kExitFailed;
  request.Axis = session->Bench.Axis;
  request.Reversed = o.Reversed;
  request.Folder = run.Staging();
  request.Time = run.Stamp;
  const auto written = cmxExlsCreate(session->Engine, report, list, request);
  if (!written || written->Failed) return kExitFailed;
  run.Result({{"template", templatePath.string()},
              {"columns", report.Columns.size()},
              {"workbook", written->Workbook.filename().string()},
              {"interface", written->Interface.filename().string()}});
  return kExitOk;
}

int RunFixedExport(const CommonOptions& common, const ReportOptions& o) {
  RunContext& run = *common.Run;
  if (o.Arguments.size() != 1) {
    run.UsageError = true;
    PrintProblem(run, "--fixed", Tr("exactly one profile file is needed, got {}", std::to_string(o.Arguments.size())));
    return kExitFailed;
  }
  auto session = OpenSession(common, o.Arguments, workbench::tab::Iri);
  if (!session || !RunReportAnalyses(*session)) return kExitFailed;
  const std::filesystem::path fixed = std::filesystem::path(session->Engine.Paths.AppPath) / kFixedTemplate;
  const auto written = cmxExlsTest(session->Engine, session->Bench.Profile(1), session->Bench.Axis, fixed,
                                   run.Staging(), run.Stamp);
  if (!written) return kExitFailed;
  run.Result({{"profile", ProfileList::NameOf(session->Bench.Profile(1))}, {"workbook", written->filename().string()}});
  return kExitOk;
}

}  // namespace

VELMORA_COMMAND("report",
                "spreadsheet report: TEMPLATE.xlsm FILE... gives the workbook with its table and the _INTERFACE.dat "
                "file; --fixed FILE the fixed export of one profile",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<ReportOptions>();
                  cmd.add_option("ARGS", o->Arguments,
                                 "the template (.xlsm) then ERD profile files; with --fixed one ERD profile file")
                      ->required();
                  cmd.add_option("--param", o->Params,
                                 "LABEL=VALUE: a report parameter (a start or end in the report's unit, or a "
                                 "profile's name); repeatable");
                  cmd.add_flag("--fixed", o->Fixed, "the fixed export (帳表(補修前後).xlsm) of one profile");
                  cmd.add_flag("--reversed", o->Reversed, "rows from the last position to the first");
                  return [&common, o] { return o->Fixed ? RunFixedExport(common, *o) : RunScriptedReport(common, *o); };
                });

}  // namespace velmora::cli
