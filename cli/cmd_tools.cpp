// velmora import and velmora tool: delimited text columns (or the channels of a profiler's file)
// into ERD profiles, and the four profile tools (reverse, shift, cut, composite). The new ERD files
// land in -o.
#include <cstdio>
#include <filesystem>
#include <optional>

#include "base/app_paths.h"
#include "base/path_helpers.h"
#include <fmt/format.h>

#include "channel_import.h"
#include "command_session.h"
#include "messages.h"
#include "profile/erd_file.h"
#include "profile/profile_tools.h"
#include "profile/text_import.h"

namespace velmora::cli {
namespace {

// "a:b" → the two boxes; either side may be empty ("3:" from row 3 to the end).
void SplitRange(const std::string& range, std::string& first, std::string& last) {
  const auto colon = range.find(':');
  first = range.substr(0, colon);
  last = colon == std::string::npos ? first : range.substr(colon + 1);
}

// Writes the new profiles into the staging folder, from where they go to -o.
int WriteOutputs(const CommonOptions& common, const std::optional<std::vector<ToolOutput>>& outputs) {
  RunContext& run = *common.Run;
  if (!outputs) return kExitFailed;  // a check refused the inputs; its message is on stderr
  if (outputs->empty()) {
    PrintProblem(run, "", Tr("nothing to write: the range lies outside every profile"));
    return kExitFailed;
  }
  for (const ToolOutput& output : *outputs) {
    WriteERD((run.Staging() / output.FileName).string(), output.Erd);
    run.Result({{"file", output.FileName}, {"samples", output.Erd.NumSamples}});
  }
  return kExitOk;
}

struct ImportArgs {
  std::string File, Delimiters = ",", Rows, Columns, Pitch, Channel = "all";
  bool Header = false, TitleFromHeader = false, Strict = false;
};

int RunImport(const CommonOptions& common, const ImportArgs& args) {
  // The same messages as every command for a file that is missing or not a file; an empty one has
  // nothing to import.
  if (!std::filesystem::is_directory(args.File)) {
    if (InputFiles(*common.Run, {args.File}).empty()) return kExitFailed;
    std::error_code ec;
    if (std::filesystem::file_size(args.File, ec) == 0) {
      PrintProblem(*common.Run, args.File, Tr("empty file"));
      return kExitFailed;
    }
  }
  // A profiler's file carries its own pitch and units; the text import is for everything else.
  if (IsChannelImport(args.File)) return RunChannelImport(common, args.File, args.Channel);
  ImportOptions options;
  options.Comma = args.Delimiters.find(',') != std::string::npos;
  options.Tab = args.Delimiters.find("tab") != std::string::npos || args.Delimiters.find('\t') != std::string::npos;
  options.Semicolon = args.Delimiters.find(';') != std::string::npos;
  options.Space = args.Delimiters.find("space") != std::string::npos || args.Delimiters.find(' ') != std::string::npos;
  options.Header = args.Header;
  options.TitleFromHeader = args.TitleFromHeader;
  options.Pitch = args.Pitch;
  SplitRange(args.Rows, options.FirstRow, options.LastRow);
  SplitRange(args.Columns, options.FirstColumn, options.LastColumn);

  auto session = OpenSession(common, {}, workbench::tab::Profile);
  if (!session) return 1;
  std::vector<std::string> written;
  {
    // The import's own checks of the typed boxes, named by the flags that fill them.
    CliUi::FlagCheck check(session->Ui, {{"--pitch", "ピッチ", "m"},
                                         {"--pitch", "数値で指定してください。", "m"},
                                         {"--rows", "データ開始行", ""},
                                         {"--columns", "データ開始列", ""}});
    written = session->Bench.ImportText(args.File, options);
  }
  if (written.empty()) return kExitFailed;
  // The import reads a cell that is not a number as 0; the command line says where, or refuses.
  const auto problems = NonNumericCells(BuildImportPreview(args.File, options), options);
  for (const ImportCellProblem& cell : problems)
    PrintProblem(session->Run, fmt::format("{}:{}:{}", args.File, cell.Line, cell.Column),
                 Tr(args.Strict ? "\"{}\" is not a number" : "\"{}\" is not a number; read as 0", cell.Text));
  if (args.Strict && !problems.empty()) return kExitFailed;
  // The import writes into the scratch tree's Temp: a move within the tree.
  for (const std::string& file : written)
    std::filesystem::rename(file, session->Run.Staging() / flGetFileName(file));
  return kExitOk;
}

struct ToolArgs {
  std::vector<std::string> Files;
  std::string At = "start", Kp, Height;                         // shift
  std::string KpRange, From, Length, Unit = "samples", Fill = "none";  // cut
  bool FromEnd = false;
  std::string Base, BaseCsv, PitchOf = "target";                // composite
  bool CsvHeading = false, CsvKm = false;
};

CutUnit UnitOf(const std::string& word) {
  if (word == "km") return CutUnit::Km;
  if (word == "m") return CutUnit::M;
  if (word == "mm") return CutUnit::Mm;
  return CutUnit::Samples;
}

Shortfall FillOf(const std::string& word) {
  if (word == "zero") return Shortfall::Zero;
  if (word == "edge") return Shortfall::EdgeValue;
  if (word == "mirror") return Shortfall::Mirror;
  return Shortfall::None;
}

int RunTool(const CommonOptions& common, const std::string& tool, const ToolArgs& args) {
  std::vector<std::string> files = args.Files;
  if (tool == "composite" && !args.Base.empty()) files.insert(files.begin(), args.Base);
  auto session = OpenSession(common, files, workbench::tab::Profile);
  if (!session) return 1;
  std::vector<ToolItem> items = ToolItemsOf(session->Bench.List());

  if (tool == "reverse") return WriteOutputs(common, ReverseProfiles(items));
  if (tool == "shift") {
    HeightShiftInput input;
    input.Reference = args.At == "end" ? ShiftReference::End : args.At == "kp" ? ShiftReference::Kp : ShiftReference::Start;
    input.Kp = args.Kp;
    input.Height = args.Height;
    return WriteOutputs(common, HeightShiftProfiles(session->Engine, items, input));
  }
  if (tool == "cut") {
    CutOutInput input;
    input.ByKp = !args.KpRange.empty();
    SplitRange(args.KpRange, input.KpStart, input.KpEnd);
    input.Start = args.From;
    input.Length = args.Length;
    input.FromEnd = args.FromEnd;
    input.Unit = UnitOf(args.Unit);
    input.Fill = FillOf(args.Fill);
    return WriteOutputs(common, CutOutProfiles(session->Engine, items, input));
  }
  CompositeInput input;
  input.BaseIsCsv = args.Base.empty();
  input.CsvPath = args.BaseCsv;
  input.CsvHeading = args.CsvHeading;
  input.CsvInKm = args.CsvKm;
  input.PitchOfBase = args.PitchOf == "base";
  if (!input.BaseIsCsv) {
    input.BaseProfile = items.front();
    items.erase(items.begin());
  }
  return WriteOutputs(common, CompositeProfiles(session->Engine, items, input));
}

VELMORA_COMMAND("import",
                "profiles into ERD files in -o: delimited text (one per column; pitch in m), or the channels of "
                "profiler files (multi-channel ERD, .PRO; one per wheel path; a folder of them at once)",
                [](CLI::App& command, const CommonOptions& common) -> std::function<int()> {
                  auto args = std::make_shared<ImportArgs>();
                  command.add_option("FILE", args->File,
                                     "delimited text file (Shift-JIS), profiler file (ERD, .PRO) or a folder of them")
                      ->required();
                  command.add_option("--pitch", args->Pitch, "sampling pitch of delimited text, m");
                  command.add_option("--channel", args->Channel, "channels of a profiler file: all, or a number from 1")
                      ->capture_default_str();
                  command.add_option("--delimiter", args->Delimiters,
                                     "delimiters in force: any of , ; and the words tab, space")
                      ->capture_default_str();
                  command.add_option("--rows", args->Rows, "data rows a:b, 1-based (default: all)");
                  command.add_option("--columns", args->Columns, "data columns a:b, 1-based (default: all)");
                  command.add_flag("--header", args->Header, "the first line holds headings");
                  command.add_flag("--title-from-header", args->TitleFromHeader, "a column's heading becomes its title");
                  command.add_flag("--strict", args->Strict, "a cell that is not a number is an error (else read as 0, with a warning)");
                  return [&common, args] { return RunImport(common, *args); };
                });

VELMORA_COMMAND("tool", "new profiles from ERD files: reverse, shift, cut, composite (written to -o)",
                [](CLI::App& command, const CommonOptions& common) -> std::function<int()> {
                  auto args = std::make_shared<ToolArgs>();
                  command.require_subcommand(1);
                  auto* reverse = command.add_subcommand("reverse", "samples in reverse order; KP start and sense flipped");
                  reverse->add_option("FILE", args->Files, "ERD files")->required();

                  auto* shift = command.add_subcommand("shift", "move each profile to a height at a reference sample");
                  shift->add_option("FILE", args->Files, "ERD files")->required();
                  shift->add_option("--at", args->At, "reference: start, end or kp")
                      ->check(CLI::IsMember({"start", "end", "kp"}))->capture_default_str();
                  shift->add_option("--kp", args->Kp, "KP of the reference sample, km (with --at kp)");
                  shift->add_option("--height", args->Height, "height at the reference sample, mm")->required();

                  auto* cut = command.add_subcommand("cut", "cut out a range, filling what lies beyond the ends");
                  cut->add_option("FILE", args->Files, "ERD files")->required();
                  cut->add_option("--kp", args->KpRange, "KP range a:b, km");
                  cut->add_option("--from", args->From, "start position in --unit (instead of --kp)");
                  cut->add_option("--length", args->Length, "length in --unit");
                  cut->add_flag("--from-end", args->FromEnd, "the start position counts from the last sample");
                  cut->add_option("--unit", args->Unit, "unit of --from and --length: samples, km, m or mm")
                      ->check(CLI::IsMember({"samples", "km", "m", "mm"}))->capture_default_str();
                  cut->add_option("--fill", args->Fill, "beyond the ends: none, zero, edge or mirror")
                      ->check(CLI::IsMember({"none", "zero", "edge", "mirror"}))->capture_default_str();

                  auto* composite = command.add_subcommand("composite", "tie target profiles to a base (ERD or survey CSV)");
                  composite->add_option("FILE", args->Files, "target ERD files")->required();
                  auto* base = composite->add_option("--base", args->Base, "base ERD file");
                  composite->add_option("--base-csv", args->BaseCsv, "base CSV: position, height (mm)")->excludes(base);
                  composite->add_flag("--csv-heading", args->CsvHeading, "the CSV's first line holds headings");
                  composite->add_flag("--csv-km", args->CsvKm, "CSV positions in km (default m)");
                  composite->add_option("--pitch-of", args->PitchOf, "result on the positions of base or target")
                      ->check(CLI::IsMember({"base", "target"}))->capture_default_str();

                  return [&common, args, reverse, shift, cut] {
                    const std::string tool = reverse->parsed() ? "reverse" : shift->parsed() ? "shift" : cut->parsed() ? "cut" : "composite";
                    return RunTool(common, tool, *args);
                  };
                });

}  // namespace
}  // namespace velmora::cli
