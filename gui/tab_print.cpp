#include "tab_print.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QTableView>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>
#include <memory>

#include "base/error_log.h"
#include "base/path_helpers.h"
#include "base/settings_io.h"
#include "graph/paper_size.h"
#include "output_tabs.h"
#include "tab_charts.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;
using workbench::PrintSheet;

constexpr std::string_view kFolderKey = "印刷出力フォルダ";
constexpr const char* kPapers[] = {"A4", "A3", "A5", "B4", "B5", "A2", "A1", "A0", "B3", "B2", "B1"};
constexpr const char* kSecondPattern = "帳票形式(2)";
constexpr double kPreviewDpi = 144;

}  // namespace

void SheetPreview::SetImage(QImage image) {
  image_ = std::move(image);
  update();
}

void SheetPreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(QPalette::Mid));
  if (image_.isNull()) return;
  const QSize fitted = image_.size().scaled(size() - QSize(16, 16), Qt::KeepAspectRatio);
  const QRect page(QPoint((width() - fitted.width()) / 2, (height() - fitted.height()) / 2), fitted);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(page, image_);
  painter.setPen(Qt::black);
  painter.drawRect(page.adjusted(0, 0, -1, -1));
}

QImage PreviewPage(Session& session, const workbench::PrintBook& book, int paperCode, double dotsPerInch, int page) {
  const graph::PrinterTarget paper = workbench::PrintPaper(book.Sheet, paperCode, {});
  graph::Picture picture(paper.Surface.PixelWidth, paper.Surface.PixelHeight, dotsPerInch);
  // The picture takes the sheet's millimetres, so the page is drawn as the printer draws it.
  const graph::DrawSurface& sheet = paper.Surface;
  picture.Surface.Scale(sheet.ScaleLeft, sheet.ScaleTop, sheet.ScaleLeft + sheet.ScaleWidth, sheet.ScaleTop + sheet.ScaleHeight);
  picture.Surface.Mode = graph::ScaleMode::Millimetre;
  graph::DrawDevices devices;
  const graph::Hdc hdc = devices.regHDCPicture(picture);
  const bool drawn = Guarded(session, "basPrintOut", "cmdPrintPreView",
                             [&] { workbench::DrawPrintPage(session, book, page, {devices, hdc, picture.Surface}); });
  devices.releaseHDC(hdc);
  return drawn ? ImageOf(picture) : QImage();
}

PrintTabPage::PrintTabPage(MainWindow& window, workbench::Workbench& bench) : window_(window), bench_(bench) {
  setObjectName("printTab");
  QTableView* list = window.NewProfileList();
  patterns_ = new QComboBox;
  patterns_->setObjectName("cboPrintOut");
  for (const std::string& form : bench_.PrintForms) patterns_->addItem(QString::fromStdString(form));
  if (patterns_->findText(kSecondPattern) < 0) patterns_->addItem(kSecondPattern);
  paper_ = new QComboBox;
  paper_->setObjectName("paper");
  for (const char* name : kPapers) paper_->addItem(name);
  queue_ = new QCheckBox(tr("プリンターへ送る (lp)"));
  queue_->setObjectName("queue");
  auto* preview = new QPushButton(tr("プレビュー"));
  preview->setObjectName("cmdPrintPreView");
  connect(preview, &QPushButton::clicked, this, [this] { Preview(); });
  print_ = new QPushButton(tr("印刷"));
  print_->setObjectName("cmdPrintOut");
  print_->setEnabled(false);
  connect(print_, &QPushButton::clicked, this, [this] { Print(); });
  // Another pattern or paper: the page on show is no longer what would be printed.
  for (QComboBox* box : {patterns_, paper_})
    connect(box, &QComboBox::currentIndexChanged, this, [this] { print_->setEnabled(false); });

  auto* readOptions = new QPushButton(tr("プリントオプション読込..."));
  readOptions->setObjectName("printOptions");
  connect(readOptions, &QPushButton::clicked, this, [this] { ChooseOptions(); });
  optionsName_ = new QLabel(tr("（既定値）"));

  auto* left = new QWidget;
  auto* leftLayout = new QVBoxLayout(left);
  leftLayout->setContentsMargins(0, 0, 0, 0);
  leftLayout->addWidget(list);
  auto* form = new QFormLayout;
  form->addRow(tr("帳票"), patterns_);
  form->addRow(tr("用紙"), paper_);
  form->addRow(readOptions, optionsName_);
  form->addRow(queue_);
  leftLayout->addLayout(form);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(preview);
  buttons->addWidget(print_);
  buttons->addStretch();
  leftLayout->addLayout(buttons);
  preview_ = new SheetPreview;
  auto* right = new QWidget;
  auto* rightLayout = new QVBoxLayout(right);
  rightLayout->setContentsMargins(0, 0, 0, 0);
  rightLayout->addWidget(preview_, 1);
  rightLayout->addWidget(MakePageBar());
  SplitPage(this, left, right, 260, 940);
  // A change of the list that takes a shown profile away leaves nothing on show to print.
  window.AddOwnPage(tab::Print, tr("印刷"), this, list, nullptr, [this] {
    if (pageCount_ > 0 && !ShownBook()) ShowPage(page_);
  });
}

