#pragma once
// The print tab: its list, the pattern list cboPrintOut, the paper, the preview of the book's pages
// drawn by the graph layer one at a time, and printing: the pages into a PDF file and, when asked, to
// the system's print queue, as the print command does.
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <array>
#include <filesystem>
#include <optional>

#include "main_window.h"
#include "workbench/print_book.h"

namespace velmora::gui {

// The page as a picture scaled to the widget, its proportions kept.
class SheetPreview final : public QWidget {
 public:
  void SetImage(QImage image);
  const QImage& Image() const { return image_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage image_;
};

// A page (from 0) of the book as a picture at `dotsPerInch`; a null image when it could not be drawn
// (the failure is in the error log).
QImage PreviewPage(Session& session, const workbench::PrintBook& book, int paperCode, double dotsPerInch, int page = 0);

class PrintTabPage final : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(PrintTabPage)

 public:
  PrintTabPage(MainWindow& window, workbench::Workbench& bench);
  // cmdPrintPreView: the analyses for the selected rows, then page 1 of the chosen pattern shown, made
  // on the worker under the progress display. False when it did not start.
  bool Preview();
  // Another page of the book on show (from 0, kept within the book); false when there is none to show.
  bool ShowPage(int page);
  int ShownPage() const { return page_; }
  int PageTotal() const { return pageCount_; }
  // cmdPrintOut: every page of the book on show into a PDF file the user names, and with
  // "プリンターへ送る" ticked to the print queue. The pages are composed on the worker under the
  // progress display, whose Cancel leaves no file. False when it did not start.
  bool Print();
  // The PDF the last print wrote, once it has ended; empty when it stopped or failed.
  const std::string& Printed() const { return printed_; }
  // The print options file (.prt) the sheets take their scales, header items and colours from:
  // the file dialog, then the file read. False when cancelled or refused (the engine has said why).
  bool ChooseOptions();
  bool UseOptions(const std::filesystem::path& path);
  SheetPreview* PreviewWidget() const { return preview_; }
  QComboBox* Patterns() const { return patterns_; }

 private:
  workbench::PrintSheet Sheet() const;
  int PaperCode() const;
  // The book of the preview on show, made again from its rows; nullopt when the list has changed
  // under it (a row gone or another profile in its place).
  std::optional<workbench::PrintBook> ShownBook() const;
  QWidget* MakePageBar();
  // The PDF written: the user is told where, or it goes to the print queue as asked.
  void HandOver(const std::string& pdf, bool queue) const;
  void ShowPageNumber();

  MainWindow& window_;
  workbench::Workbench& bench_;
  QComboBox* patterns_ = nullptr;
  QComboBox* paper_ = nullptr;
  QPushButton* print_ = nullptr;
  QCheckBox* queue_ = nullptr;
  SheetPreview* preview_ = nullptr;
  QLabel* pageNumber_ = nullptr;                   // "n / N"
  std::array<QPushButton*, 4> pageButtons_{};  // first, previous, next, last
  // What the preview on show was made of: the rows with their profiles' names then, the pattern, the
  // paper and the options.
  struct ShownBookSource {
    std::vector<int> Rows;
    std::vector<std::string> Names;
    workbench::PrintSheet Sheet = workbench::PrintSheet::Octave;
    int Paper = 0;
    graph::PrintOptions Options;
    bool OptionsRead = false;
  };
  ShownBookSource shown_;
  int page_ = 0;
  std::string printed_;
  int pageCount_ = 0;
  graph::PrintOptions options_ = graph::DefaultPrintOptions();
  bool optionsRead_ = false;  // a file gave them: its scales hold
  QLabel* optionsName_ = nullptr;
};

PrintTabPage* AddPrintTab(MainWindow& window, workbench::Workbench& bench);

}  // namespace velmora::gui
