#include "chart_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRubberBand>
#include <QToolButton>
#include <QWheelEvent>

#include <cmath>

namespace velmora::gui {
namespace {

constexpr int kLeastBand = 4;        // pixels: a smaller band is taken for a click
constexpr double kHandleRadius = 5;  // pixels
constexpr double kWheelStep = 0.8;   // share of the range kept by one notch towards the user

graph::AxisRange Ordered(double a, double b) { return {std::fmin(a, b), std::fmax(a, b)}; }

// The x range shown once the frame's left and right edges move to `left` and `right` (surface).
graph::AxisRange XRangeBetween(const graph::PanelMapping& m, double left, double right) {
  return Ordered(m.XAt(left), m.XAt(right));
}
graph::AxisRange YRangeBetween(const graph::PanelMapping& m, double bottom, double top) {
  return Ordered(m.YAt(bottom), m.YAt(top));
}

}  // namespace

ChartView::ChartView(Source source, QWidget* parent) : QWidget(parent), source_(std::move(source)) {
  setMinimumSize(320, 200);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  setMouseTracking(true);
  setFocusPolicy(Qt::ClickFocus);
  resizeTimer_.setSingleShot(true);
  resizeTimer_.setInterval(100);
  connect(&resizeTimer_, &QTimer::timeout, this, &ChartView::Refresh);
  band_ = new QRubberBand(QRubberBand::Rectangle, this);
  reset_ = new QToolButton(this);
  reset_->setText(tr("全体表示"));
  reset_->setObjectName("resetZoom");
  reset_->hide();
  connect(reset_, &QToolButton::clicked, this, &ChartView::ResetZoom);
}

void ChartView::Refresh() {
  graph::ChartWindow drawn = window_;
  drawn.Panels.clear();
  QImage next = source_(size(), drawn);
  if (next.isNull()) return;
  image_ = std::move(next);
  window_.Panels = std::move(drawn.Panels);
  reset_->setVisible(window_.Zoomed());
  update();
}

void ChartView::ZoomTo(std::size_t panel, graph::AxisRange x, std::optional<graph::AxisRange> y) {
  if (!(x.Low < x.High)) return;
  window_.X = x;
  if (y && y->Low < y->High) window_.Y[panel] = *y;
  Refresh();
}

void ChartView::ResetZoom() {
  window_.Reset();
  Refresh();
}

std::optional<ChartPoint> ChartView::PointAt(QPointF position) const {
  const auto panel = window_.PanelAt(position.x(), position.y());
  if (!panel) return std::nullopt;
  const graph::PanelMapping& m = window_.Panels[*panel];
  return ChartPoint{*panel, m.XAt(position.x()), m.YAt(position.y())};
}

void ChartView::SetHandles(std::function<std::vector<ChartHandle>()> list,
                           std::function<void(const ChartHandle&, double)> moved) {
  handles_ = std::move(list);
  moved_ = std::move(moved);
  update();
}

QPointF ChartView::HandlePosition(const ChartHandle& handle) const {
  if (handle.Panel >= window_.Panels.size()) return {-1, -1};
  const graph::PanelMapping& m = window_.Panels[handle.Panel];
  return {m.SurfaceX(handle.X), m.SurfaceY(handle.Y)};
}

std::optional<ChartHandle> ChartView::HandleAt(QPointF position) const {
  for (const ChartHandle& handle : Handles()) {
    const QPointF at = HandlePosition(handle);
    if (std::hypot(at.x() - position.x(), at.y() - position.y()) <= kHandleRadius + 2) return handle;
  }
  return std::nullopt;
}

void ChartView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), Qt::white);
  if (!image_.isNull()) painter.drawImage(QPoint(0, 0), image_);
  painter.setRenderHint(QPainter::Antialiasing);
  for (const ChartHandle& handle : Handles()) {
    if (handle.Panel >= window_.Panels.size()) continue;
    const graph::PanelMapping& m = window_.Panels[handle.Panel];
    const bool dragged = drag_ == Drag::Handle && handle.Id == dragged_.Id;
    const QPointF at(m.SurfaceX(handle.X), m.SurfaceY(dragged ? draggedY_ : handle.Y));
    if (!m.Contains(at.x(), at.y())) continue;
    // Apart from every curve's colour, so that a point stands out on the line through it.
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(dragged ? QColor(0xD0, 0x00, 0x60) : QColor(0x30, 0x30, 0xA0));
    painter.drawEllipse(at, kHandleRadius, kHandleRadius);
  }
}

