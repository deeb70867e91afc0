#include "profile_table_model.h"

#include "base/common.h"
#include "qt_colour.h"

namespace velmora::gui {
namespace {

QString KpText(const ErdRecord& erd) {
  if (erd.KpStart == kNoValue) return {};
  return QString::number(erd.KpStart, 'f', 3);
}

}  // namespace

void ProfileTableModel::EndListChange() {
  rows_.clear();
  const auto& panels = bench_.List().Views.front().Panels;
  for (int row = 1; row <= bench_.ProfileCount(); ++row) {
    const ProfileRecord& profile = bench_.List().Items.at(row);
    const ErdRecord& erd = profile.Erd;
    const auto index = static_cast<std::size_t>(row - 1);
    rows_.push_back({QString::fromStdString(ProfileList::NameOf(profile)), QString::number(erd.StepSize, 'f', 3),
                     QString::number(erd.StepSize * (erd.NumSamples - 1), 'f', 2), KpText(erd), erd.NumSamples,
                     index < panels.size() ? QtColour(panels[index]) : QColor()});
  }
  endResetModel();
}

int ProfileTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ProfileTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant ProfileTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= rowCount()) return {};
  const Row& row = rows_[static_cast<std::size_t>(index.row())];
  if (role == Qt::DecorationRole && index.column() == Name && row.Panel.isValid()) return row.Panel;
  if (role == Qt::TextAlignmentRole && index.column() != Name)
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case Name: return row.Name;
    case Pitch: return row.Pitch;
    case Samples: return row.Samples;
    case Length: return row.Length;
    case Kp: return row.Kp;
    default: return {};
  }
}

QVariant ProfileTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  switch (section) {
    case Name: return tr("プロファイル");
    case Pitch: return tr("ピッチ (m)");
    case Samples: return tr("データ数");
    case Length: return tr("延長 (m)");
    case Kp: return QStringLiteral("KP (km)");
    default: return {};
  }
}

}  // namespace velmora::gui
