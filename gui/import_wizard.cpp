#include "import_wizard.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <stdexcept>

#include "qt_interaction.h"

namespace velmora::gui {
namespace {

constexpr const char* kDelimiterCaptions[] = {QT_TRANSLATE_NOOP("ImportWizard", "カンマ"),
                                             QT_TRANSLATE_NOOP("ImportWizard", "タブ"),
                                             QT_TRANSLATE_NOOP("ImportWizard", "セミコロン"),
                                             QT_TRANSLATE_NOOP("ImportWizard", "スペース"),
                                             QT_TRANSLATE_NOOP("ImportWizard", "その他")};
// The preview shows the head of the file: enough to see the columns and choose the range.
constexpr int kPreviewRows = 200;

QLineEdit* SmallBox(const QString& name, int width) {
  auto* box = new QLineEdit;
  box->setObjectName(name);
  box->setMaximumWidth(width);
  return box;
}

}  // namespace

ImportWizard::ImportWizard(workbench::Workbench& bench, std::string file, ListChange changeList, QWidget* parent)
    : QDialog(parent), bench_(bench), file_(std::move(file)), changeList_(std::move(changeList)) {
  setWindowTitle(tr("テキスト ファイル ウィザード"));
  auto* layout = new QVBoxLayout(this);
  auto* information = new QLabel(DialogText(kImportInformation));
  information->setWordWrap(true);
  layout->addWidget(information);
  layout->addWidget(new QLabel(tr("ファイル：") + QString::fromStdString(file_)));
  layout->addWidget(DelimiterBoxes());
  layout->addWidget(RangeBoxes());

  auto* preview = new QGroupBox(tr("データのプレビュー"));
  auto* previewLayout = new QVBoxLayout(preview);
  grid_ = new QTableWidget;
  grid_->setObjectName("ss");
  grid_->setEditTriggers(QAbstractItemView::NoEditTriggers);
  grid_->verticalHeader()->setDefaultSectionSize(20);
  previewLayout->addWidget(grid_);
  layout->addWidget(preview, 1);

  auto* buttons = new QDialogButtonBox;
  QPushButton* initialise = buttons->addButton(tr("初期化"), QDialogButtonBox::ResetRole);
  initialise->setObjectName("cmd登録設定");
  // The wizard has one page, so 戻る has nowhere to go back to: shown, as wizards show it, but off.
  QPushButton* before = buttons->addButton(tr("戻る"), QDialogButtonBox::ActionRole);
  before->setObjectName("cmdBefore");
  before->setEnabled(false);
  QPushButton* cancel = buttons->addButton(tr("キャンセル"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("cmdCancel");
  QPushButton* finish = buttons->addButton(tr("完了"), QDialogButtonBox::AcceptRole);
  finish->setObjectName("cmdNext");
  finish->setDefault(true);
  connect(initialise, &QPushButton::clicked, this, &ImportWizard::Initialise);
  connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(finish, &QPushButton::clicked, this, [this] { Finish(); });
  layout->addWidget(buttons);

  Show(LoadImportSettings(bench_.Session()));
  RefreshPreview();
  boxes_[0]->setFocus();
  resize(760, 620);
}

QWidget* ImportWizard::DelimiterBoxes() {
  auto* group = new QGroupBox(tr("区切り文字"));
  auto* row = new QHBoxLayout(group);
  for (std::size_t i = 0; i < delimiters_.size(); ++i) {
    delimiters_[i] = new QCheckBox(tr(kDelimiterCaptions[i]));
    delimiters_[i]->setObjectName(QString("chk区切文字%1").arg(i));
    connect(delimiters_[i], &QCheckBox::toggled, this, &ImportWizard::RefreshPreview);
    row->addWidget(delimiters_[i]);
  }
  otherText_ = SmallBox("txtSep", 40);
  connect(otherText_, &QLineEdit::textChanged, this, &ImportWizard::RefreshPreview);
  row->addWidget(otherText_);
  row->addStretch();
  return group;
}

QWidget* ImportWizard::RangeBoxes() {
  auto* group = new QGroupBox(tr("ERDファイルのヘッダー情報"));
  auto* grid = new QGridLayout(group);
  header_ = new QCheckBox(tr("１行目をヘッダーとして使用する"));
  header_->setObjectName("chkHeader");
  connect(header_, &QCheckBox::toggled, this, &ImportWizard::RefreshPreview);
  titleFromHeader_ = new QCheckBox(tr("１行目のヘッダーをタイトルとして使用する"));
  titleFromHeader_->setObjectName("chkタイトル使用");
  // A title can come from the heading only when there is one.
  connect(header_, &QCheckBox::toggled, titleFromHeader_, &QWidget::setEnabled);
  grid->addWidget(header_, 0, 0, 1, 3);
  grid->addWidget(titleFromHeader_, 0, 3, 1, 3);
  for (std::size_t i = 0; i < boxes_.size(); ++i) boxes_[i] = SmallBox(QString("txt緒元%1").arg(i), 90);
  grid->addWidget(new QLabel(tr("ピッチ")), 1, 0);
  grid->addWidget(boxes_[0], 1, 1);
  grid->addWidget(new QLabel("(m)"), 1, 2);
  const char* rangeCaptions[] = {QT_TR_NOOP("データ開始行"), QT_TR_NOOP("データ開始列")};
  for (int r = 0; r < 2; ++r) {
    grid->addWidget(new QLabel(tr(rangeCaptions[r])), 2 + r, 0);
    grid->addWidget(boxes_[static_cast<std::size_t>(1 + 2 * r)], 2 + r, 1);
    grid->addWidget(new QLabel("～"), 2 + r, 2, Qt::AlignCenter);
    grid->addWidget(boxes_[static_cast<std::size_t>(2 + 2 * r)], 2 + r, 3);
    boxes_[static_cast<std::size_t>(1 + 2 * r)]->setPlaceholderText(tr("省略時：1"));
  }
  grid->setColumnStretch(4, 1);
  return group;
}

void ImportWizard::Show(const ImportOptions& options) {
  filling_ = true;
  const bool on[] = {options.Comma, options.Tab, options.Semicolon, options.Space, options.Other};
  for (std::size_t i = 0; i < delimiters_.size(); ++i) delimiters_[i]->setChecked(on[i]);
  otherText_->setText(QString::fromStdString(options.OtherText));
  header_->setChecked(options.Header);
  titleFromHeader_->setChecked(options.TitleFromHeader);
  titleFromHeader_->setEnabled(options.Header);
  const std::string* texts[] = {&options.Pitch, &options.FirstRow, &options.LastRow, &options.FirstColumn,
                                &options.LastColumn};
  for (std::size_t i = 0; i < boxes_.size(); ++i) boxes_[i]->setText(QString::fromStdString(*texts[i]));
  filling_ = false;
}

ImportOptions ImportWizard::Take() const {
  ImportOptions options;
  bool* on[] = {&options.Comma, &options.Tab, &options.Semicolon, &options.Space, &options.Other};
  for (std::size_t i = 0; i < delimiters_.size(); ++i) *on[i] = delimiters_[i]->isChecked();
  options.OtherText = otherText_->text().toStdString();
  options.Header = header_->isChecked();
  options.TitleFromHeader = options.Header && titleFromHeader_->isChecked();
  std::string* texts[] = {&options.Pitch, &options.FirstRow, &options.LastRow, &options.FirstColumn,
                          &options.LastColumn};
  for (std::size_t i = 0; i < boxes_.size(); ++i) *texts[i] = boxes_[i]->text().trimmed().toStdString();
  return options;
}

void ImportWizard::RefreshPreview() {
  if (filling_) return;
  try {
    preview_ = BuildImportPreview(file_, Take());
  } catch (const std::exception& error) {
    readable_ = false;
    bench_.Session().Ui().Inform(error.what(), "エラー");
    return;
  }
  const int rows = std::min(preview_.RowCount(), kPreviewRows);
  grid_->clear();
  grid_->setColumnCount(preview_.Columns);
  grid_->setRowCount(rows);
  QStringList headings;
  for (int c = 1; c <= preview_.Columns; ++c) {
    const auto index = static_cast<std::size_t>(c - 1);
    headings << (index < preview_.Heading.size() ? QString::fromStdString(preview_.Heading[index])
                                                 : QString::number(c));
  }
  grid_->setHorizontalHeaderLabels(headings);
  // An empty end of the range is the grid's last row or column.
  boxes_[2]->setPlaceholderText(QString::number(preview_.RowCount()));
  boxes_[4]->setPlaceholderText(QString::number(preview_.Columns));
  for (int r = 1; r <= rows; ++r)
    for (int c = 1; c <= preview_.Columns; ++c)
      grid_->setItem(r - 1, c - 1, new QTableWidgetItem(QString::fromStdString(preview_.Cell(r, c))));
}

std::vector<std::string> ImportWizard::Finish() {
  const ImportOptions options = Take();
  RefreshPreview();
  if (!readable_) return {};
  const std::int32_t focus = CheckImport(bench_.Session(), preview_, options);
  if (focus >= 0) {
    boxes_.at(static_cast<std::size_t>(focus))->setFocus();
    boxes_.at(static_cast<std::size_t>(focus))->selectAll();
    return {};
  }
  std::vector<std::string> written;
  changeList_([&] {
    try {
      written = bench_.ImportText(file_, options);
    } catch (const std::exception& error) {
      bench_.Session().Ui().Inform(error.what(), "エラー");
    }
    return !written.empty();
  });
  if (written.empty()) return {};
  SaveImportSettings(bench_.Session(), options);
  accept();
  return written;
}

void ImportWizard::Initialise() {
  Show(ImportOptions{});
  RefreshPreview();
}

bool RunImportWizard(workbench::Workbench& bench, const std::string& file, const ListChange& changeList,
                     QWidget* parent) {
  ImportWizard wizard(bench, file, changeList, parent);
  if (!wizard.Readable()) return false;
  return wizard.exec() == QDialog::Accepted;
}

}  // namespace velmora::gui
