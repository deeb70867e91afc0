#include "profile_table_model.h"

#include <QBrush>
#include <QColor>

#include "base/common.h"

namespace velmora::gui {
namespace {

// The row's colour panel: the list colours are 0xBBGGRR.
QColor PanelColour(Colour colour) { return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF); }

QString KpText(const ErdRecord& erd) {
  if (erd.KpStart == kNoValue) return {};
  return QString::number(erd.KpStart, 'f', 3);
}

}  // namespace

int ProfileTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : bench_.ProfileCount();
}

int ProfileTableModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : ColumnCount; }

QVariant ProfileTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid() || index.row() >= bench_.ProfileCount()) return {};
  const int row = index.row() + 1;
  const ProfileRecord& profile = bench_.List().Items.at(row);
  const ErdRecord& erd = profile.Erd;
  if (role == Qt::DecorationRole && index.column() == Name) {
    const auto& panels = bench_.List().Views.front().Panels;
    if (static_cast<std::size_t>(index.row()) < panels.size()) return PanelColour(panels[static_cast<std::size_t>(index.row())]);
    return {};
  }
  if (role == Qt::TextAlignmentRole && index.column() != Name)
    return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
  if (role != Qt::DisplayRole) return {};
  switch (index.column()) {
    case Name: return QString::fromStdString(ProfileList::NameOf(profile));
    case Pitch: return QString::number(erd.StepSize, 'f', 3);
    case Samples: return erd.NumSamples;
    case Length: return QString::number(erd.StepSize * (erd.NumSamples - 1), 'f', 2);
    case Kp: return KpText(erd);
    default: return {};
  }
}

QVariant ProfileTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (role != Qt::DisplayRole || orientation != Qt::Horizontal) return {};
  switch (section) {
    case Name: return QStringLiteral("プロファイル");
    case Pitch: return QStringLiteral("ピッチ (m)");
    case Samples: return QStringLiteral("データ数");
    case Length: return QStringLiteral("延長 (m)");
    case Kp: return QStringLiteral("KP (km)");
    default: return {};
  }
}

}  // namespace velmora::gui
