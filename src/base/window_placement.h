#pragma once
// Where the main window stood when the program was last closed, kept in 前回値.ini beside the other
// remembered choices (section "Window": Left, Top, Width, Height in pixels, Maximized "0" or "1").
#include <optional>

#include "base/session.h"

namespace velmora {

struct WindowPlacement {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  bool Maximized = false;
};

void SaveWindowPlacement(Session& session, const WindowPlacement& placement);
// The placement written last; nullopt when none was written or a value is not a whole number, or the
// size is not positive: the window then takes its own default.
std::optional<WindowPlacement> LoadWindowPlacement(Session& session);

}  // namespace velmora
