#pragma once
// The drawing layer every chart and print form draws through. A target is registered once (a picture,
// a metafile, a printer) and is then known by its handle; each call converts the user coordinates of
// the target's surface to pixels itself, so one drawing routine gives the same picture on a PNG, an SVG
// "metafile" and the PDF pages of a printer. Optional arguments left empty fall back to the surface's
// pen defaults.
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "graph/draw_surface.h"
#include "graph/paper_size.h"

namespace velmora::graph {

inline constexpr int kPictureTarget = 1;
inline constexpr int kPrinterTarget = 2;
inline constexpr int kMetaFileTarget = 3;

// Primitive codes of the common drawing procedures.
namespace primitive {
inline constexpr int Points = 0;     // one pixel per point in the pen colour
inline constexpr int Line = 1;       // connected line through n points
inline constexpr int Rectangle = 2;  // two corners
inline constexpr int Ellipse = 3;    // bounding box
inline constexpr int Arc = 4;        // bounding box, start and end point (counter-clockwise)
inline constexpr int Circle = 5;     // centre, then (radius, unused); the radius in horizontal units
inline constexpr int Pie = 6;        // as Arc, closed through the centre
inline constexpr int Chord = 7;      // as Arc, closed by its chord
inline constexpr int Polyline = 8;
inline constexpr int Polygon = 9;
inline constexpr int Clip = 10;      // clip rectangle, two corners
inline constexpr int ArcAlso = 11;   // the same as Arc
inline constexpr int FocusRect = 12; // dotted inverted rectangle, two corners
}  // namespace primitive

// Line styles 0..6: solid, dash, dot, dash-dot, dash-dot-dot, none, inside frame (solid).
// Hatch styles 0..5: horizontal, vertical, forward diagonal (\), backward diagonal (/), cross, diagonal cross.
// Draw modes: 13 copy (default), 1 black, 16 white, 6 invert, 7 xor, 9 mask, 15 merge; others copy.
struct DrawOptions {
  std::optional<int> Style = std::nullopt;
  std::optional<int> Width = std::nullopt;        // pixels
  std::optional<Colour> Color = std::nullopt;     // pen
  std::optional<Colour> Fill = std::nullopt;      // solid brush
  std::optional<int> Hatch = std::nullopt;        // hatch brush (when no solid fill)
  std::optional<int> Mode = std::nullopt;
};

struct TextOptions {
  std::optional<FontSpec> Font = std::nullopt;  // else the surface's font
  double Angle = 0;              // degrees, counter-clockwise
  std::optional<Colour> Color = std::nullopt;  // else the surface's pen colour
};

class DrawDevices {
 public:
  DrawDevices();
  ~DrawDevices();  // targets never released write no file
  DrawDevices(const DrawDevices&) = delete;
  DrawDevices& operator=(const DrawDevices&) = delete;

  Hdc regHDCPicture(Picture& picture);
  // An SVG file drawn at the surface's size and scale; the file is written at release, whole.
  Hdc regHDCMetaFile(const std::filesystem::path& fileName, const DrawSurface& surface);
  // The printer's PDF, first page open, its pages the size of its surface (see PreparePrinter).
  Hdc regHDCPrinter(PrinterTarget& printer);
  // 1-based position in the table, 0 when not registered.
  int getHDCnumber(Hdc hdc) const;
  // Closes the target (metafile and printer files are written now; LegacyError naming the file when
  // that fails) and removes it from the table. An unknown handle is ignored.
  void releaseHDC(Hdc hdc);
  int Count() const { return static_cast<int>(entries_.size()); }

  // The common procedures: a primitive over points (outline, brush from the options), a rectangle
  // with or without its fill, and many filled rectangles at once. Nothing happens for an unknown
  // handle, no points, or a code above 12.
  void drawAPIcmn(int code, Hdc hdc, std::span<const double> xs, std::span<const double> ys,
                  const DrawOptions& options = {});
  void drawAPIcmn2(int code, Hdc hdc, double x1, double y1, double x2, double y2, bool fill,
                   const DrawOptions& options = {});
  void drawAPIcmn4(Hdc hdc, std::span<const double> x1s, std::span<const double> y1s, std::span<const double> x2s,
                   std::span<const double> y2s, const DrawOptions& options = {});

  void drLine(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options = {});
  void drPolyline(Hdc hdc, std::span<const double> xs, std::span<const double> ys, const DrawOptions& options = {});
  void drBox(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options = {});
  void drBoxHatch(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options = {});
  void flBox(Hdc hdc, double x1, double y1, double x2, double y2, const DrawOptions& options = {});
  void flBoxes2(Hdc hdc, std::span<const double> x1s, std::span<const double> y1s, std::span<const double> x2s,
                std::span<const double> y2s, const DrawOptions& options = {});
  void drCircle(Hdc hdc, double x, double y, double radius, const DrawOptions& options = {});
  void mFillPolygon(Hdc hdc, std::span<const double> xs, std::span<const double> ys, const DrawOptions& options = {});
  // Text with its top left at (x, y) (turned about that point by the angle).
  void drText(Hdc hdc, double x, double y, std::string_view text, const TextOptions& options = {});
  void clipBox(Hdc hdc, double x1, double y1, double x2, double y2);
  void clipOff(Hdc hdc);
  void pageChange(Hdc hdc);

  // Width and height of a text in the surface's user scale (0 for an unknown handle).
  double TextWidth(Hdc hdc, std::string_view text, const std::optional<FontSpec>& font = {});
  double TextHeight(Hdc hdc, const std::optional<FontSpec>& font = {});

  struct Entry;

 private:
  Entry* Find(Hdc hdc);
  void Draw(int code, Hdc hdc, std::span<const double> xs, std::span<const double> ys, const DrawOptions& options,
            bool solidFill);

  std::vector<std::unique_ptr<Entry>> entries_;
};

}  // namespace velmora::graph
