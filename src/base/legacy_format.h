#pragma once
// Number and date formatting by the patterns the program's files use ("0.00000", "######0",
// "0.0000000000E+00", "YYYYMMDDHHNNSS", "YYYY/MM/DD HH:MM:SS", ...). Numbers are first taken to 15
// significant digits and then rounded half away from zero in decimal, so 0.125 with "0.00" gives "0.13".
#include <ctime>
#include <string>
#include <string_view>

namespace velmora {

// Pattern: integer part of '0' (digit always shown), '#' (digit when significant) and ',' (grouping),
// then optionally '.' with '0' and '#' decimals, then optionally "E+00" / "E-00" (also lower case).
// Characters outside that grammar raise LegacyError(InvalidData).
std::string FormatNumber(double value, std::string_view pattern);
// The general pattern interpreter behind FormatNumber, which takes a faster route for the plain
// "0.00…0" patterns with the same result; kept callable as the reference for that route.
std::string FormatNumberByPattern(double value, std::string_view pattern);
// FormatNumber(value, "0." followed by `decimals` zeros), appended to `out`.
void AppendFixedDecimals(std::string& out, double value, int decimals);

// Date and time: YYYY, YY, MM (month; minutes right after HH or before SS), DD, HH, NN, SS, in any
// case; other characters are copied.
std::string FormatDateTime(const std::tm& time, std::string_view pattern);
// The local time now.
std::tm LocalNow();

}  // namespace velmora
