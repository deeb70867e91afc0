#pragma once
// The program's start-up with its shipped settings in a private scratch tree, the workbench loaded
// and the window over it, shown on no screen; the interaction records every text and answers from
// its script.
#include <gtest/gtest.h>

#include <QApplication>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/startup.h"
#include "gui/qt_app.h"
#include "main_window.h"
#include "support/test_support.h"

namespace velmora::gui {

class WindowFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    TestApplication();
    StartUpOptions options;
    options.AppPathOverride = VELMORA_BIN_DIR;
    options.ScratchRoot = (scratch / "user").string();
    start = StartUp(session, options);
    ASSERT_TRUE(start.MayGoOn);
    bench.FormLoad();
    window = std::make_unique<MainWindow>(bench);
    window->show();
    ui.Log.clear();
  }

  static std::vector<std::string> Examples() {
    const auto dir = testing::SourceDir() / "examples";
    return {(dir / "road_a_kp.erd").string(), (dir / "road_b.erd").string(), (dir / "road_c_rough.erd").string()};
  }
  bool AddExamples() { return window->AddFiles(Examples()); }

  // Runs `open` (which shows a modal dialog) and `drive` on that dialog once it is up.
  template <class Dialog>
  static void WithModal(const std::function<void()>& open, const std::function<void(Dialog&)>& drive) {
    bool driven = false;
    QTimer::singleShot(0, [&] {
      QWidget* modal = QApplication::activeModalWidget();
      auto* dialog = dynamic_cast<Dialog*>(modal);
      if (dialog == nullptr) {
        ADD_FAILURE() << "not the dialog expected";
        if (modal != nullptr) modal->close();  // so that the test ends
        return;
      }
      driven = true;
      drive(*dialog);
    });
    open();
    EXPECT_TRUE(driven);
  }

  testing::TempDir scratch;
  testing::ScriptedUi ui;
  Session session{ui};
  StartUpResult start;
  workbench::Workbench bench{session};
  std::unique_ptr<MainWindow> window;
};

}  // namespace velmora::gui
