#pragma once
// The printed sheets of the print tab (cboPrintOut) and of the print command: which pages a sheet
// has, each drawn by the graph layer onto any target (the preview's picture, a metafile, the
// printer's PDF), the analyses they read, and the hand-over of the PDF to the system's print queue.
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "graph/draw_devices.h"
#include "graph/print_options.h"
#include "graph/print_sheets.h"
#include "workbench/workbench.h"

namespace velmora::workbench {

// The pattern: the list index of cboPrintOut plus 1.
enum class PrintSheet { Octave = 1, Iri = 2 };

struct PrintBook {
  PrintSheet Sheet = PrintSheet::Octave;
  std::vector<const ProfileRecord*> Profiles;  // in list order
  graph::PrintOptions Options = graph::DefaultPrintOptions();
  bool ScalesFromOptions = false;  // a print options file gave the axis scales
};

// The analyses the sheet reads for `rows` (from 1) of the list: the IRI and, for the octave sheet, the
// band reduction with its split, through the tabs' own Go. The two tabs' selections are as before
// afterwards. False when a Go failed or was stopped (it has said why).
bool ComputePrintSheet(Workbench& bench, PrintSheet sheet, const std::vector<int>& rows);
// The book of those rows: the octave sheet has a page per profile, then the decomposition statistics
// when the options ask for them; the IRI sheet one page of all profiles.
PrintBook MakePrintBook(const Workbench& bench, PrintSheet sheet, const std::vector<int>& rows,
                        const graph::PrintOptions& options, bool scalesFromOptions);

int PageCount(const PrintBook& book);
// The progress title the page (from 0) is composed under.
const char* PageProgress(const PrintBook& book, int page);
void DrawPrintPage(const Session& session, const PrintBook& book, int page, const graph::SheetTarget& target);

// The printer of the sheet on a paper (code of the paper size table): the octave sheet upright, the
// IRI sheet across; its surface is the sheet in millimetres.
graph::PrinterTarget PrintPaper(PrintSheet sheet, int paperCode, const std::filesystem::path& pdf);

// Every page into the printer's PDF under the progress display. `alsoEach` (may be empty) draws a
// page once more onto another target on the same surface (the preview metafiles).
using PageAlso = std::function<void(int page, graph::DrawDevices& devices, const graph::PrinterTarget& printer)>;
void ComposePrintPdf(Session& session, const PrintBook& book, graph::PrinterTarget& printer, const PageAlso& alsoEach = {});

// Every page into the PDF `target` under the progress display, the file written whole once the last
// page is drawn. Failed when a page could not be drawn or written (logged), Cancelled when the display
// asked to stop: either way no file is left, and one of that name from before stays as it was.
GoOutcome WritePrintPdf(Session& session, const PrintBook& book, int paperCode, const std::filesystem::path& target);

// The PDF handed to the system's print queue through `lp` (to `printer`, or the default one when
// empty), which copies it into its spool at once.
enum class QueueOutcome { Queued, NoQueue, Refused };
QueueOutcome QueuePdf(const std::filesystem::path& pdf, const std::string& printer);

}  // namespace velmora::workbench
