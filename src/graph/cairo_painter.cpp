// The raster and PDF targets: cairo paints the path with the pen and brush.
#include <cairo-pdf.h>

#include <array>
#include <memory>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "base/legacy_error.h"
#include "base/text_encoding.h"
#include "graph/draw_surface.h"
#include "graph/painter.h"

namespace velmora::graph {
namespace {

void SetColour(cairo_t* cr, Colour colour) {
  const ColourParts parts = uColourSplit(colour);
  cairo_set_source_rgb(cr, parts.Red / 255.0, parts.Green / 255.0, parts.Blue / 255.0);
}

// The raster operations the charts use, as cairo's nearest operators; the colour is replaced for the
// modes that ignore the pen's.
cairo_operator_t OperatorFor(int mode, Colour& colour) {
  switch (mode) {
    case 1: colour = 0x000000; return CAIRO_OPERATOR_OVER;
    case 16: colour = 0xFFFFFF; return CAIRO_OPERATOR_OVER;
    case 6: colour = 0xFFFFFF; return CAIRO_OPERATOR_DIFFERENCE;
    case 7: return CAIRO_OPERATOR_DIFFERENCE;
    case 9: return CAIRO_OPERATOR_MULTIPLY;
    case 15: return CAIRO_OPERATOR_LIGHTEN;
    default: return CAIRO_OPERATOR_OVER;
  }
}

cairo_pattern_t* HatchPattern(int style, Colour colour) {
  cairo_surface_t* tile = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 8, 8);
  cairo_surface_flush(tile);
  const ColourParts parts = uColourSplit(colour);
  const std::uint32_t argb = 0xFF000000u | (static_cast<std::uint32_t>(parts.Red) << 16) |
                             (static_cast<std::uint32_t>(parts.Green) << 8) | static_cast<std::uint32_t>(parts.Blue);
  unsigned char* data = cairo_image_surface_get_data(tile);
  const int stride = cairo_image_surface_get_stride(tile);
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 8; ++x)
      reinterpret_cast<std::uint32_t*>(data + y * stride)[x] = HatchPixel(style, x, y) ? argb : 0u;
  cairo_surface_mark_dirty(tile);
  cairo_pattern_t* pattern = cairo_pattern_create_for_surface(tile);
  cairo_surface_destroy(tile);
  cairo_pattern_set_extend(pattern, CAIRO_EXTEND_REPEAT);
  cairo_pattern_set_filter(pattern, CAIRO_FILTER_NEAREST);
  return pattern;
}

class CairoPainter : public Painter {
 public:
  // A file target streams into `bytes`, which go to the file only when the document is complete.
  CairoPainter(cairo_surface_t* target, double scale, std::filesystem::path file, std::unique_ptr<std::string> bytes)
      : file_(std::move(file)), bytes_(std::move(bytes)) {
    cr_ = cairo_create(target);
    cairo_scale(cr_, scale, scale);
  }
  ~CairoPainter() override { cairo_destroy(cr_); }

  cairo_t* PathContext() override { return cr_; }

  void Paint(const Pen& pen, const Brush& brush, const std::optional<PixelRect>& clip) override {
    cairo_path_t* path = cairo_copy_path(cr_);
    cairo_new_path(cr_);
    cairo_save(cr_);
    Clip(clip);
    Colour penColour = pen.Color;
    cairo_set_operator(cr_, OperatorFor(pen.Mode, penColour));
    cairo_append_path(cr_, path);
    cairo_path_destroy(path);
    if (brush.Type == Brush::Kind::Solid) {
      SetColour(cr_, brush.Color);
      cairo_fill_preserve(cr_);
    } else if (brush.Type == Brush::Kind::Hatch) {
      cairo_pattern_t* pattern = HatchPattern(brush.Hatch, brush.Color);
      cairo_set_source(cr_, pattern);
      cairo_fill_preserve(cr_);
      cairo_pattern_destroy(pattern);
    }
    if (pen.Style != 5) {
      SetColour(cr_, penColour);
      cairo_set_line_width(cr_, pen.Width);
      const std::vector<double> dashes = DashesOf(pen.Style, pen.Width);
      cairo_set_dash(cr_, dashes.data(), static_cast<int>(dashes.size()), 0);
      cairo_stroke(cr_);
    }
    cairo_new_path(cr_);
    cairo_restore(cr_);
  }

