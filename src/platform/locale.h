#pragma once

#include <array>
#include <string>
#include <string_view>

#include "platform/date.h"

namespace nimbrel::platform {

/// The order in which the numbers of a date are written and read where nothing else tells them
/// apart.
enum class DateOrder { kDayMonthYear, kMonthDayYear, kYearMonthDay };

/// What dates and numbers look like to a user. A plain value: it is handed to whatever needs it,
/// and nothing reads the process's own locale.
struct Locale {
  std::string name;  // "en-US", "de-DE"
  std::array<std::string, 12> months;
  std::array<std::string, 12> short_months;
  std::array<std::string, 7> weekdays;        // Monday first
  std::array<std::string, 7> short_weekdays;  // Monday first
  DateOrder order = DateOrder::kMonthDayYear;
  char date_separator = '/';
  char time_separator = ':';
  std::string decimal = ".";
  std::string thousands = ",";
};

/// The locale of a name such as "en-US", "en-GB", "de-DE", "fr-FR", "es-ES" (case and '_' for '-'
/// do not matter, a language alone picks its first one), or null if it is not known.
const Locale* FindLocale(std::string_view name);

/// English as in the United States, the default.
const Locale& DefaultLocale();

/// Whether `text` is a date or time that ParseDate reads.
bool IsDate(std::string_view text, const Locale& locale);

/// Reads a date, a time, or both. Raises error 13 for anything else.
///
/// - Names of months may be given in full or short, in the locale or in English, in any case.
/// - Three numbers are taken in the locale's order; if that gives no date, in the order year-month-
///   day where the first has four digits, else day-month-year and month-day-year.
/// - A year of one or two digits is 2000 to 2029 for 0 to 29 and 1930 to 1999 for 30 to 99.
Date ParseDate(std::string_view text, const Locale& locale);

/// Writes a date in a pattern of d, dd, ddd, dddd, m, mm, mmm, mmmm, yy, yyyy, h, hh, n, nn, s, ss
/// in any case ("/" is the locale's date separator, ":" its time separator, text in quotes and all
/// other characters stand for themselves; m after h is minutes). An empty pattern gives
/// DefaultDateText.
std::string FormatDate(Date date, std::string_view pattern, const Locale& locale);

/// The date in the locale's short form, with the time behind it unless it is midnight; the time
/// alone for a date of zero days.
std::string DefaultDateText(Date date, const Locale& locale);

/// Writes a number in a pattern such as "0", "0.00", "0%", "#,##0.0"; digits that the pattern does
/// not show are rounded, halves away from zero.
std::string FormatNumber(double value, std::string_view pattern, const Locale& locale);

/// Whether ParseNumber reads `text`.
bool IsNumeric(std::string_view text, const Locale& locale);

/// Reads a number in the locale's form. Raises error 13 for anything else.
double ParseNumber(std::string_view text, const Locale& locale);

}  // namespace nimbrel::platform
