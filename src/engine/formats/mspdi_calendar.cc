#include "engine/formats/mspdi_calendar.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/formats/recurrence.h"
#include "engine/formats/value_text.h"

namespace nimbrel::engine {
namespace {

const std::vector<FileShift>& StandardDay() {
  static const std::vector<FileShift> kDay = {{480, 720}, {780, 1020}};
  return kDay;
}

/// Minute of the day of "08:00:00".
int ReadClock(const XmlElement& element, const char* name) {
  const Instant moment = ParseIsoText("2000-01-01T" + std::string(element.Text(name)));
  if (moment.IsAbsent()) {
    element.FailChild(name, "a time of day as HH:MM:SS");
  }
  return moment.minute();
}

/// Reads one calendar. Keeps count of the days that it sets.
class CalendarReader {
 public:
  CalendarReader(const XmlFile& file, CalendarBuilder& builder, std::int64_t& single_days,
                 WarningList& warnings)
      : file_(file), builder_(builder), single_days_(single_days), warnings_(warnings) {}

  void Read(pugi::xml_node calendar) {
    const pugi::xml_node exceptions = calendar.child("Exceptions");
    const bool has_exceptions = !exceptions.child("Exception").empty();
    for (const pugi::xml_node day : calendar.child("WeekDays").children("WeekDay")) {
      ReadWeekDay(XmlElement(file_, day), has_exceptions);
    }
    for (const pugi::xml_node week : calendar.child("WorkWeeks").children("WorkWeek")) {
      ReadWorkWeek(XmlElement(file_, week));
    }
    for (const pugi::xml_node exception : exceptions.children("Exception")) {
      ReadException(XmlElement(file_, exception));
    }
  }

 private:
  using Shifts = std::vector<FileShift>;

  /// What an element with DayWorking and WorkingTimes says: no shifts on a day off.
  Shifts ReadShifts(const XmlElement& element) {
    if (!element.Flag("DayWorking", false)) {
      return {};
    }
    Shifts shifts;
    for (const pugi::xml_node node : element.node().child("WorkingTimes").children("WorkingTime")) {
      const XmlElement time(file_, node);
      if (!time.Has("FromTime") && !time.Has("ToTime")) {
        continue;  // one of five places that is not used
      }
      const int begin = ReadClock(time, "FromTime");
      const int end = ReadClock(time, "ToTime");
      shifts.push_back({begin % kMinutesPerDay, end == 0 ? kMinutesPerDay : end});
    }
    return shifts.empty() ? StandardDay() : shifts;
  }

  /// The days of an element's TimePeriod that a plan can have; nothing if it has none.
  std::optional<DayRange> ReadPeriod(const XmlElement& element) {
    const XmlElement period(file_, element.node().child("TimePeriod"));
    if (!period.Has("FromDate") || !period.Has("ToDate")) {
      element.Fail("expected FromDate and ToDate in TimePeriod, found none");
    }
    const auto day_of = [&period](const char* name) {
      const Instant moment = ParseIsoText(std::string(period.Text(name)));
      if (moment.IsAbsent()) {
        period.FailChild(name, "a date as YYYY-MM-DDTHH:MM:SS");
      }
      return moment.day();
    };
    const DayRange range{day_of("FromDate"), day_of("ToDate")};
    const DayRange within{std::max(range.first, kFirstPlanDay), std::min(range.last, kLastPlanDay)};
    if (within != range) {
      warnings_.Add("exceptions of calendars before 1950 or after 2150: cut to those years");
    }
    return within.first <= within.last ? std::optional(within) : std::nullopt;
  }

  void SetDay(const XmlElement& element, std::int32_t day, const Shifts& shifts) {
    if (++single_days_ > kMostSingleDays) {
      element.Fail("expected at most 2000000 single days in all calendars, found more");
    }
    builder_.SetException(day, shifts);
  }

