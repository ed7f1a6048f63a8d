#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "platform/date.h"

namespace nimbrel::platform {

/// The order in which the numbers of a date are written and read where nothing else tells them
/// apart.
enum class DateOrder { kDayMonthYear, kMonthDayYear, kYearMonthDay };

/// What dates and numbers look like to a user. A plain value: it is handed to whatever needs it,
/// and nothing reads the process's own locale. All texts are UTF-8.
struct Locale {
  std::string name;  // "en-US", "de-DE"
  std::array<std::string, 12> months;
  std::array<std::string, 12> short_months;
  std::array<std::string, 7> weekdays;        // Monday first
  std::array<std::string, 7> short_weekdays;  // Monday first
  DateOrder order = DateOrder::kMonthDayYear;
  std::string short_date = "m/d/yyyy";  // pattern of the date in DefaultDateText, in `order`
  char date_separator = '/';
  char time_separator = ':';
  std::string decimal = ".";
  std::string thousands = ",";
};

/// Every locale that is known, the default first.
std::span<const Locale> KnownLocales();

/// The locale of a name such as "en-US", "en-GB", "de-DE", "fr-FR", "es-ES" (case and '_' for '-'
/// do not matter, a language alone picks its first one), or null if it is not known.
const Locale* FindLocale(std::string_view name);

/// English as in the United States, the default.
const Locale& DefaultLocale();

/// Whether `text` is a date or time that ParseDate reads.
bool IsDate(std::string_view text, const Locale& locale);

/// Reads a date, a time, or both in either order with a blank between them. Raises error 13 for
/// anything else. It reads back what FormatDate and DefaultDateText write, as far as the pattern
/// shows the date and puts numbers that could be mistaken for one another in the locale's order.
///
/// - Three numbers have one of "/", "-", "." (or the locale's own) or blanks between them. They are
///   taken in the locale's order; if that gives no date, as year-month-day where the first has
///   three or four digits, else as day-month-year and then as month-day-year. So text written in
///   another order than the locale's is read wrongly, and not refused, wherever the locale's
///   order gives a date.
/// - With the month as a word the order is day month year, month day year or year month day. A word
///   and a year of three or four digits are the first of the month. Names of months and weekdays
///   are read in the locale and in English, in any case, full or short, with or without their
///   accents and a dot at the end; of a month also any beginning of three letters or more that no
///   other month shares. "de" between the parts means nothing.
/// - A weekday's name may stand in front of the date, and must be that date's own.
/// - Eight digits are year, month and day (YYYYMMDD). No other single number is a date.
/// - A year of one or two digits is 2000 to 2029 for 0 to 29 and 1930 to 1999 for 30 to 99; a year
///   of three or four digits is as written. The date must be in the years 100 to 9999.
/// - The time is h:mm or h:mm:ss of 24 hours, or of 12 hours with "am" or "pm" behind it. A time
///   alone is on day zero.
Date ParseDate(std::string_view text, const Locale& locale);

/// Writes a date in a pattern of d, dd, ddd, dddd, m, mm, mmm, mmmm, yy, yyyy, h, hh, n, nn, s, ss
/// in any case ("/" is the locale's date separator, ":" its time separator, text in quotes and all
/// other characters stand for themselves; m and mm right after h or hh are minutes). The moment is
/// rounded to the nearest second first. An empty pattern gives DefaultDateText. Raises error 6
/// outside the years 100 to 9999.
std::string FormatDate(Date date, std::string_view pattern, const Locale& locale);

/// The date in the locale's short form, with the time behind it unless it is midnight; the time
/// alone for a date of zero days. ParseDate reads it back to the same second in the same locale.
/// Raises error 6 outside the years 100 to 9999.
std::string DefaultDateText(Date date, const Locale& locale);

/// Writes a number in a pattern such as "0", "0.00", "0%", "#,##0.0".
///
/// - "0" is a digit that is always shown, "#" one that is shown if the number has it, "." the
///   decimal mark, "," between digit places groups the whole part by three, "%" shows the number
///   times 100. Text before and after the digit places stands for itself; a pattern without digit
///   places is that text alone.
/// - Digits that the pattern does not show are rounded, halves away from zero. What is rounded are
///   the number's first fifteen significant digits, so 1.005 in "0.00" gives 1.01.
/// - A number that rounds to zero has no sign.
/// - An empty pattern gives DefaultNumberText. Raises error 6 for what is no finite number.
std::string FormatNumber(double value, std::string_view pattern, const Locale& locale);

/// A number with up to fifteen significant digits and no needless zeros: "0.1", "25", "1E+15". The
/// form with an exponent is used from 1E+15 on and below 0.00001. Raises error 6 for what is no
/// finite number.
std::string DefaultNumberText(double value, const Locale& locale);

/// Whether ParseNumber reads `text`.
bool IsNumeric(std::string_view text, const Locale& locale);

/// Reads a number in the locale's form: an optional sign, digits, the decimal mark and digits, an
/// optional exponent ("E-5"), blanks around it all. The whole part may be grouped, and then in
/// threes: "1,234.5" is a number and "1,5" is none where the comma groups. Raises error 13 for
/// anything else and for a number too large for a double.
double ParseNumber(std::string_view text, const Locale& locale);

}  // namespace nimbrel::platform
