#include "profile_edits.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

#include "option_buttons.h"
#include "profile/profile_tab.h"
#include "qt_colour.h"
#include "qt_interaction.h"

namespace velmora::gui {
namespace {

constexpr int kPitchBox = 3;
constexpr int kKpBox = 7;
// Boxes that only show what the file holds: the counts and the composed header text.
constexpr std::array kShownOnly = {4, 6, 9, 10};

struct BoxPlace {
  int Index;
  const char* Caption;
  int Row, Column;
};
// Names and places of txt緒元(0..10): the names left, the numbers right.
constexpr BoxPlace kPlaces[] = {
    {0, QT_TRANSLATE_NOOP("ProfileEdits", "プロファイル名称"), 0, 0},
    {1, QT_TRANSLATE_NOOP("ProfileEdits", "高さ名称"), 1, 0},
    {2, QT_TRANSLATE_NOOP("ProfileEdits", "距離名称"), 2, 0},
    {3, QT_TRANSLATE_NOOP("ProfileEdits", "ピッチ"), 3, 0},
    {7, QT_TRANSLATE_NOOP("ProfileEdits", "始点 (KP)"), 4, 0},
    {5, QT_TRANSLATE_NOOP("ProfileEdits", "タイトル"), 0, 1},
    {8, QT_TRANSLATE_NOOP("ProfileEdits", "コメント"), 1, 1},
    {6, QT_TRANSLATE_NOOP("ProfileEdits", "チャンネル数"), 2, 1},
    {4, QT_TRANSLATE_NOOP("ProfileEdits", "データ件数"), 3, 1},
    {9, QT_TRANSLATE_NOOP("ProfileEdits", "ヘッダー情報"), 5, 0},
    {10, QT_TRANSLATE_NOOP("ProfileEdits", "データ件数"), 5, 1},
};

QString StyleOf(const BoxColours& colours) {
  if (colours.Back == kBoxNormalBack && colours.Fore == kBoxNormalFore) return {};
  return QString("QLineEdit { background: %1; color: %2; }")
      .arg(QtColour(colours.Back).name(), QtColour(colours.Fore).name());
}

}  // namespace

ProfileEdits::ProfileEdits(workbench::Workbench& bench, workbench::EngineBindings& bindings, QTableView* list,
                           ListChange changeList, QWidget* parent)
    : QWidget(parent), bench_(bench), bindings_(bindings), list_(list), changeList_(std::move(changeList)) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(ListButtons());
  layout->addWidget(HeaderBoxes());
  layout->addStretch();
  connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &ProfileEdits::SelectionChanged);
  // The workbench stores the boxes into the profile it last showed when tab 1 is left; here the boxes
  // belong to the one row selected in this list, and to no profile when none or several are.
  bench_.Hooks.StoreProfileBoxes = [this, store = bench_.Hooks.StoreProfileBoxes](int row) {
    if (row > 0 && row == shown_ && store) store(row);
  };
  SelectionChanged();
}

ProfileEdits::~ProfileEdits() { bench_.Hooks.StoreProfileBoxes = nullptr; }

QWidget* ProfileEdits::ListButtons() {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  const auto button = [layout](const QString& caption, const QString& name) {
    auto* b = new QPushButton(caption);
    b->setObjectName(name);
    layout->addWidget(b);
    return b;
  };
  QPushButton* pms = button(tr("PMS追加"), "cmdProfileEdit1");
  export_ = button(tr("ﾌｧｲﾙ出力"), "cmdProfileEdit2");
  exportAs_ = OptionButtons({"ERD", "CSV"}, "optExport", this, layout);
  exportAs_->button(0)->setChecked(true);
  rename_ = button(tr("リネーム"), "cmdProfileEdit3");
  remove_ = button(tr("登録解除"), "cmdProfileEdit4");
  move_[0] = button("▲", "cmd上下移動0");
  move_[1] = button("▼", "cmd上下移動1");
  layout->addStretch();
  connect(pms, &QPushButton::clicked, this, [this] { bench_.AddPmsProfiles(); });
  connect(export_, &QPushButton::clicked, this, &ProfileEdits::Export);
  connect(rename_, &QPushButton::clicked, this, &ProfileEdits::Rename);
  connect(remove_, &QPushButton::clicked, this, &ProfileEdits::Remove);
  connect(move_[0], &QPushButton::clicked, this, [this] { Move(0); });
  connect(move_[1], &QPushButton::clicked, this, [this] { Move(1); });
  return row;
}

QButtonGroup* ProfileEdits::Choices(const QStringList& captions, const QString& name, QLayout* into) {
  QButtonGroup* group = OptionButtons(captions, name, this, into);
  connect(group, &QButtonGroup::idClicked, this, &ProfileEdits::Commit);
  return group;
}

