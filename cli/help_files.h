#pragma once
// Files made from the command registry at build time, so they never drift from the flags: a bash
// completion script and a man page (velmora --generate bash-completion|man).
#include <CLI/CLI.hpp>

#include <string>

namespace velmora::cli {

std::string BashCompletion(const CLI::App& app);
std::string ManPage(const CLI::App& app);

}  // namespace velmora::cli
