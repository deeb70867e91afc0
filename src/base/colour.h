#pragma once
// Colours as the settings files and the drawing code hold them: one 32-bit value 0xBBGGRR.
#include <cstdint>
#include <string>
#include <string_view>

namespace velmora {

using Colour = std::uint32_t;  // 0xBBGGRR

struct ColourParts {
  int Red = 0;
  int Green = 0;
  int Blue = 0;
  friend bool operator==(const ColourParts&, const ColourParts&) = default;
};

// 0xBBGGRR from three bytes 0..255 (values outside are clamped).
Colour MakeColour(int red, int green, int blue);
// The three bytes of a 0xBBGGRR value.
ColourParts uColourSplit(Colour colour);

// "r,g,b" as the settings files write it: blanks around each part are ignored, and a part that is
// missing or not a number counts as 255 ("10,20" is red 10, green 20, blue 255).
Colour ParseColourText(std::string_view text);
// The parts joined with `separator` ("255, 0, 255" with ", ").
std::string ColourText(Colour colour, std::string_view separator);

}  // namespace velmora
