#pragma once
// A chart as a file: the same drawing onto a picture saved as PNG, an SVG metafile or a one-page PDF.
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>

#include "graph/draw_devices.h"

namespace velmora::graph {

enum class ChartFormat { Png, Svg, Pdf };

std::optional<ChartFormat> ParseChartFormat(std::string_view text);
const char* ExtensionOf(ChartFormat format);  // ".png", ".svg", ".pdf"

// Draws onto a white surface of width x height pixels (1/96 inch; the user scale is pixels, y down).
using ChartDrawing = std::function<void(DrawDevices& devices, Hdc hdc, const DrawSurface& surface)>;

// The file is written whole or not at all; `dpi` sets the resolution of a PNG. Raises LegacyError
// naming the file when it cannot be written.
void RenderChart(ChartFormat format, const std::filesystem::path& file, int width, int height, double dpi,
                 const ChartDrawing& draw);

}  // namespace velmora::graph
