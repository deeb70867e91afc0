#include "tab_inputs_form.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

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
  QComboBox* type = Choice(in.CalcType, {"移動平均", "フーリエ変換", "IRI", "Slope"}, "calcType");
  layout->addRow("計算種別", type);
  layout->addRow("帯域", Choice(in.Band, {"HighPass", "LowPass", "BandPass", "BandCut"}, "band"));
  layout->addRow("長波長側 (m)", TextBox(in.LongCut, "longCut"));
  layout->addRow("短波長側 (m)", TextBox(in.ShortCut, "shortCut"));
  QCheckBox* converge = Tick(in.Converge, "FFT収束演算", "converge");
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
  layout->addRow("評価長 (m)", TextBox(in.EvalLength, "evalLength"));
  return form;
}

}  // namespace

QWidget* MakeTabInputs(workbench::Workbench& bench, int tab) {
  switch (tab) {
    case tab::Filter: return FilterInputs(bench.Filter);
    case tab::Octave: {
      auto* form = new QWidget;
      (new QFormLayout(form))->addRow(Tick(bench.Octave.Converge, "FFT収束演算", "converge"));
      return form;
    }
    case tab::Iri: return IriInputs(bench.Iri);
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
