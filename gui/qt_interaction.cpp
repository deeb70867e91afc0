#include "qt_interaction.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QStringList>

#include "base/language.h"

namespace velmora::gui {
namespace {

QString Q(const std::string& text) { return QString::fromStdString(text); }
std::string S(const QString& text) { return text.toStdString(); }

QMessageBox::Icon IconOf(MsgIcon icon) {
  switch (icon) {
    case MsgIcon::Information: return QMessageBox::Information;
    case MsgIcon::Exclamation: return QMessageBox::Warning;
    case MsgIcon::Question: return QMessageBox::Question;
    case MsgIcon::Critical: return QMessageBox::Critical;
    case MsgIcon::None: break;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons ButtonsOf(MsgButtons buttons) {
  switch (buttons) {
    case MsgButtons::Ok: return QMessageBox::Ok;
    case MsgButtons::OkCancel: return QMessageBox::Ok | QMessageBox::Cancel;
    case MsgButtons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case MsgButtons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

QMessageBox::StandardButton ButtonOf(MsgAnswer answer) {
  switch (answer) {
    case MsgAnswer::Ok: return QMessageBox::Ok;
    case MsgAnswer::Cancel: return QMessageBox::Cancel;
    case MsgAnswer::Yes: return QMessageBox::Yes;
    case MsgAnswer::No: return QMessageBox::No;
  }
  return QMessageBox::NoButton;
}

// Closing the box with Esc or its title bar counts as its cancelling button.
MsgAnswer AnswerOf(int button, MsgButtons buttons) {
  switch (button) {
    case QMessageBox::Ok: return MsgAnswer::Ok;
    case QMessageBox::Yes: return MsgAnswer::Yes;
    case QMessageBox::No: return MsgAnswer::No;
    case QMessageBox::Cancel: return MsgAnswer::Cancel;
    default: break;
  }
  return buttons == MsgButtons::YesNo ? MsgAnswer::No : buttons == MsgButtons::Ok ? MsgAnswer::Ok : MsgAnswer::Cancel;
}

}  // namespace

QString QtNameFilter(const std::string& filter) {
  const QStringList parts = Q(filter).split('|');
  QStringList filters;
  for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
    // Qt takes the patterns from the brackets at the end, separated by spaces: they are made anew.
    QString description = parts[i].trimmed();
    if (description.endsWith(')') && description.contains('('))
      description = description.left(description.lastIndexOf('(')).trimmed();
    description = DialogText(S(description));
    const QString patterns = QString(parts[i + 1]).replace(';', ' ').trimmed();
    filters << description + " (" + patterns + ")";
  }
  return filters.join(";;");
}

QString DialogText(const std::string& text) {
  QStringList lines;
  std::size_t from = 0;
  while (from <= text.size()) {
    std::size_t end = text.find('\n', from);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(from, end - from);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    // The catalogue knows the lines without the blanks the program pads them with.
    const std::string bare = line.substr(0, line.find_last_not_of(' ') + 1);
    const std::string translated = bare.empty() ? bare : TrEngine(bare);
    lines << Q(translated == bare ? line : translated);
    from = end + 1;
  }
  return lines.join('\n');
}

MsgAnswer QtInteraction::Message(const std::string& text, const std::string& title, MsgIcon icon,
                                 MsgButtons buttons, MsgAnswer defaultAnswer) {
  QMessageBox box(IconOf(icon), DialogText(title), DialogText(text), ButtonsOf(buttons), parent_);
  box.setDefaultButton(ButtonOf(defaultAnswer));
  return AnswerOf(box.exec(), buttons);
}

std::optional<std::string> QtInteraction::Input(const std::string& prompt, const std::string& title,
                                                 const std::string& defaultValue) {
  bool ok = false;
  const QString value =
      QInputDialog::getText(parent_, DialogText(title), DialogText(prompt), QLineEdit::Normal, Q(defaultValue), &ok);
  if (!ok) return std::nullopt;
  return S(value);
}

std::vector<std::string> QtInteraction::OpenFiles(const FileDialogRequest& request) {
  QStringList chosen;
  if (request.MultiSelect) {
    chosen = QFileDialog::getOpenFileNames(parent_, DialogText(request.Title), Q(request.InitialDirectory),
                                           QtNameFilter(request.Filter));
  } else {
    const QString one = QFileDialog::getOpenFileName(parent_, DialogText(request.Title), Q(request.InitialDirectory),
                                                     QtNameFilter(request.Filter));
    if (!one.isEmpty()) chosen << one;
  }
  std::vector<std::string> files;
  for (const QString& file : chosen) files.push_back(S(file));
  return files;
}

std::string QtInteraction::SaveFile(const FileDialogRequest& request) {
  QString start = Q(request.InitialDirectory);
  if (!request.DefaultName.empty()) start = start.isEmpty() ? Q(request.DefaultName) : start + "/" + Q(request.DefaultName);
  return S(QFileDialog::getSaveFileName(parent_, DialogText(request.Title), start, QtNameFilter(request.Filter)));
}

std::string QtInteraction::ChooseFolder(const FileDialogRequest& request) {
  return S(QFileDialog::getExistingDirectory(parent_, DialogText(request.Title), Q(request.InitialDirectory)));
}

void QtInteraction::ProgressStart(const std::string& title, const std::string& message) {
  if (!progress_) {
    progress_ = new QProgressDialog(parent_);
    progress_->setWindowModality(Qt::WindowModal);
    progress_->setAutoClose(false);
    progress_->setAutoReset(false);
    progress_->setMinimumDuration(0);
    progress_->setRange(0, 100);
    progress_->setCancelButtonText(QCoreApplication::translate("QtInteraction", "キャンセル"));
  }
  progress_->reset();
  progress_->setWindowTitle(DialogText(title));
  progress_->setLabelText(DialogText(message));
  progress_->setValue(0);
  progress_->show();
}

bool QtInteraction::ProgressValue(int percent) {
  if (!progress_) return true;
  // Values outside the bar's range are not shown; the event loop still gets its turn.
  if (percent >= 0 && percent <= 100) progress_->setValue(percent);
  return !progress_->wasCanceled();
}

void QtInteraction::ProgressExit() {
  if (progress_) progress_->hide();
}

}  // namespace velmora::gui
