#include "study_choice.h"

#include <QSignalBlocker>

#include "m_wave_points.h"
#include "qt_interaction.h"
#include "repair/ideal_shape.h"
#include "repair/study_targets.h"

namespace velmora::gui {

namespace tab = workbench::tab;

StudyChoice::StudyChoice(workbench::Workbench& bench, std::function<void()> chosen)
    : bench_(bench), chosen_(std::move(chosen)) {
  setObjectName("mWaveChoice");
  connect(this, &QComboBox::activated, this, &StudyChoice::Choose);
}

void StudyChoice::Refill() {
  const QSignalBlocker quiet(this);
  clear();
  const int row = AdjustedProfile(bench_);
  if (row == 0) return;
  const ProfileRecord& record = bench_.List().Items.at(row);
  for (const std::string& item : StudyListItems(record.Studies)) addItem(DialogText(item));
  setCurrentIndex(record.RepairStudy.ChosenStudy);
}

void StudyChoice::showPopup() {
  Refill();
  QComboBox::showPopup();
}

void StudyChoice::showEvent(QShowEvent* event) {
  Refill();
  QComboBox::showEvent(event);
}

void StudyChoice::Choose(int row) {
  const int profile = AdjustedProfile(bench_);
  if (profile == 0 || row < 0) return;
  ProfileRecord& record = bench_.Profile(profile);
  if (static_cast<std::size_t>(row) > record.Studies.size()) return;
  record.RepairStudy.ChosenStudy = row;
  // A study read from a project has no M' yet: it is made now, as the chart and the ideal shape need it.
  if (row >= 1) {
    StudyTarget& study = record.Studies[static_cast<std::size_t>(row - 1)];
    if (!study.Recalculated) CalcStudyAdjustment(bench_.Session(), record, study, bench_.Repair.Form);
  }
  bench_.TabDirty[static_cast<std::size_t>(tab::IdealShape)] = true;
  chosen_();
}

}  // namespace velmora::gui
