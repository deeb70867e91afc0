#pragma once
// A chart on screen: a picture drawn at the widget's size and drawn again after a resize settles.
#include <QImage>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace velmora::gui {

class ChartView final : public QWidget {
 public:
  // The chart at a size; a null image when it cannot be drawn now (the picture shown stays).
  using Source = std::function<QImage(QSize)>;
  explicit ChartView(Source source, QWidget* parent = nullptr);

  // Draws the chart again at the current size, when the source can.
  void Refresh();
  const QImage& Image() const { return image_; }

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  Source source_;
  QImage image_;
  QTimer resizeTimer_;  // a drag of the window's edge redraws once, when it pauses
};

}  // namespace velmora::gui