QWidget* PrintTabPage::MakePageBar() {
  auto* bar = new QWidget;
  auto* layout = new QHBoxLayout(bar);
  layout->addStretch();
  const std::array<std::pair<const char*, QString>, 4> buttons{
      {{"firstPage", tr("|◀ 先頭")}, {"previousPage", tr("◀ 前")}, {"nextPage", tr("次 ▶")}, {"lastPage", tr("最後 ▶|")}}};
  for (std::size_t i = 0; i < buttons.size(); ++i) {
    pageButtons_[i] = new QPushButton(buttons[i].second);
    pageButtons_[i]->setObjectName(buttons[i].first);
    if (i == 2) {  // the page number stands between the backward and forward buttons
      pageNumber_ = new QLabel;
      pageNumber_->setObjectName("pageNumber");
      pageNumber_->setMinimumWidth(80);
      pageNumber_->setAlignment(Qt::AlignCenter);
      layout->addWidget(pageNumber_);
    }
    layout->addWidget(pageButtons_[i]);
  }
  connect(pageButtons_[0], &QPushButton::clicked, this, [this] { ShowPage(0); });
  connect(pageButtons_[1], &QPushButton::clicked, this, [this] { ShowPage(page_ - 1); });
  connect(pageButtons_[2], &QPushButton::clicked, this, [this] { ShowPage(page_ + 1); });
  connect(pageButtons_[3], &QPushButton::clicked, this, [this] { ShowPage(pageCount_ - 1); });
  layout->addStretch();
  ShowPageNumber();
  return bar;
}

void PrintTabPage::ShowPageNumber() {
  pageNumber_->setText(pageCount_ == 0 ? QString() : tr("%1 / %2").arg(page_ + 1).arg(pageCount_));
  pageButtons_[0]->setEnabled(page_ > 0);
  pageButtons_[1]->setEnabled(page_ > 0);
  pageButtons_[2]->setEnabled(page_ + 1 < pageCount_);
  pageButtons_[3]->setEnabled(page_ + 1 < pageCount_);
}

std::optional<workbench::PrintBook> PrintTabPage::ShownBook() const {
  for (std::size_t i = 0; i < shown_.Rows.size(); ++i) {
    const int row = shown_.Rows[i];
    if (row > bench_.ProfileCount() || ProfileList::NameOf(bench_.List().Items.at(row)) != shown_.Names[i])
      return std::nullopt;
  }
  return workbench::MakePrintBook(bench_, shown_.Sheet, shown_.Rows, shown_.Options, shown_.OptionsRead);
}

bool PrintTabPage::ShowPage(int page) {
  if (pageCount_ == 0 || window_.GoBusy()) return false;
  page = std::clamp(page, 0, pageCount_ - 1);
  const std::optional<workbench::PrintBook> book = ShownBook();
  QImage image = book ? PreviewPage(bench_.Session(), *book, shown_.Paper, kPreviewDpi, page) : QImage();
  if (image.isNull()) {
    // The book is gone or cannot be drawn: nothing on show that could be printed.
    preview_->SetImage({});
    pageCount_ = page_ = 0;
    print_->setEnabled(false);
    ShowPageNumber();
    return false;
  }
  preview_->SetImage(std::move(image));
  page_ = page;
  ShowPageNumber();
  return true;
}

PrintSheet PrintTabPage::Sheet() const {
  return patterns_->currentText() == kSecondPattern ? PrintSheet::Iri : PrintSheet::Octave;
}

int PrintTabPage::PaperCode() const { return graph::PaperCodeOf(paper_->currentText().toStdString()).value_or(graph::kPaperA4); }

bool PrintTabPage::ChooseOptions() {
  Session& session = bench_.Session();
  FileDialogRequest request;
  request.Title = tr("プリントオプション読込み").toStdString();
  request.Filter = tr("プリントオプション (*.prt)|*.prt|").toStdString();
  request.InitialDirectory = GetPrevValue(session, "CommonDialogPath", "プリントオプション読込みフォルダ");
  const std::vector<std::string> chosen = session.Ui().OpenFiles(request);
  if (chosen.empty()) return false;
  SetPrevValue(session, "CommonDialogPath", "プリントオプション読込みフォルダ", flGetPathName(chosen.front()));
  return UseOptions(chosen.front());
}

