#include "platform/number.h"

#include <cmath>
#include <limits>
#include <string>

#include "platform/runtime_error.h"

namespace nimbrel::platform {
namespace {

/// Brings a result that was computed in 64 bits, where it cannot overflow, back to 32.
std::int32_t Narrow(std::int64_t value) {
  if (value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max()) {
    throw RuntimeError(kOverflow, "Overflow: " + std::to_string(value) + " is no 32-bit integer");
  }
  return static_cast<std::int32_t>(value);
}

}  // namespace

double RoundHalfEven(double value) {
  const double below = std::floor(value);
  const double above_it = value - below;
  if (above_it > 0.5 || (above_it == 0.5 && std::fmod(below, 2.0) != 0.0)) {
    return below + 1.0;
  }
  return below;
}

std::int32_t ToLong(double value) {
  const double rounded = RoundHalfEven(value);
  // Written so that NaN fails it too.
  if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
        rounded <= std::numeric_limits<std::int32_t>::max())) {
    throw RuntimeError(kOverflow, "Overflow: " + std::to_string(value) + " is no 32-bit integer");
  }
  return static_cast<std::int32_t>(rounded);
}

std::int32_t MultiplyLong(std::int32_t a, std::int32_t b) {
  return Narrow(std::int64_t{a} * b);
}

std::int32_t AddLong(std::int32_t a, std::int32_t b) {
  return Narrow(std::int64_t{a} + b);
}

std::int32_t SubtractLong(std::int32_t a, std::int32_t b) {
  return Narrow(std::int64_t{a} - b);
}

double Divide(double dividend, double divisor) {
  if (divisor == 0.0) {
    throw RuntimeError(kDivisionByZero, "Division by zero");
  }
  const double quotient = dividend / divisor;
  if (std::isinf(quotient) && std::isfinite(dividend)) {
    throw RuntimeError(kOverflow, "Overflow in a division");
  }
  return quotient;
}

}  // namespace nimbrel::platform