void ChartView::resizeEvent(QResizeEvent*) {
  reset_->adjustSize();
  reset_->move(width() - reset_->width() - 4, 4);
  resizeTimer_.start();
}

void ChartView::mousePressEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  const auto panel = window_.PanelAt(at.x(), at.y());
  if (!panel) return;
  pressAt_ = at;
  pressPanel_ = *panel;
  pressMapping_ = window_.Panels[*panel];
  const bool left = event->button() == Qt::LeftButton;
  const std::optional<ChartHandle> handle = left ? HandleAt(at) : std::nullopt;
  if (event->button() == Qt::MiddleButton || (left && (event->modifiers() & Qt::ShiftModifier))) {
    drag_ = Drag::Pan;
    setCursor(Qt::ClosedHandCursor);
  } else if (handle) {
    drag_ = Drag::Handle;
    dragged_ = *handle;
    draggedY_ = handle->Y;
    pressMapping_ = window_.Panels[handle->Panel];
  } else if (left) {
    drag_ = Drag::Band;
    band_->setGeometry(QRect(pressAt_.toPoint(), QSize()));
    band_->show();
  }
}

void ChartView::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  if (readout_) readout_(PointAt(at));
  const graph::Rect& frame = pressMapping_.Frame;
  switch (drag_) {
    case Drag::None: return;
    case Drag::Band: band_->setGeometry(QRect(pressAt_.toPoint(), at.toPoint()).normalized()); return;
    case Drag::Handle:
      draggedY_ = pressMapping_.YAt(std::clamp(at.y(), frame.Top, frame.Bottom));
      update();
      return;
    case Drag::Pan: {
      // The value grabbed stays under the mouse: the frame's edges show what lay as far the other way.
      const double dx = pressAt_.x() - at.x(), dy = pressAt_.y() - at.y();
      window_.X = XRangeBetween(pressMapping_, frame.Left + dx, frame.Right + dx);
      if (window_.Y.contains(pressPanel_))
        window_.Y[pressPanel_] = YRangeBetween(pressMapping_, frame.Bottom + dy, frame.Top + dy);
      Refresh();
      return;
    }
  }
}

void ChartView::mouseReleaseEvent(QMouseEvent* event) {
  const Drag ended = drag_;
  drag_ = Drag::None;
  unsetCursor();
  if (ended == Drag::Band) {
    band_->hide();
    const graph::Rect& f = pressMapping_.Frame;
    const QRectF frame(QPointF(f.Left, f.Top), QPointF(f.Right, f.Bottom));
    const QRectF chosen = QRectF(pressAt_, event->position()).normalized().intersected(frame);
    if (chosen.width() < kLeastBand) return;
    const graph::AxisRange x = XRangeBetween(pressMapping_, chosen.left(), chosen.right());
    // A flat band zooms the distance only.
    if (chosen.height() < kLeastBand) ZoomTo(pressPanel_, x);
    else ZoomTo(pressPanel_, x, YRangeBetween(pressMapping_, chosen.bottom(), chosen.top()));
  } else if (ended == Drag::Handle) {
    if (std::fabs(event->position().y() - pressAt_.y()) >= 1 && moved_) moved_(dragged_, draggedY_);
    update();
  }
}

void ChartView::mouseDoubleClickEvent(QMouseEvent*) { ResetZoom(); }

void ChartView::ZoomAround(QPointF at, double factor, bool vertical) {
  const auto panel = window_.PanelAt(at.x(), at.y());
  if (!panel) return;
  const graph::PanelMapping& m = window_.Panels[*panel];
  const graph::Rect& f = m.Frame;
  if (vertical) {
    window_.Y[*panel] = YRangeBetween(m, at.y() + (f.Bottom - at.y()) * factor, at.y() + (f.Top - at.y()) * factor);
  } else {
    window_.X = XRangeBetween(m, at.x() + (f.Left - at.x()) * factor, at.x() + (f.Right - at.x()) * factor);
  }
  Refresh();
}

void ChartView::wheelEvent(QWheelEvent* event) {
  const double notches = event->angleDelta().y() / 120.0;
  if (notches == 0) return;
  // Ctrl turns the wheel to the values of the panel under the mouse; otherwise it is the distance.
  ZoomAround(event->position(), std::pow(kWheelStep, notches), (event->modifiers() & Qt::ControlModifier) != 0);
  event->accept();
}

void ChartView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && drag_ == Drag::Band) {
    drag_ = Drag::None;
    band_->hide();
    return;
  }
  QWidget::keyPressEvent(event);
}

void ChartView::leaveEvent(QEvent*) {
  if (readout_) readout_(std::nullopt);
}

}  // namespace velmora::gui