bool PrintTabPage::UseOptions(const std::filesystem::path& path) {
  graph::PrintOptions read = graph::DefaultPrintOptions();
  bool taken = false;
  // A line the file cannot hold is an error naming the file and line, logged and shown.
  Guarded(bench_.Session(), "frmPrinOption", "ReadPrintoption", [&] { taken = graph::ReadPrintoption(bench_.Session(), path, read); });
  if (!taken) return false;
  options_ = read;
  optionsRead_ = true;
  optionsName_->setText(QString::fromStdString(path.filename().string()));
  print_->setEnabled(false);  // the page on show was made with the options before
  return true;
}

bool PrintTabPage::Preview() {
  const std::vector<int> rows = bench_.Selection(tab::Print);
  if (rows.empty() || window_.GoBusy()) return false;
  ShownBookSource source{rows, {}, Sheet(), PaperCode(), options_, optionsRead_};
  for (int row : rows) source.Names.push_back(ProfileList::NameOf(bench_.List().Items.at(row)));
  auto first = std::make_shared<QImage>();
  // The analyses and the first page on the worker: the window stays live, and Cancel stops them.
  const auto compose = [this, source, first] {
    if (!workbench::ComputePrintSheet(bench_, source.Sheet, source.Rows)) return workbench::GoOutcome::Failed;
    const workbench::PrintBook book =
        workbench::MakePrintBook(bench_, source.Sheet, source.Rows, source.Options, source.OptionsRead);
    *first = PreviewPage(bench_.Session(), book, source.Paper, kPreviewDpi);
    return first->isNull() ? workbench::GoOutcome::Failed : workbench::GoOutcome::Completed;
  };
  return window_.StartWork(compose, [this, source, first](workbench::GoOutcome outcome) {
    if (outcome != workbench::GoOutcome::Completed) return;  // the page on show stays
    shown_ = source;
    pageCount_ = workbench::PageCount(*ShownBook());
    page_ = 0;
    preview_->SetImage(std::move(*first));
    ShowPageNumber();
    print_->setEnabled(true);
  });
}

bool PrintTabPage::Print() {
  if (pageCount_ == 0 || window_.GoBusy()) return false;
  Session& session = bench_.Session();
  FileDialogRequest request;
  request.Title = tr("印刷").toStdString();
  request.Filter = tr("PDFファイル (*.pdf)|*.pdf|すべてのファイル (*.*)|*.*").toStdString();
  request.InitialDirectory = GetPrevValue(session, "CommonDialogPath", kFolderKey);
  request.DefaultName = "Velmora.pdf";
  const std::string target = session.Ui().SaveFile(request);
  if (target.empty()) return false;
  SetPrevValue(session, "CommonDialogPath", kFolderKey, flGetPathName(target));
  const std::optional<workbench::PrintBook> book = ShownBook();
  if (!book) return ShowPage(page_);  // the list changed under the preview: it goes
  printed_.clear();
  const auto write = [this, book = *book, paper = shown_.Paper, target] {
    return workbench::WritePrintPdf(bench_.Session(), book, paper, target);
  };
  return window_.StartWork(write, [this, target, queue = queue_->isChecked()](workbench::GoOutcome outcome) {
    if (outcome != workbench::GoOutcome::Completed) return;
    printed_ = target;
    HandOver(target, queue);
  });
}

void PrintTabPage::HandOver(const std::string& pdf, bool queue) const {
  UserInteraction& ui = bench_.Session().Ui();
  const QString printing = tr("印刷"), failed = tr("印刷エラー");
  if (!queue) {
    ui.Inform((tr("PDFファイルを保存しました。\r\n\r\n保存先：") + QString::fromStdString(pdf)).toStdString(),
              printing.toStdString(), MsgIcon::Information);
    return;
  }
  const QString file = tr("\r\n\r\nPDFファイル：") + QString::fromStdString(pdf);
  switch (workbench::QueuePdf(pdf, {})) {
    case workbench::QueueOutcome::Queued:
      ui.Inform((tr("プリンターへ送りました。") + file).toStdString(), printing.toStdString(), MsgIcon::Information);
      break;
    case workbench::QueueOutcome::NoQueue:
      ui.Inform((tr("印刷キュー (lp) が見つかりません。") + file).toStdString(), failed.toStdString());
      break;
    case workbench::QueueOutcome::Refused:
      ui.Inform((tr("印刷キューがPDFを受け付けませんでした。") + file).toStdString(), failed.toStdString());
      break;
  }
}

PrintTabPage* AddPrintTab(MainWindow& window, workbench::Workbench& bench) { return new PrintTabPage(window, bench); }

}  // namespace velmora::gui
