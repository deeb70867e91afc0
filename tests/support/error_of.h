#pragma once
// The number of the LegacyError a call raises, or nothing when it raises none.
#include <optional>

#include "base/legacy_error.h"

namespace velmora::testing {

template <class Call>
std::optional<ErrorNumber> ErrorOf(Call&& call) {
  try {
    call();
  } catch (const LegacyError& error) {
    return error.Number();
  }
  return std::nullopt;
}

}  // namespace velmora::testing
