// velmora-gui: the workbench in a desktop window. With --screenshots FOLDER FILE... it registers the
// files, writes a picture of each tab after its Go and ends, without showing a dialog
// (--report-template X.xlsm: the report tab's picture shows that template's parameters).
#include <QApplication>
#include <QStringList>
#include <QTemporaryDir>

#include <iostream>
#include <string_view>

#include "base/memory_tunables.h"
#include "base/startup.h"
#include "dialog_shots.h"
#include "main_window.h"
#include "qt_interaction.h"
#include "screenshots.h"
#include "window_language.h"

namespace {

struct Arguments {
  std::string CommandLine;  // what start-up reads (SWDEBUG)
  QString ScreenshotFolder;
  QString ReportTemplate;
  std::vector<std::string> Files;
};

Arguments Parse(const QStringList& words) {
  Arguments arguments;
  for (qsizetype i = 1; i < words.size(); ++i) {
    if (words[i] == "--screenshots" && i + 1 < words.size()) arguments.ScreenshotFolder = words[++i];
    else if (words[i] == "--report-template" && i + 1 < words.size()) arguments.ReportTemplate = words[++i];
    else if (words[i].startsWith("-") || words[i] == "SWDEBUG") arguments.CommandLine += words[i].toStdString() + " ";
    else arguments.Files.push_back(words[i].toStdString());
  }
  return arguments;
}

}  // namespace

int main(int argc, char** argv) {
  velmora::RestartWithMallocTunables(argv);
  // Pictures need no screen: without a platform chosen they are drawn offscreen.
  for (int i = 1; i < argc; ++i)
    if (std::string_view(argv[i]) == "--screenshots" && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
      qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  // The language of the locale, as the command line chooses it (the window's texts and the engine's).
  if (!velmora::gui::UseWindowLanguage(velmora::ChooseLanguage()))
    std::cerr << "velmora-gui: the English translation of the window cannot be loaded\n";
  const Arguments arguments = Parse(QApplication::arguments());
  const bool shots = !arguments.ScreenshotFolder.isEmpty();

  velmora::gui::QtInteraction dialogs;
  velmora::Session session;
  // Pictures are made unattended: messages go to stderr and questions take their defaults.
  if (!shots) session.SetUi(dialogs);
  velmora::StartUpOptions options;
  options.CommandLine = arguments.CommandLine;
  // The desktop program owns the user's scratch tree; a picture run uses a private one beside it.
  options.SingleInstance = !shots;
  QTemporaryDir scratch;
  if (shots) options.ScratchRoot = scratch.path().toStdString();
  velmora::StartUpResult start = velmora::StartUp(session, options);
  if (!start.MayGoOn) return 1;

  velmora::workbench::Workbench bench(session);
  bench.FormLoad();
  velmora::gui::MainWindow window(bench);
  dialogs.SetParentWindow(&window);
  window.show();
  const bool added = arguments.Files.empty() || window.AddFiles(arguments.Files);
  if (!shots) return QApplication::exec();
  if (!added) return 1;  // the file and what is wrong with it have been said

  QString error;
  QStringList written = velmora::gui::WriteScreenshots(window, arguments.ScreenshotFolder, arguments.ReportTemplate, error);
  if (!written.isEmpty()) {
    const QStringList dialogs = velmora::gui::WriteDialogScreenshots(window, bench, arguments.ScreenshotFolder, error);
    written = dialogs.isEmpty() ? QStringList() : written + dialogs;
  }
  if (written.isEmpty()) {
    std::cerr << error.toStdString() << '\n';
    return 1;
  }
  for (const QString& path : written) std::cout << path.toStdString() << '\n';
  return 0;
}