QWidget* ProfileEdits::HeaderBoxes() {
  header_ = new QGroupBox(tr("プロファイル緒元"));
  auto* grid = new QGridLayout(header_);
  for (const BoxPlace& place : kPlaces) {
    auto* box = new QLineEdit;
    box->setObjectName(QString("txt緒元%1").arg(place.Index));
    const bool shownOnly = std::find(kShownOnly.begin(), kShownOnly.end(), place.Index) != kShownOnly.end();
    box->setReadOnly(shownOnly);
    if (!shownOnly) connect(box, &QLineEdit::editingFinished, this, &ProfileEdits::Commit);
    boxes_[static_cast<std::size_t>(place.Index)] = box;
    grid->addWidget(new QLabel(tr(place.Caption)), place.Row, place.Column * 3);
    grid->addWidget(box, place.Row, place.Column * 3 + 1);
  }
  elevationSide_ = new QComboBox;
  elevationSide_->setObjectName("cbo緒元0");
  elevationSide_->addItems({"LElev.", "RElev."});
  connect(elevationSide_, &QComboBox::activated, this, &ProfileEdits::Commit);
  grid->addWidget(elevationSide_, 1, 2);
  length_ = new QLabel;
  grid->addWidget(length_, 3, 2);
  grid->setColumnMinimumWidth(2, length_->fontMetrics().horizontalAdvance("⇒ 距離：00000.00000(m)"));

  auto* kp = new QHBoxLayout;
  kpSense_ = Choices({tr("加算"), tr("減算")}, "optKP", kp);
  grid->addLayout(kp, 4, 2);
  auto* lane = new QHBoxLayout;
  lane_ = Choices({tr("上り"), tr("下り"), tr("なし")}, "opt上下", lane);
  clear_ = new QPushButton(tr("クリア"));
  clear_->setObjectName("cmd位置情報クリア");
  connect(clear_, &QPushButton::clicked, this, &ProfileEdits::ClearPosition);
  lane->addWidget(clear_);
  lane->addStretch();
  grid->addLayout(lane, 4, 4, 1, 2);
  grid->setColumnStretch(1, 1);
  grid->setColumnStretch(4, 1);
  return header_;
}

std::vector<int> ProfileEdits::SelectedRows() const {
  std::vector<int> rows;
  for (const QModelIndex& index : list_->selectionModel()->selectedRows()) rows.push_back(index.row() + 1);
  std::sort(rows.begin(), rows.end());
  return rows;
}

void ProfileEdits::SelectionChanged() {
  const std::vector<int> rows = SelectedRows();
  shown_ = rows.size() == 1 ? rows.front() : 0;
  if (shown_ > 0)
    bindings_.ShowProfile(shown_);
  else
    bindings_.ProfileBoxes = ProfileTabBoxes{};
  Fill();
  UpdateButtons();
}

void ProfileEdits::Fill() {
  filling_ = true;
  const ProfileTabBoxes& boxes = bindings_.ProfileBoxes;
  for (std::size_t i = 0; i < boxes_.size(); ++i) boxes_[i]->setText(QString::fromStdString(boxes.txt緒元[i]));
  elevationSide_->setCurrentIndex(boxes.cbo緒元);
  kpSense_->button(boxes.optKP)->setChecked(true);
  lane_->button(boxes.opt上下)->setChecked(true);
  length_->setText(DialogText(boxes.lbl緒元単位1));
  header_->setEnabled(shown_ > 0);
  filling_ = false;
  PaintChecks();
}

void ProfileEdits::PaintChecks() {
  ProfileTabBoxes& boxes = bindings_.ProfileBoxes;
  if (shown_ > 0) ChkDatColours(1, boxes);
  for (std::size_t i = 0; i < boxes_.size(); ++i)
    boxes_[i]->setStyleSheet(shown_ > 0 ? StyleOf(boxes.Colours[i]) : QString());
}

void ProfileEdits::UpdateButtons() {
  const std::vector<int> rows = SelectedRows();
  const bool one = rows.size() == 1;
  const int count = bench_.ProfileCount();
  export_->setEnabled(!rows.empty());
  rename_->setEnabled(one);
  remove_->setEnabled(!rows.empty());
  move_[0]->setEnabled(one && count >= 2 && rows.front() > 1);
  move_[1]->setEnabled(one && count >= 2 && rows.front() < count);
}

void ProfileEdits::Commit() {
  if (shown_ == 0 || filling_) return;
  ProfileTabBoxes& boxes = bindings_.ProfileBoxes;
  for (std::size_t i = 0; i < boxes_.size(); ++i) boxes.txt緒元[i] = boxes_[i]->text().toStdString();
  boxes.cbo緒元 = elevationSide_->currentIndex();
  boxes.optKP = kpSense_->checkedId();
  boxes.opt上下 = lane_->checkedId();
  PaintChecks();
  // A pitch that is not a positive number, or a KP that is not a number, stays on the screen in its
  // warning colour and does not reach the profile: every result along it would be wrong.
  const bool pitchBad = boxes.Colours[kPitchBox].Back != kBoxNormalBack;
  const bool kpBad = boxes.Colours[kKpBox].Back == kBoxNotNumeric;
  if (pitchBad || kpBad) return;
  const int row = shown_;
  changeList_([this, row] {
    bench_.Hooks.StoreProfileBoxes(row);
    return true;
  });
}

void ProfileEdits::ClearPosition() {
  if (shown_ == 0) return;
  const int row = shown_;
  changeList_([this, row] {
    bench_.ClearPositionBoxes(bench_.Profile(row).Erd);
    bench_.ProfileEdited(row);
    return true;
  });
}

void ProfileEdits::Rename() {
  const std::vector<int> rows = SelectedRows();
  if (rows.size() != 1) return;
  changeList_([this, row = rows.front()] { return bench_.RenameProfile(row); });
}

void ProfileEdits::Export() {
  const std::vector<int> rows = SelectedRows();
  if (rows.empty()) return;
  bench_.ExportProfiles(rows, exportAs_->checkedId() == 1 ? ProfileExportFormat::Csv : ProfileExportFormat::Erd);
}

void ProfileEdits::Remove() {
  const std::vector<int> rows = SelectedRows();
  if (rows.empty()) return;
  changeList_([this, &rows] { return bench_.RemoveProfiles(rows); });
}

void ProfileEdits::Move(int button) {
  const std::vector<int> rows = SelectedRows();
  if (rows.size() != 1) return;
  changeList_([this, row = rows.front(), button] { return bench_.MoveProfile(row, button); });
}

}  // namespace velmora::gui
