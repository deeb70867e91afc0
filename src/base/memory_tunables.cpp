#include "base/memory_tunables.h"

#include <unistd.h>

#include <cstdlib>

namespace velmora {

void RestartWithMallocTunables(char** argv) {
  if (std::getenv("GLIBC_TUNABLES") != nullptr) return;  // the user's own, or already restarted
  if (setenv("GLIBC_TUNABLES", kMallocTunables, 0) != 0) return;
  execv("/proc/self/exe", argv);
  unsetenv("GLIBC_TUNABLES");  // exec failed: run as we are, and children untuned as we are
}

}  // namespace velmora
