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
  std::string_view Name;  // empty for the second A4 code ("A4 small")
};

// A0..A5 and the JIS B series.
constexpr std::array<PaperEntry, 12> kPapers{{{267, 841, 1189, "A0"},
                                              {268, 594, 841, "A1"},
                                              {66, 420, 594, "A2"},
                                              {8, 297, 420, "A3"},
                                              {9, 210, 297, "A4"},
                                              {10, 210, 297, ""},
                                              {11, 148, 210, "A5"},
                                              {270, 728, 1030, "B1"},
                                              {271, 515, 728, "B2"},
                                              {269, 364, 515, "B3"},
                                              {12, 257, 364, "B4"},
                                              {13, 182, 257, "B5"}}};

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

std::optional<int> PaperCodeOf(std::string_view name) {
  for (const PaperEntry& paper : kPapers)
    if (!paper.Name.empty() && paper.Name == name) return paper.Code;
  return std::nullopt;
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