  void Text(const TextRun& run, const std::optional<PixelRect>& clip) override {
    cairo_save(cr_);
    Clip(clip);
    const double ascent = SelectRunFont(cr_, run);
    SetColour(cr_, run.Color);
    cairo_translate(cr_, run.X, run.Y);
    cairo_rotate(cr_, -run.Angle * M_PI / 180);
    const std::string text(run.Text);
    cairo_text_extents_t extents;
    cairo_text_extents(cr_, text.c_str(), &extents);
    cairo_move_to(cr_, 0, ascent);
    cairo_show_text(cr_, text.c_str());
    const auto rule = [&](double y) {
      cairo_rectangle(cr_, 0, y, extents.x_advance, std::fmax(1.0, run.PixelSize / 16));
      cairo_fill(cr_);
    };
    if (run.Underline) rule(ascent + run.PixelSize * 0.1);
    if (run.Strikethrough) rule(ascent - run.PixelSize * 0.3);
    cairo_restore(cr_);
  }

  void NewPage() override { cairo_show_page(cr_); }

  void Finish() override {
    cairo_surface_t* target = cairo_get_target(cr_);
    // A picture's raster outlives its registration; only a document is closed.
    if (bytes_ != nullptr) {
      cairo_surface_finish(target);
    } else {
      cairo_surface_flush(target);
    }
    if (cairo_surface_status(target) != CAIRO_STATUS_SUCCESS)
      throw LegacyError(ErrorNumber::InvalidData, "cannot draw " + file_.string() + ": " +
                                                      cairo_status_to_string(cairo_surface_status(target)));
    if (bytes_ != nullptr) WriteFileBytesAtomically(file_, *bytes_);
  }

 private:
  void Clip(const std::optional<PixelRect>& clip) {
    if (!clip) return;
    cairo_rectangle(cr_, clip->Left, clip->Top, clip->Right - clip->Left, clip->Bottom - clip->Top);
    cairo_clip(cr_);
  }

  std::filesystem::path file_;
  std::unique_ptr<std::string> bytes_;
  cairo_t* cr_;
};

cairo_status_t AppendBytes(void* closure, const unsigned char* data, unsigned int length) {
  static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

std::unique_ptr<Painter> MakeRasterPainter(cairo_surface_t* raster, double rasterScale) {
  return std::make_unique<CairoPainter>(raster, rasterScale, std::filesystem::path{}, nullptr);
}

std::unique_ptr<Painter> MakePdfPainter(std::filesystem::path file, int width, int height) {
  auto bytes = std::make_unique<std::string>();
  constexpr double kPointsPerPixel = 72.0 / kPixelsPerInch;
  cairo_surface_t* surface =
      cairo_pdf_surface_create_for_stream(AppendBytes, bytes.get(), width * kPointsPerPixel, height * kPointsPerPixel);
  auto painter = std::make_unique<CairoPainter>(surface, kPointsPerPixel, std::move(file), std::move(bytes));
  cairo_surface_destroy(surface);  // the painter's context holds it
  return painter;
}

double SelectRunFont(cairo_t* cr, const TextRun& run) {
  cairo_select_font_face(cr, run.Family, run.Italic ? CAIRO_FONT_SLANT_ITALIC : CAIRO_FONT_SLANT_NORMAL,
                         run.Bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, run.PixelSize);
  cairo_font_extents_t extents;
  cairo_font_extents(cr, &extents);
  return extents.ascent;
}

std::vector<double> DashesOf(int style, double width) {
  // The platform's cosmetic pen patterns, in pen widths.
  static const std::array<std::vector<double>, 7> patterns{
      std::vector<double>{}, {18, 6}, {3, 3}, {9, 6, 3, 6}, {9, 3, 3, 3, 3, 3}, {}, {}};
  std::vector<double> dashes = patterns.at(static_cast<std::size_t>(style));
  for (double& dash : dashes) dash *= width;
  return dashes;
}

bool HatchPixel(int style, int x, int y) {
  const bool horizontal = y == 4;
  const bool vertical = x == 4;
  const bool forward = x == y;        // "\" on a y-down raster
  const bool backward = x + y == 7;   // "/"
  switch (style) {
    case 0: return horizontal;
    case 1: return vertical;
    case 2: return forward;
    case 3: return backward;
    case 4: return horizontal || vertical;
    case 5: return forward || backward;
    default: return false;
  }
}

}  // namespace velmora::graph
