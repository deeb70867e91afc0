#include "chart_readout.h"

#include <QCoreApplication>

#include "base/common.h"
#include "tab_charts.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

QString Number(double value, int decimals) { return QString::number(value, 'f', decimals); }

}  // namespace

double KpAtDistance(const ErdRecord& erd, double distance) {
  const double start = erd.KpStart == kNoValue ? 0.0 : erd.KpStart;
  return erd.KpSign == 1 ? start - distance / 1000.0 : start + distance / 1000.0;
}

QString ReadoutText(const workbench::Workbench& bench, int tab, const ChartPoint& point) {
  switch (tab) {
    case tab::Psd:
      return QCoreApplication::translate("ChartReadout", "波数 %1 cycle/m   PSD %2 mm²/(cycle/m)")
          .arg(point.X, 0, 'g', 5)
          .arg(point.Y, 0, 'g', 5);
    case tab::Verification:
      return QCoreApplication::translate("ChartReadout", "ずらし量 %1   相互相関値 %2")
          .arg(Number(point.X, 1), Number(point.Y, 4));
    default: break;
  }
  QString text = QCoreApplication::translate("ChartReadout", "距離 %1 m").arg(Number(point.X, 3));
  if (const int row = ShownProfile(bench, tab, bench.Selection(tab)); row != 0)
    text += QString("   KP %1 km").arg(Number(KpAtDistance(bench.List().Items.at(row).Erd, point.X), 6));
  const QString unit = tab == tab::Iri ? "mm/m" : "mm";
  return text + QCoreApplication::translate("ChartReadout", "   値 %1 %2").arg(Number(point.Y, 3), unit);
}

}  // namespace velmora::gui
