#pragma once

#include <cstdint>

#include "engine/formats/calendar_builder.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xml_file.h"

namespace nimbrel::engine {

/// All single days that the calendars of one plan may have. Real plans have some thousands; the
/// bound keeps a small file from asking for endless calendars.
inline constexpr std::int64_t kMostSingleDays = 2'000'000;

/// Reads the working time of one MSPDI calendar: weekdays, weeks that replace them for a time,
/// exceptions, which may recur. What lies outside 1950 to 2150 is left out with a warning.
/// `single_days` counts up what was read; raises FormatError when it passes kMostSingleDays.
void ReadMspdiCalendar(const XmlFile& file, pugi::xml_node calendar, CalendarBuilder& builder,
                       std::int64_t& single_days, WarningList& warnings);

/// The weekdays of a calendar about which a file says nothing: Monday to Friday, 08:00 to 12:00 and
/// 13:00 to 17:00.
void SetStandardWeek(CalendarBuilder& builder);

}  // namespace nimbrel::engine
