#include "window_language.h"

#include <QCoreApplication>
#include <QTranslator>

namespace velmora::gui {

bool UseWindowLanguage(Language language) {
  UseLanguage(language);
  static QTranslator english;
  QCoreApplication::removeTranslator(&english);
  if (language != Language::English) return true;
  // Compiled by lrelease from translations/velmora_en.ts and embedded as a resource.
  if (!english.load(QStringLiteral(":/translations/velmora_en.qm"))) return false;
  return QCoreApplication::installTranslator(&english);
}

}  // namespace velmora::gui
