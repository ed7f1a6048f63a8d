#include "platform/win/user_locale.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "platform/win/wide_text.h"
#include "platform/win/win_api.h"

namespace nimbrel::platform {
namespace {

/// A value of the settings; empty if the system does not have it.
std::string Setting(const std::wstring& name, LCTYPE what) {
  const wchar_t* locale = name.empty() ? LOCALE_NAME_USER_DEFAULT : name.c_str();
  const int size = GetLocaleInfoEx(locale, what, nullptr, 0);
  if (size <= 1) {
    return "";
  }
  std::wstring text(static_cast<std::size_t>(size), L'\0');
  GetLocaleInfoEx(locale, what, text.data(), size);
  return ToUtf8(text.c_str());
}

template <std::size_t kCount>
void ReadNames(std::array<std::string, kCount>& names, const std::wstring& locale, LCTYPE first) {
  for (std::size_t i = 0; i < kCount; ++i) {
    std::string name = Setting(locale, first + static_cast<LCTYPE>(i));
    if (!name.empty()) {
      names[i] = std::move(name);
    }
  }
}

void ReadText(std::string& text, const std::wstring& locale, LCTYPE what) {
  std::string read = Setting(locale, what);
  if (!read.empty()) {
    text = std::move(read);
  }
}

/// A pattern without its quotes and what stands in them.
std::string Unquoted(const std::string& pattern) {
  std::string text;
  bool quoted = false;
  for (const char c : pattern) {
    if (c == '\'') {
      quoted = !quoted;
    } else if (!quoted) {
      text += c;
    }
  }
  return text;
}

/// The first sign between two numbers of a pattern; none where there are only letters.
char SeparatorOf(const std::string& system_pattern) {
  const std::string pattern = Unquoted(system_pattern);
  const auto found = std::find_if(pattern.begin(), pattern.end(),
                                  [](char c) { return c == '/' || c == '-' || c == '.'; });
  return found == pattern.end() ? '\0' : *found;
}

DateOrder OrderOf(const std::string& pattern) {
  const std::size_t year = pattern.find('y');
  const std::size_t month = pattern.find('m');
  const std::size_t day = pattern.find('d');
  if (year < month && year < day) {
    return DateOrder::kYearMonthDay;
  }
  return month < day ? DateOrder::kMonthDayYear : DateOrder::kDayMonthYear;
}

}  // namespace

std::string PatternOf(const std::string& system_pattern, char separator) {
  std::string pattern;
  for (const char c : Unquoted(system_pattern)) {
    if (c == 'd' || c == 'M' || c == 'y') {
      pattern += c == 'M' ? 'm' : c;
    } else if (c == separator) {
      pattern += '/';
    }
  }
  // Some languages have a full stop behind the last number, too.
  pattern.erase(pattern.find_last_not_of('/') + 1);
  return pattern;
}

Locale UserLocale(const std::string& name) {
  const std::wstring wide = ToWide(name);
  Locale locale = DefaultLocale();
  ReadText(locale.name, wide, LOCALE_SNAME);
  ReadNames(locale.months, wide, LOCALE_SMONTHNAME1);
  ReadNames(locale.short_months, wide, LOCALE_SABBREVMONTHNAME1);
  ReadNames(locale.weekdays, wide, LOCALE_SDAYNAME1);
  ReadNames(locale.short_weekdays, wide, LOCALE_SABBREVDAYNAME1);
  ReadText(locale.decimal, wide, LOCALE_SDECIMAL);
  ReadText(locale.thousands, wide, LOCALE_STHOUSAND);
  const std::string short_date = Setting(wide, LOCALE_SSHORTDATE);
  const char separator = SeparatorOf(short_date);
  const std::string pattern = PatternOf(short_date, separator);
  // Numbers of a date that run into one another could not be read back.
  if (separator != '\0' && std::count(pattern.begin(), pattern.end(), '/') == 2) {
    locale.short_date = pattern;
    locale.date_separator = separator;
    locale.order = OrderOf(pattern);
  }
  return locale;
}

}  // namespace nimbrel::platform
