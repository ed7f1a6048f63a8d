#include "engine/calendar/instant.h"

#include <cmath>
#include <cstdio>

namespace nimbrel::engine {
namespace {

/// The last day that an Instant can hold lies in the year 4770.
constexpr std::int32_t kLastHeldDay = (1 << 20) - 1;

/// Reads exactly `count` digits at `at`; -1 if they are not there.
int ReadDigits(const std::string& text, std::size_t at, std::size_t count) {
  if (at + count > text.size()) {
    return -1;
  }
  int value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (text[i] < '0' || text[i] > '9') {
      return -1;
    }
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

/// Minute of the day of "HH:MM" or "HH:MM:SS" from `at` to the end of the text; -1 if it is
/// neither.
int ReadTimeOfDay(const std::string& text, std::size_t at) {
  const int hour = ReadDigits(text, at, 2);
  const int minute = ReadDigits(text, at + 3, 2);
  if (hour < 0 || minute < 0 || minute > 59 || text[at + 2] != ':') {
    return -1;
  }
  int second = 0;
  if (text.size() != at + 5) {
    second = ReadDigits(text, at + 6, 2);
    if (text.size() != at + 8 || text[at + 5] != ':' || second < 0 || second > 59) {
      return -1;
    }
  }
  const int total = hour * 60 + minute + (second >= 30 ? 1 : 0);
  return total > kMinutesPerDay ? -1 : total;
}

}  // namespace

Instant Instant::FromDate(platform::Date date) {
  return FromMinutes(static_cast<std::int64_t>(std::llround(date.serial * kMinutesPerDay)));
}

platform::Date Instant::ToDate() const {
  return {static_cast<double>(Minutes()) / kMinutesPerDay};
}

std::string ToIsoText(Instant instant) {
  if (instant.IsAbsent()) {
    return {};
  }
  const platform::CivilTime civil =
      platform::ToCivil(platform::Date{static_cast<double>(instant.day())});
  char text[48];
  std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d", civil.year, civil.month, civil.day,
                instant.minute() / 60, instant.minute() % 60);
  return text;
}

Instant ParseIsoText(const std::string& text) {
  const int year = ReadDigits(text, 0, 4);
  const int month = ReadDigits(text, 5, 2);
  const int day = ReadDigits(text, 8, 2);
  if (year < 100 || month < 1 || month > 12 || day < 1 || text[4] != '-' || text[7] != '-' ||
      day > platform::DaysInMonth(year, month)) {
    return {};
  }
  const std::int32_t serial = platform::SerialDay(year, month, day);
  if (serial > kLastHeldDay) {
    return {};
  }
  int minute = 0;
  if (text.size() > 10) {
    minute = text[10] == 'T' || text[10] == ' ' ? ReadTimeOfDay(text, 11) : -1;
    if (minute < 0) {
      return {};
    }
  }
  return {serial, minute};
}

}  // namespace nimbrel::engine
