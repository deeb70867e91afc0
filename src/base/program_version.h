#pragma once
// The version of this program, as project files record it and compare it when they are opened.
#include <cstdint>

namespace velmora {

struct ProgramVersion {
  std::int32_t Major = 0;
  std::int32_t Minor = 0;
  std::int32_t Revision = 0;
};

inline constexpr ProgramVersion kProgramVersion{0, 1, 0};

}  // namespace velmora
