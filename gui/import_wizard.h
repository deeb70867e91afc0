#pragma once
// frmImport on the desktop, "テキスト ファイル ウィザード": the delimiters, the heading line, the pitch
// and the range over a live preview of the split file; 完了 checks the boxes and imports through the
// workbench, one profile per column.
#include <QCheckBox>
#include <QCoreApplication>
#include <QDialog>
#include <QLineEdit>
#include <QTableWidget>

#include <array>
#include <string>

#include "profile/text_import.h"
#include "profile_edits.h"
#include "workbench/workbench.h"

namespace velmora::gui {

class ImportWizard final : public QDialog {
  Q_DECLARE_TR_FUNCTIONS(ImportWizard)

 public:
  // The file's preview is read at once; check Readable() before showing the wizard.
  ImportWizard(workbench::Workbench& bench, std::string file, ListChange changeList, QWidget* parent = nullptr);

  // False when the file could not be read (the interaction has said so, naming it).
  bool Readable() const { return readable_; }
  const ImportPreview& Preview() const { return preview_; }
  // 完了: the check (its message, the focus on the failing box), then the import; closes when profiles
  // were registered. The files written.
  std::vector<std::string> Finish();
  // 初期化: the wizard's settings back to their defaults.
  void Initialise();

 private:
  QWidget* DelimiterBoxes();
  QWidget* RangeBoxes();
  void Show(const ImportOptions& options);
  ImportOptions Take() const;
  void RefreshPreview();

  workbench::Workbench& bench_;
  std::string file_;
  ListChange changeList_;
  ImportPreview preview_;
  bool readable_ = true;
  bool filling_ = false;
  std::array<QCheckBox*, 5> delimiters_{};  // chk区切文字: カンマ, タブ, セミコロン, スペース, その他
  QLineEdit* otherText_ = nullptr;          // txtSep
  QCheckBox* header_ = nullptr;             // chkHeader
  QCheckBox* titleFromHeader_ = nullptr;  // chkタイトル使用
  std::array<QLineEdit*, 5> boxes_{};     // txt緒元: pitch, first and last row, first and last column
  QTableWidget* grid_ = nullptr;          // ss
};

// Opens the wizard modally for one file; true when its profiles were registered.
bool RunImportWizard(workbench::Workbench& bench, const std::string& file, const ListChange& changeList,
                     QWidget* parent);

}  // namespace velmora::gui
