#pragma once
// A local time from its calendar fields, for names and stamps made from a fixed clock.
#include <ctime>

namespace velmora::testing {

inline std::tm At(int year, int month, int day, int hour, int minute, int second) {
  std::tm t{};
  t.tm_year = year - 1900;
  t.tm_mon = month - 1;
  t.tm_mday = day;
  t.tm_hour = hour;
  t.tm_min = minute;
  t.tm_sec = second;
  return t;
}

}  // namespace velmora::testing
