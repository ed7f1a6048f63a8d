#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "platform/locale.h"
#include "platform/runtime_error.h"
#include "platform/shown_text.h"
#include "platform/text.h"

namespace nimbrel::platform {
namespace {

// Weekday, three parts of a date with "de" twice, three of a time and "pm" are the longest text.
constexpr std::size_t kMostParts = 12;
constexpr std::size_t kMostDigits = 8;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Whether a byte can stand in a word: a letter, or any byte of a character beyond ASCII.
bool IsWordByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

/// Length of the blank at the start of `text`, or 0.
std::size_t BlankLength(std::string_view text) {
  for (const std::string_view blank : {" ", "\t", "\r", "\n", "\u00A0", "\u202F"}) {
    if (text.starts_with(blank)) {
      return blank.size();
    }
  }
  return 0;
}

/// A number or a word of the text, with what stands before it.
struct Part {
  bool is_number = false;
  std::string_view text;   // of a word: with inner hyphens, without the dot at its end
  int value = 0;           // of a number
  std::size_t digits = 0;  // of a number
  bool blank_before = false;
  char mark_before = '\0';  // the one mark in the gap before it, or none
};

struct Parts {
  std::array<Part, kMostParts> items;
  std::size_t count = 0;
};

/// Cuts a text into its parts. Gives nothing for a text that holds anything that no date has.
class Scanner {
 public:
  Scanner(std::string_view text, const Locale& locale) : text_(text), locale_(locale) {}

  std::optional<Parts> Scan() {
    Parts parts;
    for (;;) {
      Part part;
      if (!ScanGap(part)) {
        return std::nullopt;
      }
      if (at_ == text_.size()) {
        return part.mark_before == '\0' && parts.count > 0 ? std::optional(parts) : std::nullopt;
      }
      const bool read = IsDigit(text_[at_]) ? ScanNumber(part) : ScanWord(part);
      if (!read || parts.count == kMostParts || (parts.count == 0 && part.mark_before != '\0')) {
        return std::nullopt;
      }
      parts.items[parts.count++] = part;
    }
  }

 private:
  bool IsMark(char c) const {
    return std::string_view("/-.,:").find(c) != std::string_view::npos ||
           c == locale_.date_separator || c == locale_.time_separator;
  }

  bool ScanGap(Part& part) {
    while (at_ < text_.size()) {
      if (const std::size_t blank = BlankLength(text_.substr(at_)); blank > 0) {
        part.blank_before = true;
        at_ += blank;
      } else if (IsMark(text_[at_])) {
        if (part.mark_before != '\0') {
          return false;
        }
        part.mark_before = text_[at_++];
      } else {
        break;
      }
    }
    return true;
  }

  bool ScanNumber(Part& part) {
    part.is_number = true;
    while (at_ < text_.size() && IsDigit(text_[at_])) {
      if (++part.digits > kMostDigits) {
        return false;
      }
      part.value = part.value * 10 + (text_[at_++] - '0');
    }
    return true;
  }

  bool ScanWord(Part& part) {
    const std::size_t begin = at_;
    while (at_ < text_.size() && BlankLength(text_.substr(at_)) == 0) {
      const bool inner_hyphen = text_[at_] == '-' && at_ > begin && at_ + 1 < text_.size() &&
                                IsWordByte(text_[at_ + 1]) &&
                                BlankLength(text_.substr(at_ + 1)) == 0;
      if (!IsWordByte(text_[at_]) && !inner_hyphen) {
        break;
      }
      ++at_;
    }
    part.text = text_.substr(begin, at_ - begin);
    if (at_ < text_.size() && text_[at_] == '.') {
      ++at_;  // the dot of an abbreviation
    }
    return !part.text.empty();
  }

