#pragma once
// The desktop program as a test starts it: its shipped settings, a private user-local tree that
// outlives one run (so that a second run finds what the first kept), the workbench and the window
// over it, and an interaction that records every text and answers from a script.
#include <QAction>
#include <QApplication>
#include <QMenuBar>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>

#include "base/startup.h"
#include "gui/qt_app.h"
#include "main_window.h"
#include "support/checks.h"
#include "support/test_support.h"

namespace velmora::gui {

// One run of the program over the user-local tree `root`.
struct ProgramRun {
  ProgramRun(testing::ScriptedUi& ui, const std::filesystem::path& root) : session(ui) {
    TestApplication();
    StartUpOptions options;
    options.AppPathOverride = VELMORA_BIN_DIR;
    options.ScratchRoot = root.string();
    start = StartUp(session, options);
    bench.FormLoad();
    window = std::make_unique<MainWindow>(bench);
    window->show();
  }
  // The window's menu item by its control name (mnuFileSub3, ...).
  QAction* MenuItem(const QString& name) const { return window->menuBar()->findChild<QAction*>(name); }

  Session session;
  StartUpResult start;
  workbench::Workbench bench{session};
  std::unique_ptr<MainWindow> window;
};

class ProgramTest : public ::testing::Test {
 protected:
  void SetUp() override {
    run = std::make_unique<ProgramRun>(ui, scratch / "user");
    ASSERT_TRUE(run->start.MayGoOn);
    ui.Log.clear();
  }

  // The run closed (its close question answered Yes) and a new one started over the same tree.
  void Restart() {
    ui.Answers.push_back(MsgAnswer::Yes);
    ASSERT_TRUE(run->window->close());
    run.reset();
    run = std::make_unique<ProgramRun>(ui, scratch / "user");
    ASSERT_TRUE(run->start.MayGoOn);
    ui.Log.clear();
  }

  // An ERD file of one channel at `pitch` m with the given elevations (mm), as profilers write them.
  std::string WriteErd(const std::string& name, double pitch, const std::vector<double>& elevations) const {
    std::ostringstream text;
    text << "ERDFILEV2.00\r\n"
         << "      1, " << elevations.size() << ", " << elevations.size() << ",      1,      5, " << pitch
         << "    ,     -1,\r\nTITLE   " << name
         << "\r\nSHORTNAMRElev.\r\nLONGNAMEElevation\r\nUNITSNAMmm\r\nGENNAME Elevation\r\nXLABEL  Distance\r\n"
            "XUNITS  m\r\nFORMAT  (G14.6)\r\nEND\r\n";
    for (double value : elevations) text << value << " \r\n";
    const auto path = scratch / (name + ".erd");
    std::ofstream(path, std::ios::binary) << text.str();
    return path.string();
  }

  static std::vector<std::string> Examples() {
    const auto dir = testing::SourceDir() / "examples";
    return {(dir / "road_a_kp.erd").string(), (dir / "road_b.erd").string(), (dir / "road_c_rough.erd").string()};
  }

  // The names in the window's profile list, top to bottom.
  std::vector<std::string> ListedNames() const {
    const QAbstractItemModel* model = run->window->ListOf(workbench::tab::Profile)->model();
    std::vector<std::string> names;
    for (int r = 0; r < model->rowCount(); ++r) names.push_back(model->index(r, 0).data().toString().toStdString());
    return names;
  }

  testing::TempDir scratch;
  testing::ScriptedUi ui;
  std::unique_ptr<ProgramRun> run;
};

}  // namespace velmora::gui
