#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/calendar/instant.h"

namespace nimbrel::engine {

/// The first and last day that a plan may have a date in: 1 January 1950, 31 December 2150.
inline constexpr std::int32_t kFirstPlanDay = 18264;
inline constexpr std::int32_t kLastPlanDay = 91677;

/// The longest duration and lag that a plan may have: 200 years around the clock, in minutes.
inline constexpr std::int64_t kLongestMinutes = std::int64_t{200} * 36525 * 1440 / 100;

/// Whether the moment lies within kFirstPlanDay to kLastPlanDay.
bool IsPlanDate(Instant instant);

/// A decimal number with a point or one comma; nothing for any other text, infinities included.
std::optional<double> ReadNumber(std::string_view text);

/// A whole number that fits; nothing for any other text.
std::optional<std::int64_t> ReadInteger(std::string_view text);

/// A number of hours as whole minutes, a half rounded away from 0; nothing if they are more than
/// kLongestMinutes either way.
std::optional<std::int32_t> HoursToMinutes(double hours);

}  // namespace nimbrel::engine
