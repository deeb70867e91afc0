// velmora print: the printed sheets as PDF pages: the profile split sheet with its nine octave panels
// (one page per profile, then the decomposition statistics when the options ask for them), or the IRI
// sheet of all profiles. Scales and colours from a print options file (.prt) when one is given.
#include <fmt/format.h>

#include <spawn.h>
#include <sys/wait.h>

#include <functional>
#include <stdexcept>

#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "base/progress.h"
#include "command_session.h"
#include "graph/paper_size.h"
#include "graph/print_sheets.h"
#include "messages.h"
#include "profile/profile_list.h"

extern char** environ;

namespace velmora::cli {
namespace {

struct PrintOptionsFlags {
  std::string Sheet;
  std::vector<std::string> Files;
  std::string Options;      // .prt to read
  std::string SaveOptions;  // name of a .prt to write into -o
  std::string Paper = "A4";
  bool Preview = false;     // each page also as an SVG metafile
  bool Queue = false;       // hand the PDF to the system's print queue
  std::string Printer;      // the queue's destination; the default one when empty
};

// The print step: the PDF goes to the system's print queue through lp, which copies it into its
// spool at once. Without lp the PDF stays where the run writes it, and the user is told so.
bool QueuePdf(CommandSession& session, const std::filesystem::path& pdf, const std::string& printer) {
  std::vector<std::string> words{"lp"};
  if (!printer.empty()) words.insert(words.end(), {"-d", printer});
  words.push_back(pdf.string());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t child = 0;
  if (::posix_spawnp(&child, "lp", nullptr, nullptr, argv.data(), environ) != 0) {
    PrintProblem(session.Run, "lp", Tr("no print queue (lp not found): the PDF is written to {}", session.Run.OutputDir.string()));
    return true;
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return true;
  PrintProblem(session.Run, "lp", Tr("the print queue refused the PDF; it is written to {}", session.Run.OutputDir.string()));
  return false;
}

// The sheets' computations: band reduction (with the octave split) and IRI for every file.
bool ComputeSheets(CommandSession& session, bool octave) {
  workbench::Workbench& bench = session.Bench;
  bench.DispGrp = true;
  bench.SelectAll(workbench::tab::Iri);
  if (!bench.Go(workbench::tab::Iri)) return false;
  if (!octave) return true;
  bench.SelectAll(workbench::tab::BandReduction);
  return bench.Go(workbench::tab::BandReduction);
}

// One page: how it is drawn and the progress display it is made under.
struct SheetPage {
  std::function<void(const graph::SheetTarget& sheet)> Draw;
  const char* Progress = "印刷イメージの作成";
};

// The pages of the sheet in order: for octave one per profile and the statistics when asked for.
std::vector<SheetPage> SheetPages(CommandSession& session, const PrintOptionsFlags& o,
                                    const graph::PrintOptions& options, std::vector<const ProfileRecord*>& profiles) {
  workbench::Workbench& bench = session.Bench;
  for (int row : bench.Selection(workbench::tab::Iri)) profiles.push_back(&bench.Profile(row));
  const graph::SheetScales scales{options, !o.Options.empty()};
  const CalcConditions& conditions = session.Engine.CurrentConditions;
  std::vector<SheetPage> pages;
  if (o.Sheet == "iri") {
    pages.push_back({[&, scales](const graph::SheetTarget& sheet) {
      graph::Print_印刷パターン_v02(sheet, profiles, scales, session.Engine.Settings.PaletteProfile);
    }});
    return pages;
  }
  for (const ProfileRecord* profile : profiles)
    pages.push_back({[&conditions, scales, profile](const graph::SheetTarget& sheet) {
      graph::Print_印刷パターン_v01(sheet, *profile, scales, conditions.BandColours);
    }});
  if (options.PrintStatistics)
    pages.push_back({[&](const graph::SheetTarget& sheet) {
                       graph::Print_プロファイル分解(sheet, profiles, conditions.Iri.Speed);
                     },
                     "プロファイル分割図の印刷イメージの作成"});
  return pages;
}

// The pages onto the printer (one PDF) and, with --preview, each page also as a metafile (SVG) named
// as the preview pages are: "Velmora-01", "Velmora-02", ...
void ComposeSheets(CommandSession& session, const PrintOptionsFlags& o, const graph::PrintOptions& options,
                   const std::filesystem::path& file, const std::string& stamp) {
  std::vector<const ProfileRecord*> profiles;
  const std::vector<SheetPage> pages = SheetPages(session, o, options, profiles);
  graph::PrinterTarget printer;
  printer.OutputFile = file;
  printer.PaperSize = *graph::PaperCodeOf(o.Paper);
  printer.Orientation = o.Sheet == "octave" ? graph::kPortrait : graph::kLandscape;
  graph::PreparePrinter(printer);
  graph::DrawDevices devices;
  const graph::Hdc hdc = devices.regHDCPrinter(printer);
  // One progress display for each run of pages that share a caption.
  for (std::size_t i = 0; i < pages.size();) {
    const char* caption = pages[i].Progress;
    const ProgressScope progress(session.Engine.Ui(), caption, "しばらくお待ちください。");
    for (; i < pages.size() && pages[i].Progress == caption; ++i) {
      if (i > 0) devices.pageChange(hdc);
      pages[i].Draw({devices, hdc, printer.Surface});
      if (o.Preview) {
        const auto page = session.Run.Staging() / fmt::format("Velmora-{:02}_{}.svg", i + 1, stamp);
        const graph::Hdc metafile = devices.regHDCMetaFile(page, printer.Surface);
        pages[i].Draw({devices, metafile, printer.Surface});
        devices.releaseHDC(metafile);
      }
      ReportProgress(session.Engine.Ui(), static_cast<int>((i + 1) * 100 / pages.size()));
    }
  }
  devices.releaseHDC(hdc);
}

int RunPrintCommand(const CommonOptions& common, const PrintOptionsFlags& o) {
  auto session = OpenSession(common, o.Files, workbench::tab::Iri);
  if (!session) return 1;
  graph::PrintOptions options = graph::DefaultPrintOptions();
  try {
    if (!o.Options.empty() && !graph::ReadPrintoption(session->Engine, o.Options, options)) return 1;
    if (!ComputeSheets(*session, o.Sheet == "octave")) return 1;
    const std::string stamp = FormatDateTime(session->Run.Stamp, "YYYYMMDDHHNNSS");
    const std::string stem = o.Files.size() == 1 && session->Bench.ProfileCount() == 1
                                 ? ProfileList::NameOf(session->Bench.Profile(1)) + "_"
                                 : std::string();
    const auto pdf = session->Run.Staging() / fmt::format("{}print_{}_{}.pdf", stem, o.Sheet, stamp);
    ComposeSheets(*session, o, options, pdf, stamp);
    if (o.Queue && !QueuePdf(*session, pdf, o.Printer)) return 1;
    if (!o.SaveOptions.empty())
      graph::WritePrintoption(session->Engine, session->Run.Staging() / (o.SaveOptions + ".prt"), options);
  } catch (const LegacyError& error) {
    PrintProblem(session->Run, "", error.what());
    return 1;
  } catch (const std::invalid_argument& error) {  // data no axis can be divided over
    PrintProblem(session->Run, "", error.what());
    return 1;
  }
  return 0;
}

}  // namespace

VELMORA_COMMAND("print",
                "printed sheets as PDF pages: octave (profile, 10 m IRI and nine octave panels per profile, "
                "mm) or iri (IRI in mm/m against KP)",
                [](CLI::App& cmd, const CommonOptions& common) -> std::function<int()> {
                  auto o = std::make_shared<PrintOptionsFlags>();
                  cmd.add_option("--sheet", o->Sheet, "the sheet: octave or iri")
                      ->required()
                      ->check(CLI::IsMember({"octave", "iri"}));
                  AddFilesArgument(cmd, o->Files);
                  cmd.add_option("--options", o->Options,
                                 "print options file (.prt): axis scales (mm, mm/m), header items, colours, layout")
                      ->check(CLI::ExistingFile);
                  cmd.add_option("--paper", o->Paper, "paper: A0..A5 or JIS B1..B5 (octave upright, iri across)")
                      ->check(CLI::IsMember({"A0", "A1", "A2", "A3", "A4", "A5", "B1", "B2", "B3", "B4", "B5"}))
                      ->capture_default_str();
                  cmd.add_flag("--preview", o->Preview, "also each page as an SVG metafile, Velmora-01.svg, ...");
                  cmd.add_flag("--queue", o->Queue, "also hand the PDF to the system's print queue (lp)");
                  cmd.add_option("--printer", o->Printer, "the print queue's destination (lp -d); implies --queue")
                      ->each([o](const std::string&) { o->Queue = true; });
                  cmd.add_option("--save-options", o->SaveOptions,
                                 "also write the options in force as NAME.prt into the output folder");
                  return [&common, o] { return RunPrintCommand(common, *o); };
                });

}  // namespace velmora::cli
