// The metafile target: an SVG document whose paths come from the same cairo path building as the
// other targets, and whose texts are <text> elements, so a reader of the file finds them as text.
#include <fmt/format.h>

#include <cmath>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "base/legacy_error.h"
#include "base/text_encoding.h"
#include "graph/painter.h"

namespace velmora::graph {
namespace {

std::string Rgb(Colour colour) {
  const ColourParts parts = uColourSplit(colour);
  return fmt::format("#{:02x}{:02x}{:02x}", parts.Red, parts.Green, parts.Blue);
}

std::string Escaped(std::string_view text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default: out += c;
    }
  }
  return out;
}

std::string PathData(cairo_path_t* path) {
  std::string d;
  for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
    const cairo_path_data_t* data = &path->data[i];
    switch (data->header.type) {
      case CAIRO_PATH_MOVE_TO: d += fmt::format("M{:g} {:g}", data[1].point.x, data[1].point.y); break;
      case CAIRO_PATH_LINE_TO: d += fmt::format("L{:g} {:g}", data[1].point.x, data[1].point.y); break;
      case CAIRO_PATH_CURVE_TO:
        d += fmt::format("C{:g} {:g} {:g} {:g} {:g} {:g}", data[1].point.x, data[1].point.y, data[2].point.x,
                         data[2].point.y, data[3].point.x, data[3].point.y);
        break;
      case CAIRO_PATH_CLOSE_PATH: d += 'Z'; break;
    }
  }
  return d;
}

const char* BlendFor(int mode) {
  switch (mode) {
    case 6:
    case 7: return "difference";
    case 9: return "multiply";
    case 15: return "lighten";
    default: return nullptr;
  }
}

class SvgPainter : public Painter {
 public:
  SvgPainter(std::filesystem::path file, int width, int height) : file_(std::move(file)), width_(width), height_(height) {
    scratch_ = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cr_ = cairo_create(scratch_);
  }
  ~SvgPainter() override {
    cairo_destroy(cr_);
    cairo_surface_destroy(scratch_);
  }

  cairo_t* PathContext() override { return cr_; }

  void Paint(const Pen& pen, const Brush& brush, const std::optional<PixelRect>& clip) override {
    cairo_path_t* path = cairo_copy_path(cr_);
    cairo_new_path(cr_);
    std::string element = fmt::format("<path d=\"{}\"", PathData(path));
    cairo_path_destroy(path);
    Colour penColour = pen.Color;
    if (pen.Mode == 1) penColour = 0x000000;
    if (pen.Mode == 16 || pen.Mode == 6) penColour = 0xFFFFFF;
    if (brush.Type == Brush::Kind::Solid) {
      element += fmt::format(" fill=\"{}\"", Rgb(brush.Color));
    } else if (brush.Type == Brush::Kind::Hatch) {
      element += fmt::format(" fill=\"url(#{})\"", HatchId(brush.Hatch, brush.Color));
    } else {
      element += " fill=\"none\"";
    }
    if (pen.Style == 5) {
      element += " stroke=\"none\"";
    } else {
      element += fmt::format(" stroke=\"{}\" stroke-width=\"{:g}\"", Rgb(penColour), pen.Width);
      const std::vector<double> dashes = DashesOf(pen.Style, pen.Width);
      if (!dashes.empty()) element += fmt::format(" stroke-dasharray=\"{}\"", fmt::join(dashes, ","));
    }
    if (const char* blend = BlendFor(pen.Mode)) element += fmt::format(" style=\"mix-blend-mode:{}\"", blend);
    body_ += Clipped(element + "/>", clip);
  }

  void Text(const TextRun& run, const std::optional<PixelRect>& clip) override {
    const double ascent = SelectRunFont(cr_, run);
    std::string decoration;
    if (run.Underline) decoration += " underline";
    if (run.Strikethrough) decoration += " line-through";
    std::string element = fmt::format(
        "<text x=\"{:g}\" y=\"{:g}\" font-family=\"{}\" font-size=\"{:g}\" fill=\"{}\"", run.X, run.Y + ascent,
        Escaped(run.Family), run.PixelSize, Rgb(run.Color));
    if (run.Bold) element += " font-weight=\"bold\"";
    if (run.Italic) element += " font-style=\"italic\"";
    if (!decoration.empty()) element += fmt::format(" text-decoration=\"{}\"", decoration.substr(1));
    if (run.Angle != 0) element += fmt::format(" transform=\"rotate({:g} {:g} {:g})\"", -run.Angle, run.X, run.Y);
    body_ += Clipped(fmt::format("{}>{}</text>", element, Escaped(run.Text)), clip);
  }

  // An SVG document has one page; the later pages of a printer do not come here.
  void NewPage() override {}

  void Finish() override {
    std::string document = fmt::format(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}px\" "
        "height=\"{1}px\" viewBox=\"0 0 {0} {1}\">\n<defs>\n{2}</defs>\n{3}</svg>\n",
        width_, height_, defs_, body_);
    WriteFileBytesAtomically(file_, document);
  }

 private:
  std::string Clipped(const std::string& element, const std::optional<PixelRect>& clip) {
    if (!clip) return element + "\n";
    const std::string key = fmt::format("{:g},{:g},{:g},{:g}", clip->Left, clip->Top, clip->Right, clip->Bottom);
    auto [it, added] = clips_.try_emplace(key, fmt::format("clip{}", clips_.size() + 1));
    if (added)
      defs_ += fmt::format("<clipPath id=\"{}\"><rect x=\"{:g}\" y=\"{:g}\" width=\"{:g}\" height=\"{:g}\"/></clipPath>\n",
                           it->second, clip->Left, clip->Top, clip->Right - clip->Left, clip->Bottom - clip->Top);
    return fmt::format("<g clip-path=\"url(#{})\">{}</g>\n", it->second, element);
  }

  std::string HatchId(int style, Colour colour) {
    const std::string key = fmt::format("{}-{}", style, Rgb(colour));
    auto [it, added] = hatches_.try_emplace(key, fmt::format("hatch{}", hatches_.size() + 1));
    if (added) {
      std::string cells;
      for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
          if (HatchPixel(style, x, y)) cells += fmt::format("M{} {}h1v1h-1Z", x, y);
      defs_ += fmt::format(
          "<pattern id=\"{}\" width=\"8\" height=\"8\" patternUnits=\"userSpaceOnUse\"><path d=\"{}\" fill=\"{}\"/>"
          "</pattern>\n",
          it->second, cells, Rgb(colour));
    }
    return it->second;
  }

  std::filesystem::path file_;
  int width_;
  int height_;
  cairo_surface_t* scratch_;
  cairo_t* cr_;
  std::string defs_;
  std::string body_;
  std::map<std::string, std::string> clips_;
  std::map<std::string, std::string> hatches_;
};

}  // namespace

std::unique_ptr<Painter> MakeSvgPainter(std::filesystem::path file, int width, int height) {
  return std::make_unique<SvgPainter>(std::move(file), width, height);
}

}  // namespace velmora::graph
