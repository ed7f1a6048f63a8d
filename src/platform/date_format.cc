#include <cstddef>
#include <string>
#include <utility>

#include "platform/locale.h"

namespace nimbrel::platform {
namespace {

char LowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 0x20) : c;
}

/// How often a letter can be repeated in a pattern to stand for something.
std::size_t LongestRun(char unit) {
  switch (unit) {
    case 'd':
    case 'm':
    case 'y':
      return 4;
    case 'h':
    case 'n':
    case 's':
      return 2;
    default:
      return 0;
  }
}

void AppendNumber(int value, std::size_t least_digits, std::string& text) {
  const std::string digits = std::to_string(value);
  text.append(digits.size() < least_digits ? least_digits - digits.size() : 0, '0');
  text += digits;
}

/// Writes one moment by one pattern.
class DateWriter {
 public:
  DateWriter(const CivilTime& civil, std::string_view pattern, const Locale& locale)
      : civil_(civil), pattern_(pattern), locale_(locale) {}

  std::string Write() {
    while (at_ < pattern_.size()) {
      if (pattern_[at_] == '"') {
        WriteQuoted();
      } else if (const std::size_t length = RunAtPosition(); length > 0) {
        WriteUnit(LowerAscii(pattern_[at_]), length);
        at_ += length;
      } else {
        WriteLiteral(pattern_[at_]);
        ++at_;
      }
    }
    return std::move(text_);
  }

 private:
  /// Length of the longest run at the position that stands for something, or 0.
  std::size_t RunAtPosition() const {
    const char unit = LowerAscii(pattern_[at_]);
    const std::size_t longest = LongestRun(unit);
    std::size_t length = 0;
    while (length < longest && at_ + length < pattern_.size() &&
           LowerAscii(pattern_[at_ + length]) == unit) {
      ++length;
    }
    return unit == 'y' ? length - length % 2 : length;  // only yy and yyyy mean a year
  }

  void WriteQuoted() {
    const std::size_t end = pattern_.find('"', at_ + 1);
    const bool closed = end != std::string_view::npos;
    text_ += pattern_.substr(at_ + 1, closed ? end - at_ - 1 : end);
    at_ = closed ? end + 1 : pattern_.size();
  }

  void WriteLiteral(char c) {
    if (c == '/') {
      text_.push_back(locale_.date_separator);
    } else if (c == ':') {
      text_.push_back(locale_.time_separator);
    } else {
      text_.push_back(c);
    }
  }

  void WriteUnit(char unit, std::size_t length) {
    switch (unit) {
      case 'd':
        WriteDay(length);
        break;
      case 'm':
        WriteMonthOrMinute(length);
        break;
      case 'y':
        AppendNumber(length == 2 ? civil_.year % 100 : civil_.year, length, text_);
        break;
      case 'h':
        AppendNumber(civil_.hour, length, text_);
        break;
      case 'n':
        AppendNumber(civil_.minute, length, text_);
        break;
      default:
        AppendNumber(civil_.second, length, text_);
        break;
    }
    last_unit_ = unit;
  }

  void WriteDay(std::size_t length) {
    if (length <= 2) {
      AppendNumber(civil_.day, length, text_);
      return;
    }
    const std::int32_t sunday_first = WeekdayNumber(MakeDate(civil_));
    const auto monday_first = static_cast<std::size_t>((sunday_first + 5) % 7);
    text_ += length == 3 ? locale_.short_weekdays[monday_first] : locale_.weekdays[monday_first];
  }

  void WriteMonthOrMinute(std::size_t length) {
    const auto month = static_cast<std::size_t>(civil_.month - 1);
    if (length > 2) {
      text_ += length == 3 ? locale_.short_months[month] : locale_.months[month];
    } else {
      AppendNumber(last_unit_ == 'h' ? civil_.minute : civil_.month, length, text_);
    }
  }

  const CivilTime civil_;
  const std::string_view pattern_;
  const Locale& locale_;
  std::size_t at_ = 0;
  char last_unit_ = '\0';
  std::string text_;
};

std::string Write(const CivilTime& civil, std::string_view pattern, const Locale& locale) {
  return DateWriter(civil, pattern, locale).Write();
}

}  // namespace

std::string FormatDate(Date date, std::string_view pattern, const Locale& locale) {
  return pattern.empty() ? DefaultDateText(date, locale) : Write(ToCivil(date), pattern, locale);
}

std::string DefaultDateText(Date date, const Locale& locale) {
  constexpr std::string_view kTime = "hh:nn:ss";
  const CivilTime civil = ToCivil(date);
  const CivilTime day_zero;
  if (civil.year == day_zero.year && civil.month == day_zero.month && civil.day == day_zero.day) {
    return Write(civil, kTime, locale);
  }
  std::string text = Write(civil, locale.short_date, locale);
  if (civil.hour != 0 || civil.minute != 0 || civil.second != 0) {
    text += ' ';
    text += Write(civil, kTime, locale);
  }
  return text;
}

}  // namespace nimbrel::platform
