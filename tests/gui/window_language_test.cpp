// The window in the language of the locale: its own captions from the built-in translation, the
// engine's texts (mode, title, the close question) from the engine's catalogue; Japanese as the
// program writes it under a Japanese locale. And the translation file itself: complete, its
// placeholders kept, and holding every text of the window's sources.
#include "window_language.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QToolButton>
#include <QXmlStreamReader>

#include <optional>

#include "qt_interaction.h"
#include "support/test_support.h"
#include "window_fixture.h"

namespace velmora::gui {
namespace {

namespace tab = workbench::tab;

struct LanguageCase {
  const char* Name;
  const char* Variable;  // the locale variable set, the others unset
  const char* Locale;
  const char* ProjectMenu;
  const char* ProfileTab;
  const char* FilterTab;
  const char* ShowAllButton;
  const char* Mode;
  const char* Title;
  const char* CloseQuestion;
};

const LanguageCase kCases[] = {
    {"EnglishByLang", "LANG", "en_US.UTF-8", "Project", "Profiles", "Filters", "Show all",
     "●Profile analysis ○Repair study", " velmora : [ New project ]", "Quit velmora?"},
    {"EnglishByLcAll", "LC_ALL", "C.UTF-8", "Project", "Profiles", "Filters", "Show all",
     "●Profile analysis ○Repair study", " velmora : [ New project ]", "Quit velmora?"},
    {"JapaneseByLang", "LANG", "ja_JP.UTF-8", "プロジェクト", "プロファイル", "フィルター処理", "全体表示",
     "●プロファイル分析　○補修形状検討", " velmora : [ 新規作成 ]", "プログラムを終了しますか？"},
    {"JapaneseByLcMessages", "LC_MESSAGES", "ja_JP.UTF-8", "プロジェクト", "プロファイル", "フィルター処理",
     "全体表示", "●プロファイル分析　○補修形状検討", " velmora : [ 新規作成 ]", "プログラムを終了しますか？"},
};

class WindowLanguageTest : public WindowFixture, public ::testing::WithParamInterface<LanguageCase> {
 protected:
  void SetUp() override {
    TestApplication();
    const char* all = std::string_view(GetParam().Variable) == "LC_ALL" ? GetParam().Locale : nullptr;
    const char* messages = std::string_view(GetParam().Variable) == "LC_MESSAGES" ? GetParam().Locale : nullptr;
    const char* lang = std::string_view(GetParam().Variable) == "LANG" ? GetParam().Locale : nullptr;
    locale_.emplace(std::initializer_list<std::pair<const char*, const char*>>{
        {"LC_ALL", all}, {"LC_MESSAGES", messages}, {"LANG", lang}});
    ASSERT_TRUE(UseWindowLanguage(ChooseLanguage()));
    WindowFixture::SetUp();
  }
  void TearDown() override {
    window.reset();
    UseWindowLanguage(Language::Japanese);
  }

  QString TabTextOf(int tab) const {
    QTabWidget* tabs = window->Tabs();
    for (int i = 0; i < tabs->count(); ++i)
      if (tabs->widget(i)->isAncestorOf(window->ListOf(tab))) return tabs->tabText(i);
    return {};
  }

