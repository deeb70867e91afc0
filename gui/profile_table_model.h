#pragma once
// The workbench's profile list as a table: row i is item i + 1 of the list, whatever view shows it.
// The rows are a copy taken when the list changes: a view repaints at any time, also while a Go on
// the worker writes into the profile records.
#include <QAbstractTableModel>
#include <QColor>
#include <QCoreApplication>
#include <QString>

#include <vector>

#include "workbench/workbench.h"

namespace velmora::gui {

class ProfileTableModel final : public QAbstractTableModel {
  Q_DECLARE_TR_FUNCTIONS(ProfileTableModel)

 public:
  enum Column { Name, Pitch, Samples, Length, Kp, ColumnCount };

  explicit ProfileTableModel(const workbench::Workbench& bench, QObject* parent = nullptr)
      : QAbstractTableModel(parent), bench_(bench) {}

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

  // Around a change of the list's items (added, replaced, a project installed); no Go may run.
  void BeginListChange() { beginResetModel(); }
  void EndListChange();

 private:
  struct Row {
    QString Name, Pitch, Length, Kp;
    int Samples = 0;
    QColor Panel;
  };
  const workbench::Workbench& bench_;
  std::vector<Row> rows_;
};

}  // namespace velmora::gui
