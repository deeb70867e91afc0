#pragma once
// Path texts: file name, folder, extension and separator. Both "/" and "\" count as separators, so
// paths stored by older versions of the program or typed by users on other systems split the same.
#include <cstddef>
#include <string>
#include <string_view>

namespace velmora {

// The text behind the last separator; the whole text when there is none.
std::string flGetFileName(std::string_view path);
// flGetFileName without the text from its last "." on ("a.b.erd" → "a.b"; "name" → "name").
std::string flGetFileNameNonExt(std::string_view path);
// The text before the last separator; empty when there is none.
std::string flGetPathName(std::string_view path);
// The text behind the last ".", but only when that "." stands behind the last separator; else empty.
std::string flGetExtension(std::string_view path);
// Adds "/" unless the text already ends in "/" or "\".
std::string flAddDirSep(std::string_view path);
// True when a file (not a folder) exists at the full path.
bool flSearchPath(std::string_view path);
// Character position (1-based) of the last occurrence of `find` in `text`; 0 when absent.
std::size_t flInStrRev(std::string_view text, std::string_view find);
// The text with its characters in reverse order.
std::string flStrRev(std::string_view text);

}  // namespace velmora
