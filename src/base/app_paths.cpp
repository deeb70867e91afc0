#include "base/app_paths.h"

namespace velmora {

AppPaths& Paths() {
  static AppPaths paths;
  return paths;
}

}  // namespace velmora
