#include "graph/draw_devices.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "graph/font_choice.h"
#include "graph/painter.h"

namespace velmora::graph {

struct DrawDevices::Entry {
  Hdc Handle = 0;
  int Kind = 0;
  const DrawSurface* Surface = nullptr;
  std::unique_ptr<Painter> Target;
  std::optional<PixelRect> Clip;
};

namespace {

struct PixelPoint {
  double X = 0;
  double Y = 0;
};

// The nearest pixel (half to even, as every plain conversion of the program rounds).
PixelPoint ToPixels(const DrawSurface& surface, double x, double y) {
  return {std::nearbyint((x - surface.ScaleLeft) * surface.PixelWidth / surface.ScaleWidth),
          std::nearbyint((y - surface.ScaleTop) * surface.PixelHeight / surface.ScaleHeight)};
}

Pen PenFor(const DrawSurface& surface, const DrawOptions& options) {
  Pen pen;
  pen.Style = surface.DrawStyle;
  if (options.Style && *options.Style >= 0 && *options.Style <= 6) pen.Style = *options.Style;
  pen.Width = std::max(1, options.Width.value_or(surface.DrawWidth));
  pen.Color = options.Color.value_or(surface.ForeColor);
  pen.Mode = options.Mode.value_or(surface.DrawMode);
  return pen;
}

Brush BrushFor(const DrawSurface& surface, const DrawOptions& options, bool solidFill) {
  Brush brush;
  if (solidFill) {
    brush.Type = Brush::Kind::Solid;
    brush.Color = options.Fill.value_or(surface.FillColor);
  } else if (options.Fill) {
    brush.Type = Brush::Kind::Solid;
    brush.Color = *options.Fill;
  } else if (options.Hatch && *options.Hatch >= 0 && *options.Hatch <= 5) {
    brush.Type = Brush::Kind::Hatch;
    brush.Color = options.Color.value_or(surface.ForeColor);
    brush.Hatch = *options.Hatch;
  }
  return brush;
}

// A pixel (x, y) is the square from x to x + 1; outlines run through pixel centres.
double Centre(double pixel) { return pixel + 0.5; }

void EllipsePath(cairo_t* cr, double cx, double cy, double rx, double ry) {
  cairo_save(cr);
  cairo_translate(cr, cx, cy);
  cairo_scale(cr, std::max(rx, 0.5), std::max(ry, 0.5));
  cairo_new_sub_path(cr);
  cairo_arc(cr, 0, 0, 1, 0, 2 * M_PI);
  cairo_restore(cr);
}

// Arc, pie and chord: the bounding box, then the points whose rays from the centre give the start and
// the end; drawn counter-clockwise as the screen shows it.
void ArcPath(cairo_t* cr, int code, const std::vector<PixelPoint>& p) {
  const double cx = (Centre(p[0].X) + Centre(p[1].X)) / 2;
  const double cy = (Centre(p[0].Y) + Centre(p[1].Y)) / 2;
  const double rx = std::max(std::fabs(p[1].X - p[0].X) / 2, 0.5);
  const double ry = std::max(std::fabs(p[1].Y - p[0].Y) / 2, 0.5);
  const double start = std::atan2((Centre(p[2].Y) - cy) / ry, (Centre(p[2].X) - cx) / rx);
  const double end = std::atan2((Centre(p[3].Y) - cy) / ry, (Centre(p[3].X) - cx) / rx);
  cairo_save(cr);
  cairo_translate(cr, cx, cy);
  cairo_scale(cr, rx, ry);
  if (code == primitive::Pie) cairo_move_to(cr, 0, 0);
  cairo_arc_negative(cr, 0, 0, 1, start, end);
  if (code != primitive::Arc && code != primitive::ArcAlso) cairo_close_path(cr);
  cairo_restore(cr);
}

void RectanglePath(cairo_t* cr, const PixelPoint& a, const PixelPoint& b) {
  const double left = std::min(a.X, b.X), right = std::max(a.X, b.X);
  const double top = std::min(a.Y, b.Y), bottom = std::max(a.Y, b.Y);
  // The outline covers the pixels from the first corner up to, not including, the second.
  cairo_rectangle(cr, Centre(left), Centre(top), std::max(right - left - 1, 0.0), std::max(bottom - top - 1, 0.0));
}

std::size_t PointsNeeded(int code) {
  switch (code) {
    case primitive::Rectangle:
    case primitive::Ellipse:
    case primitive::Circle:
    case primitive::Clip:
    case primitive::FocusRect: return 2;
    case primitive::Arc:
    case primitive::Pie:
    case primitive::Chord:
    case primitive::ArcAlso: return 4;
    default: return 1;
  }
}

}  // namespace

DrawDevices::DrawDevices() = default;
DrawDevices::~DrawDevices() = default;

Hdc DrawDevices::regHDCPicture(Picture& picture) {
  if (picture.hdc() == 0 || Find(picture.hdc()) != nullptr) return picture.hdc();
  auto entry = std::make_unique<Entry>();
  entry->Handle = picture.hdc();
  entry->Kind = kPictureTarget;
  entry->Surface = &picture.Surface;
  entry->Target = MakeRasterPainter(picture.Raster(), picture.RasterScale());
  entries_.push_back(std::move(entry));
  return picture.hdc();
}

Hdc DrawDevices::regHDCMetaFile(const std::filesystem::path& fileName, const DrawSurface& surface) {
  std::error_code ignored;
  std::filesystem::remove(fileName, ignored);
  auto entry = std::make_unique<Entry>();
  entry->Handle = NewDeviceHandle();
  entry->Kind = kMetaFileTarget;
  entry->Surface = &surface;
  entry->Target = MakeSvgPainter(fileName, surface.PixelWidth, surface.PixelHeight);
  entries_.push_back(std::move(entry));
  return entries_.back()->Handle;
}

Hdc DrawDevices::regHDCPrinter(PrinterTarget& printer) {
  auto entry = std::make_unique<Entry>();
  entry->Handle = NewDeviceHandle();
  entry->Kind = kPrinterTarget;
  entry->Surface = &printer.Surface;
  entry->Target = MakePdfPainter(printer.OutputFile, printer.Surface.PixelWidth, printer.Surface.PixelHeight);
  entries_.push_back(std::move(entry));
  return entries_.back()->Handle;
}

int DrawDevices::getHDCnumber(Hdc hdc) const {
  for (std::size_t i = 0; i < entries_.size(); ++i)
    if (entries_[i]->Handle == hdc) return static_cast<int>(i) + 1;
  return 0;
}

void DrawDevices::releaseHDC(Hdc hdc) {
  const int number = getHDCnumber(hdc);
  if (number < 1) return;
  std::unique_ptr<Entry> entry = std::move(entries_[static_cast<std::size_t>(number - 1)]);
  entries_.erase(entries_.begin() + (number - 1));
  entry->Target->Finish();
}

DrawDevices::Entry* DrawDevices::Find(Hdc hdc) {
  const int number = getHDCnumber(hdc);
  return number < 1 ? nullptr : entries_[static_cast<std::size_t>(number - 1)].get();
}

void DrawDevices::Draw(int code, Hdc hdc, std::span<const double> xs, std::span<const double> ys,
                       const DrawOptions& options, bool solidFill) {
  Entry* entry = Find(hdc);
  const std::size_t count = std::min(xs.size(), ys.size());
  if (entry == nullptr || count < 1 || code < 0 || code > primitive::FocusRect) return;
  if (count < PointsNeeded(code)) return;
  const DrawSurface& surface = *entry->Surface;
  if (surface.ScaleWidth == 0 || surface.ScaleHeight == 0) return;

  std::vector<PixelPoint> p(count);
  for (std::size_t i = 0; i < count; ++i) p[i] = ToPixels(surface, xs[i], ys[i]);
  if (code == primitive::Clip) {
    entry->Clip = PixelRect{std::min(p[0].X, p[1].X), std::min(p[0].Y, p[1].Y), std::max(p[0].X, p[1].X),
                            std::max(p[0].Y, p[1].Y)};
    return;
  }

  cairo_t* cr = entry->Target->PathContext();
  cairo_new_path(cr);
  Pen pen = PenFor(surface, options);
  Brush brush = BrushFor(surface, options, solidFill);
  switch (code) {
    case primitive::Points:
      for (const PixelPoint& point : p) cairo_rectangle(cr, point.X, point.Y, 1, 1);
      brush = Brush{Brush::Kind::Solid, pen.Color, 0};
      pen.Style = 5;
      break;
    case primitive::Line:
    case primitive::Polyline:
      cairo_move_to(cr, Centre(p[0].X), Centre(p[0].Y));
      for (std::size_t i = 1; i < count; ++i) cairo_line_to(cr, Centre(p[i].X), Centre(p[i].Y));
      brush = Brush{};
      break;
    case primitive::Polygon:
      cairo_move_to(cr, Centre(p[0].X), Centre(p[0].Y));
      for (std::size_t i = 1; i < count; ++i) cairo_line_to(cr, Centre(p[i].X), Centre(p[i].Y));
      cairo_close_path(cr);
      break;
    case primitive::Rectangle: RectanglePath(cr, p[0], p[1]); break;
    case primitive::Ellipse:
      EllipsePath(cr, (Centre(p[0].X) + Centre(p[1].X)) / 2, (Centre(p[0].Y) + Centre(p[1].Y)) / 2,
                  std::fabs(p[1].X - p[0].X) / 2, std::fabs(p[1].Y - p[0].Y) / 2);
      break;
    case primitive::Circle: {
      // The radius is taken from the horizontal scale alone, so a circle stays round on any scale.
      const double radius = std::nearbyint(std::fabs(xs[1] * surface.PixelWidth / surface.ScaleWidth));
      EllipsePath(cr, Centre(p[0].X), Centre(p[0].Y), radius, radius);
      break;
    }
    case primitive::Arc:
    case primitive::Pie:
    case primitive::Chord:
    case primitive::ArcAlso: ArcPath(cr, code, p); break;
    case primitive::FocusRect:
      RectanglePath(cr, p[0], p[1]);
      pen = Pen{2, 1, 0xFFFFFF, 6};
      brush = Brush{};
      break;
    default: return;
  }
  entry->Target->Paint(pen, brush, entry->Clip);
}

void DrawDevices::drawAPIcmn(int code, Hdc hdc, std::span<const double> xs, std::span<const double> ys,
                             const DrawOptions& options) {
  Draw(code, hdc, xs, ys, options, false);
}

void DrawDevices::drawAPIcmn2(int code, Hdc hdc, double x1, double y1, double x2, double y2, bool fill,
                              const DrawOptions& options) {
  const double xs[] = {x1, x2};
  const double ys[] = {y1, y2};
  Draw(code, hdc, xs, ys, options, fill);
}

void DrawDevices::drawAPIcmn4(Hdc hdc, std::span<const double> x1s, std::span<const double> y1s,
                              std::span<const double> x2s, std::span<const double> y2s, const DrawOptions& options) {
  const std::size_t count = std::min({x1s.size(), y1s.size(), x2s.size(), y2s.size()});
  for (std::size_t i = 0; i < count; ++i)
    drawAPIcmn2(primitive::Rectangle, hdc, x1s[i], y1s[i], x2s[i], y2s[i], true, options);
}

void DrawDevices::drLine(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options) {
  const double xs[] = {x1, x2};
  const double ys[] = {y1, y2};
  drawAPIcmn(primitive::Line, hdc, xs, ys, options);
}

void DrawDevices::drPolyline(Hdc hdc, std::span<const double> xs, std::span<const double> ys,
                             const DrawOptions& options) {
  drawAPIcmn(primitive::Polyline, hdc, xs, ys, options);
}

void DrawDevices::drBox(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options) {
  DrawOptions outline = options;
  outline.Fill.reset();
  outline.Hatch.reset();
  drawAPIcmn2(primitive::Rectangle, hdc, x1, y1, x2, y2, false, outline);
}

void DrawDevices::drBoxHatch(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options) {
  DrawOptions hatched = options;
  hatched.Fill.reset();
  drawAPIcmn2(primitive::Rectangle, hdc, x1, y1, x2, y2, false, hatched);
}

void DrawDevices::flBox(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options) {
  drawAPIcmn2(primitive::Rectangle, hdc, x1, y1, x2, y2, true, options);
}

void DrawDevices::flBoxes2(Hdc hdc, std::span<const double> x1s, std::span<const double> y1s,
                           std::span<const double> x2s, std::span<const double> y2s, const DrawOptions& options) {
  drawAPIcmn4(hdc, x1s, y1s, x2s, y2s, options);
}

void DrawDevices::drCircle(Hdc hdc, double x, double y, double radius, const DrawOptions& options) {
  const double xs[] = {x, radius};
  const double ys[] = {y, 0};
  drawAPIcmn(primitive::Circle, hdc, xs, ys, options);
}

void DrawDevices::mFillPolygon(Hdc hdc, std::span<const double> xs, std::span<const double> ys,
                               const DrawOptions& options) {
  Draw(primitive::Polygon, hdc, xs, ys, options, true);
}

void DrawDevices::clipBox(Hdc hdc, double x1, double y1, double x2, double y2) {
  drawAPIcmn2(primitive::Clip, hdc, x1, y1, x2, y2, false);
}

void DrawDevices::clipOff(Hdc hdc) {
  if (Entry* entry = Find(hdc)) entry->Clip.reset();
}

void DrawDevices::pageChange(Hdc hdc) {
  Entry* entry = Find(hdc);
  if (entry != nullptr && entry->Kind == kPrinterTarget) entry->Target->NewPage();
}

namespace {

TextRun RunFor(const DrawSurface& surface, const FontSpec& font, const FontChoice& choice) {
  TextRun run;
  run.Family = choice.Family.c_str();
  run.PixelSize = FontPixelHeight(font.Size * choice.SizeFactor);
  run.Bold = font.Bold;
  run.Italic = font.Italic;
  run.Underline = font.Underline;
  run.Strikethrough = font.Strikethrough;
  run.Color = surface.ForeColor;
  return run;
}

}  // namespace

void DrawDevices::drText(Hdc hdc, double x, double y, std::string_view text, const TextOptions& options) {
  Entry* entry = Find(hdc);
  if (entry == nullptr || text.empty()) return;
  const DrawSurface& surface = *entry->Surface;
  if (surface.ScaleWidth == 0 || surface.ScaleHeight == 0) return;
  const FontSpec& font = options.Font ? *options.Font : surface.Font;
  const FontChoice choice = ChooseFont(font.Name);
  TextRun run = RunFor(surface, font, choice);
  const PixelPoint at = ToPixels(surface, x, y);
  run.X = at.X;
  run.Y = at.Y;
  run.Text = text;
  run.Angle = options.Angle;
  run.Color = options.Color.value_or(surface.ForeColor);
  entry->Target->Text(run, entry->Clip);
}

namespace {

// Measures with the font selected on the target's path context, which is left as it was.
template <typename Measure>
double WithFont(DrawDevices::Entry& entry, const std::optional<FontSpec>& font, Measure measure) {
  const FontSpec& chosen = font ? *font : entry.Surface->Font;
  const FontChoice choice = ChooseFont(chosen.Name);
  cairo_t* cr = entry.Target->PathContext();
  cairo_save(cr);
  SelectRunFont(cr, RunFor(*entry.Surface, chosen, choice));
  const double pixels = measure(cr);
  cairo_restore(cr);
  return pixels;
}

}  // namespace

double DrawDevices::TextWidth(Hdc hdc, std::string_view text, const std::optional<FontSpec>& font) {
  Entry* entry = Find(hdc);
  if (entry == nullptr) return 0;
  const double advance = WithFont(*entry, font, [&](cairo_t* cr) {
    cairo_text_extents_t extents;
    cairo_text_extents(cr, std::string(text).c_str(), &extents);
    return extents.x_advance;
  });
  return ConvertPixel2User_forWidth(*entry->Surface, advance);
}

double DrawDevices::TextHeight(Hdc hdc, const std::optional<FontSpec>& font) {
  Entry* entry = Find(hdc);
  if (entry == nullptr) return 0;
  const double height = WithFont(*entry, font, [](cairo_t* cr) {
    cairo_font_extents_t extents;
    cairo_font_extents(cr, &extents);
    return extents.ascent + extents.descent;
  });
  return ConvertPixel2User_forHeight(*entry->Surface, height);
}

}  // namespace velmora::graph
