#pragma once
// A chart on screen: drawn by the drawing layer at the widget's size, and drawn again for the range a
// user zooms to (rubber band, wheel), pans to (middle button, or Shift with the left) or resets
// (double-click, Esc during a band, the button in the corner). The mouse's values are read back
// through the chart's own mapping. Points a chart offers may be dragged up or down.
#include <QCoreApplication>
#include <QImage>
#include <QPoint>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

#include "graph/chart_window.h"

class QRubberBand;
class QToolButton;

namespace velmora::gui {

// The values under a point of the chart: the panel (from the top) and its x and y there.
struct ChartPoint {
  std::size_t Panel = 0;
  double X = 0;
  double Y = 0;
};

// A point of a panel that the user may move up or down.
struct ChartHandle {
  std::size_t Id = 0;  // the owner's own number for it
  std::size_t Panel = 0;
  double X = 0;
  double Y = 0;
};

class ChartView final : public QWidget {
  Q_DECLARE_TR_FUNCTIONS(ChartView)

 public:
  // The chart at a size in the window's ranges (its panels written back there); a null image when
  // it cannot be drawn now (the picture shown stays).
  using Source = std::function<QImage(QSize, graph::ChartWindow&)>;
  explicit ChartView(Source source, QWidget* parent = nullptr);

  // Draws the chart again at the current size, when the source can.
  void Refresh();
  const QImage& Image() const { return image_; }
  const graph::ChartWindow& Window() const { return window_; }

  // What a rubber band over `panel` does: every panel shows x in `x`, and that panel y in `y` if given.
  void ZoomTo(std::size_t panel, graph::AxisRange x, std::optional<graph::AxisRange> y = std::nullopt);
  void ResetZoom();
  // The values at a point of the widget, when it lies in a panel.
  std::optional<ChartPoint> PointAt(QPointF position) const;

  // Told the values under the mouse as it moves (nothing when it leaves the panels).
  void SetReadout(std::function<void(const std::optional<ChartPoint>&)> readout) { readout_ = std::move(readout); }
  // The points to show, and what to do when one is dropped at a new y.
  void SetHandles(std::function<std::vector<ChartHandle>()> list, std::function<void(const ChartHandle&, double)> moved);
  std::vector<ChartHandle> Handles() const { return handles_ ? handles_() : std::vector<ChartHandle>{}; }
  // Where a handle stands on the widget.
  QPointF HandlePosition(const ChartHandle& handle) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  enum class Drag { None, Band, Pan, Handle };
  void ZoomAround(QPointF at, double factor, bool vertical);
  std::optional<ChartHandle> HandleAt(QPointF position) const;

  Source source_;
  QImage image_;
  QTimer resizeTimer_;  // a drag of the window's edge redraws once, when it pauses
  graph::ChartWindow window_;
  QRubberBand* band_ = nullptr;
  QToolButton* reset_ = nullptr;
  std::function<void(const std::optional<ChartPoint>&)> readout_;
  std::function<std::vector<ChartHandle>()> handles_;
  std::function<void(const ChartHandle&, double)> moved_;

  Drag drag_ = Drag::None;
  QPointF pressAt_;
  std::size_t pressPanel_ = 0;
  graph::PanelMapping pressMapping_;  // the panel as it was when the drag began
  ChartHandle dragged_;
  double draggedY_ = 0;
};

}  // namespace velmora::gui
