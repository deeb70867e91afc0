#pragma once
// The language of what the user reads: Japanese (the program's own texts, exactly as the engine writes
// them) or English. Both front ends choose it the same way and read one GNU gettext domain: its
// Japanese catalogue (po/ja.po) holds the command line's texts, written in English in the code; its
// English catalogue (po/en.po) holds the engine's texts, written in Japanese. Files the program writes
// never pass here.
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

enum class Language { Japanese, English };

// The gettext domain of both catalogues.
inline constexpr const char* kMessageDomain = "velmora";

// `flag` ("ja" or "en") when given; else the first of LC_ALL, LC_MESSAGES, LANG that is set:
// Japanese when it starts with "ja", English otherwise.
Language ChooseLanguage(std::string_view flag = {});
// Loads the catalogue of `language` (from "locale" beside the program, else "../share/locale").
void UseLanguage(Language language);

// `text` with its "{}" places filled in order.
std::string FillPlaces(std::string text, const std::vector<std::string>& values);
// One line of an engine text in the language in force: the whole line from the catalogue, else a
// pattern of the catalogue with "{}" for the values it carries; a line it lacks stays as it is.
std::string TrEngine(const std::string& line);

}  // namespace velmora
