#include "graph/chart_output.h"

namespace velmora::graph {

std::optional<ChartFormat> ParseChartFormat(std::string_view text) {
  if (text == "png") return ChartFormat::Png;
  if (text == "svg") return ChartFormat::Svg;
  if (text == "pdf") return ChartFormat::Pdf;
  return std::nullopt;
}

const char* ExtensionOf(ChartFormat format) {
  switch (format) {
    case ChartFormat::Png: return ".png";
    case ChartFormat::Svg: return ".svg";
    case ChartFormat::Pdf: return ".pdf";
  }
  return "";
}

void RenderChart(ChartFormat format, const std::filesystem::path& file, int width, int height, double dpi,
                 const ChartDrawing& draw) {
  Picture picture(width, height, format == ChartFormat::Png ? dpi : kPixelsPerInch);
  DrawDevices devices;
  PrinterTarget page;
  const DrawSurface* surface = &picture.Surface;
  Hdc hdc = 0;
  switch (format) {
    case ChartFormat::Png: hdc = devices.regHDCPicture(picture); break;
    case ChartFormat::Svg: hdc = devices.regHDCMetaFile(file, picture.Surface); break;
    case ChartFormat::Pdf:
      page.OutputFile = file;
      page.Surface = picture.Surface;
      surface = &page.Surface;
      hdc = devices.regHDCPrinter(page);
      break;
  }
  // The vector targets start transparent; the picture starts white. Paint them alike.
  devices.flBox(hdc, 0, 0, width, height, {.Style = 5, .Fill = kWhite});
  draw(devices, hdc, *surface);
  devices.releaseHDC(hdc);
  if (format == ChartFormat::Png) picture.SavePng(file);
}

}  // namespace velmora::graph
