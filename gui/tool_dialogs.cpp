#include "tool_dialogs.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <memory>

#include "option_buttons.h"

namespace velmora::gui {
namespace {

QString NameOf(const ToolItem& item) { return QFileInfo(QString::fromStdString(item.FileName)).completeBaseName(); }

QLineEdit* Box(const QString& name) {
  auto* box = new QLineEdit;
  box->setObjectName(name);
  box->setMaximumWidth(140);
  return box;
}

QComboBox* Choice(const QStringList& items, const QString& name) {
  auto* box = new QComboBox;
  box->setObjectName(name);
  box->addItems(items);
  return box;
}

// Option buttons in a row, the first on; `name` + index names each.
QButtonGroup* Options(const QStringList& captions, const QString& name, QWidget* owner, QBoxLayout* into) {
  QButtonGroup* group = OptionButtons(captions, name, owner, into);
  group->button(0)->setChecked(true);
  return group;
}

std::string Text(const QLineEdit* box) { return box->text().toStdString(); }

struct ToolForm {
  QString Caption;
  QWidget* Inputs;
  MakeToolOutputs Make;
};

ToolForm ReverseForm() {
  auto* inputs = new QLabel(ToolDialog::tr("選択したプロファイルの始点と終点を入れ替えます。"));
  return {ToolDialog::tr("プロファイルの反転"), inputs,
          [](const std::vector<ToolItem>& selected) { return ReverseProfiles(selected); }};
}

ToolForm HeightShiftForm(Session& session) {
  auto* inputs = new QWidget;
  auto* form = new QFormLayout(inputs);
  auto* places = new QHBoxLayout;
  QButtonGroup* place =
      Options({ToolDialog::tr("始点"), ToolDialog::tr("終点"), ToolDialog::tr("指定KP")}, "opt調整位置", inputs, places);
  form->addRow(ToolDialog::tr("調整位置"), places);
  QLineEdit* kp = Box("txtKP");
  kp->setEnabled(false);
  QObject::connect(place, &QButtonGroup::idToggled, kp, [kp](int id, bool on) {
    if (id == 2) kp->setEnabled(on);
  });
  form->addRow("KP (km)", kp);
  QLineEdit* height = Box("txt高さ");
  form->addRow(ToolDialog::tr("調整高さ (mm)"), height);
  return {ToolDialog::tr("プロファイルの高さシフト"), inputs,
          [&session, place, kp, height](const std::vector<ToolItem>& selected) {
            HeightShiftInput input;
            input.Reference = static_cast<ShiftReference>(place->checkedId());
            input.Kp = Text(kp);
            input.Height = Text(height);
            return HeightShiftProfiles(session, selected, input);
          }};
}

ToolForm CutOutForm(Session& session) {
  auto* inputs = new QWidget;
  auto* layout = new QVBoxLayout(inputs);
  auto* ways = new QHBoxLayout;
  QButtonGroup* way = Options({ToolDialog::tr("KP指定"), ToolDialog::tr("データ指定")}, "opt位置指定", inputs, ways);
  layout->addLayout(ways);

  auto* byKp = new QGroupBox(ToolDialog::tr("KP指定"));
  auto* kpForm = new QFormLayout(byKp);
  QLineEdit* kpStart = Box("txtKP指定0");
  QLineEdit* kpEnd = Box("txtKP指定1");
  kpForm->addRow(ToolDialog::tr("KP始点 (km)"), kpStart);
  kpForm->addRow(ToolDialog::tr("KP終点 (km)"), kpEnd);
  layout->addWidget(byKp);

  auto* byData = new QGroupBox(ToolDialog::tr("データ指定"));
  auto* dataForm = new QFormLayout(byData);
  QLineEdit* start = Box("txtデータ指定0");
  QComboBox* side = Choice({ToolDialog::tr("始点"), ToolDialog::tr("終点")}, "cboデータ指定0");
  auto* startRow = new QHBoxLayout;
  startRow->addWidget(side);
  startRow->addWidget(start);
  dataForm->addRow(ToolDialog::tr("開始位置"), startRow);
  QLineEdit* length = Box("txtデータ指定1");
  QComboBox* unit = Choice({ToolDialog::tr("個"), "km", "m", "mm"}, "cboデータ指定1");
  auto* lengthRow = new QHBoxLayout;
  lengthRow->addWidget(length);
  lengthRow->addWidget(unit);
  dataForm->addRow(ToolDialog::tr("長さ"), lengthRow);
  byData->setEnabled(false);
  layout->addWidget(byData);
  QObject::connect(way, &QButtonGroup::idToggled, inputs, [byKp, byData](int id, bool on) {
    if (on) {
      byKp->setEnabled(id == 0);
      byData->setEnabled(id == 1);
    }
  });

  auto* shortfall = new QGroupBox(ToolDialog::tr("不足データ処理"));
  auto* fills = new QHBoxLayout(shortfall);
  const QStringList fillCaptions{ToolDialog::tr("行わない"), ToolDialog::tr("ゼロ埋め"),
                                 ToolDialog::tr("始めまたは、終りの値"), ToolDialog::tr("反転折り返し")};
  QButtonGroup* fill = Options(fillCaptions, "opt不足データ処理", inputs, fills);
  layout->addWidget(shortfall);
  layout->addWidget(new QLabel(ToolDialog::tr("※データ反転はされません。")));
  return {ToolDialog::tr("プロファイル切出し"), inputs,
          [&session, way, kpStart, kpEnd, start, side, length, unit, fill](const std::vector<ToolItem>& selected) {
            CutOutInput input;
            input.ByKp = way->checkedId() == 0;
            input.KpStart = Text(kpStart);
            input.KpEnd = Text(kpEnd);
            input.Start = Text(start);
            input.FromEnd = side->currentIndex() == 1;
            input.Length = Text(length);
            input.Unit = static_cast<CutUnit>(unit->currentIndex());
            input.Fill = static_cast<Shortfall>(fill->checkedId());
            return CutOutProfiles(session, selected, input);
          }};
}

ToolForm CompositeForm(Session& session, const std::vector<ToolItem>& items) {
  auto* inputs = new QWidget;
  auto* layout = new QVBoxLayout(inputs);
  auto* base = new QGroupBox(ToolDialog::tr("基準プロファイル"));
  auto* baseLayout = new QFormLayout(base);
  auto* kinds = new QHBoxLayout;
  QButtonGroup* kind = Options({"ERD", "CSV"}, "opt基準Prof", inputs, kinds);
  baseLayout->addRow(kinds);
  QComboBox* baseProfile = Choice({}, "cbo基準プロファイル");
  for (const ToolItem& item : items) baseProfile->addItem(NameOf(item));
  baseLayout->addRow("ERD", baseProfile);
  QLineEdit* file = Box("txtFileName");
  file->setMaximumWidth(QWIDGETSIZE_MAX);
  auto* browse = new QPushButton(ToolDialog::tr("参照"));
  browse->setObjectName("cmd参照");
  auto* fileRow = new QHBoxLayout;
  fileRow->addWidget(file, 1);
  fileRow->addWidget(browse);
  baseLayout->addRow("CSV", fileRow);
  QCheckBox* heading = new QCheckBox(ToolDialog::tr("先頭行をデータの見出しとして使用する"));
  heading->setObjectName("chkヘッダー見出し");
  baseLayout->addRow(heading);
  QComboBox* csvUnit = Choice({"m", "km"}, "cboCSV単位");
  baseLayout->addRow(ToolDialog::tr("位置の単位"), csvUnit);
  layout->addWidget(base);
  // Only the boxes of the chosen kind of base are in force.
  const auto choose = [baseProfile, file, browse, heading, csvUnit](bool csv) {
    baseProfile->setEnabled(!csv);
    for (QWidget* box : std::initializer_list<QWidget*>{file, browse, heading, csvUnit}) box->setEnabled(csv);
  };
  choose(false);
  QObject::connect(kind, &QButtonGroup::idToggled, inputs, [choose](int id, bool on) {
    if (on) choose(id == 1);
  });
  QObject::connect(browse, &QPushButton::clicked, file, [&session, file] {
    FileDialogRequest request;
    request.Title = ToolDialog::tr("CSVファイル").toStdString();
    request.Filter =
        ToolDialog::tr("ログ・ファイル (*.csv)|*.csv|CSVファイル (*.csv)|*.csv|すべてのファイル (*.*)|*.*").toStdString();
    const std::vector<std::string> chosen = session.Ui().OpenFiles(request);
    if (!chosen.empty()) file->setText(QString::fromStdString(chosen.front()));
  });

  auto* pitch = new QGroupBox(ToolDialog::tr("出力単位"));
  auto* pitches = new QHBoxLayout(pitch);
  QButtonGroup* output = Options({ToolDialog::tr("基準"), ToolDialog::tr("対象")}, "opt出力単位", inputs, pitches);
  layout->addWidget(pitch);
  return {ToolDialog::tr("プロファイル合成"), inputs,
          [&session, items, kind, baseProfile, file, heading, csvUnit,
           output](const std::vector<ToolItem>& targets) -> std::optional<std::vector<ToolOutput>> {
            CompositeInput input;
            input.BaseIsCsv = kind->checkedId() == 1;
            const int index = baseProfile->currentIndex();
            if (!input.BaseIsCsv && index < 0) return std::nullopt;
            if (!input.BaseIsCsv) input.BaseProfile = items.at(static_cast<std::size_t>(index));
            input.CsvPath = Text(file);
            input.CsvHeading = heading->isChecked();
            input.CsvInKm = csvUnit->currentIndex() == 1;
            input.PitchOfBase = output->checkedId() == 0;
            return CompositeProfiles(session, targets, input);
          }};
}

}  // namespace

ToolDialog::ToolDialog(workbench::Workbench& bench, const QString& caption, QWidget* inputs, MakeToolOutputs make,
                       ListChange changeList, QWidget* parent)
    : QDialog(parent), bench_(bench), make_(std::move(make)), changeList_(std::move(changeList)) {
  setWindowTitle(caption);
  profiles_ = new QListWidget;
  profiles_->setObjectName("lstProfile");
  profiles_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  auto* buttons = new QDialogButtonBox;
  QPushButton* add = buttons->addButton(tr("登録"), QDialogButtonBox::ActionRole);
  add->setObjectName("cmdProfile登録");
  QPushButton* close = buttons->addButton(tr("閉じる"), QDialogButtonBox::RejectRole);
  connect(add, &QPushButton::clicked, this, &ToolDialog::Register);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);

