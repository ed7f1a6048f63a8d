#include "engine/formats/value_text.h"

#include <charconv>
#include <cmath>
#include <string>

namespace nimbrel::engine {

bool IsPlanDate(Instant instant) {
  return !instant.IsAbsent() && instant.day() >= kFirstPlanDay && instant.day() <= kLastPlanDay;
}

std::optional<double> ReadNumber(std::string_view text) {
  std::string with_point;
  const std::size_t comma = text.find(',');
  if (comma != std::string_view::npos) {
    with_point = text;
    with_point[comma] = '.';  // a second separator of either kind makes the text no number
    text = with_point;
  }
  double value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, std::chars_format::general);
  if (text.empty() || error != std::errc() || stop != end || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::int64_t> ReadInteger(std::string_view text) {
  std::int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::int32_t> HoursToMinutes(double hours) {
  const double minutes = std::round(hours * 60.0);
  if (!(std::abs(minutes) <= static_cast<double>(kLongestMinutes))) {
    return std::nullopt;
  }
  return static_cast<std::int32_t>(minutes);
}

}  // namespace nimbrel::engine
