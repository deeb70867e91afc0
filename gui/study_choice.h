#pragma once
// "M波選択(検討対象)" on the M-wave tab: the studies of the profile the tab shows, after the fixed
// item of the calculated M'; the row picked is the study that profile's M' and ideal shape take.
#include <QComboBox>

#include <functional>

#include "workbench/workbench.h"

namespace velmora::gui {

class StudyChoice final : public QComboBox {
 public:
  // `chosen` is told after a pick has been stored (and the study calculated when it needed it).
  StudyChoice(workbench::Workbench& bench, std::function<void()> chosen);
  // The rows and the current one again from the workbench.
  void Refill();

 protected:
  void showPopup() override;
  void showEvent(QShowEvent* event) override;

 private:
  void Choose(int row);

  workbench::Workbench& bench_;
  std::function<void()> chosen_;
};

}  // namespace velmora::gui
