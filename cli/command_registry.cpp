#include "command_registry.h"

namespace velmora::cli {

std::vector<CommandEntry>& Commands() {
  static std::vector<CommandEntry> commands;
  return commands;
}

}  // namespace velmora::cli
