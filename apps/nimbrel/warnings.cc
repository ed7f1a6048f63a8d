#include "nimbrel/warnings.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "fmt/format.h"
#include "nimbrel/wiring.h"
#include "platform/date.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"

namespace nimbrel::cli {
namespace {

using engine::CalendarDefinition;
using engine::DayRange;
using engine::Instant;
using engine::Plan;
using engine::Task;
using engine::TimeUnit;
using engine::Uid;

constexpr double kCertain = 100;
constexpr std::int32_t kDaysLookedAhead = 5 * 366;

/// "3 periods of NORTH SEA, FROST" in order of first appearance.
class CountsByCalendar {
 public:
  explicit CountsByCalendar(const Plan& plan) : plan_(plan) {}
  void Add(const Task& task) {
    const CalendarDefinition* calendar = plan_.FindCalendar(task.calendar);
    const std::string name = calendar != nullptr ? calendar->name : "no calendar";
    if (std::find(names_.begin(), names_.end(), name) == names_.end()) {
      names_.push_back(name);
    }
    ++count_;
  }
  int count() const { return count_; }
  std::string Text(const std::string& what) const {
    return fmt::format("{} {}{} of {}", count_, what, count_ == 1 ? "" : "s",
                       fmt::join(names_, ", "));
  }

 private:
  const Plan& plan_;
  std::vector<std::string> names_;
  int count_ = 0;
};

/// A date stored with a weather task, or an absent one if it cannot be read.
Instant CustomDate(const Task& task, std::string_view field) {
  for (const engine::CustomValue& value : task.custom_values) {
    if (value.field == field) {
      try {
        return Instant::FromDate(value.value.ToDate(platform::DefaultLocale()));
      } catch (const platform::RuntimeError&) {
        return {};
      }
    }
  }
  return {};
}

Instant EdgeDate(const Task& task) {
  const std::string* text = task.FindUserValue("weather", "startdate");
  if (text == nullptr || !platform::IsDate(*text, platform::DefaultLocale())) {
    return {};
  }
  return Instant::FromDate(platform::ParseDate(*text, platform::DefaultLocale()));
}

/// A window's two edges as the plan holds them.
struct Window {
  const Task* start = nullptr;
  const Task* end = nullptr;
};

class WarningWriter {
 public:
  explicit WarningWriter(const Plan& plan) : plan_(plan) {
    for (const engine::Link& link : plan.links) {
      first_successor_.emplace(link.predecessor, link.successor);
    }
    for (const Task& task : plan.tasks()) {
      Sort(task);
    }
  }

  std::vector<std::string> Write() {
    if (!periods_.empty() || !windows_.empty()) {
      WarnOfMissingMark();
      if (plan_.time_unit != TimeUnit::kDays) {
        WarnOfBlocks();
        WarnOfWindowOffsets();
      }
      WarnOfIdleWeather();
    }
    if (IsWeatherPlan(plan_)) {
      for (const Task& task : plan_.tasks()) {
        if (IsNoSplit(task) && !CarriesWeather(task) && !task.IsFinished()) {
          WarnOfLongTask(task);
        }
      }
    }
    return std::move(warnings_);
  }

 private:
  void Sort(const Task& task) {
    const std::string role = WeatherRole(task);
    if (role == "1") {
      periods_.push_back(&task);
    } else if (role == "3") {
      const auto end = first_successor_.find(task.uid);
      windows_.push_back(
          {&task, end == first_successor_.end() ? nullptr : plan_.FindTask(end->second)});
    }
  }

  void WarnOfMissingMark() {
    if (!IsWeatherPlan(plan_)) {
      warnings_.push_back(
          "The plan has weather data but is not marked as a weather plan: it runs without weather");
    }
  }

  std::string UnitText() const {
    return plan_.time_unit == TimeUnit::kHours ? "hours" : "quarters of an hour";
  }

  void WarnOfBlocks() {
    CountsByCalendar blocks(plan_);
    for (const Task* period : periods_) {
      if (period->risk && period->risk->probability < kCertain) {
        blocks.Add(*period);
      }
    }
    if (blocks.count() > 0) {
      warnings_.push_back(fmt::format(
          "The plan is counted in {0}: {1} below 100% take each unit of their sampled length as "
          "a calendar day, so that a length of one day takes {2} days off in one block, and the "
          "block can start long after the period; import the plan in days to have whole days",
          UnitText(), blocks.Text("period"), UnitsPerDay()));
    }
  }

  void WarnOfWindowOffsets() {
    CountsByCalendar offsets(plan_);
    for (const Window& window : windows_) {
      const auto moves = [](const Task* edge) {
        return edge != nullptr && edge->range && edge->range->maximum > 0;
      };
      if (moves(window.start) || moves(window.end)) {
        offsets.Add(*window.start);
      }
    }
    const double share = UnitsPerDay() / static_cast<double>(plan_.time_unit);
    if (offsets.count() > 0 && share < 1) {
      warnings_.push_back(fmt::format(
          "The plan is counted in {}: {} move from their earliest dates by {:.0f}% only of the "
          "days that are given, because offsets are kept in working time and taken as time on "
          "the clock; import the plan in days to have whole days",
          UnitText(), offsets.Text("window"), 100 * share));
    }
  }

  int UnitsPerDay() const {
    return plan_.hours_per_day * (plan_.time_unit == TimeUnit::kQuarters ? 4 : 1);
  }

