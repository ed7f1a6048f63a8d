#include "bench/support/generated_plan.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "platform/date.h"

namespace nimbrel::bench {
namespace {

using engine::Plan;
using engine::Task;
using engine::Uid;

constexpr std::int32_t kFirstYear = 2027;
constexpr std::int32_t kMinutesPerWorkday = 480;
// Days that a task takes on the longest way through a layer, of durations from 2 to 20: found by
// trying. It sets how many layers make a year.
constexpr double kDaysPerLayer = 12;

/// SplitMix64: the same numbers everywhere.
class Generator {
 public:
  explicit Generator(std::uint64_t seed) : state_(seed) {}

  /// A whole number from 0 to `count` - 1.
  std::int32_t Below(std::int32_t count) { return static_cast<std::int32_t>(Fraction() * count); }
  bool Happens(double share) { return Fraction() < share; }
  double Fraction() { return static_cast<double>(Next() >> 11) * 0x1p-53; }

 private:
  std::uint64_t Next() {
    std::uint64_t bits = state_ += 0x9E3779B97F4A7C15u;
    bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9u;
    bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBu;
    return bits ^ (bits >> 31);
  }

  std::uint64_t state_;
};

std::int32_t BaseCalendars(const GeneratorOptions& options) {
  return std::clamp(options.base_calendars, 1, 5);
}

void AddBaseCalendars(const GeneratorOptions& options, Plan& plan) {
  struct Week {
    const char* name;
    int days;
    int hours;
  };
  constexpr Week kWeeks[] = {
      {"Office", 5, 8}, {"Yard", 6, 10}, {"Site", 7, 12}, {"Works", 5, 10}, {"Vessel", 7, 24}};
  for (std::int32_t i = 0; i < BaseCalendars(options); ++i) {
    engine::CalendarDefinition calendar =
        engine::MakeWeekCalendar(kWeeks[i].name, kWeeks[i].days, kWeeks[i].hours);
    if (kWeeks[i].hours < 24) {
      for (int year = kFirstYear; year < kFirstYear + 3 * options.years; ++year) {
        calendar.exceptions[platform::SerialDay(year, 1, 1)] = {};
        calendar.exceptions[platform::SerialDay(year, 5, 1)] = {};
        calendar.exceptions[platform::SerialDay(year, 12, 25)] = {};
        calendar.exceptions[platform::SerialDay(year, 12, 26)] = {};
      }
    }
    plan.AddCalendar(calendar);
  }
  plan.default_calendar = plan.calendars.front().uid;
}

/// An event calendar: a calendar that works every day, and the risk calendar in front of it.
void AddEventCalendars(const GeneratorOptions& options, Plan& plan) {
  for (std::int32_t i = 0; i < options.event_calendars; ++i) {
    const std::string name = "Weather " + std::to_string(i + 1);
    const Uid calendar =
        plan.AddCalendar(engine::MakeWeekCalendar(name, 7, plan.hours_per_day)).uid;
    plan.risk_calendars.push_back({plan.FreshUid(), name, "Weather calendar", calendar});
  }
}

/// Which event calendars the combination has. Up to eight sets for each base calendar differ, and
/// four of them use all of the first four event calendars.
std::vector<std::int32_t> EventCalendarsOf(std::int32_t combination,
                                           const GeneratorOptions& options) {
  constexpr std::uint32_t kSets[] = {0b0001, 0b0010, 0b1100, 0b0111,
                                     0b0100, 0b1000, 0b0011, 0b1111};
  const std::uint32_t set = kSets[combination / BaseCalendars(options) % 8];
  std::vector<std::int32_t> members;
  for (std::int32_t i = 0; i < options.event_calendars; ++i) {
    if ((set >> i & 1u) != 0) {
      members.push_back(i);
    }
  }
  return members;
}

void AddTasks(const GeneratorOptions& options, Generator& random, Plan& plan) {
  for (std::int32_t i = 0; i < options.tasks; ++i) {
    Task task;
    task.id = "T" + std::to_string(100000 + i);
    task.description = "Task " + std::to_string(i + 1);
    const std::int32_t combination = random.Below(std::max(options.combinations, 1));
    task.calendar =
        plan.calendars[static_cast<std::size_t>(combination % BaseCalendars(options))].uid;
    for (const std::int32_t member : EventCalendarsOf(combination, options)) {
      task.risk_calendars.push_back({plan.risk_calendars[static_cast<std::size_t>(member)].uid, 0});
    }
    const bool is_lift = random.Happens(options.no_split_share);
    const double likely = is_lift ? 1 + random.Below(3) : 2 + random.Below(19);
    task.remaining_minutes = static_cast<std::int32_t>(likely) * kMinutesPerWorkday;
    task.original_minutes = task.remaining_minutes;
    task.range =
        engine::ThreePoint{likely * 0.75, likely, likely * 1.5, engine::Shape::kTriangular};
    if (is_lift) {
      task.user_values.push_back({"weather", "nosplit", "True"});
    }
    plan.AddTask(task);
  }
}

engine::Link MakeLink(const GeneratorOptions& options, Generator& random) {
  engine::Link link;
  const double kind = random.Fraction();
  if (kind < options.finish_links) {
    link.type = engine::LinkType::kFinishToFinish;
  } else if (kind < options.finish_links + options.lagged_links) {
    link.type =
        random.Happens(0.5) ? engine::LinkType::kStartToStart : engine::LinkType::kFinishToStart;
    link.lag_minutes = (1 + random.Below(5)) * kMinutesPerWorkday;
  }
  return link;
}

/// Links each task to tasks of the layer before it.
void AddLinks(const GeneratorOptions& options, Generator& random, Plan& plan) {
  const double layers = std::max(1.0, options.years * 250 / kDaysPerLayer);
  const auto width = static_cast<std::int32_t>(std::ceil(options.tasks / layers));
  const auto whole = static_cast<std::int32_t>(options.links_per_task);
  for (std::int32_t i = width; i < options.tasks; ++i) {
    const std::int32_t layer = i - i % width;
    const std::int32_t count = whole + (random.Happens(options.links_per_task - whole) ? 1 : 0);
    std::vector<std::int32_t> taken;
    for (std::int32_t n = 0; n < std::min(count, width); ++n) {
      std::int32_t from = layer - width + random.Below(width);
      while (std::find(taken.begin(), taken.end(), from) != taken.end()) {
        from = layer - width + random.Below(width);
      }
      taken.push_back(from);
      engine::Link link = MakeLink(options, random);
      link.predecessor = plan.tasks()[static_cast<std::size_t>(from)].uid;
      link.successor = plan.tasks()[static_cast<std::size_t>(i)].uid;
      plan.links.push_back(link);
    }
  }
}

void AddPeriods(const GeneratorOptions& options, Plan& plan) {
  Task summary;
  summary.id = "WEATHER";
  summary.kind = engine::TaskKind::kSummary;
  summary.user_values = {{"weather", "tasktype", "10"}};
  const Uid parent = plan.AddTask(summary).uid;
  for (const engine::RiskCalendarDefinition& risk : plan.risk_calendars) {
    for (std::int32_t month = 0; month < options.years * 12; ++month) {
      Task period;
      period.id = plan.FreshTaskId();
      period.description = "Month " + std::to_string(month + 1);
      period.parent = parent;
      period.calendar = risk.calendar;
      const int year = kFirstYear + (month + 2) / 12;
      const int month_of_year = (month + 2) % 12 + 1;
      const platform::Date first = platform::MakeDate(year, month_of_year, 1);
      const platform::Date last = first + (platform::DaysInMonth(year, month_of_year) - 1);
      const double likely = options.likely_weather_days;
      period.range =
          engine::ThreePoint{likely / 2, likely, likely * 1.5, engine::Shape::kTriangular};
      period.remaining_minutes = static_cast<std::int32_t>(likely * kMinutesPerWorkday);
      period.original_minutes = period.remaining_minutes;
      if (options.event_probability < 100) {
        period.risk = engine::OccurrenceRisk{options.event_probability, 0};
      }
      period.user_values = {{"weather", "tasktype", "1"}};
      period.custom_values = {{"Weather-start", first}, {"Weather-end", last}};
      plan.AddTask(period);
    }
  }
  plan.custom_fields = {{"Weather-start", 2}, {"Weather-end", 3}};
  plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
}

}  // namespace

Plan GeneratePlan(const GeneratorOptions& options) {
  Generator random(options.seed);
  Plan plan;
  plan.name = "generated";
  plan.title = "Generated plan";
  plan.start = {platform::SerialDay(kFirstYear, 3, 1), 480};
  plan.time_unit = engine::TimeUnit::kDays;
  plan.hours_per_day = 8;
  AddBaseCalendars(options, plan);
  AddEventCalendars(options, plan);
  AddTasks(options, random, plan);
  AddLinks(options, random, plan);
  if (options.event_calendars > 0) {
    AddPeriods(options, plan);
  }
  return plan;
}

}  // namespace nimbrel::bench
