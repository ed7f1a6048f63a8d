#include "tests/plan/random_plan.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "platform/date.h"

namespace nimbrel::engine {
namespace {

int Number(int least, int most) {
  return *rc::gen::inRange(least, most + 1);
}

bool Coin() {
  return *rc::gen::arbitrary<bool>();
}

template <class Enum>
Enum AnyCode(Enum last) {
  return static_cast<Enum>(Number(0, static_cast<int>(last)));
}

/// Texts that a careless writer would change.
std::string AnyText() {
  return *rc::gen::oneOf(
      rc::gen::element<std::string>("", " ", "Ærø – 冬", "it's; DROP TABLE tasks", "100 %",
                                    std::string("a\0b", 3), "\xff\xfe no UTF-8", "two\nlines"),
      rc::gen::arbitrary<std::string>());
}

double AnyReal() {
  return *rc::gen::oneOf(
      rc::gen::element(0.0, -0.0, 1.0, 0.1, 1e300, std::numeric_limits<double>::denorm_min(),
                       std::nextafter(1.0, 2.0), -9007199254740993.0),
      rc::gen::suchThat(rc::gen::arbitrary<double>(), [](double x) { return std::isfinite(x); }));
}

std::int32_t AnyDay() {
  return *rc::gen::oneOf(rc::gen::inRange(40000, 50000),
                         rc::gen::element(platform::kFirstSerialDay, -1, 0, 1,
                                          // the last day that an Instant can hold
                                          (1 << 20) - 1));
}

/// Both forms of midnight among them.
Instant AnyInstant() {
  if (Coin()) {
    return {};
  }
  return {AnyDay(), *rc::gen::oneOf(rc::gen::inRange(0, 1441), rc::gen::element(0, 1440))};
}

DayPattern AnyPattern() {
  DayPattern pattern;
  int free_from = 0;
  for (int count = Number(0, 3); count > 0 && free_from < 1400; --count) {
    const int begin = Number(free_from, free_from + 20);
    const int end = Number(begin + 1, std::min(begin + 400, 1440));
    pattern.push_back({static_cast<std::int16_t>(begin), static_cast<std::int16_t>(end)});
    free_from = end;
  }
  return pattern;
}

CalendarDefinition AnyCalendar(int number) {
  CalendarDefinition calendar;
  calendar.name = AnyText() + std::to_string(number);
  for (DayPattern& pattern : calendar.week) {
    pattern = AnyPattern();
  }
  for (int count = Number(0, 4); count > 0; --count) {
    calendar.exceptions[AnyDay()] = AnyPattern();
  }
  std::int32_t first = Number(40000, 40100);
  for (int count = Number(0, 3); count > 0; --count) {
    const std::int32_t last = first + Number(0, 5);
    calendar.taken.push_back({first, last});
    first = last + Number(2, 9);
  }
  return calendar;
}

platform::Variant AnyVariant() {
  switch (Number(0, 5)) {
    case 0:
      return Coin();
    case 1:
      return *rc::gen::arbitrary<std::int32_t>();
    case 2:
      return AnyReal();
    case 3:
      return platform::Date{AnyReal()};
    case 4:
      return AnyText();
    default:
      return {};
  }
}

Uid AnyOf(const std::vector<Uid>& uids) {
  return uids.empty() || Number(0, 3) == 0 ? 0 : *rc::gen::elementOf(uids);
}

/// What the plan has to refer to.
struct References {
  std::vector<Uid> calendars, risk_calendars, tasks;
  std::vector<std::string> fields;
};

void AddLists(Task& task, const References& known) {
  for (int count = Number(0, 3); count > 0; --count) {
    task.user_values.push_back({AnyText(), AnyText(), AnyText()});
  }
  for (const std::string& field : known.fields) {
    if (Coin()) {
      task.custom_values.push_back({field, AnyVariant()});
    }
  }
  for (const Uid calendar : known.risk_calendars) {
    if (Coin()) {
      task.risk_calendars.push_back({calendar, AnyReal()});
    }
  }
}

void AddDates(Task& task) {
  task.constraint = {AnyCode(ConstraintType::kPlacedStart), AnyInstant()};
  task.second_constraint = {AnyCode(ConstraintType::kPlacedStart), AnyInstant()};
  task.actual_start = AnyInstant();
  task.actual_finish = AnyInstant();
  task.suspended = AnyInstant();
  task.resumed = AnyInstant();
  task.expected_finish = AnyInstant();
  task.stored = {AnyInstant(), AnyInstant(), AnyInstant(), AnyInstant(), std::nullopt};
  if (Coin()) {
    task.stored.total_float_minutes = *rc::gen::arbitrary<std::int32_t>();
  }
}

Task AnyTask(int number, const References& known) {
  Task task;
  task.id = AnyText() + "#" + std::to_string(number);
  task.description = AnyText();
  task.kind = AnyCode(TaskKind::kLevelOfEffort);
  task.parent = AnyOf(known.tasks);
  task.calendar = AnyOf(known.calendars);
  task.remaining_minutes = Number(0, 1000000);
  task.original_minutes = Number(0, 1000000);
  task.percent_complete = Number(0, 10000) / 100.0;
  task.stream = *rc::gen::arbitrary<std::uint64_t>();
  if (Coin()) {
    task.range = ThreePoint{AnyReal(), AnyReal(), AnyReal(), AnyCode(Shape::kSingle)};
  }
  if (Coin()) {
    task.risk = OccurrenceRisk{AnyReal(), *rc::gen::arbitrary<std::int32_t>()};
  }
  AddDates(task);
  AddLists(task, known);
  return task;
}

void AddProperties(Plan& plan, const References& known) {
  plan.name = AnyText();
  plan.title = AnyText();
  plan.start = AnyInstant();
  plan.data_date = AnyInstant();
  plan.time_unit = *rc::gen::element(TimeUnit::kDays, TimeUnit::kHours, TimeUnit::kQuarters);
  plan.hours_per_day = Number(1, 24);
  plan.date_format = Number(0, 14);
  plan.default_calendar = AnyOf(known.calendars);
  plan.recalculate_after_move = Coin();
  plan.schedule = {AnyCode(ProgressRule::kActualDates),
                   AnyCode(FloatRule::kSmaller),
                   Coin(),
                   Coin(),
                   AnyInstant(),
                   *rc::gen::arbitrary<std::int32_t>(),
                   Coin(),
                   Coin()};
  for (int count = Number(0, 3); count > 0; --count) {
    plan.options[{AnyText(), AnyText(), AnyText()}] = AnyText();
  }
}

void AddCalendars(Plan& plan, References& known) {
  for (int count = Number(0, 3); count > 0; --count) {
    known.calendars.push_back(plan.AddCalendar(AnyCalendar(count)).uid);
  }
  for (int count = Number(0, 3); count > 0; --count) {
    known.risk_calendars.push_back(plan.FreshUid());
    plan.risk_calendars.push_back({known.risk_calendars.back(), AnyText() + std::to_string(count),
                                   AnyText(), AnyOf(known.calendars)});
  }
  for (int count = Number(0, 2); count > 0; --count) {
    known.fields.push_back(AnyText() + std::to_string(count));
    plan.custom_fields.push_back({known.fields.back(), *rc::gen::arbitrary<std::int32_t>()});
  }
}

void AddTasks(Plan& plan, References& known) {
  for (int count = Number(0, 8); count > 0; --count) {
    known.tasks.push_back(plan.AddTask(AnyTask(count, known)).uid);
  }
  if (known.tasks.empty()) {
    return;
  }
  for (int count = Number(0, 8); count > 0; --count) {
    plan.links.push_back({*rc::gen::elementOf(known.tasks), *rc::gen::elementOf(known.tasks),
                          AnyCode(LinkType::kStartToFinish), *rc::gen::arbitrary<std::int32_t>(),
                          AnyCode(LagCalendar::kElapsed)});
  }
  for (int count = Number(0, 2); count > 0 && known.tasks.size() > 1; --count) {
    plan.correlations.push_back(
        {{known.tasks.front(), known.tasks.back()}, {}, Number(-9, 9) / 9.0});
  }
  if (Coin()) {
    plan.correlations.push_back({{}, {AnyText() + "1", AnyText() + "2"}, 0.5});
  }
  // So that the order is not the order of the numbers, and some numbers are no longer used.
  plan.MoveTaskToEnd(known.tasks.front());
  if (Coin()) {
    plan.RemoveTask(known.tasks.back());
  }
}

}  // namespace

rc::Gen<Plan> AnyPlan() {
  return rc::gen::exec([] {
    Plan plan;
    References known;
    AddCalendars(plan, known);
    AddTasks(plan, known);
    AddProperties(plan, known);
    return plan;
  });
}

}  // namespace nimbrel::engine
