#include "base/settings.h"

namespace velmora {

AppSettings& Settings() {
  static AppSettings settings;
  return settings;
}
CalcConditions& DefaultConditions() {
  static CalcConditions conditions;
  return conditions;
}
CalcConditions& CurrentConditions() {
  static CalcConditions conditions;
  return conditions;
}

}  // namespace velmora
