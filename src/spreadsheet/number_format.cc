#include "spreadsheet/number_format.h"

#include <array>
#include <cstddef>

#include "platform/text.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::size_t kLongestFormat = 255;

/// Walks over a format and calls `letter` for each character that is neither quoted, in brackets,
/// nor taken by a sign in front of it. False if a quote, a bracket or such a pair is not complete.
template <class Letter>
bool WalkFormat(std::string_view format, Letter letter) {
  for (std::size_t i = 0; i < format.size(); ++i) {
    switch (format[i]) {
      case '"':
      case '[':
        i = format.find(format[i] == '"' ? '"' : ']', i + 1);
        if (i == std::string_view::npos) {
          return false;
        }
        break;
      case '\\':
      case '_':
      case '*':
        if (++i == format.size()) {
          return false;
        }
        break;
      default:
        letter(format[i]);
    }
  }
  return true;
}

}  // namespace

bool IsDateFormat(std::string_view format) {
  if (platform::EqualsIgnoreCase(format, "General") ||
      platform::EqualsIgnoreCase(format, "Standard")) {
    return false;
  }
  bool is_date = false;
  WalkFormat(format, [&](char c) {
    is_date = is_date || std::string_view("dmyhsDMYHS").find(c) != std::string_view::npos;
  });
  return is_date;
}

bool IsNumberFormat(std::string_view format) {
  return !format.empty() && format.size() <= kLongestFormat && WalkFormat(format, [](char) {});
}

std::string_view BuiltInNumberFormat(std::int32_t id) {
  static constexpr std::array<std::string_view, 23> kFirst = {
      "General", "0", "0.00", "#,##0", "#,##0.00",
      // Money, the same in the end for whoever only asks whether a number is a date.
      "$#,##0_);($#,##0)", "$#,##0_);[Red]($#,##0)", "$#,##0.00_);($#,##0.00)",
      "$#,##0.00_);[Red]($#,##0.00)", "0%", "0.00%", "0.00E+00", "# ?/?", "# ?\?/?\?", "m/d/yyyy",
      "d-mmm-yy", "d-mmm", "mmm-yy", "h:mm AM/PM", "h:mm:ss AM/PM", "h:mm", "h:mm:ss",
      "m/d/yyyy h:mm"};
  static constexpr std::array<std::string_view, 13> kSecond = {
      "#,##0_);(#,##0)",
      "#,##0_);[Red](#,##0)",
      "#,##0.00_);(#,##0.00)",
      "#,##0.00_);[Red](#,##0.00)",
      "_(* #,##0_);_(* (#,##0);_(* \"-\"_);_(@_)",
      "_($* #,##0_);_($* (#,##0);_($* \"-\"_);_(@_)",
      "_(* #,##0.00_);_(* (#,##0.00);_(* \"-\"??_);_(@_)",
      "_($* #,##0.00_);_($* (#,##0.00);_($* \"-\"??_);_(@_)",
      "mm:ss",
      "[h]:mm:ss",
      "mm:ss.0",
      "##0.0E+0",
      "@"};
  constexpr std::int32_t kSecondStart = 37;
  if (id >= 0 && id < static_cast<std::int32_t>(kFirst.size())) {
    return kFirst[static_cast<std::size_t>(id)];
  }
  if (id >= kSecondStart && id < kSecondStart + static_cast<std::int32_t>(kSecond.size())) {
    return kSecond[static_cast<std::size_t>(id - kSecondStart)];
  }
  if ((id >= 27 && id <= 36) || (id >= 50 && id <= 58)) {
    return "m/d/yyyy";
  }
  return {};
}

}  // namespace nimbrel::spreadsheet
