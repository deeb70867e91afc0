#pragma once
// How a font name of the charts becomes a font: the character set and pitch the name asks for, the
// size factor, and the installed family that draws it (the Japanese faces by Noto CJK).
#include <string>
#include <string_view>

namespace velmora::graph {

inline constexpr int kDefaultCharset = 1;  // DEFAULT_CHARSET
inline constexpr int kOemCharset = 255;
inline constexpr int kShiftJisCharset = 128;

struct FontChoice {
  int Charset = 0;          // 0 (ANSI) where the platform's default is taken
  int PitchAndFamily = 0;   // 0: as the platform chooses
  double SizeFactor = 1.0;
  std::string Family;       // the family drawn with
};

FontChoice ChooseFont(std::string_view name);

// Font height in pixels for a size in points: 1440 twips per inch over 15 twips per pixel.
double FontPixelHeight(double points);

}  // namespace velmora::graph
