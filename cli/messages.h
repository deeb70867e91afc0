#pragma once
// The command line's own texts in the language of the terminal (base/language.h chooses it and
// translates the engine's texts): written in English in the code, found in the Japanese catalogue.
#include <string>
#include <string_view>

#include "base/language.h"

namespace velmora::cli {

// A text of the command line itself, in the language in force.
std::string Tr(const char* english);
// The same with "{}" places filled in order.
std::string Tr(const char* english, std::string_view first, std::string_view second = {});

}  // namespace velmora::cli
