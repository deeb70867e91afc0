#include "base/colour.h"

#include <algorithm>
#include <cmath>

#include "base/common.h"

namespace velmora {

Colour MakeColour(int red, int green, int blue) {
  auto byte = [](int v) { return static_cast<Colour>(std::clamp(v, 0, 255)); };
  return byte(red) | (byte(green) << 8) | (byte(blue) << 16);
}

ColourParts uColourSplit(Colour colour) {
  return {static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
          static_cast<int>((colour >> 16) & 0xFF)};
}

Colour ParseColourText(std::string_view text) {
  const auto tokens = uToken(TrimAll(text), ",", 3);
  int parts[3] = {255, 255, 255};
  for (std::size_t i = 0; i < 3; ++i) {
    const auto value = ParseNumber(tokens[i]);
    // Clamped rather than raised: a colour slightly out of range is still the colour meant.
    if (value && std::isfinite(*value)) parts[i] = static_cast<int>(std::clamp(std::nearbyint(*value), 0.0, 255.0));
  }
  return MakeColour(parts[0], parts[1], parts[2]);
}

std::string ColourText(Colour colour, std::string_view separator) {
  const ColourParts p = uColourSplit(colour);
  std::string out = std::to_string(p.Red);
  out.append(separator).append(std::to_string(p.Green)).append(separator).append(std::to_string(p.Blue));
  return out;
}

}  // namespace velmora
