#pragma once
// Numeric conversions with the legacy language's rules: a plain conversion to an integer rounds half
// to even, Int is the floor, and a value that does not fit raises "overflow" instead of wrapping.
#include <cstdint>

namespace velmora {

// Round half to even into i32 (CLng) or i16 (CInt); NaN or out of range raises overflow.
std::int32_t CLng(double value);
std::int16_t CInt(double value);
// x >= 0: truncate(x + 0.5); x < 0: truncate(x - 0.5).
std::int32_t RoundHalfAway(double value);
// Int: the largest integer not above the value (as f64, and as i32 with overflow check).
double Int(double value);
std::int32_t IntLong(double value);
// Fix: truncation toward zero, as i32 with overflow check.
std::int32_t FixLong(double value);

// Narrowing of an integer result that the legacy code kept in a 32-bit variable.
std::int32_t CheckedI32(long long value);

}  // namespace velmora
