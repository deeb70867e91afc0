#include "graph/paper_size.h"

#include <array>
#include <cmath>
#include <utility>

namespace velmora::graph {
namespace {

struct PaperEntry {
  int Code;
  double Short;
  double Long;
};

// A0..A5 and the JIS B series.
constexpr std::array<PaperEntry, 12> kPapers{{{267, 841, 1189},
                                              {268, 594, 841},
                                              {66, 420, 594},
                                              {8, 297, 420},
                                              {9, 210, 297},
                                              {10, 210, 297},
                                              {11, 148, 210},
                                              {270, 728, 1030},
                                              {271, 515, 728},
                                              {269, 364, 515},
                                              {12, 257, 364},
                                              {13, 182, 257}}};

constexpr double kMillimetresPerInch = 25.4;

}  // namespace

bool PaperSizeTable(int code, double& shortSide, double& longSide) {
  for (const PaperEntry& paper : kPapers) {
    if (paper.Code == code) {
      shortSide = paper.Short;
      longSide = paper.Long;
      return true;
    }
  }
  shortSide = 0;
  longSide = 0;
  return false;
}

void GetPaperSize(const PrinterTarget& printer, double& width, double& height) {
  PaperSizeTable(printer.PaperSize, width, height);
  if (printer.Orientation == kLandscape) std::swap(width, height);
}

bool PreparePrinter(PrinterTarget& printer) {
  double width = 0;
  double height = 0;
  GetPaperSize(printer, width, height);
  if (width <= 0) return false;
  DrawSurface& surface = printer.Surface;
  surface.PixelWidth = static_cast<int>(std::lround(width / kMillimetresPerInch * kPixelsPerInch));
  surface.PixelHeight = static_cast<int>(std::lround(height / kMillimetresPerInch * kPixelsPerInch));
  surface.Scale(0, 0, width, height);
  surface.Mode = ScaleMode::Millimetre;
  return true;
}

}  // namespace velmora::graph
