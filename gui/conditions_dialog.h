#pragma once
// frm計算条件 on the desktop: the conditions dialog's engine behind three tab pages. The boxes are
// handed to the engine before each of its operations and shown again after, so every check, question
// and message is the engine's.
#include <QCoreApplication>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <array>

#include "base/conditions_dialog.h"

namespace velmora::gui {

class ConditionsForm final : public QDialog {
  Q_DECLARE_TR_FUNCTIONS(ConditionsForm)

 public:
  explicit ConditionsForm(ConditionsDialog& engine, QWidget* parent = nullptr);

  // OK: the engine's check and store; stays open on a failed check with the failing boxes coloured.
  void Ok();
  // Cancel, Esc and the close box (QDialog routes all three here): the engine asks about unsaved
  // changes; its Cancel keeps the form open.
  void reject() override;

 private:
  QWidget* BandFilterPage();
  QWidget* IriPage();
  QWidget* RepairLinePage();
  QWidget* DefaultsLabels(ConditionsPage page);
  QPushButton* ColourButton(std::size_t index);
  void Show();
  void Take();
  void MarkInvalid();

  ConditionsDialog& engine_;
  std::array<QLineEdit*, 2> bandFilter_{};
  std::array<QLineEdit*, 6> iri_{};
  std::array<QRadioButton*, 2> powerWeighting_{};   // ARS, RMS
  std::array<QRadioButton*, 2> partialSections_{};  // する, しない
  std::array<QLineEdit*, 9> bandLines_{};
  std::array<QPushButton*, 2> colours_{};
};

}  // namespace velmora::gui