  void WarnOfIdleWeather() {
    std::unordered_set<Uid> assigned;
    for (const Task& task : plan_.tasks()) {
      for (const engine::RiskAssignment& assignment : task.risk_calendars) {
        if (const auto* risk_calendar = plan_.FindRiskCalendar(assignment.risk_calendar)) {
          assigned.insert(risk_calendar->calendar);
        }
      }
    }
    std::vector<std::string> idle;
    CountsByCalendar past(plan_);
    const auto look = [&](const Task& task, Instant end) {
      const CalendarDefinition* calendar = plan_.FindCalendar(task.calendar);
      if (calendar != nullptr && !assigned.contains(calendar->uid) &&
          std::find(idle.begin(), idle.end(), calendar->name) == idle.end()) {
        idle.push_back(calendar->name);
      }
      if (!end.IsAbsent() && end.day() < plan_.StatusDate().day()) {
        past.Add(task);
      }
    };
    for (const Task* period : periods_) {
      look(*period, CustomDate(*period, "Weather-end"));
    }
    for (const Window& window : windows_) {
      const Instant end = window.end != nullptr ? EdgeDate(*window.end) : Instant();
      const std::int32_t latest =
          end.IsAbsent() || !window.end->range
              ? 0
              : static_cast<std::int32_t>(window.end->range->maximum / UnitsOfADay());
      look(*window.start, end.IsAbsent() ? end : Instant(end.day() + latest, 0));
    }
    for (const std::string& name : idle) {
      warnings_.push_back(
          fmt::format("{} is assigned to no task: its weather delays nothing", name));
    }
    if (past.count() > 0) {
      warnings_.push_back(fmt::format("{} end before {}, where what remains of the plan starts",
                                      past.Text("period or window"),
                                      ToIsoText(plan_.StatusDate()).substr(0, 10)));
    }
  }

  double UnitsOfADay() const {
    return plan_.time_unit == TimeUnit::kDays ? 1.0 : static_cast<double>(UnitsPerDay());
  }

  // --- Tasks that must not be split ---

  /// Days that a window on one of these calendars takes in every iteration: from its latest start
  /// to its earliest finish.
  std::vector<DayRange> CertainDays(const std::unordered_set<Uid>& calendars) const {
    std::vector<DayRange> certain;
    for (const Window& window : windows_) {
      if (!calendars.contains(window.start->calendar) || window.end == nullptr) {
        continue;
      }
      const Instant start = EdgeDate(*window.start);
      const Instant end = EdgeDate(*window.end);
      if (start.IsAbsent() || end.IsAbsent()) {
        continue;
      }
      const double offset = window.start->range ? window.start->range->maximum : 0;
      const std::int32_t last_start =
          start.day() + static_cast<std::int32_t>(offset / UnitsOfADay());
      if (last_start <= end.day()) {
        certain.push_back({last_start, end.day()});
      }
    }
    return certain;
  }

  static bool Holds(const std::vector<DayRange>& ranges, std::int32_t day) {
    return std::any_of(ranges.begin(), ranges.end(), [day](const DayRange& range) {
      return range.first <= day && day <= range.last;
    });
  }

  static bool IsOff(const CalendarDefinition& calendar, std::int32_t day) {
    return engine::PatternOn(calendar, day).empty() || engine::IsTaken(calendar, day);
  }

  /// The longest stretch of working time, in minutes, between two days that cut a task: days that
  /// the weekly pattern works and that are off all the same. Negative if no day cuts it.
  std::int64_t LongestStretch(const CalendarDefinition& own,
                              const std::vector<const CalendarDefinition*>& others,
                              const std::vector<DayRange>& certain) const {
    std::int64_t longest = -1;
    std::int64_t stretch = 0;
    const std::int32_t first = plan_.StatusDate().day();
    for (std::int32_t day = first; day < first + kDaysLookedAhead; ++day) {
      const bool off = IsOff(own, day) || Holds(certain, day) ||
                       std::any_of(others.begin(), others.end(),
                                   [day](const auto* other) { return IsOff(*other, day); });
      if (!off) {
        stretch += MinutesOf(engine::PatternOn(own, day));
      } else if (!own.week[static_cast<std::size_t>(engine::WeekdayOf(day))].empty()) {
        longest = std::max(longest, stretch);
        stretch = 0;
      }
    }
    return longest;
  }

  void WarnOfLongTask(const Task& task) {
    const CalendarDefinition* own =
        plan_.FindCalendar(task.calendar != 0 ? task.calendar : plan_.default_calendar);
    if (own == nullptr) {
      return;
    }
    std::vector<const CalendarDefinition*> others;
    std::unordered_set<Uid> uids;
    for (const engine::RiskAssignment& assignment : task.risk_calendars) {
      const auto* risk_calendar = plan_.FindRiskCalendar(assignment.risk_calendar);
      const CalendarDefinition* behind =
          risk_calendar != nullptr ? plan_.FindCalendar(risk_calendar->calendar) : nullptr;
      if (behind != nullptr) {
        others.push_back(behind);
        uids.insert(behind->uid);
      }
    }
    const std::int64_t longest = LongestStretch(*own, others, CertainDays(uids));
    const std::int32_t needed = plan_.LikelyMinutes(task);
    if (longest >= 0 && needed > longest) {
      const double day = plan_.hours_per_day * 60.0;
      warnings_.push_back(fmt::format(
          "{} must not be split and takes {:.1f} days, but the longest stretch without a day off "
          "in its calendars is {:.1f} days: it will be pushed past all of them",
          task.id, needed / day, static_cast<double>(longest) / day));
    }
  }

  const Plan& plan_;
  std::unordered_map<Uid, Uid> first_successor_;
  std::vector<const Task*> periods_;
  std::vector<Window> windows_;
  std::vector<std::string> warnings_;
};

}  // namespace

std::vector<std::string> WeatherWarnings(const Plan& plan) {
  return WarningWriter(plan).Write();
}

}  // namespace nimbrel::cli
