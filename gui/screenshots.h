#pragma once
// Pictures of the window for the documentation: each tab after its Go on the profiles registered.
#include <QString>

#include "main_window.h"

namespace velmora::gui {

// Writes the picture as a PNG file, whole or not at all; false with the reason in `error`.
bool SavePng(const QPixmap& picture, const QString& path, QString& error);

// Enters each tab in turn, runs its Go (the PSD tab computes on entry, the print tab shows its
// preview, the report tab reads `reportTemplate` when one is named) and writes the window as
// "<folder>/<nn>_<tab>.png", each file whole or not at all. The files written, or an empty list
// with the reason in `error`.
QStringList WriteScreenshots(MainWindow& window, const QString& folder, const QString& reportTemplate, QString& error);

}  // namespace velmora::gui
