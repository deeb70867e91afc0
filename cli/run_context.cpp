#include "run_context.h"

#include <cstdio>

namespace velmora::cli {

void RunContext::Say(const std::string& line) const {
  if (!Json) std::printf("%s\n", line.c_str());
}

void PrintProblem(const RunContext& run, const std::string& what, const std::string& why) {
  std::string line = "velmora: ";
  if (!run.Command.empty()) line += run.Command + ": ";
  if (!what.empty()) line += what + ": ";
  line += why;
  std::fprintf(stderr, "%s\n", line.c_str());
}

}  // namespace velmora::cli
