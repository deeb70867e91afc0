// velmora print: the printed sheets as PDF pages: the profile split sheet with its nine octave panels
// (one page per profile, then the decomposition statistics when the options ask for them), or the IRI
// sheet of all profiles. Scales and colours from a print options file (.prt) when one is given.
#include <fmt/format.h>

#include <stdexcept>

#include "base/legacy_error.h"
#include "base/legacy_format.h"
#include "command_session.h"
#include "graph/paper_size.h"
#include "graph/print_sheets.h"
#include "messages.h"
#include "profile/profile_list.h"
#include "workbench/print_book.h"

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

// The print step: the PDF goes to the system's print queue. Without lp the PDF stays where the run
// writes it, and the user is told so.
bool QueuePdf(CommandSession& session, const std::filesystem::path& pdf, const std::string& printer) {
  switch (workbench::QueuePdf(pdf, printer)) {
    case workbench::QueueOutcome::Queued: return true;
    case workbench::QueueOutcome::NoQueue:
      PrintProblem(session.Run, "lp", Tr("no print queue (lp not found): the PDF is written to {}", session.Run.OutputDir.string()));
      return true;
    case workbench::QueueOutcome::Refused: break;
  }
  PrintProblem(session.Run, "lp", Tr("the print queue refused the PDF; it is written to {}", session.Run.OutputDir.string()));
  return false;
}

std::vector<int> EveryRow(const workbench::Workbench& bench) {
  std::vector<int> rows;
  for (int row = 1; row <= bench.ProfileCount(); ++row) rows.push_back(row);
  return rows;
}

// The pages onto the printer (one PDF) and, with --preview, each page also as a metafile (SVG) named
// as the preview pages are: "Velmora-01", "Velmora-02", ...
void ComposeSheets(CommandSession& session, const PrintOptionsFlags& o, const workbench::PrintBook& book,
                   const std::filesystem::path& file, const std::string& stamp) {
  graph::PrinterTarget printer = workbench::PrintPaper(book.Sheet, *graph::PaperCodeOf(o.Paper), file);
  workbench::PageAlso preview;
  if (o.Preview)
    preview = [&](int page, graph::DrawDevices& devices, const graph::PrinterTarget& paper) {
      const auto path = session.Run.Staging() / fmt::format("Velmora-{:02}_{}.svg", page + 1, stamp);
      const graph::Hdc metafile = devices.regHDCMetaFile(path, paper.Surface);
      workbench::DrawPrintPage(session.Engine, book, page, {devices, metafile, paper.Surface});
      devices.releaseHDC(metafile);
    };
  workbench::ComposePrintPdf(session.Engine, book, printer, preview);
}

int RunPrintCommand(const CommonOptions& common, const PrintOptionsFlags& o) {
  auto session = OpenSession(common, o.Files, workbench::tab::Iri);
  if (!session) return 1;
  graph::PrintOptions options = graph::DefaultPrintOptions();
  try {
    if (!o.Options.empty() && !graph::ReadPrintoption(session->Engine, o.Options, options)) return 1;
    const workbench::PrintSheet sheet = o.Sheet == "octave" ? workbench::PrintSheet::Octave : workbench::PrintSheet::Iri;
    session->Bench.DispGrp = true;
    const std::vector<int> rows = EveryRow(session->Bench);
    if (!workbench::ComputePrintSheet(session->Bench, sheet, rows)) return 1;
    const std::string stamp = FormatDateTime(session->Run.Stamp, "YYYYMMDDHHNNSS");
    const std::string stem = o.Files.size() == 1 && session->Bench.ProfileCount() == 1
                                 ? ProfileList::NameOf(session->Bench.Profile(1)) + "_"
                                 : std::string();
    const auto pdf = session->Run.Staging() / fmt::format("{}print_{}_{}.pdf", stem, o.Sheet, stamp);
    ComposeSheets(*session, o, workbench::MakePrintBook(session->Bench, sheet, rows, options, !o.Options.empty()), pdf, stamp);
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