  const std::string_view text_;
  const Locale& locale_;
  std::size_t at_ = 0;
};

/// The form in which names are compared: lower case, no accents, no dot at the end.
std::string NameKey(std::string_view name) {
  // Lower-case letters from U+00E0 on; a blank where the letter stays as it is.
  constexpr std::string_view kWithoutAccent = "aaaaaa ceeeeiiii nooooo  uuuuy y";
  const std::string folded = FoldCase(name);
  std::string key;
  for (std::size_t i = 0; i < folded.size(); ++i) {
    const auto next = i + 1 < folded.size() ? static_cast<unsigned char>(folded[i + 1]) : 0u;
    if (folded[i] == '\xC3' && next >= 0xA0 && next <= 0xBF && kWithoutAccent[next - 0xA0] != ' ') {
      key.push_back(kWithoutAccent[next - 0xA0]);
      ++i;
    } else {
      key.push_back(folded[i]);
    }
  }
  if (key.ends_with('.')) {
    key.pop_back();
  }
  return key;
}

template <std::size_t N>
std::optional<int> FindName(const std::string& key, const std::array<std::string, N>& names) {
  for (std::size_t i = 0; i < N; ++i) {
    if (NameKey(names[i]) == key) {
      return static_cast<int>(i);
    }
  }
  return std::nullopt;
}

/// The only name that begins with `key`.
std::optional<int> FindBeginning(const std::string& key, const std::array<std::string, 12>& names) {
  constexpr std::size_t kLeastLetters = 3;
  std::optional<int> found;
  for (std::size_t i = 0; key.size() >= kLeastLetters && i < names.size(); ++i) {
    if (NameKey(names[i]).starts_with(key)) {
      if (found) {
        return std::nullopt;
      }
      found = static_cast<int>(i);
    }
  }
  return found;
}

/// The number of the month with this name, from 1.
std::optional<int> MonthOf(std::string_view word, const Locale& locale) {
  const std::string key = NameKey(word);
  std::optional<int> index;
  for (const Locale* in : {&locale, &DefaultLocale()}) {
    index = index ? index : FindName(key, in->months);
    index = index ? index : FindName(key, in->short_months);
  }
  for (const Locale* in : {&locale, &DefaultLocale()}) {
    index = index ? index : FindBeginning(key, in->months);
  }
  return index ? std::optional(*index + 1) : std::nullopt;
}

/// The number of the weekday with this name, Sunday 1 to Saturday 7.
std::optional<int> WeekdayOf(std::string_view word, const Locale& locale) {
  const std::string key = NameKey(word);
  std::optional<int> index;
  for (const Locale* in : {&locale, &DefaultLocale()}) {
    index = index ? index : FindName(key, in->weekdays);
    index = index ? index : FindName(key, in->short_weekdays);
  }
  return index ? std::optional((*index + 1) % 7 + 1) : std::nullopt;
}

/// Year, month and day that a text may mean; none of them checked.
struct Candidate {
  const Part* year;
  const Part* day;
  int month;
};

/// Reads the parts of one text. A part that is asked for must be there.
class DateReader {
 public:
  DateReader(const Parts& parts, const Locale& locale)
      : parts_(parts.items.data(), parts.count), locale_(locale) {}

  std::optional<Date> Read() {
    if (!TakeTime()) {
      return std::nullopt;
    }
    if (parts_.empty() || (DropLinks() && TakeWeekday() && ReadDay() && WeekdayFits())) {
      return MakeDate(civil_);
    }
    return std::nullopt;
  }

 private:
  using PartSpan = std::span<const Part>;

  bool IsTimeMark(char c) const { return c == ':' || c == locale_.time_separator; }

  /// Reads the time at either end of the parts, if there is one, and takes it off them.
  bool TakeTime() {
    std::size_t begin = 0;
    while (begin + 1 < parts_.size() && !IsTimeMark(parts_[begin + 1].mark_before)) {
      ++begin;
    }
    if (begin + 1 >= parts_.size()) {
      return true;
    }
    std::size_t end = begin + 2;
    end += end < parts_.size() && IsTimeMark(parts_[end].mark_before) ? 1 : 0;
    const PartSpan time = parts_.subspan(begin, end - begin);
    const bool has_suffix =
        end < parts_.size() && !parts_[end].is_number &&
        (EqualsIgnoreCase(parts_[end].text, "am") || EqualsIgnoreCase(parts_[end].text, "pm"));
    const std::string_view suffix = has_suffix ? parts_[end].text : std::string_view();
    end += has_suffix ? 1 : 0;
    if (!ReadTime(time, suffix) || (begin > 0 && !PartsDateAndTime(parts_[begin])) ||
        (end < parts_.size() && !PartsDateAndTime(parts_[end])) ||
        (begin > 0 && end < parts_.size())) {
      return false;
    }
    parts_ = begin > 0 ? parts_.first(begin) : parts_.subspan(end);
    return true;
  }

  static bool PartsDateAndTime(const Part& part) {
    return part.blank_before && (part.mark_before == '\0' || part.mark_before == ',');
  }

  bool ReadTime(PartSpan time, std::string_view suffix) {
    for (std::size_t i = 0; i < time.size(); ++i) {
      if (!time[i].is_number || time[i].digits > 2 || (i > 0 && time[i].blank_before)) {
        return false;
      }
    }
    civil_.hour = time[0].value;
    civil_.minute = time[1].value;
    civil_.second = time.size() > 2 ? time[2].value : 0;
    if (!suffix.empty()) {
      if (civil_.hour < 1 || civil_.hour > 12) {
        return false;
      }
      civil_.hour = civil_.hour % 12 + (EqualsIgnoreCase(suffix, "pm") ? 12 : 0);
    }
    return civil_.hour < 24 && civil_.minute < 60 && civil_.second < 60;
  }

