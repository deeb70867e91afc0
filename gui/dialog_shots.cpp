#include "dialog_shots.h"

#include <QDir>
#include <QFile>
#include <QTabWidget>
#include <QTemporaryDir>

#include <algorithm>

#include "conditions_dialog.h"
#include "import_wizard.h"
#include "screenshots.h"
#include "tool_dialogs.h"

namespace velmora::gui {
namespace {

// The head of the registered profiles side by side, as a profiler's export would hold them.
bool WriteSampleText(const workbench::Workbench& bench, const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return false;
  constexpr std::ptrdiff_t kLines = 30;
  QStringList heading;
  for (const ProfileRecord& profile : bench.List().Items)
    heading << QString::fromStdString(ProfileList::NameOf(profile));
  file.write((heading.join(",") + "\r\n").toLatin1());
  for (std::ptrdiff_t i = 1; i <= kLines; ++i) {
    QStringList cells;
    for (const ProfileRecord& profile : bench.List().Items)
      cells << (i <= profile.Erd.Elevation.size() ? QString::number(profile.Erd.Elevation[i], 'f', 2) : QString());
    file.write((cells.join(",") + "\r\n").toLatin1());
  }
  return file.error() == QFile::NoError;
}

}  // namespace

QStringList WriteDialogScreenshots(MainWindow& window, workbench::Workbench& bench, const QString& folder,
                                   QString& error) {
  QStringList written;
  const auto shoot = [&](QWidget& dialog, const QString& name) {
    dialog.show();
    const QString path = QDir(folder).filePath("dialog_" + name + ".png");
    const bool saved = SavePng(dialog.grab(), path, error);
    dialog.hide();
    if (saved) written << path;
    return saved;
  };
  // Nothing a picture shows may reach the project.
  const ListChange untouched = [](const std::function<bool()>&) { return false; };

  // Tab 1 with one profile selected, its header in the boxes beside the list.
  window.ShowTab(workbench::tab::Profile);
  window.ListOf(workbench::tab::Profile)->selectRow(0);
  const QString header = QDir(folder).filePath("dialog_profile_header.png");
  if (!SavePng(window.grab(), header, error)) return {};
  written << header;

  ConditionsDialog conditions(bench.Session());
  ConditionsForm conditionsForm(conditions, &window);
  auto* pages = conditionsForm.findChild<QTabWidget*>("pages");
  for (int page = 0; page < pages->count(); ++page) {
    pages->setCurrentIndex(page);
    if (!shoot(conditionsForm, QString("conditions_%1").arg(page + 1))) return {};
  }

  QTemporaryDir scratch;
  const QString text = QDir(scratch.path()).filePath("profiles.csv");
  if (!scratch.isValid() || !WriteSampleText(bench, text)) {
    error = text + ": the sample text cannot be written";
    return {};
  }
  ImportWizard wizard(bench, text.toStdString(), untouched, &window);
  if (!shoot(wizard, "import")) return {};

  const char* toolNames[] = {"composite", "height_shift", "reverse", "cut_out"};
  for (int tool = 0; tool < 4; ++tool) {
    const auto dialog = MakeToolDialog(tool, bench, untouched, &window);
    dialog->Profiles()->selectAll();
    if (!shoot(*dialog, toolNames[tool])) return {};
  }
  return written;
}

}  // namespace velmora::gui
