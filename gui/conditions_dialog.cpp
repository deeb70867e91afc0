#include "conditions_dialog.h"

#include <QButtonGroup>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QTabWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <string>

#include "qt_colour.h"
#include "qt_interaction.h"

namespace velmora::gui {
namespace {

// A titled row of exclusive choices, the buttons named by `namePattern` with their index.
template <std::size_t N>
QGroupBox* ChoiceRow(const QString& title, const std::array<QString, N>& captions, const char* namePattern,
                     std::array<QRadioButton*, N>& buttons) {
  auto* box = new QGroupBox(title);
  auto* row = new QHBoxLayout(box);
  auto* group = new QButtonGroup(box);
  for (std::size_t i = 0; i < N; ++i) {
    buttons[i] = new QRadioButton(captions[i]);
    buttons[i]->setObjectName(QString(namePattern).arg(i));
    group->addButton(buttons[i]);
    row->addWidget(buttons[i]);
  }
  row->addStretch();
  return box;
}

constexpr const char* kIriCaptions[] = {QT_TRANSLATE_NOOP("ConditionsForm", "走行速度 (km/h)"),
                                        "Ks/Ms",
                                        "Cs/Ms",
                                        "Mu/Ms",
                                        "Kt/Ms",
                                        QT_TRANSLATE_NOOP("ConditionsForm", "助走区間 (m)")};
// A box the check refuses gets the invalid colours of the profile tab: white text on red.
constexpr const char* kInvalidStyle = "QLineEdit { background: #ff0000; color: #ffffff; }";
// The band-filter boxes show values that only the settings file changes.
constexpr const char* kReadOnlyStyle = "QLineEdit { background: #eeeeee; color: #555555; }";

QLineEdit* NumberBox(const QString& name) {
  auto* box = new QLineEdit;
  box->setObjectName(name);
  box->setAlignment(Qt::AlignRight);
  box->setMaximumWidth(120);
  return box;
}

QLabel* Link(const QString& caption, const QString& name) {
  auto* label = new QLabel("<a href=\"#\">" + caption + "</a>");
  label->setObjectName(name);
  label->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
  return label;
}

QString PageName(ConditionsPage page) { return QString::number(static_cast<int>(page)); }

}  // namespace

ConditionsForm::ConditionsForm(ConditionsDialog& engine, QWidget* parent) : QDialog(parent), engine_(engine) {
  setWindowTitle(DialogText(kConditionsCaption));
  auto* pages = new QTabWidget;
  pages->setObjectName("pages");
  pages->addTab(BandFilterPage(), DialogText(kConditionsPageCaptions[0]));
  pages->addTab(IriPage(), DialogText(kConditionsPageCaptions[1]));
  pages->addTab(RepairLinePage(), DialogText(kConditionsPageCaptions[2]));
  auto* buttons = new QDialogButtonBox;
  QPushButton* ok = buttons->addButton(tr("OK"), QDialogButtonBox::AcceptRole);
  ok->setObjectName("ok");
  ok->setDefault(true);
  QPushButton* cancel = buttons->addButton(tr("キャンセル"), QDialogButtonBox::RejectRole);
  cancel->setObjectName("cancel");
  connect(ok, &QPushButton::clicked, this, &ConditionsForm::Ok);
  connect(cancel, &QPushButton::clicked, this, &ConditionsForm::reject);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(pages);
  layout->addWidget(buttons);
  Show();
  setMinimumWidth(560);
}

QWidget* ConditionsForm::BandFilterPage() {
  auto* page = new QWidget;
  auto* form = new QFormLayout(page);
  const char* captions[] = {QT_TR_NOOP("長波長側カットオフ (m)"), QT_TR_NOOP("短波長側カットオフ (m)")};
  for (std::size_t i = 0; i < bandFilter_.size(); ++i) {
    bandFilter_[i] = NumberBox(QString("txtBandFilter%1").arg(i));
    bandFilter_[i]->setReadOnly(true);
    bandFilter_[i]->setFocusPolicy(Qt::NoFocus);
    bandFilter_[i]->setStyleSheet(kReadOnlyStyle);
    form->addRow(tr(captions[i]), bandFilter_[i]);
  }
  form->addRow(new QLabel(DialogText(kBandFilterHint)));
  return page;
}

QWidget* ConditionsForm::IriPage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* form = new QFormLayout;
  for (std::size_t i = 0; i < iri_.size(); ++i) {
    iri_[i] = NumberBox(QString("txt_IRI%1").arg(i));
    form->addRow(tr(kIriCaptions[i]), iri_[i]);
  }
  layout->addLayout(form);

  layout->addWidget(ChoiceRow(tr("パワー重み付け"), std::array<QString, 2>{"ARS", "RMS"}, "optIRI_PW%1", powerWeighting_));
  const std::array<QString, 2> partial{DialogText(kPartialSectionChoices[0]), DialogText(kPartialSectionChoices[1])};
  layout->addWidget(
      ChoiceRow(DialogText(kPartialSectionQuestion), partial, "opt_IRI算出区間条件%1", partialSections_));
  layout->addWidget(DefaultsLabels(ConditionsPage::Iri));
  layout->addStretch();
  return page;
}

