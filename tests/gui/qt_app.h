#pragma once
// The one application object of the window tests, made on first use; the window never needs a display.
#include <QApplication>

namespace velmora::gui {

inline QApplication& TestApplication() {
  static int argc = 1;
  static char name[] = "test_gui";
  static char* argv[] = {name, nullptr};
  static QApplication* app = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(argc, argv);
  }();
  return *app;
}

}  // namespace velmora::gui