  std::optional<testing::ScopedEnvironment> locale_;
};

TEST_P(WindowLanguageTest, CaptionsAndEngineTextsFollowTheLocale) {
  const LanguageCase& c = GetParam();
  EXPECT_EQ(window->findChild<QMenu*>("mnuFile")->title(), QString::fromUtf8(c.ProjectMenu));
  EXPECT_EQ(TabTextOf(tab::Profile), QString::fromUtf8(c.ProfileTab));
  EXPECT_EQ(TabTextOf(tab::Filter), QString::fromUtf8(c.FilterTab));
  EXPECT_EQ(window->GoButtonOf(tab::Iri)->text(), QString("Go"));
  EXPECT_EQ(window->ChartOf(tab::Iri)->findChild<QToolButton*>("resetZoom")->text(),
            QString::fromUtf8(c.ShowAllButton));
  EXPECT_EQ(window->windowTitle(), QString::fromUtf8(c.Title));
  QStringList bar;
  for (QAction* action : window->menuBar()->actions()) bar << action->text();
  EXPECT_TRUE(bar.contains(QString::fromUtf8(c.Mode))) << bar.join(" | ").toStdString();
}

TEST_P(WindowLanguageTest, TheEnginesCloseQuestionIsAskedInTheLanguage) {
  QtInteraction dialogs;
  dialogs.SetParentWindow(window.get());
  const ScopedUi desktop(session, dialogs);
  QString asked;
  WithModal<QMessageBox>([&] { window->close(); },
                         [&](QMessageBox& box) {
                           asked = box.text();
                           box.button(QMessageBox::No)->click();  // the window stays
                         });
  EXPECT_EQ(asked, QString::fromUtf8(GetParam().CloseQuestion));
  EXPECT_TRUE(window->isVisible());
}

INSTANTIATE_TEST_SUITE_P(Locales, WindowLanguageTest, ::testing::ValuesIn(kCases),
                         [](const ::testing::TestParamInfo<LanguageCase>& info) { return info.param.Name; });

TEST(DialogTextInEnglish, KnownLinesTranslatedTheOthersKeptAsTheyAre) {
  TestApplication();
  const testing::ScopedEnvironment locale{{"LC_ALL", "en_US.UTF-8"}};
  UseLanguage(ChooseLanguage());
  // Lines the catalogue knows lose the blanks they are padded with; an empty line stays empty (the
  // catalogue's header is not a translation); a line it lacks keeps its padding.
  EXPECT_EQ(DialogText("補修形状算出の境界値が変更されました。 \r\nＭ波、Ｓ波、理想形状案のデータが初期化されます。"
                       "\r\n\r\nよろしいですか？"),
            QString("the boundaries of the repair study have changed;\nthe M wave, S wave and ideal shape are cleared."
                    "\n\nGo on?"));
  EXPECT_EQ(DialogText("保存先：/tmp/x  \r\n"), QString::fromUtf8("保存先：/tmp/x  \n"));
  // A line with a value: the pattern is translated, the value carried over.
  EXPECT_EQ(DialogText("⇒ 距離：123.45000(m)"), QString::fromUtf8("⇒ length: 123.45000 m"));
  EXPECT_EQ(DialogText("９ ＯＣＴ"), QString("OCT 9"));
  // A file dialog's filter: its descriptions translated, its patterns as they were.
  EXPECT_EQ(QtNameFilter("プロジェクトファイル (*.prj)|*.prj|すべてのファイル (*.*)|*.*"),
            QString("Project files (*.prj);;All files (*.*)"));
  UseLanguage(Language::Japanese);
  EXPECT_EQ(DialogText("よろしいですか？"), QString::fromUtf8("よろしいですか？"));
}

// The entries of a Qt translation file: context, source and translation, with the translation's type.
struct TsEntry {
  QString Context, Source, Translation, Type;
};

// An element's text, with the control characters lupdate writes as <byte value="xd"/> put back.
QString TsText(QXmlStreamReader& xml) {
  QString text;
  for (;;) {
    const auto token = xml.readNext();
    if (token == QXmlStreamReader::Characters)
      text += xml.text();
    else if (token == QXmlStreamReader::StartElement && xml.name() == u"byte")
      text += QChar(xml.attributes().value("value").mid(1).toUInt(nullptr, 16));  // "xd": 0x0d
    else if ((token == QXmlStreamReader::EndElement && xml.name() != u"byte") || xml.atEnd() || xml.hasError())
      return text;
  }
}

std::vector<TsEntry> ReadTs(const QString& path) {
  QFile file(path);
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
  QXmlStreamReader xml(&file);
  std::vector<TsEntry> entries;
  QString context;
  while (!xml.atEnd()) {
    if (xml.readNext() != QXmlStreamReader::StartElement) continue;
    if (xml.name() == u"name") context = xml.readElementText();
    else if (xml.name() == u"message") entries.push_back({context, {}, {}, {}});
    else if (xml.name() == u"source") entries.back().Source = TsText(xml);
    else if (xml.name() == u"translation") {
      entries.back().Type = xml.attributes().value("type").toString();
      entries.back().Translation = TsText(xml);
    }
  }
  EXPECT_FALSE(xml.hasError()) << path.toStdString() << ": " << xml.errorString().toStdString();
  return entries;
}

QString TranslationFile() {
  return QString::fromStdString((testing::SourceDir() / "gui" / "translations" / "velmora_en.ts").string());
}

// The %1, %2 ... of a text, sorted.
QStringList Placeholders(const QString& text) {
  QStringList found;
  for (const auto& match : QRegularExpression("%\\d").globalMatch(text)) found << match.captured();
  found.sort();
  return found;
}

TEST(WindowTranslation, EveryEntryIsFinishedAndKeepsItsPlaceholders) {
  const std::vector<TsEntry> entries = ReadTs(TranslationFile());
  ASSERT_FALSE(entries.empty());
  for (const TsEntry& entry : entries) {
    const std::string where = entry.Context.toStdString() + ": " + entry.Source.toStdString();
    EXPECT_TRUE(entry.Type.isEmpty()) << where << " is " << entry.Type.toStdString();
    EXPECT_FALSE(entry.Translation.isEmpty()) << where;
    EXPECT_EQ(Placeholders(entry.Translation), Placeholders(entry.Source)) << where;
    // A file filter keeps its patterns: the translated descriptions alternate with the same patterns.
    if (entry.Source.contains("|*.")) {
      const QStringList source = entry.Source.split('|'), translated = entry.Translation.split('|');
      ASSERT_EQ(source.size(), translated.size()) << where;
      for (qsizetype i = 1; i < source.size(); i += 2) EXPECT_EQ(translated[i], source[i]) << where;
    }
  }
}

// lupdate over the window's sources now: the file must hold exactly the texts it finds, each in the
// context the program looks in.
TEST(WindowTranslation, HoldsEveryTextOfTheWindowsSources) {
  testing::TempDir scratch;
  const QString fresh = QString::fromStdString((scratch / "fresh.ts").string());
  QProcess lupdate;
  lupdate.setProcessChannelMode(QProcess::MergedChannels);
  const QString sources = QString::fromStdString((testing::SourceDir() / "gui").string());
  lupdate.start(VELMORA_LUPDATE, {sources, "-no-obsolete", "-locations", "none", "-source-language", "ja",
                                  "-target-language", "en", "-ts", fresh});
  ASSERT_TRUE(lupdate.waitForFinished(120000));
  const QString said = QString::fromUtf8(lupdate.readAll());
  ASSERT_EQ(lupdate.exitCode(), 0) << said.toStdString();
  // A widget class has no moc here: its tr() would look in its Qt base class's context and find
  // nothing, unless the class declares Q_DECLARE_TR_FUNCTIONS (lupdate says which class lacks it).
  EXPECT_FALSE(said.contains("lacks Q_OBJECT")) << said.toStdString();
  const auto keys = [](const std::vector<TsEntry>& entries) {
    QSet<QString> set;
    for (const TsEntry& entry : entries) set.insert(entry.Context + " | " + entry.Source);
    return set;
  };
  const QSet<QString> found = keys(ReadTs(fresh));
  const QSet<QString> held = keys(ReadTs(TranslationFile()));
  for (const QString& text : found - held) ADD_FAILURE() << "not in the translation: " << text.toStdString();
  for (const QString& text : held - found) ADD_FAILURE() << "no longer in the sources: " << text.toStdString();
  EXPECT_FALSE(found.isEmpty());
}

}  // namespace
}  // namespace velmora::gui
