#pragma once

#include <compare>
#include <cstdint>
#include <limits>
#include <string>

#include "platform/date.h"

namespace nimbrel::engine {

/// Minutes in a calendar day.
inline constexpr std::int32_t kMinutesPerDay = 1440;

/// A moment of local time to the minute: a day (as in platform::Date, days since 30 December 1899)
/// and a minute of that day from 0 to 1440.
///
/// Minute 1440 is the end of a day. It is the same moment as minute 0 of the next day, but says
/// that something finishes, not that something starts; `==` and `<` tell the two apart,
/// IsSameMoment does not. A default Instant is absent.
class Instant {
 public:
  constexpr Instant() = default;
  constexpr Instant(std::int32_t day, std::int32_t minute) : packed_((day << kShift) | minute) {}

  /// The moment rounded to the nearest minute, as a start (never minute 1440).
  static Instant FromDate(platform::Date date);
  /// The moment so many minutes after the midnight of day 0, as a start.
  static constexpr Instant FromMinutes(std::int64_t minutes) {
    return {static_cast<std::int32_t>(minutes / kMinutesPerDay),
            static_cast<std::int32_t>(minutes % kMinutesPerDay)};
  }

  constexpr bool IsAbsent() const { return packed_ == kAbsent; }
  constexpr std::int32_t day() const { return packed_ >> kShift; }
  constexpr std::int32_t minute() const { return packed_ & kMask; }

  /// Minutes since the midnight of day 0. The same for both forms of midnight.
  constexpr std::int64_t Minutes() const { return std::int64_t{day()} * kMinutesPerDay + minute(); }
  platform::Date ToDate() const;

  /// The same moment in the form of a start (00:00) and of a finish (24:00 of the day before).
  constexpr Instant AsStart() const {
    return minute() == kMinutesPerDay ? Instant(day() + 1, 0) : *this;
  }
  constexpr Instant AsFinish() const {
    return minute() == 0 ? Instant(day() - 1, kMinutesPerDay) : *this;
  }
  friend constexpr bool IsSameMoment(Instant a, Instant b) { return a.Minutes() == b.Minutes(); }

  /// One number, ordered as the moments are; for columns and for files.
  constexpr std::int32_t packed() const { return packed_; }
  static constexpr Instant FromPacked(std::int32_t packed) {
    Instant instant;
    instant.packed_ = packed;
    return instant;
  }

  // The linter takes the 0 that the compiler compares with for a pointer.
  friend constexpr auto operator<=>(Instant, Instant) = default;  // NOLINT(modernize-use-nullptr)

 private:
  static constexpr int kShift = 11;
  static constexpr std::int32_t kMask = (1 << kShift) - 1;
  static constexpr std::int32_t kAbsent = std::numeric_limits<std::int32_t>::min();

  std::int32_t packed_ = kAbsent;
};

/// "2027-03-01T08:00"; minute 1440 is shown as 24:00 of its day; an absent moment as "".
std::string ToIsoText(Instant instant);

/// Reads "YYYY-MM-DD" and "YYYY-MM-DD" with 'T' or a space and "HH:MM" or "HH:MM:SS" (seconds are
/// rounded to the minute; 24:00 is read as the end of the day). Gives an absent Instant for
/// anything else and for days that do not exist.
Instant ParseIsoText(const std::string& text);

}  // namespace nimbrel::engine
