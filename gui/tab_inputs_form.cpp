#include "tab_inputs_form.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

#include "base/common.h"
#include "graph/charts.h"
#include "qt_interaction.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

// The context of the tabs' input captions in the window's translation.
struct TabInputs {
  Q_DECLARE_TR_FUNCTIONS(TabInputs)
};

// The property of a text box that holds the address of its field.
constexpr const char* kBoundField = "boundField";

QLineEdit* TextBox(std::string& field, const QString& name) {
  auto* box = new QLineEdit(QString::fromStdString(field));
  box->setObjectName(name);
  box->setProperty(kBoundField, QVariant::fromValue(static_cast<void*>(&field)));
  QObject::connect(box, &QLineEdit::textChanged, box, [&field](const QString& text) { field = text.toStdString(); });
  return box;
}

QComboBox* Choice(int& field, const QStringList& items, const QString& name) {
  auto* box = new QComboBox;
  box->setObjectName(name);
  box->addItems(items);
  box->setCurrentIndex(field);
  QObject::connect(box, &QComboBox::currentIndexChanged, box, [&field](int index) { field = index; });
  return box;
}

QCheckBox* Tick(bool& field, const QString& caption, const QString& name) {
  auto* box = new QCheckBox(caption);
  box->setObjectName(name);
  box->setChecked(field);
  QObject::connect(box, &QCheckBox::toggled, box, [&field](bool on) { field = on; });
  return box;
}

QWidget* FilterInputs(workbench::FilterTabInputs& in) {
  auto* form = new QWidget;
  auto* layout = new QFormLayout(form);
  QComboBox* type =
      Choice(in.CalcType, {TabInputs::tr("移動平均"), TabInputs::tr("フーリエ変換"), "IRI", "Slope"}, "calcType");
  layout->addRow(TabInputs::tr("計算種別"), type);
  layout->addRow(TabInputs::tr("帯域"), Choice(in.Band, {"HighPass", "LowPass", "BandPass", "BandCut"}, "band"));
  layout->addRow(TabInputs::tr("長波長側 (m)"), TextBox(in.LongCut, "longCut"));
  layout->addRow(TabInputs::tr("短波長側 (m)"), TextBox(in.ShortCut, "shortCut"));
  QCheckBox* converge = Tick(in.Converge, TabInputs::tr("FFT収束演算"), "converge");
  layout->addRow(converge);
  // The repeated passes are the Fourier filter's only.
  constexpr int kFourier = 1;
  const auto enable = [converge](int calcType) { converge->setEnabled(calcType == kFourier); };
  QObject::connect(type, &QComboBox::currentIndexChanged, converge, enable);
  enable(in.CalcType);
  return form;
}

QWidget* IriInputs(workbench::IriTabInputs& in) {
  auto* form = new QWidget;
  auto* layout = new QFormLayout(form);
  layout->addRow(TabInputs::tr("評価長 (m)"), TextBox(in.EvalLength, "evalLength"));
  return form;
}

// The nine limit lines of the octave bands (mm), [1..9]. A line that is not a number counts as no
// limit; the box says so, so that a typing slip is not mistaken for a reduction.
// `name` prefixes the boxes' names ("<name>Line<k>") and the notice's ("<name>LinesNotice").
QWidget* LimitLines(std::array<std::string, 10>& lines, const QString& caption, const QString& name) {
  auto* form = new QWidget;
  auto* layout = new QFormLayout(form);
  layout->addRow(new QLabel(caption));
  auto* notice = new QLabel;
  notice->setObjectName(name + "LinesNotice");
  notice->setWordWrap(true);
  notice->setStyleSheet("color: #b00000");
  std::vector<QLineEdit*> boxes;
  for (std::size_t k = 1; k <= 9; ++k) {
    QLineEdit* box = TextBox(lines[k], QString("%1Line%2").arg(name).arg(k));
    box->setMaximumWidth(90);
    layout->addRow(DialogText(graph::OctaveLabel(static_cast<int>(k))), box);
    boxes.push_back(box);
  }
  layout->addRow(notice);
  const auto check = [notice, boxes] {
    QStringList bad;
    for (std::size_t k = 0; k < boxes.size(); ++k) {
      const std::string text = Trim(boxes[k]->text().toStdString());
      const bool numeric = text.empty() || IsNumeric(text);
      boxes[k]->setStyleSheet(numeric ? QString() : "background: #ffe0e0");
      if (!numeric) bad << DialogText(graph::OctaveLabel(static_cast<int>(k + 1)));
    }
    notice->setText(bad.isEmpty() ? QString()
                                  : TabInputs::tr("%1 の値は数値ではありません。低減ラインなしとして計算されます。")
                                        .arg(bad.join(TabInputs::tr("、"))));
  };
  for (QLineEdit* box : boxes) QObject::connect(box, &QLineEdit::textChanged, notice, check);
  check();
  return form;
}

// Tab 10: the boundaries of the three waves and the IRI base length, for every step of the study.
QWidget* ThreeWaveInputs(workbench::RepairTabInputs& in) {
  auto* form = new QWidget;
  auto* layout = new QFormLayout(form);
  layout->addRow(TabInputs::tr("長波側境界値 (m)"), TextBox(in.Form.LongBoundary, "longBoundary"));
  layout->addRow(TabInputs::tr("短波側境界値 (m)"), TextBox(in.Form.ShortBoundary, "shortBoundary"));
  layout->addRow(TabInputs::tr("IRI算出基準長 (m)"), TextBox(in.Form.IriLength, "iriLength"));
  layout->addRow(Tick(in.UsePlanRange, TabInputs::tr("補修計画範囲"), "usePlanRange"));
  return form;
}

}  // namespace

QWidget* MakeTabInputs(workbench::Workbench& bench, int tab) {
  switch (tab) {
    case tab::Filter: return FilterInputs(bench.Filter);
    case tab::Octave: {
      auto* form = new QWidget;
      (new QFormLayout(form))->addRow(Tick(bench.Octave.Converge, TabInputs::tr("FFT収束演算"), "converge"));
      return form;
    }
    case tab::Iri: return IriInputs(bench.Iri);
    case tab::BandReduction: return LimitLines(bench.Band.Lines, TabInputs::tr("低減ライン (mm)"), "band");
    case tab::ThreeWave: return ThreeWaveInputs(bench.Repair);
    case tab::ShortWave: return LimitLines(bench.Repair.Form.Lines, TabInputs::tr("短波長 低減ライン (mm)"), "short");
    default: return nullptr;
  }
}

void ShowTabInputs(QWidget* root) {
  for (QLineEdit* box : root->findChildren<QLineEdit*>()) {
    const QVariant bound = box->property(kBoundField);
    if (!bound.isValid()) continue;
    const QString text = QString::fromStdString(*static_cast<const std::string*>(bound.value<void*>()));
    if (box->text() != text) box->setText(text);
  }
}

}  // namespace velmora::gui
