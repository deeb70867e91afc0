#pragma once
// The edits of tab 1 beside its profile list: the list buttons (rename, remove, move up and down) and
// the header boxes of the one selected profile. Every edit goes through the workbench, so a new pitch
// or KP marks every tab for recomputation as the main form does.
#include <QButtonGroup>
#include <QComboBox>
#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QWidget>

#include <array>
#include <functional>
#include <vector>

#include "workbench/engine_bindings.h"
#include "workbench/workbench.h"

namespace velmora::gui {

// Runs a change of the list's items with every view of the list refilled after it; the change's result.
using ListChange = std::function<bool(const std::function<bool()>& change)>;

class ProfileEdits final : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(ProfileEdits)

 public:
  ProfileEdits(workbench::Workbench& bench, workbench::EngineBindings& bindings, QTableView* list,
               ListChange changeList, QWidget* parent = nullptr);
  ~ProfileEdits() override;

  // The row (from 1) whose header the boxes show; 0 when not exactly one row is selected.
  int ShownRow() const { return shown_; }
  QLineEdit* Box(int index) const { return boxes_.at(static_cast<std::size_t>(index)); }

  void Rename();
  void Remove();
  void Move(int button);  // 0 ▲, 1 ▼
  void Export();           // ﾌｧｲﾙ出力 of the selected rows
  // Box edits (Enter, leaving a box, a choice): the boxes into the record, as leaving the profile does.
  void Commit();
  // cmd位置情報クリア: the KP, the range and the lane emptied.
  void ClearPosition();

 private:
  QWidget* ListButtons();
  QWidget* HeaderBoxes();
  QButtonGroup* Choices(const QStringList& captions, const QString& name, QLayout* into);
  std::vector<int> SelectedRows() const;
  void SelectionChanged();
  void Fill();
  void PaintChecks();
  void UpdateButtons();

  workbench::Workbench& bench_;
  workbench::EngineBindings& bindings_;
  QTableView* list_;
  ListChange changeList_;
  int shown_ = 0;
  bool filling_ = false;  // the boxes are being filled: their change events do nothing
  std::array<QLineEdit*, 11> boxes_{};
  QComboBox* elevationSide_ = nullptr;  // cbo緒元
  QButtonGroup* kpSense_ = nullptr;     // optKP
  QButtonGroup* lane_ = nullptr;        // opt上下
  QLabel* length_ = nullptr;            // lbl緒元単位(1)
  QPushButton* clear_ = nullptr;
  QPushButton* export_ = nullptr;
  QButtonGroup* exportAs_ = nullptr;    // optExport: ERD files or one CSV
  QPushButton* rename_ = nullptr;
  QPushButton* remove_ = nullptr;
  std::array<QPushButton*, 2> move_{};
  QWidget* header_ = nullptr;
};

}  // namespace velmora::gui
