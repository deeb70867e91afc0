#include "project_menu.h"

#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

#include <ctime>

#include "workbench/make_result_files.h"
#include "qt_interaction.h"
#include "workbench/project_commands.h"

namespace velmora::gui {
namespace {

using workbench::ExportRequest;
namespace tab = workbench::tab;

// The captions of mnuFileSub by index; empty ones are separators.
constexpr const char* kFileMenu[] = {QT_TRANSLATE_NOOP("ProjectMenu", "新規作成"), QT_TRANSLATE_NOOP("ProjectMenu", "開く"),
                                     QT_TRANSLATE_NOOP("ProjectMenu", "上書保存"), QT_TRANSLATE_NOOP("ProjectMenu", "別名保存"),
                                     "",
                                     QT_TRANSLATE_NOOP("ProjectMenu", "リネーム"), QT_TRANSLATE_NOOP("ProjectMenu", "コピー"),
                                     "",
                                     QT_TRANSLATE_NOOP("ProjectMenu", "削除"),
                                     "",
                                     QT_TRANSLATE_NOOP("ProjectMenu", "終了")};
constexpr int kExitItem = 10;

// A menu caption marked for translation, in the language in force.
QString MenuText(const char* text) { return QCoreApplication::translate("ProjectMenu", text); }

void RunProjectCommand(MainWindow& window, workbench::Workbench& bench, int command) {
  // New, open and delete put another project in place of the lists' one.
  const bool replaces = command == workbench::kProjectNew || command == workbench::kProjectOpen ||
                        command == workbench::kProjectDelete;
  if (replaces) window.ReplaceProject([&] { workbench::cmdProject(bench, command); });
  else workbench::cmdProject(bench, command);
  window.setWindowTitle(DialogText(bench.WindowTitle));
}

void AddFileMenu(MainWindow& window, workbench::Workbench& bench) {
  QMenu* menu = window.menuBar()->addMenu(QCoreApplication::translate("ProjectMenu", "プロジェクト"));
  menu->setObjectName("mnuFile");
  std::vector<std::pair<QAction*, int>> commands;
  for (int item = 0; item < static_cast<int>(std::size(kFileMenu)); ++item) {
    if (*kFileMenu[item] == '\0') {
      menu->addSeparator();
      continue;
    }
    QAction* action = menu->addAction(MenuText(kFileMenu[item]));
    action->setObjectName(QString("mnuFileSub%1").arg(item));
    if (item == kExitItem) {
      QObject::connect(action, &QAction::triggered, &window, &QWidget::close);
      continue;
    }
    commands.emplace_back(action, workbench::ProjectCommandOfMenu(item));
  }
  // 別名保存 to 削除 need a project file.
  const auto follow = [&bench, commands] {
    for (const auto& [action, command] : commands)
      action->setEnabled(command < workbench::kProjectSaveAs || bench.ProjectCommandEnabled[static_cast<std::size_t>(command)]);
  };
  for (const auto& [action, command] : commands)
    QObject::connect(action, &QAction::triggered, &window, [&window, &bench, command, follow] {
      RunProjectCommand(window, bench, command);
      follow();
    });
  QObject::connect(menu, &QMenu::aboutToShow, menu, follow);
  follow();
}

struct ExportItem {
  const char* Caption;
  ExportKind Kind;
  int Tab;  // whose list selection names the profiles
  bool Erd = false;
  int Interval = 10;
};

void AddExportMenu(MainWindow& window, workbench::Workbench& bench) {
  static const ExportItem kItems[] = {
      {QT_TRANSLATE_NOOP("ProjectMenu", "フィルター処理 (CSV)"), ExportKind::Profile, tab::Filter},
      {QT_TRANSLATE_NOOP("ProjectMenu", "フィルター処理 (ERD)"), ExportKind::Profile, tab::Filter, true},
      {QT_TRANSLATE_NOOP("ProjectMenu", "プロファイル分解 (CSV)"), ExportKind::OctaveAll, tab::Octave},
      {QT_TRANSLATE_NOOP("ProjectMenu", "バンド別低減 (CSV)"), ExportKind::BandAll, tab::BandReduction},
      {"PSD (CSV)", ExportKind::PsdRaw, tab::Psd},
      {QT_TRANSLATE_NOOP("ProjectMenu", "IRI 全区間 (CSV)"), ExportKind::IriWhole, tab::Iri},
      {QT_TRANSLATE_NOOP("ProjectMenu", "IRI 10m連続 (CSV)"), ExportKind::IriContinuous, tab::Iri},
      {QT_TRANSLATE_NOOP("ProjectMenu", "IRI 10m固定 (CSV)"), ExportKind::IriFixed, tab::Iri, false, 10},
      {QT_TRANSLATE_NOOP("ProjectMenu", "IRI 100m固定 (CSV)"), ExportKind::IriFixed, tab::Iri, false, 100},
      {QT_TRANSLATE_NOOP("ProjectMenu", "IRI 200m固定 (CSV)"), ExportKind::IriFixed, tab::Iri, false, 200},
  };
  QMenu* menu = window.menuBar()->addMenu(QCoreApplication::translate("ProjectMenu", "ファイル出力"));
  menu->setObjectName("mnuExport");
  for (const ExportItem& item : kItems) {
    QAction* action = menu->addAction(MenuText(item.Caption));
    QObject::connect(action, &QAction::triggered, &window, [&bench, &item] {
      ExportRequest request;
      request.Kind = item.Kind;
      request.Erd = item.Erd;
      request.Tab = item.Tab;
      request.Options.Interval = item.Interval;
      const std::time_t now = std::time(nullptr);
      std::tm local{};
      localtime_r(&now, &local);
      workbench::MakeResultFiles(bench, request, local);
    });
  }
}

}  // namespace

void AddProjectMenu(MainWindow& window, workbench::Workbench& bench) {
  AddFileMenu(window, bench);
  AddExportMenu(window, bench);
}

}  // namespace velmora::gui
