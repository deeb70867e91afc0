#pragma once
// One chart panel on a surface whose y runs downwards (pixels or millimetres): a frame with grid,
// tick labels from the axis division, axis titles and a caption, and the data drawn in it clipped to
// the frame. Every chart and print sheet is made of these.
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "graph/axis_scale.h"
#include "graph/draw_devices.h"

namespace velmora::graph {

struct Rect {
  double Left = 0, Top = 0, Right = 0, Bottom = 0;
  double Width() const { return Right - Left; }
  double Height() const { return Bottom - Top; }
};

struct AxisSpec {
  double Min = 0;
  double Max = 1;
  bool Log = false;
  std::string Title{};
  int Divisions = 5;
  std::string LabelFormat{};  // number pattern of the tick labels; empty: chosen per value
  // The axis ends at Min and Max themselves (a range a user zoomed to) instead of the enclosing
  // ticks; only the ticks within are drawn.
  bool Exact = false;
};

struct AxisRange {
  double Low = 0;
  double High = 1;
  friend bool operator==(const AxisRange&, const AxisRange&) = default;
};

// Where a panel was drawn: its frame and the values at the frame's edges, so that a point of the
// surface can be read back as the values the panel put there.
struct PanelMapping {
  Rect Frame;
  AxisRange X, Y;
  bool XLog = false, YLog = false;
  // The value at a surface coordinate: the inverse of the panel's own mapping.
  double XAt(double surfaceX) const;
  double YAt(double surfaceY) const;
  // Where a value lands on the surface, as the panel draws it.
  double SurfaceX(double value) const;
  double SurfaceY(double value) const;
  bool Contains(double surfaceX, double surfaceY) const;
};

// The range of the finite values, ignoring the program's "no value"; {0, 1} when there are none.
std::pair<double, double> ValueRange(std::span<const double> values);
// Widens an empty or reversed range so that an axis can be divided over it.
std::pair<double, double> WidenedRange(double min, double max);

struct LegendEntry {
  std::string Text;
  Colour Color = kBlack;
  int Style = 0;
  int Width = 1;
};

class ChartPanel {
 public:
  // `outer` is the panel's whole area; the frame is inset by the room its labels take.
  ChartPanel(DrawDevices& devices, Hdc hdc, const DrawSurface& surface, Rect outer, AxisSpec x, AxisSpec y,
             FontSpec font = {});

  const Rect& Frame() const { return frame_; }
  const AxisDivision& XDivision() const { return xDivision_; }
  const AxisDivision& YDivision() const { return yDivision_; }
  // The values at the frame's edges.
  const AxisRange& XEnds() const { return xEnds_; }
  const AxisRange& YEnds() const { return yEnds_; }
  PanelMapping Mapping() const { return {frame_, xEnds_, yEnds_, xAxis_.Log, yAxis_.Log}; }
  double X(double value) const;
  double Y(double value) const;

  // Background, grid, frame, tick labels, axis titles and the caption above the frame.
  void DrawAxes(std::string_view caption, Colour background = kWhite);
  // Connected line through the points; breaks at values that are not finite or "no value".
  void Line(std::span<const double> xs, std::span<const double> ys, const DrawOptions& pen);
  // Equally spaced samples from x0; drawn from its column envelope when denser than the pixels.
  void Wave(double x0, double dx, std::span<const double> ys, const DrawOptions& pen);
  // Horizontal steps: value i from starts[i] to ends[i]; "no value" leaves a gap.
  void Steps(std::span<const double> starts, std::span<const double> ends, std::span<const double> values,
             const DrawOptions& pen);
  void HorizontalRule(double y, const DrawOptions& pen);
  void Marker(double x, double y, Colour colour, std::string_view label = {});
  void Legend(const std::vector<LegendEntry>& entries);

 private:
  bool WithinX(double value) const;
  bool WithinY(double value) const;
  void Segments(const std::vector<std::pair<double, double>>& points, const DrawOptions& pen);

  DrawDevices& devices_;
  Hdc hdc_;
  const DrawSurface& surface_;
  AxisSpec xAxis_, yAxis_;
  AxisDivision xDivision_, yDivision_;
  AxisRange xEnds_, yEnds_;
  FontSpec font_;
  Rect frame_;
};

}  // namespace velmora::graph
