#pragma once
// A drawing surface as the drawing layer sees it: a size in pixels, a user scale over it, pen defaults
// and a font. Pictures (PNG) and printers (PDF pages) own one; a metafile borrows the one it is made
// from. One pixel is 1/96 inch on every target, so a point size measures the same everywhere.
#include <cairo.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "base/colour.h"

namespace velmora::graph {

using Hdc = std::int32_t;  // a registered target's handle; 0 is none

enum class ScaleMode { User = 0, Pixel = 3, Millimetre = 6 };

inline constexpr double kPixelsPerInch = 96;
inline constexpr Colour kWhite = 0xFFFFFF;
inline constexpr Colour kBlack = 0x000000;

struct FontSpec {
  std::string Name = "ＭＳ ゴシック";
  double Size = 9;  // points
  bool Bold = false;
  bool Italic = false;
  bool Underline = false;
  bool Strikethrough = false;
};

struct DrawSurface {
  int PixelWidth = 0;
  int PixelHeight = 0;
  ScaleMode Mode = ScaleMode::Pixel;
  double ScaleLeft = 0;
  double ScaleTop = 0;
  double ScaleWidth = 0;   // negative when x runs leftwards
  double ScaleHeight = 0;  // negative when y runs upwards
  int DrawStyle = 0;       // line style 0..6
  int DrawWidth = 1;       // pixels
  Colour ForeColor = kBlack;
  Colour FillColor = kBlack;
  int DrawMode = 13;       // copy pen
  FontSpec Font;

  // The user scale as the corners (x1, y1) top-left and (x2, y2) bottom-right.
  void Scale(double x1, double y1, double x2, double y2);
  // Pixels as the user scale (mode Pixel, origin at the top left).
  void ScalePixels();
};

// A length in pixels as a length in the surface's user scale (always positive).
double ConvertPixel2User_forWidth(const DrawSurface& surface, double pixels);
double ConvertPixel2User_forHeight(const DrawSurface& surface, double pixels);

// A picture: a surface with a raster behind it, white at first. `dpi` sets the raster's resolution;
// the surface keeps its size in 96-dpi pixels, so a larger dpi gives a finer image of the same picture.
class Picture {
 public:
  Picture(int pixelWidth, int pixelHeight, double dpi = kPixelsPerInch);
  ~Picture();
  Picture(const Picture&) = delete;
  Picture& operator=(const Picture&) = delete;

  DrawSurface Surface;
  Hdc hdc() const { return hdc_; }
  double RasterScale() const { return rasterScale_; }
  cairo_surface_t* Raster() const { return raster_; }
  // The colour of the raster pixel under pixel (x, y) of the surface, as 0xBBGGRR.
  Colour PixelAt(int x, int y) const;
  // The picture as a PNG file, written whole or not at all (LegacyError naming the file).
  void SavePng(const std::filesystem::path& path) const;

 private:
  Hdc hdc_;
  double rasterScale_;
  cairo_surface_t* raster_;
};

// A new device handle, unique in the process.
Hdc NewDeviceHandle();

}  // namespace velmora::graph
