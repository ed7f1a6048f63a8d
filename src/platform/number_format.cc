#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <string>

#include "platform/locale.h"
#include "platform/runtime_error.h"
#include "platform/shown_text.h"
#include "platform/text.h"

namespace nimbrel::platform {
namespace {

constexpr int kSignificantDigits = 15;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

/// A number in decimal: the value is 0.d1d2d3... times ten to the power of `point`.
struct Decimal {
  bool negative = false;
  std::string digits;  // without zeros at either end; empty for zero
  int point = 0;       // number of digits before the decimal mark; may be negative
};

Decimal ToDecimal(double value) {
  if (!std::isfinite(value)) {
    throw RuntimeError(kOverflow, "Overflow: no finite number");
  }
  Decimal decimal;
  if (value == 0.0) {
    return decimal;
  }
  decimal.negative = value < 0;
  std::array<char, 40> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), std::abs(value),
                                     std::chars_format::scientific, kSignificantDigits - 1);
  const std::string_view scientific(text.data(),
                                    static_cast<std::size_t>(written.ptr - text.data()));
  const std::size_t mark = scientific.find('e');
  for (const char c : scientific.substr(0, mark)) {
    if (IsDigit(c)) {
      decimal.digits.push_back(c);
    }
  }
  decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
  std::string_view exponent = scientific.substr(mark + 1);
  exponent.remove_prefix(exponent.front() == '+' ? 1 : 0);
  std::from_chars(exponent.data(), exponent.data() + exponent.size(), decimal.point);
  ++decimal.point;
  return decimal;
}

/// Rounds to `places` digits behind the decimal mark, halves away from zero.
void Round(Decimal& decimal, int places) {
  const int kept = decimal.point + places;
  if (kept >= static_cast<int>(decimal.digits.size())) {
    return;
  }
  const bool up = kept >= 0 && decimal.digits[static_cast<std::size_t>(kept)] >= '5';
  decimal.digits.resize(static_cast<std::size_t>(kept > 0 ? kept : 0));
  if (up) {
    while (!decimal.digits.empty() && decimal.digits.back() == '9') {
      decimal.digits.pop_back();
    }
    if (decimal.digits.empty()) {
      // All nines, or nothing before the half: one unit in the place before the kept digits.
      decimal.digits = "1";
      decimal.point = kept > 0 ? decimal.point + 1 : 1 - places;
    } else {
      ++decimal.digits.back();
    }
  }
  decimal.digits.erase(decimal.digits.find_last_not_of('0') + 1);
}

/// The digit that stands `place` places before the decimal mark (0 for the units, -1 for the
/// tenths).
char DigitAt(const Decimal& decimal, int place) {
  const int index = decimal.point - 1 - place;
  const bool inside = index >= 0 && index < static_cast<int>(decimal.digits.size());
  return inside ? decimal.digits[static_cast<std::size_t>(index)] : '0';
}

/// What a pattern asks for.
struct NumberPattern {
  std::string_view prefix;
  std::string_view suffix;
  bool has_places = false;
  int whole_places = 0;     // digits that are always shown before the decimal mark
  int fraction_places = 0;  // most digits behind the mark
  int least_fraction = 0;   // digits that are always shown behind it
  bool mark = false;        // the mark is shown even with nothing behind it
  bool grouped = false;
  bool percent = false;
};

NumberPattern ReadPattern(std::string_view pattern) {
  constexpr std::string_view kPlaces = "0#.,";
  NumberPattern result;
  result.percent = pattern.find('%') != std::string_view::npos;
  const std::size_t first = pattern.find_first_of("0#");
  if (first == std::string_view::npos) {
    result.prefix = pattern;
    return result;
  }
  result.has_places = true;
  // A mark right before the first digit place belongs to the places: ".00".
  const std::size_t begin = first > 0 && pattern[first - 1] == '.' ? first - 1 : first;
  std::size_t end = pattern.find_first_not_of(kPlaces, begin);
  end = end == std::string_view::npos ? pattern.size() : end;
  result.prefix = pattern.substr(0, begin);
  result.suffix = pattern.substr(end);
  for (const char c : pattern.substr(begin, end - begin)) {
    if (c == '.') {
      result.mark = true;
    } else if (c == ',') {
      result.grouped = true;
    } else if (result.mark) {
      ++result.fraction_places;
      result.least_fraction = c == '0' ? result.fraction_places : result.least_fraction;
    } else if (c == '0' || result.whole_places > 0) {
      ++result.whole_places;
    }
  }
  return result;
}

void AppendPlaces(const Decimal& decimal, const NumberPattern& pattern, const Locale& locale,
                  std::string& text) {
  const int whole = decimal.digits.empty() ? 0 : decimal.point;
  for (int place = (whole > pattern.whole_places ? whole : pattern.whole_places) - 1; place >= 0;
       --place) {
    text.push_back(DigitAt(decimal, place));
    if (pattern.grouped && place > 0 && place % 3 == 0) {
      text += locale.thousands;
    }
  }
  int fraction = static_cast<int>(decimal.digits.size()) - decimal.point;
  fraction = decimal.digits.empty() || fraction < pattern.least_fraction ? pattern.least_fraction
                                                                         : fraction;
  if (pattern.mark) {
    text += locale.decimal;
  }
  for (int place = 1; place <= fraction; ++place) {
    text.push_back(DigitAt(decimal, -place));
  }
}

std::size_t SkipDigits(std::string_view text, std::size_t from) {
  while (from < text.size() && IsDigit(text[from])) {
    ++from;
  }
  return from;
}

