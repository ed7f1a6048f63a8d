#pragma once

#include <cstdint>

namespace nimbrel::platform {

/// Rounds to the nearest whole number, a tie going to the even neighbour, whatever rounding mode
/// the processor is in. Infinities and NaN come back as they are.
double RoundHalfEven(double value);

/// Rounds as RoundHalfEven to a 32-bit integer; raises error 6 outside its range and for a value
/// that is no number.
std::int32_t ToLong(double value);

/// 32-bit multiplication, addition and subtraction; raise error 6 on overflow.
std::int32_t MultiplyLong(std::int32_t a, std::int32_t b);
std::int32_t AddLong(std::int32_t a, std::int32_t b);
std::int32_t SubtractLong(std::int32_t a, std::int32_t b);

/// Floating-point division; raises error 11 for a divisor of zero and error 6 when the quotient of
/// two finite numbers is too large for a double.
double Divide(double dividend, double divisor);

}  // namespace nimbrel::platform
