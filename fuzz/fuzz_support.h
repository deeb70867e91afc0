#pragma once
// What the fuzz targets share: a private folder for the input written as a file (the readers take
// paths, as the program hands them), a session that answers nothing, and a check that stops the run
// with a message, so that a property broken counts as a finding as a crash does.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "base/session.h"
#include "base/user_interaction.h"

namespace velmora::fuzz {

// Made at the first input and removed with everything in it when the run ends.
inline std::filesystem::path Folder() {
  static char folder[4096] = {};
  if (folder[0] == '\0') {
    const char* tmp = std::getenv("TMPDIR");
    const std::string pattern = (std::filesystem::path(tmp && *tmp ? tmp : "/tmp") / "velmora-fuzz-XXXXXX").string();
    if (pattern.size() >= sizeof folder) std::abort();
    pattern.copy(folder, pattern.size());
    if (!::mkdtemp(folder)) std::abort();
    std::atexit([] {
      std::error_code ec;
      std::filesystem::remove_all(folder, ec);
    });
  }
  return folder;
}

// The input as a file named `name` in the private folder; its path.
inline std::string WriteInput(const std::uint8_t* data, std::size_t size, const char* name) {
  const std::filesystem::path path = Folder() / name;
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) std::abort();
  if (size > 0 && std::fwrite(data, 1, size, file) != size) std::abort();
  std::fclose(file);
  return path.string();
}

// The session's interaction: answers every question with its default, and shows the messages only
// when VELMORA_FUZZ_VERBOSE is set (to see why a finding's input was refused or accepted).
inline SilentInteraction QuietInteraction() { return SilentInteraction(std::getenv("VELMORA_FUZZ_VERBOSE") != nullptr); }

inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "property broken: %s\n", what);
  std::abort();
}

}  // namespace velmora::fuzz
