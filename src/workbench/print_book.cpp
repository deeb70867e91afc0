#include "workbench/print_book.h"

#include <spawn.h>
#include <sys/wait.h>

#include "base/error_log.h"
#include "base/progress.h"

extern char** environ;

namespace velmora::workbench {
namespace {

bool GoOver(Workbench& bench, int tab, const std::vector<int>& rows) {
  const std::vector<int> before = bench.Selection(tab);
  bench.Select(tab, rows);
  const bool done = bench.Go(tab);
  bench.Select(tab, before);
  return done;
}

bool HasStatisticsPage(const PrintBook& book) {
  return book.Sheet == PrintSheet::Octave && book.Options.PrintStatistics;
}

}  // namespace

bool ComputePrintSheet(Workbench& bench, PrintSheet sheet, const std::vector<int>& rows) {
  if (!GoOver(bench, tab::Iri, rows)) return false;
  return sheet != PrintSheet::Octave || GoOver(bench, tab::BandReduction, rows);
}

PrintBook MakePrintBook(const Workbench& bench, PrintSheet sheet, const std::vector<int>& rows,
                        const graph::PrintOptions& options, bool scalesFromOptions) {
  PrintBook book{sheet, {}, options, scalesFromOptions};
  for (int row : rows) book.Profiles.push_back(&bench.List().Items.at(row));
  return book;
}

int PageCount(const PrintBook& book) {
  if (book.Sheet == PrintSheet::Iri) return 1;
  return static_cast<int>(book.Profiles.size()) + (HasStatisticsPage(book) ? 1 : 0);
}

const char* PageProgress(const PrintBook& book, int page) {
  return HasStatisticsPage(book) && page == PageCount(book) - 1 ? "プロファイル分割図の印刷イメージの作成"
                                                                : "印刷イメージの作成";
}

void DrawPrintPage(const Session& session, const PrintBook& book, int page, const graph::SheetTarget& target) {
  const graph::SheetScales scales{book.Options, book.ScalesFromOptions};
  const CalcConditions& conditions = session.CurrentConditions;
  if (book.Sheet == PrintSheet::Iri)
    graph::Print_印刷パターン_v02(target, book.Profiles, scales, session.Settings.PaletteProfile);
  else if (static_cast<std::size_t>(page) < book.Profiles.size())
    graph::Print_印刷パターン_v01(target, *book.Profiles[static_cast<std::size_t>(page)], scales, conditions.BandColours);
  else
    graph::Print_プロファイル分解(target, book.Profiles, conditions.Iri.Speed);
}

graph::PrinterTarget PrintPaper(PrintSheet sheet, int paperCode, const std::filesystem::path& pdf) {
  graph::PrinterTarget printer;
  printer.OutputFile = pdf;
  printer.PaperSize = paperCode;
  printer.Orientation = sheet == PrintSheet::Octave ? graph::kPortrait : graph::kLandscape;
  graph::PreparePrinter(printer);
  return printer;
}

void ComposePrintPdf(Session& session, const PrintBook& book, graph::PrinterTarget& printer, const PageAlso& alsoEach) {
  graph::DrawDevices devices;
  const graph::Hdc hdc = devices.regHDCPrinter(printer);
  const int pages = PageCount(book);
  // One progress display for each run of pages made under the same title.
  for (int page = 0; page < pages;) {
    const char* title = PageProgress(book, page);
    ProgressScope progress(session.Ui(), title, std::string(kPleaseWait));
    for (; page < pages && PageProgress(book, page) == title; ++page) {
      if (page > 0) devices.pageChange(hdc);
      DrawPrintPage(session, book, page, {devices, hdc, printer.Surface});
      if (alsoEach) alsoEach(page, devices, printer);
      ReportProgress(session.Ui(), (page + 1) * 100 / pages);
    }
  }
  devices.releaseHDC(hdc);
}

GoOutcome WritePrintPdf(Session& session, const PrintBook& book, int paperCode, const std::filesystem::path& target) {
  try {
    // The printer's pages stay in memory until it is released: a stop on the way writes nothing.
    const bool written = Guarded(session, "basPrintOut", "cmdPrintOut", [&] {
      graph::PrinterTarget printer = PrintPaper(book.Sheet, paperCode, target);
      ComposePrintPdf(session, book, printer);
    });
    return written ? GoOutcome::Completed : GoOutcome::Failed;
  } catch (const Cancelled&) {
    return GoOutcome::Cancelled;
  }
}

QueueOutcome QueuePdf(const std::filesystem::path& pdf, const std::string& printer) {
  std::vector<std::string> words{"lp"};
  if (!printer.empty()) words.insert(words.end(), {"-d", printer});
  words.push_back(pdf.string());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  pid_t child = 0;
  if (::posix_spawnp(&child, "lp", nullptr, nullptr, argv.data(), environ) != 0) return QueueOutcome::NoQueue;
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? QueueOutcome::Queued : QueueOutcome::Refused;
}

}  // namespace velmora::workbench
