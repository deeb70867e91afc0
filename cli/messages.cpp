#include "messages.h"

#include <libintl.h>

namespace velmora::cli {

std::string Tr(const char* english) { return dgettext(kMessageDomain, english); }

std::string Tr(const char* english, std::string_view first, std::string_view second) {
  return FillPlaces(Tr(english), {std::string(first), std::string(second)});
}

}  // namespace velmora::cli
