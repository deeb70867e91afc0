#pragma once
// Pictures of the window's dialogs for the documentation, drawn without a screen: the conditions,
// the text import wizard over a sample of the registered profiles, and the four profile tools.
#include <QString>
#include <QStringList>

#include "main_window.h"

namespace velmora::gui {

// Writes "<folder>/dialog_<name>.png" for each dialog; the files written, or an empty list with the
// reason in `error`. Nothing is stored or registered.
QStringList WriteDialogScreenshots(MainWindow& window, workbench::Workbench& bench, const QString& folder,
                                   QString& error);

}  // namespace velmora::gui
