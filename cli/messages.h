#pragma once
// The language of the terminal: Japanese (the program's own texts, exactly as the engine writes them)
// or English. Texts come from GNU gettext catalogues (po/ja.po, po/en.po): the command line's own
// texts are written in English in the code and found in the Japanese catalogue; the engine's texts
// are written in Japanese and found in the English one. Files the program writes never pass here.
#include <string>
#include <string_view>

namespace velmora::cli {

enum class Language { Japanese, English };

// `flag` (--lang: "ja" or "en") when given; else the first of LC_ALL, LC_MESSAGES, LANG that is set:
// Japanese when it starts with "ja", English otherwise.
Language ChooseLanguage(std::string_view flag);
// Loads the catalogue of `language` (from "locale" beside the program, else "../share/locale").
void UseLanguage(Language language);

// A text of the command line itself, in the language in force.
std::string Tr(const char* english);
// The same with "{}" places filled in order.
std::string Tr(const char* english, std::string_view first, std::string_view second = {});
// One line of an engine text in the language in force: the whole line from the catalogue, else a
// pattern of the catalogue with "{}" for the values it carries; a line it lacks stays as it is.
std::string TrEngine(const std::string& line);

}  // namespace velmora::cli
