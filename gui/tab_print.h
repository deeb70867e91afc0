#pragma once
// The print tab: its list, the pattern list cboPrintOut, the paper, the preview of the first page
// drawn by the graph layer, and printing: the pages into a PDF file and, when asked, to the system's
// print queue, as the print command does.
#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <filesystem>

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

// The first page of the book as a picture at `dotsPerInch`; a null image when it could not be drawn
// (the failure is in the error log).
QImage PreviewPage(Session& session, const workbench::PrintBook& book, int paperCode, double dotsPerInch);

class PrintTabPage final : public QWidget {
 public:
  PrintTabPage(MainWindow& window, workbench::Workbench& bench);
  // cmdPrintPreView: the analyses for the selected rows, then page 1 of the chosen pattern shown.
  bool Preview();
  // cmdPrintOut: every page of the book on show into a PDF file the user names, and with
  // "プリンターへ送る" ticked to the print queue. The PDF written, or empty.
  std::string Print();
  // The print options file (.prt) the sheets take their scales, header items and colours from:
  // the file dialog, then the file read. False when cancelled or refused (the engine has said why).
  bool ChooseOptions();
  bool UseOptions(const std::filesystem::path& path);
  SheetPreview* PreviewWidget() const { return preview_; }
  QComboBox* Patterns() const { return patterns_; }

 private:
  workbench::PrintSheet Sheet() const;
  int PaperCode() const;

  MainWindow& window_;
  workbench::Workbench& bench_;
  QComboBox* patterns_ = nullptr;
  QComboBox* paper_ = nullptr;
  QPushButton* print_ = nullptr;
  QCheckBox* queue_ = nullptr;
  SheetPreview* preview_ = nullptr;
  std::vector<int> shownRows_;  // the rows of the preview on show
  graph::PrintOptions options_ = graph::DefaultPrintOptions();
  bool optionsRead_ = false;  // a file gave them: its scales hold
  QLabel* optionsName_ = nullptr;
};

PrintTabPage* AddPrintTab(MainWindow& window, workbench::Workbench& bench);

}  // namespace velmora::gui
