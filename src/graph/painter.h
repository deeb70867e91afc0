#pragma once
// What the drawing layer asks of a target once the points are pixels: paint the path built in the
// path context with a pen and a brush, write a text, begin a page, finish the file. Cairo paints the
// picture and the printer's PDF; the metafile writes SVG elements of its own so that its texts stay text.
#include <cairo.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

#include "base/colour.h"

namespace velmora::graph {

struct PixelRect {
  double Left = 0, Top = 0, Right = 0, Bottom = 0;
};

struct Pen {
  int Style = 0;     // 0..6
  double Width = 1;  // pixels
  Colour Color = 0;
  int Mode = 13;
};

struct Brush {
  enum class Kind { Hollow, Solid, Hatch } Type = Kind::Hollow;
  Colour Color = 0;
  int Hatch = 0;  // 0..5
};

struct TextRun {
  double X = 0, Y = 0;  // top left, pixels
  std::string_view Text;
  const char* Family = "";
  double PixelSize = 12;
  bool Bold = false, Italic = false, Underline = false, Strikethrough = false;
  double Angle = 0;  // degrees counter-clockwise
  Colour Color = 0;
};

class Painter {
 public:
  virtual ~Painter() = default;
  // The context paths are built in, in pixels of the surface.
  virtual cairo_t* PathContext() = 0;
  // Paints and clears the current path of PathContext.
  virtual void Paint(const Pen& pen, const Brush& brush, const std::optional<PixelRect>& clip) = 0;
  virtual void Text(const TextRun& run, const std::optional<PixelRect>& clip) = 0;
  virtual void NewPage() = 0;
  // Completes the output; for file targets writes the file whole (LegacyError naming it on failure).
  virtual void Finish() = 0;
};

// Onto a picture's raster (scaled by its raster resolution).
std::unique_ptr<Painter> MakeRasterPainter(cairo_surface_t* raster, double rasterScale);
// PDF pages of width x height pixels (1/96 inch) into `file`.
std::unique_ptr<Painter> MakePdfPainter(std::filesystem::path file, int width, int height);
// An SVG document of width x height pixels into `file`.
std::unique_ptr<Painter> MakeSvgPainter(std::filesystem::path file, int width, int height);

// Selects the run's font on `cr` and returns its ascent in pixels.
double SelectRunFont(cairo_t* cr, const TextRun& run);
// Dash lengths of a line style for a pen width; empty for solid.
std::vector<double> DashesOf(int style, double width);
// The pixels of a hatch style within its 8 x 8 tile.
bool HatchPixel(int style, int x, int y);

}  // namespace velmora::graph
