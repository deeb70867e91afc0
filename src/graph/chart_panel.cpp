#include "graph/chart_panel.h"

#include <algorithm>
#include <cmath>

#include "base/common.h"
#include "base/legacy_format.h"
#include "graph/clip_geometry.h"
#include "graph/wave_envelope.h"

namespace velmora::graph {
namespace {

constexpr Colour kGrid = 0xDDDDDD;
constexpr Colour kFrame = 0x404040;

bool Usable(double value) { return std::isfinite(value) && value != kNoValue; }

std::string TickLabel(const AxisSpec& axis, double value) {
  return axis.LabelFormat.empty() ? AxisLabel(value) : FormatNumber(value, axis.LabelFormat);
}

AxisDivision Divide(const AxisSpec& axis) {
  if (axis.Log) return autoScaleLogAxis(axis.Min, axis.Max);
  const auto [low, high] = WidenedRange(axis.Min, axis.Max);
  return autoScaleAxis(low, high, axis.Divisions);
}

// The values at the frame's edges: the outer ticks, or the zoomed range itself.
AxisRange EndsOf(const AxisSpec& axis, const AxisDivision& division) {
  if (!axis.Exact) return {division.Low(), division.High()};
  return {std::fmin(axis.Min, axis.Max), std::fmax(axis.Min, axis.Max)};
}

double ToSurface(double value, const AxisRange& ends, bool log, double from, double to) {
  const double t = log ? (Log10(value) - Log10(ends.Low)) / (Log10(ends.High) - Log10(ends.Low))
                       : (value - ends.Low) / (ends.High - ends.Low);
  // Weighted so that the axis ends land exactly on the frame: a value at the top is not clipped away.
  return from * (1 - t) + to * t;
}

double FromSurface(double at, const AxisRange& ends, bool log, double from, double to) {
  const double t = (at - from) / (to - from);
  return log ? std::pow(10.0, Log10(ends.Low) + t * (Log10(ends.High) - Log10(ends.Low)))
             : ends.Low + t * (ends.High - ends.Low);
}

// A tick of the division that the frame shows (a zoomed axis leaves the outer ones out).
bool Within(const AxisRange& ends, double value) {
  const double slack = 1e-9 * (ends.High - ends.Low);
  return value >= ends.Low - slack && value <= ends.High + slack;
}

// The minor ticks of a decade: 2..9 times its power.
std::vector<double> LogMinorTicks(const AxisDivision& division) {
  std::vector<double> ticks;
  for (int i = 0; i + 1 < division.count(); ++i)
    for (int m = 2; m <= 9; ++m) ticks.push_back(division.Values[static_cast<std::size_t>(i)] * m);
  return ticks;
}

}  // namespace

std::pair<double, double> ValueRange(std::span<const double> values) {
  double low = 0, high = 0;
  bool any = false;
  for (double v : values) {
    if (!Usable(v)) continue;
    if (!any) {
      low = high = v;
      any = true;
    }
    // Plain comparisons: this pass runs over every sample of a long wave at each redraw.
    if (v < low) low = v;
    if (v > high) high = v;
  }
  return any ? std::pair{low, high} : std::pair{0.0, 1.0};
}

std::pair<double, double> WidenedRange(double min, double max) {
  if (max < min) std::swap(min, max);
  if (max - min > 1e-12 * std::fmax(1.0, std::fabs(max))) return {min, max};
  const double half = std::fabs(min) > 0 ? std::fabs(min) * 0.1 : 1.0;
  return {min - half, max + half};
}

ChartPanel::ChartPanel(DrawDevices& devices, Hdc hdc, const DrawSurface& surface, Rect outer, AxisSpec x,
                       AxisSpec y, FontSpec font)
    : devices_(devices), hdc_(hdc), surface_(surface), xAxis_(std::move(x)), yAxis_(std::move(y)),
      font_(std::move(font)) {
  xDivision_ = Divide(xAxis_);
  yDivision_ = Divide(yAxis_);
  xEnds_ = EndsOf(xAxis_, xDivision_);
  yEnds_ = EndsOf(yAxis_, yDivision_);
  const double line = devices_.TextHeight(hdc_, font_);
  double widest = 0;
  for (double v : yDivision_.Values) widest = std::fmax(widest, devices_.TextWidth(hdc_, TickLabel(yAxis_, v), font_));
  const double gap = line * 0.4;
  frame_ = {outer.Left + widest + gap * 2 + (yAxis_.Title.empty() ? 0 : line + gap), outer.Top + line + gap,
            outer.Right - devices_.TextWidth(hdc_, TickLabel(xAxis_, xDivision_.High()), font_) / 2 - gap,
            outer.Bottom - line - gap * 2 - (xAxis_.Title.empty() ? 0 : line + gap)};
}

double PanelMapping::XAt(double surfaceX) const { return FromSurface(surfaceX, X, XLog, Frame.Left, Frame.Right); }
double PanelMapping::YAt(double surfaceY) const { return FromSurface(surfaceY, Y, YLog, Frame.Bottom, Frame.Top); }
double PanelMapping::SurfaceX(double value) const { return ToSurface(value, X, XLog, Frame.Left, Frame.Right); }
double PanelMapping::SurfaceY(double value) const { return ToSurface(value, Y, YLog, Frame.Bottom, Frame.Top); }
bool PanelMapping::Contains(double surfaceX, double surfaceY) const {
  return surfaceX >= Frame.Left && surfaceX <= Frame.Right && surfaceY >= Frame.Top && surfaceY <= Frame.Bottom;
}

double ChartPanel::X(double value) const { return ToSurface(value, xEnds_, xAxis_.Log, frame_.Left, frame_.Right); }
double ChartPanel::Y(double value) const { return ToSurface(value, yEnds_, yAxis_.Log, frame_.Bottom, frame_.Top); }
bool ChartPanel::WithinX(double value) const { return Within(xEnds_, value); }
bool ChartPanel::WithinY(double value) const { return Within(yEnds_, value); }

void ChartPanel::DrawAxes(std::string_view caption, Colour background) {
  devices_.flBox(hdc_, frame_.Left, frame_.Top, frame_.Right, frame_.Bottom, {.Style = 5, .Fill = background});
  const DrawOptions grid{.Color = kGrid};
  const DrawOptions minor{.Style = 2, .Color = kGrid};
  // Minor decade lines only while they stay apart; over many decades they would grey the panel.
  constexpr int kMostDecadesWithMinorLines = 5;
  if (xAxis_.Log && xDivision_.count() <= kMostDecadesWithMinorLines + 1)
    for (double v : LogMinorTicks(xDivision_))
      if (WithinX(v)) devices_.drLine(hdc_, X(v), frame_.Top, X(v), frame_.Bottom, minor);
  if (yAxis_.Log && yDivision_.count() <= kMostDecadesWithMinorLines + 1)
    for (double v : LogMinorTicks(yDivision_))
      if (WithinY(v)) devices_.drLine(hdc_, frame_.Left, Y(v), frame_.Right, Y(v), minor);
  const double line = devices_.TextHeight(hdc_, font_);
  const double gap = line * 0.4;
  const TextOptions label{.Font = font_, .Color = kFrame};
  for (double v : xDivision_.Values) {
    if (!WithinX(v)) continue;
    devices_.drLine(hdc_, X(v), frame_.Top, X(v), frame_.Bottom, grid);
    const std::string text = TickLabel(xAxis_, v);
    devices_.drText(hdc_, X(v) - devices_.TextWidth(hdc_, text, font_) / 2, frame_.Bottom + gap, text, label);
  }
  for (double v : yDivision_.Values) {
    if (!WithinY(v)) continue;
    devices_.drLine(hdc_, frame_.Left, Y(v), frame_.Right, Y(v), grid);
    const std::string text = TickLabel(yAxis_, v);
    devices_.drText(hdc_, frame_.Left - gap - devices_.TextWidth(hdc_, text, font_), Y(v) - line / 2, text, label);
  }
  if (!yAxis_.Log && yEnds_.Low < 0 && yEnds_.High > 0)
    devices_.drLine(hdc_, frame_.Left, Y(0), frame_.Right, Y(0), {.Color = 0x909090});
  devices_.drBox(hdc_, frame_.Left, frame_.Top, frame_.Right + ConvertPixel2User_forWidth(surface_, 1),
                 frame_.Bottom + ConvertPixel2User_forHeight(surface_, 1), {.Color = kFrame});
  if (!xAxis_.Title.empty())
    devices_.drText(hdc_, (frame_.Left + frame_.Right - devices_.TextWidth(hdc_, xAxis_.Title, font_)) / 2,
                    frame_.Bottom + line + gap * 2, xAxis_.Title, label);
  if (!yAxis_.Title.empty()) {
    double widest = 0;
    for (double v : yDivision_.Values) widest = std::fmax(widest, devices_.TextWidth(hdc_, TickLabel(yAxis_, v), font_));
    devices_.drText(hdc_, frame_.Left - widest - gap * 2 - line,
                    (frame_.Top + frame_.Bottom + devices_.TextWidth(hdc_, yAxis_.Title, font_)) / 2, yAxis_.Title,
                    {.Font = font_, .Angle = 90, .Color = kFrame});
  }
  if (!caption.empty()) {
    FontSpec bold = font_;
    bold.Bold = true;
    devices_.drText(hdc_, frame_.Left, frame_.Top - line - gap / 2, caption, {.Font = bold, .Color = kBlack});
  }
}

// Clips each segment to the frame in the chart's own coordinates and joins what stays into runs.
void ChartPanel::Segments(const std::vector<std::pair<double, double>>& points, const DrawOptions& pen) {
  std::vector<double> xs, ys;
  const auto flush = [&] {
    if (xs.size() >= 2) devices_.drPolyline(hdc_, xs, ys, pen);
    xs.clear();
    ys.clear();
  };
  bool open = false;
  for (std::size_t i = 1; i < points.size(); ++i) {
    double x1 = points[i - 1].first, y1 = points[i - 1].second, x2 = points[i].first, y2 = points[i].second;
    if (!std::isfinite(x1) || !std::isfinite(y1) || !std::isfinite(x2) || !std::isfinite(y2)) {
      flush();
      open = false;
      continue;
    }
    const bool whole = PointInBox(x2, y2, frame_.Left, frame_.Top, frame_.Right, frame_.Bottom);
    if (ClipLineToBox(frame_.Left, frame_.Top, frame_.Right, frame_.Bottom, x1, y1, x2, y2) == 0) {
      flush();
      open = false;
      continue;
    }
    if (!open) {
      xs.push_back(x1);
      ys.push_back(y1);
    }
    xs.push_back(x2);
    ys.push_back(y2);
    open = whole;
    if (!whole) flush();
  }
  flush();
}

void ChartPanel::Line(std::span<const double> xs, std::span<const double> ys, const DrawOptions& pen) {
  std::vector<std::pair<double, double>> points;
  const std::size_t n = std::min(xs.size(), ys.size());
  points.reserve(n);
  const double nan = std::nan("");
  for (std::size_t i = 0; i < n; ++i) {
    const bool usable = Usable(xs[i]) && Usable(ys[i]) && (!xAxis_.Log || xs[i] > 0) && (!yAxis_.Log || ys[i] > 0);
    points.emplace_back(usable ? X(xs[i]) : nan, usable ? Y(ys[i]) : nan);
  }
  Segments(points, pen);
}

void ChartPanel::Wave(double x0, double dx, std::span<const double> ys, const DrawOptions& pen) {
  // Only the samples on the axis, and one beyond each end so that the line runs on to the frame.
  if (dx > 0 && !xAxis_.Log) {
    const auto index = [&](double x) { return std::clamp((x - x0) / dx, -1.0, static_cast<double>(ys.size())); };
    const auto first = static_cast<std::size_t>(std::max(0.0, std::ceil(index(xEnds_.Low)) - 1));
    const auto end = static_cast<std::size_t>(std::max(0.0, std::floor(index(xEnds_.High)) + 2));
    const std::size_t stop = std::min(end, ys.size());
    if (first >= stop) return;
    x0 += static_cast<double>(first) * dx;
    ys = ys.subspan(first, stop - first);
  }
  const double pixels = frame_.Width() / ConvertPixel2User_forWidth(surface_, 1);
  if (static_cast<double>(ys.size()) <= 2 * pixels || xAxis_.Log) {
    std::vector<double> xs(ys.size());
    for (std::size_t i = 0; i < xs.size(); ++i) xs[i] = x0 + static_cast<double>(i) * dx;
    Line(xs, ys, pen);
    return;
  }
  const PolylinePoints envelope = ColumnEnvelope(x0, dx, ys, xEnds_.Low, xEnds_.High,
                                                 std::max(1, static_cast<int>(pixels)));
  Line(envelope.X, envelope.Y, pen);
}

void ChartPanel::Steps(std::span<const double> starts, std::span<const double> ends, std::span<const double> values,
                       const DrawOptions& pen) {
  std::vector<double> xs, ys;
  const std::size_t n = std::min({starts.size(), ends.size(), values.size()});
  for (std::size_t i = 0; i < n; ++i) {
    const double value = Usable(values[i]) ? values[i] : std::nan("");
    xs.insert(xs.end(), {starts[i], ends[i], ends[i]});
    ys.insert(ys.end(), {value, value, std::nan("")});
  }
  Line(xs, ys, pen);
}

void ChartPanel::HorizontalRule(double y, const DrawOptions& pen) {
  const double xs[] = {xEnds_.Low, xEnds_.High};
  const double ys[] = {y, y};
  Line(xs, ys, pen);
}

void ChartPanel::Marker(double x, double y, Colour colour, std::string_view label) {
  const double radius = ConvertPixel2User_forWidth(surface_, 4);
  devices_.drCircle(hdc_, X(x), Y(y), radius, {.Width = 2, .Color = colour});
  if (!label.empty())
    devices_.drText(hdc_, X(x) + radius * 1.5, Y(y) - devices_.TextHeight(hdc_, font_) - radius, label,
                    {.Font = font_, .Color = colour});
}

void ChartPanel::Legend(const std::vector<LegendEntry>& entries) {
  const double line = devices_.TextHeight(hdc_, font_);
  const double swatch = line * 1.6;
  double widest = 0;
  for (const LegendEntry& e : entries) widest = std::fmax(widest, devices_.TextWidth(hdc_, e.Text, font_));
  const double left = frame_.Right - widest - swatch - line;
  double top = frame_.Top + line * 0.3;
  devices_.flBox(hdc_, left - line * 0.3, top - line * 0.2, frame_.Right - line * 0.2,
                 top + line * static_cast<double>(entries.size()) + line * 0.2, {.Color = 0xC0C0C0, .Fill = kWhite});
  for (const LegendEntry& e : entries) {
    devices_.drLine(hdc_, left, top + line / 2, left + swatch * 0.8, top + line / 2,
                    {.Style = e.Style, .Width = e.Width + 1, .Color = e.Color});
    devices_.drText(hdc_, left + swatch, top, e.Text, {.Font = font_, .Color = kBlack});
    top += line;
  }
}

}  // namespace velmora::graph