QWidget* ConditionsForm::RepairLinePage() {
  auto* page = new QWidget;
  auto* layout = new QVBoxLayout(page);
  auto* lines = new QGroupBox(tr("バンド別低減ライン (mm)"));
  auto* grid = new QGridLayout(lines);
  // Two columns of bands, the longest wave first.
  for (std::size_t i = 0; i < bandLines_.size(); ++i) {
    bandLines_[i] = NumberBox(QString("txt_バンド別低減ライン%1").arg(i));
    const int row = static_cast<int>(i % 5);
    const int column = static_cast<int>(i / 5) * 2;
    grid->addWidget(new QLabel(QString("%1-Oct").arg(i + 1)), row, column);
    grid->addWidget(bandLines_[i], row, column + 1);
  }
  layout->addWidget(lines);
  layout->addWidget(DefaultsLabels(ConditionsPage::RepairLines));

  auto* colours = new QGroupBox(tr("表示色"));
  auto* colourForm = new QFormLayout(colours);
  colourForm->addRow(tr("低減ライン値"), ColourButton(0));
  colourForm->addRow(tr("低減ライン値適用後"), ColourButton(1));
  layout->addWidget(colours);
  layout->addWidget(DefaultsLabels(ConditionsPage::RepairColours));
  layout->addStretch();
  return page;
}

// The clickable pair under a group of boxes: the engine asks, then the boxes show what it did.
QWidget* ConditionsForm::DefaultsLabels(ConditionsPage page) {
  auto* pair = new QWidget;
  auto* row = new QHBoxLayout(pair);
  row->setContentsMargins(0, 0, 0, 0);
  row->addStretch();
  QLabel* reset = Link(DialogText(kResetLabel), "reset" + PageName(page));
  QLabel* save = Link(DialogText(kSaveLabel), "save" + PageName(page));
  connect(reset, &QLabel::linkActivated, this, [this, page] {
    Take();
    if (engine_.ResetPage(page)) Show();
  });
  connect(save, &QLabel::linkActivated, this, [this, page] {
    Take();
    engine_.SavePage(page);
  });
  row->addWidget(reset);
  row->addWidget(save);
  return pair;
}

QPushButton* ConditionsForm::ColourButton(std::size_t index) {
  auto* button = new QPushButton;
  button->setObjectName(QString("cmd補修予測色%1").arg(index));
  button->setFixedSize(80, 24);
  colours_[index] = button;
  connect(button, &QPushButton::clicked, this, [this, index] {
    Take();
    const QColor chosen = QColorDialog::getColor(QtColour(engine_.Boxes.cmd補修予測色[index]), this);
    if (!chosen.isValid()) return;
    engine_.Boxes.cmd補修予測色[index] = ProgramColour(chosen);
    Show();
  });
  return button;
}

void ConditionsForm::Show() {
  const ConditionsBoxes& boxes = engine_.Boxes;
  for (std::size_t i = 0; i < bandFilter_.size(); ++i)
    bandFilter_[i]->setText(QString::fromStdString(boxes.txtBandFilter[i]));
  for (std::size_t i = 0; i < iri_.size(); ++i) iri_[i]->setText(QString::fromStdString(boxes.txt_IRI[i]));
  powerWeighting_[boxes.optIRI_PW == 0 ? 0 : 1]->setChecked(true);
  partialSections_[boxes.opt_IRI算出区間条件_しない ? 1 : 0]->setChecked(true);
  for (std::size_t i = 0; i < bandLines_.size(); ++i)
    bandLines_[i]->setText(QString::fromStdString(boxes.txt_バンド別低減ライン[i]));
  for (std::size_t i = 0; i < colours_.size(); ++i)
    colours_[i]->setStyleSheet("background: " + QtColour(boxes.cmd補修予測色[i]).name());
  MarkInvalid();
}

void ConditionsForm::Take() {
  ConditionsBoxes& boxes = engine_.Boxes;
  for (std::size_t i = 0; i < iri_.size(); ++i) boxes.txt_IRI[i] = iri_[i]->text().toStdString();
  boxes.optIRI_PW = powerWeighting_[1]->isChecked() ? 1 : 0;
  boxes.opt_IRI算出区間条件_しない = partialSections_[1]->isChecked();
  for (std::size_t i = 0; i < bandLines_.size(); ++i)
    boxes.txt_バンド別低減ライン[i] = bandLines_[i]->text().toStdString();
}

void ConditionsForm::MarkInvalid() {
  const std::vector<std::string> invalid = InvalidBoxes(engine_.Boxes);
  const auto mark = [&invalid](QLineEdit* box, const std::string& name) {
    const bool bad = std::find(invalid.begin(), invalid.end(), name) != invalid.end();
    box->setStyleSheet(bad ? kInvalidStyle : box->isReadOnly() ? kReadOnlyStyle : "");
  };
  for (std::size_t i = 0; i < bandFilter_.size(); ++i) mark(bandFilter_[i], "txtBandFilter(" + std::to_string(i) + ")");
  for (std::size_t i = 0; i < iri_.size(); ++i) mark(iri_[i], "txt_IRI(" + std::to_string(i) + ")");
}

void ConditionsForm::Ok() {
  Take();
  MarkInvalid();
  if (engine_.Ok()) accept();
}

void ConditionsForm::reject() {
  Take();
  const bool closed = engine_.Close();
  MarkInvalid();
  if (closed) QDialog::reject();
}

}  // namespace velmora::gui
