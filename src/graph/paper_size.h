#pragma once
// The printer: a paper size code and orientation, a PDF file its pages go to, and the surface in
// millimetres that print forms draw on.
#include <filesystem>
#include <optional>
#include <string_view>

#include "graph/draw_surface.h"

namespace velmora::graph {

inline constexpr int kPaperA4 = 9;
inline constexpr int kPortrait = 1;
inline constexpr int kLandscape = 2;

struct PrinterTarget {
  std::filesystem::path OutputFile;  // the PDF the pages go to
  int PaperSize = kPaperA4;          // the platform's paper size code
  int Orientation = kPortrait;
  DrawSurface Surface;               // set by PreparePrinter
};

// Short and long side (mm) of a paper size code; false, both 0, for a code not in the table.
bool PaperSizeTable(int code, double& shortSide, double& longSide);

// The paper size code of a sheet name, "A0".."A5" or "B1".."B5" (JIS B); nullopt for another name.
std::optional<int> PaperCodeOf(std::string_view name);

// The sheet's width and height in mm for the printer's paper and orientation (landscape swaps them).
void GetPaperSize(const PrinterTarget& printer, double& width, double& height);

// Sets the printer's surface to the whole sheet in millimetres, origin at the top left; false (and
// nothing set) for an unknown paper size.
bool PreparePrinter(PrinterTarget& printer);

}  // namespace velmora::graph
