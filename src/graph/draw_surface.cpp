#include "graph/draw_surface.h"

#include <atomic>
#include <cmath>
#include <string>

#include "base/legacy_error.h"
#include "base/text_encoding.h"

namespace velmora::graph {

void DrawSurface::Scale(double x1, double y1, double x2, double y2) {
  Mode = ScaleMode::User;
  ScaleLeft = x1;
  ScaleTop = y1;
  ScaleWidth = x2 - x1;
  ScaleHeight = y2 - y1;
}

void DrawSurface::ScalePixels() {
  Mode = ScaleMode::Pixel;
  ScaleLeft = 0;
  ScaleTop = 0;
  ScaleWidth = PixelWidth;
  ScaleHeight = PixelHeight;
}

double ConvertPixel2User_forWidth(const DrawSurface& surface, double pixels) {
  return std::fabs(surface.ScaleWidth / surface.PixelWidth * pixels);
}

double ConvertPixel2User_forHeight(const DrawSurface& surface, double pixels) {
  return std::fabs(surface.ScaleHeight / surface.PixelHeight * pixels);
}

Hdc NewDeviceHandle() {
  static std::atomic<Hdc> next{0};
  return ++next;
}

Picture::Picture(int pixelWidth, int pixelHeight, double dpi)
    : hdc_(NewDeviceHandle()), rasterScale_(dpi / kPixelsPerInch) {
  Surface.PixelWidth = pixelWidth;
  Surface.PixelHeight = pixelHeight;
  Surface.ScalePixels();
  raster_ = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::lround(pixelWidth * rasterScale_)),
                                       static_cast<int>(std::lround(pixelHeight * rasterScale_)));
  cairo_t* cr = cairo_create(raster_);
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_paint(cr);
  cairo_destroy(cr);
}

Picture::~Picture() { cairo_surface_destroy(raster_); }

Colour Picture::PixelAt(int x, int y) const {
  cairo_surface_flush(raster_);
  const int rx = static_cast<int>(std::floor((x + 0.5) * rasterScale_));
  const int ry = static_cast<int>(std::floor((y + 0.5) * rasterScale_));
  if (rx < 0 || ry < 0 || rx >= cairo_image_surface_get_width(raster_) || ry >= cairo_image_surface_get_height(raster_))
    RaiseSubscriptOutOfRange("pixel " + std::to_string(x) + "," + std::to_string(y));
  const unsigned char* row = cairo_image_surface_get_data(raster_) + ry * cairo_image_surface_get_stride(raster_);
  const auto argb = reinterpret_cast<const std::uint32_t*>(row)[rx];
  return MakeColour(static_cast<int>((argb >> 16) & 0xFF), static_cast<int>((argb >> 8) & 0xFF),
                    static_cast<int>(argb & 0xFF));
}

void Picture::SavePng(const std::filesystem::path& path) const {
  std::string bytes;
  const auto append = [](void* closure, const unsigned char* data, unsigned int length) {
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
  };
  if (cairo_surface_write_to_png_stream(raster_, append, &bytes) != CAIRO_STATUS_SUCCESS)
    throw LegacyError(ErrorNumber::InvalidData, "cannot encode the picture for " + path.string());
  WriteFileBytesAtomically(path, bytes);
}

}  // namespace velmora::graph