  /// Leaves out the "de" of "15 de enero de 2024". Says no to more parts than a date has.
  bool DropLinks() {
    std::size_t count = 0;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      const bool inside = i > 0 && i + 1 < parts_.size();
      if (inside && !parts_[i].is_number && parts_[i].mark_before == '\0' &&
          EqualsIgnoreCase(parts_[i].text, "de")) {
        continue;
      }
      if (count == day_parts_.size()) {
        return false;
      }
      day_parts_[count++] = parts_[i];
    }
    parts_ = PartSpan(day_parts_).first(count);
    return true;
  }

  bool TakeWeekday() {
    const bool in_front = parts_.size() == 4 || (parts_.size() == 2 && parts_[1].digits == 8);
    if (!in_front) {
      return true;
    }
    weekday_ = parts_[0].is_number ? std::nullopt : WeekdayOf(parts_[0].text, locale_);
    parts_ = parts_.subspan(1);
    return weekday_.has_value();
  }

  bool WeekdayFits() const { return !weekday_ || WeekdayNumber(MakeDate(civil_)) == *weekday_; }

  bool ReadDay() {
    std::size_t words = 0;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      words += parts_[i].is_number ? 0 : 1;
      if (i > 0 && IsTimeMark(parts_[i].mark_before)) {
        return false;
      }
    }
    if (words == 0) {
      return parts_.size() == 1 ? ReadDigits() : parts_.size() == 3 && ReadNumbers();
    }
    return words == 1 && ReadNamed();
  }

  bool ReadDigits() {
    const int digits = parts_[0].value;
    return parts_[0].digits == 8 && Accept(digits / 10000, digits / 100 % 100, digits % 100);
  }

  bool ReadNumbers() {
    const char mark = parts_[1].mark_before;
    if (mark != parts_[2].mark_before || mark == ',') {
      return false;
    }
    return Try(InOrder(locale_.order)) ||
           (parts_[0].digits > 2
                ? Try(InOrder(DateOrder::kYearMonthDay))
                : Try(InOrder(DateOrder::kDayMonthYear)) || Try(InOrder(DateOrder::kMonthDayYear)));
  }

  Candidate InOrder(DateOrder order) const {
    const Part* const parts = parts_.data();
    const auto month = [](const Part& part) { return part.digits > 2 ? 0 : part.value; };
    switch (order) {
      case DateOrder::kYearMonthDay:
        return {parts, parts + 2, month(parts[1])};
      case DateOrder::kMonthDayYear:
        return {parts + 2, parts + 1, month(parts[0])};
      default:
        return {parts + 2, parts, month(parts[1])};
    }
  }

  bool ReadNamed() {
    const Part* const parts = parts_.data();
    const std::size_t at = parts_[0].is_number ? 1 : 0;
    if (parts_[at].is_number) {
      return false;  // the word stands last
    }
    const int month = MonthOf(parts_[at].text, locale_).value_or(0);
    if (parts_.size() == 2) {
      const Part& year = parts_[1 - at];
      return year.digits > 2 && year.digits <= 4 && Accept(year.value, month, 1);
    }
    if (parts_.size() != 3) {
      return false;
    }
    if (at == 0) {
      return Try({parts + 2, parts + 1, month});
    }
    return parts_[0].digits > 2 ? Try({parts, parts + 2, month}) : Try({parts + 2, parts, month});
  }

  bool Try(const Candidate& candidate) {
    constexpr int kFirstYearOf1900s = 30;
    if (candidate.day->digits > 2 || candidate.year->digits > 4) {
      return false;
    }
    int year = candidate.year->value;
    if (candidate.year->digits <= 2) {
      year += year < kFirstYearOf1900s ? 2000 : 1900;
    }
    return Accept(year, candidate.month, candidate.day->value);
  }

  bool Accept(int year, int month, int day) {
    if (!IsCalendarDay(year, month, day)) {
      return false;
    }
    civil_.year = year;
    civil_.month = month;
    civil_.day = day;
    return true;
  }

  PartSpan parts_;
  const Locale& locale_;
  std::array<Part, 4> day_parts_;
  std::optional<int> weekday_;
  CivilTime civil_;
};

std::optional<Date> ReadDate(std::string_view text, const Locale& locale) {
  const std::optional<Parts> parts = Scanner(text, locale).Scan();
  return parts ? DateReader(*parts, locale).Read() : std::nullopt;
}

}  // namespace

bool IsDate(std::string_view text, const Locale& locale) {
  return ReadDate(text, locale).has_value();
}

Date ParseDate(std::string_view text, const Locale& locale) {
  const std::optional<Date> date = ReadDate(text, locale);
  if (!date) {
    throw RuntimeError(kTypeMismatch,
                       "Type mismatch: \"" + ShownText(text) + "\" is no date in " + locale.name);
  }
  return *date;
}

}  // namespace nimbrel::platform
