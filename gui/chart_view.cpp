#include "chart_view.h"

#include <QPainter>

namespace velmora::gui {

ChartView::ChartView(Source source, QWidget* parent) : QWidget(parent), source_(std::move(source)) {
  setMinimumSize(320, 200);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  resizeTimer_.setSingleShot(true);
  resizeTimer_.setInterval(100);
  connect(&resizeTimer_, &QTimer::timeout, this, &ChartView::Refresh);
}

void ChartView::Refresh() {
  QImage next = source_(size());
  if (next.isNull()) return;
  image_ = std::move(next);
  update();
}

void ChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  if (!image_.isNull()) painter.drawImage(QPoint(0, 0), image_);
}

void ChartView::resizeEvent(QResizeEvent*) { resizeTimer_.start(); }

}  // namespace velmora::gui