/// Length of the mark that separates groups of three at `at`, or 0. Where a blank separates them,
/// every kind of blank does.
std::size_t GroupMark(std::string_view text, std::size_t at, const Locale& locale) {
  constexpr std::array<std::string_view, 3> kBlanks = {" ", "\u00A0", "\u202F"};
  const std::string_view rest = text.substr(at);
  if (!locale.thousands.empty() && rest.starts_with(locale.thousands)) {
    return locale.thousands.size();
  }
  for (const std::string_view own : kBlanks) {
    for (const std::string_view blank : kBlanks) {
      if (locale.thousands == own && rest.starts_with(blank)) {
        return blank.size();
      }
    }
  }
  return 0;
}

/// Appends the digits of the whole part at `at` to `plain` and returns where it ends; npos if it
/// is grouped otherwise than in threes.
std::size_t ReadWhole(std::string_view text, std::size_t at, const Locale& locale,
                      std::string& plain) {
  std::size_t end = SkipDigits(text, at);
  plain += text.substr(at, end - at);
  std::size_t mark = GroupMark(text, end, locale);
  if (mark != 0 && (end - at == 0 || end - at > 3)) {
    return std::string_view::npos;
  }
  while (mark != 0) {
    at = end + mark;
    end = SkipDigits(text, at);
    if (end - at != 3) {
      return std::string_view::npos;
    }
    plain += text.substr(at, 3);
    mark = GroupMark(text, end, locale);
  }
  return end;
}

/// Appends an exponent at `at`, if there is one, and returns where it ends.
std::size_t ReadExponent(std::string_view text, std::size_t at, std::string& plain) {
  if (at >= text.size() || (text[at] != 'e' && text[at] != 'E')) {
    return at;
  }
  std::size_t digits = at + 1;
  const bool sign = digits < text.size() && (text[digits] == '+' || text[digits] == '-');
  const bool minus = sign && text[digits] == '-';
  digits += sign ? 1 : 0;
  const std::size_t end = SkipDigits(text, digits);
  if (end == digits) {
    return at;
  }
  plain += minus ? "e-" : "e";
  plain += text.substr(digits, end - digits);
  return end;
}

/// The text in the form that std::from_chars reads, or an empty one if it is no number.
std::string PlainNumber(std::string_view text, const Locale& locale) {
  text = Trim(text);
  std::string plain;
  std::size_t at = 0;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    plain = text[0] == '-' ? "-" : "";
    at = 1;
  }
  const std::size_t sign = plain.size();
  at = ReadWhole(text, at, locale, plain);
  if (at == std::string_view::npos) {
    return {};
  }
  std::size_t digits = plain.size() - sign;
  if (text.substr(at).starts_with(locale.decimal)) {
    at += locale.decimal.size();
    const std::size_t end = SkipDigits(text, at);
    if (digits == 0) {
      plain.push_back('0');
    }
    if (end > at) {
      plain.push_back('.');
      plain += text.substr(at, end - at);
    }
    digits += end - at;
    at = end;
  }
  if (digits == 0) {
    return {};
  }
  return ReadExponent(text, at, plain) == text.size() ? plain : std::string();
}

/// Whether `text` is a number; if so it is put into `value`.
bool ReadNumber(std::string_view text, const Locale& locale, double& value) {
  const std::string plain = PlainNumber(text, locale);
  return !plain.empty() &&
         std::from_chars(plain.data(), plain.data() + plain.size(), value).ec == std::errc();
}

}  // namespace

std::string FormatNumber(double value, std::string_view pattern, const Locale& locale) {
  if (pattern.empty()) {
    return DefaultNumberText(value, locale);
  }
  const NumberPattern wanted = ReadPattern(pattern);
  Decimal decimal = ToDecimal(value);
  std::string text;
  if (wanted.has_places) {
    decimal.point += wanted.percent ? 2 : 0;
    Round(decimal, wanted.fraction_places);
    text = decimal.negative && !decimal.digits.empty() ? "-" : "";
  }
  text += wanted.prefix;
  if (wanted.has_places) {
    AppendPlaces(decimal, wanted, locale, text);
  }
  text += wanted.suffix;
  return text;
}

std::string DefaultNumberText(double value, const Locale& locale) {
  constexpr int kLeastPoint = -4;  // 0.00001
  const Decimal decimal = ToDecimal(value);
  NumberPattern pattern;
  pattern.whole_places = 1;
  std::string text = decimal.negative ? "-" : "";
  if (decimal.digits.empty() ||
      (decimal.point >= kLeastPoint && decimal.point <= kSignificantDigits)) {
    pattern.mark = static_cast<int>(decimal.digits.size()) > decimal.point;
    AppendPlaces(decimal, pattern, locale, text);
    return text;
  }
  const int exponent = decimal.point - 1;
  Decimal mantissa = decimal;
  mantissa.point = 1;
  pattern.mark = mantissa.digits.size() > 1;
  AppendPlaces(mantissa, pattern, locale, text);
  const std::string power = std::to_string(std::abs(exponent));
  text += exponent < 0 ? "E-" : "E+";
  text.append(power.size() < 2 ? 1 : 0, '0');
  text += power;
  return text;
}

bool IsNumeric(std::string_view text, const Locale& locale) {
  double value = 0;
  return ReadNumber(text, locale, value);
}

double ParseNumber(std::string_view text, const Locale& locale) {
  double value = 0;
  if (!ReadNumber(text, locale, value)) {
    throw RuntimeError(kTypeMismatch,
                       "Type mismatch: \"" + ShownText(text) + "\" is no number in " + locale.name);
  }
  return value;
}

}  // namespace nimbrel::platform
