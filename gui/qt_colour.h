#pragma once
// The program's colours (0xBBGGRR) as Qt's and back.
#include <QColor>

#include "base/colour.h"

namespace velmora::gui {

inline QColor QtColour(Colour colour) {
  const ColourParts parts = uColourSplit(colour);
  return QColor(parts.Red, parts.Green, parts.Blue);
}

inline Colour ProgramColour(const QColor& colour) { return MakeColour(colour.red(), colour.green(), colour.blue()); }

}  // namespace velmora::gui
