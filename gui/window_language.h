#pragma once
// The window speaks the language the command line would choose (base/language.h): the engine's texts
// through its gettext catalogue, the window's own texts through the Qt translation built into the
// program (gui/translations, source language Japanese).
#include "base/language.h"

namespace velmora::gui {

// Puts `language` in force for both, on the running application: for English the window's
// translation is installed, for Japanese the window keeps its own texts. Call it before the window
// is made; a later call replaces the earlier choice. False when the built-in translation cannot be
// loaded (the window then stays Japanese).
bool UseWindowLanguage(Language language);

}  // namespace velmora::gui
