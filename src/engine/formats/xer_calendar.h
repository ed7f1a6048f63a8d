#pragma once

#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "engine/formats/calendar_builder.h"

namespace nimbrel::engine {

/// The working hours of an XER calendar cannot be read. what() is "expected ..., found ...".
class XerCalendarError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the text that an XER calendar keeps its working hours in: nodes "(0||NAME(VALUES)(NODES))"
/// within each other, with spaces, line breaks or 0x7F between them or nothing. Fills in the
/// weekdays that the text has and the single days from 1950 to 2150. Raises XerCalendarError.
///
/// Returns how many single days were left out because they lie outside those years.
std::int64_t ReadXerCalendar(std::string_view text, CalendarBuilder& builder);

}  // namespace nimbrel::engine