  auto* layout = new QHBoxLayout(this);
  auto* left = new QVBoxLayout;
  left->addWidget(new QLabel(tr("プロファイル")));
  left->addWidget(profiles_);
  layout->addLayout(left, 1);
  auto* right = new QVBoxLayout;
  right->addWidget(inputs);
  right->addStretch();
  right->addWidget(buttons);
  layout->addLayout(right, 1);
  FillProfiles();
  resize(640, 360);
}

void ToolDialog::FillProfiles() {
  items_ = ToolItemsOf(bench_.List());
  profiles_->clear();
  for (const ToolItem& item : items_) profiles_->addItem(NameOf(item));
}

bool ToolDialog::Register() {
  std::vector<ToolItem> selected;
  for (int row = 0; row < profiles_->count(); ++row)
    if (profiles_->item(row)->isSelected()) selected.push_back(items_.at(static_cast<std::size_t>(row)));
  if (selected.empty()) return false;
  const std::optional<std::vector<ToolOutput>> outputs = make_(selected);
  if (!outputs) return false;
  const bool registered = changeList_([this, &outputs] { return bench_.RegisterToolOutputs(*outputs); });
  // The new profiles may be the inputs of the next run.
  if (registered) FillProfiles();
  return registered;
}

std::unique_ptr<ToolDialog> MakeToolDialog(int tool, workbench::Workbench& bench, ListChange changeList,
                                           QWidget* parent) {
  Session& session = bench.Session();
  std::optional<ToolForm> form;
  switch (tool) {
    case kComposite: form = CompositeForm(session, ToolItemsOf(bench.List())); break;
    case kHeightShift: form = HeightShiftForm(session); break;
    case kReverse: form = ReverseForm(); break;
    case kCutOut: form = CutOutForm(session); break;
    default: return nullptr;
  }
  return std::make_unique<ToolDialog>(bench, form->Caption, form->Inputs, std::move(form->Make), std::move(changeList),
                                      parent);
}

}  // namespace velmora::gui