  static std::int64_t ReadDayType(const XmlElement& element) {
    const std::int64_t type = element.Integer("DayType", -1);
    if (type < 0 || type > 7) {
      element.FailChild("DayType", "a number from 0 to 7");
    }
    return type;
  }

  void ReadWeekDay(const XmlElement& element, bool has_exceptions) {
    const std::int64_t type = ReadDayType(element);
    if (type > 0) {
      builder_.SetWeekday(static_cast<int>((type + 5) % 7), ReadShifts(element));
      return;
    }
    // Newer files say the same again among the exceptions, and there say how they recur.
    if (has_exceptions) {
      return;
    }
    const Shifts shifts = ReadShifts(element);
    if (const std::optional<DayRange> range = ReadPeriod(element)) {
      for (std::int32_t day = range->first; day <= range->last; ++day) {
        SetDay(element, day, shifts);
      }
    }
  }

  void ReadWorkWeek(const XmlElement& element) {
    std::array<std::optional<Shifts>, 7> week;
    for (const pugi::xml_node node : element.node().child("WeekDays").children("WeekDay")) {
      const XmlElement day(file_, node);
      const std::int64_t type = ReadDayType(day);
      if (type > 0) {
        week[static_cast<std::size_t>((type + 5) % 7)] = ReadShifts(day);
      }
    }
    const std::optional<DayRange> range = ReadPeriod(element);
    for (std::int32_t day = range ? range->first : 0; range && day <= range->last; ++day) {
      const std::optional<Shifts>& shifts = week[static_cast<std::size_t>(WeekdayOf(day))];
      if (shifts) {
        SetDay(element, day, *shifts);
      }
    }
  }

  static std::int32_t ReadPart(const XmlElement& element, const char* name, std::int64_t least,
                               std::int64_t most, std::int64_t fallback) {
    const std::int64_t value = element.Integer(name, fallback);
    if (value < least || value > most) {
      element.FailChild(name,
                        "a number from " + std::to_string(least) + " to " + std::to_string(most));
    }
    return static_cast<std::int32_t>(value);
  }

  void ReadException(const XmlElement& element) {
    const Shifts shifts = ReadShifts(element);
    const std::optional<DayRange> range = ReadPeriod(element);
    if (!range) {
      return;
    }
    Recurrence recurrence;
    recurrence.first = range->first;
    recurrence.last = range->last;
    recurrence.type = ReadPart(element, "Type", 0, 9, Recurrence::kDaily);
    recurrence.most =
        element.Flag("EnteredByOccurrences", false) ? element.Integer("Occurrences", 0) : 0;
    recurrence.period = ReadPart(element, "Period", 0, 1000, 1);
    recurrence.period = std::max(recurrence.period, 1);
    recurrence.weekdays = ReadPart(element, "DaysOfWeek", 0, 127, 0);
    recurrence.month = ReadPart(element, "Month", 0, 11, 0);
    recurrence.month_day = ReadPart(element, "MonthDay", 0, 31, 1);
    recurrence.month_item = ReadPart(element, "MonthItem", 0, 9, 0);
    recurrence.month_position = ReadPart(element, "MonthPosition", 0, 4, 0);
    ForEachDay(recurrence, [&](std::int32_t day) {
      SetDay(element, day, shifts);
      return true;
    });
  }

  const XmlFile& file_;
  CalendarBuilder& builder_;
  std::int64_t& single_days_;
  WarningList& warnings_;
};

}  // namespace

void ReadMspdiCalendar(const XmlFile& file, pugi::xml_node calendar, CalendarBuilder& builder,
                       std::int64_t& single_days, WarningList& warnings) {
  CalendarReader(file, builder, single_days, warnings).Read(calendar);
}

void SetStandardWeek(CalendarBuilder& builder) {
  for (int weekday = 0; weekday < 7; ++weekday) {
    if (!builder.HasWeekday(weekday)) {
      builder.SetWeekday(weekday, weekday < 5 ? StandardDay() : std::vector<FileShift>());
    }
  }
}

}  // namespace nimbrel::engine
