#include "base/user_interaction.h"

#include <cstdio>

namespace velmora {

MsgAnswer SilentInteraction::Message(const std::string& text, const std::string& title, MsgIcon, MsgButtons,
                                     MsgAnswer defaultAnswer) {
  if (echo_) std::fprintf(stderr, "[%s] %s\n", title.c_str(), text.c_str());
  return defaultAnswer;
}

}  // namespace velmora
