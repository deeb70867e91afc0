#include "graph/font_choice.h"

namespace velmora::graph {

FontChoice ChooseFont(std::string_view name) {
  if (name == "Courier New") return {0, 0, 1.0, "DejaVu Sans Mono"};
  if (name == "Arial") return {kOemCharset, 18, 1.0, "DejaVu Sans"};
  if (name == "Times New Roman") return {0, 18, 1.2, "DejaVu Serif"};
  if (name == "ＭＳ ゴシック") return {kShiftJisCharset, 65, 1.0, "Noto Sans CJK JP"};
  if (name == "ＭＳ 明朝") return {kShiftJisCharset, 65, 1.0, "Noto Serif CJK JP"};
  if (name == "ＭＳ Ｐゴシック") return {kShiftJisCharset, 66, 1.0, "Noto Sans CJK JP"};
  if (name == "ＭＳ Ｐ明朝") return {kShiftJisCharset, 66, 1.0, "Noto Serif CJK JP"};
  return {kDefaultCharset, 0, 1.0, std::string(name)};
}

double FontPixelHeight(double points) {
  constexpr double kTwipsPerInch = 1440;
  constexpr double kTwipsPerPoint = kTwipsPerInch / 72;
  constexpr double kTwipsPerPixel = 15;
  return points * kTwipsPerPoint / kTwipsPerPixel;
}

}  // namespace velmora::graph
