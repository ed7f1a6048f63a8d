#include "tests/risk/weather_plan.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/cls_nimbrel.h"
#include "host/mod_global.h"
#include "platform/text.h"
#include "simulation/mod_weather_events.h"
#include "tests/support/schedule/schedule_check.h"

namespace nimbrel::engine {
namespace {

const Instant kFirstDay = ParseIsoText("2027-01-04");

std::string WeatherValue(const Task& task, const std::string& key) {
  const std::string* value = task.FindUserValue("weather", key);
  return value == nullptr ? "" : *value;
}

/// The first (0) and the last day (1) of a period.
double SpanDay(const Task& period, std::size_t end) {
  return period.custom_values[end].value.Get<platform::Date>()->serial;
}

/// The add-in, listening to one host for as long as this lives.
class AddIn {
 public:
  explicit AddIn(Host& host) {
    modGlobal::Wiring wiring;
    wiring.create_application = [&host] { return platform::Ref<Corvane8::Application>(&host); };
    modGlobal::Wire(std::move(wiring));
    host::Seams seams;
    seams.handlers = {modWeatherEvents::BeforeRiskAnalysis, modWeatherEvents::BeforeRiskIteration,
                      modWeatherEvents::AfterRiskIteration, modWeatherEvents::AfterRiskAnalysis};
    nimbrel_ = platform::MakeRef<host::clsNimbrel>(seams);
    nimbrel_->LaunchStartCorvane();
  }
  ~AddIn() {
    nimbrel_->LaunchStopCorvane();
    modWeatherEvents::ReleaseRunState();
    modGlobal::Wire({});
  }
  AddIn(const AddIn&) = delete;
  AddIn& operator=(const AddIn&) = delete;

 private:
  platform::Ref<host::clsNimbrel> nimbrel_;
};

/// A listener that is subscribed to one host for as long as this lives.
class Subscription {
 public:
  Subscription(Host& host, const Listener& listener) : host_(&host), listener_(listener) {
    host_->Subscribe(&listener_);
  }
  ~Subscription() { host_->Unsubscribe(&listener_); }
  Subscription(const Subscription&) = delete;
  Subscription& operator=(const Subscription&) = delete;

 private:
  platform::Ref<Host> host_;
  Listener listener_;
};

/// The host's plan with the durations of the running iteration in place of its ranges.
Plan AsScheduled(Host& host) {
  Plan plan = host.document();
  const Scheduler& scheduler = host.scheduler();
  for (TaskIndex index = 0; index < scheduler.task_count(); ++index) {
    Task* task = plan.FindTask(scheduler.TaskAt(index));
    if (task->kind == TaskKind::kTask && !task->IsFinished()) {
      task->range.reset();
      task->remaining_minutes = scheduler.remaining(index);
    }
  }
  return plan;
}

/// Hears each iteration after the add-in, and lets no schedule pass that breaks a link, a calendar
/// or a constraint.
Listener MakeChecker(Host& host) {
  Listener checker;
  checker.after_iteration = [&host](const Listener::PlanRef&, std::int32_t) {
    const std::vector<std::string> breaches = test::CheckSchedule(
        AsScheduled(host), [&host](const Task& task) { return host.Participates(task); },
        host.scheduler(), test::Checked::kEarly);
    if (!breaches.empty()) {
      throw std::logic_error("the schedule is wrong: " + breaches.front());
    }
  };
  return checker;
}

/// The add-in, and the checker behind it.
class CheckedAddIn {
 public:
  explicit CheckedAddIn(Host& host) : add_in_(host), checker_(host, MakeChecker(host)) {}

 private:
  AddIn add_in_;
  Subscription checker_;
};

}  // namespace

WeatherPlan::WeatherPlan(TimeUnit unit, int hours) {
  const CalendarDefinition seven = MakeWeekCalendar("SEVEN", 7, hours);
  plan.name = "Test";
  plan.start = {kFirstDay.day(), seven.week[0].front().begin};
  plan.time_unit = unit;
  plan.hours_per_day = hours;
  plan.default_calendar = plan.AddCalendar(seven).uid;
}

Task& WeatherPlan::AddTask(const std::string& id, double units,
                           const std::vector<std::string>& predecessors) {
  Task task;
  task.id = id;
  task.calendar = plan.default_calendar;
  task.remaining_minutes = static_cast<std::int32_t>(std::lround(units * plan.MinutesPerUnit()));
  task.original_minutes = task.remaining_minutes;
  for (const std::string& predecessor : predecessors) {
    plan.links.push_back({.predecessor = UidOf(predecessor), .successor = plan.next_uid()});
  }
  return plan.AddTask(task);
}

Task& WeatherPlan::AddTask(const std::string& id, const ThreePoint& range,
                           const std::vector<std::string>& predecessors) {
  Task& task = AddTask(id, range.likely, predecessors);
  task.range = range;
  return task;
}

void WeatherPlan::AddWeatherCalendar(const std::string& name) {
  const Uid calendar = plan.AddCalendar(MakeWeekCalendar(name, 7, plan.hours_per_day)).uid;
  plan.risk_calendars.push_back(
      {.uid = plan.FreshUid(), .name = name, .description = "", .calendar = calendar});
  if (plan.FindTask("WEATHER") == nullptr) {
    plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
    plan.custom_fields = {{"Weather-start", 2}, {"Weather-end", 3}};
    Task summary;
    summary.id = "WEATHER";
    summary.kind = TaskKind::kSummary;
    summary.user_values = {{"weather", "tasktype", "10"}};
    plan.AddTask(summary);
  }
}

Task& WeatherPlan::AddWeatherTask(const std::string& type, const std::string& calendar) {
  Task task;
  task.id = plan.FreshTaskId();
  task.parent = UidOf("WEATHER");
  task.calendar = plan.FindCalendar(calendar)->uid;
  task.user_values = {{"weather", "tasktype", type}};
  return plan.AddTask(task);
}

Task& WeatherPlan::AddPeriod(const std::string& calendar, int first, int last,
                             const ThreePoint& length, double probability) {
  Task& period = AddWeatherTask("1", calendar);
  period.range = length;
  if (probability < 100) {
    period.risk = {.probability = probability};
  }
  period.custom_values = {{"Weather-start", Instant(Serial(first), 0).ToDate()},
                          {"Weather-end", Instant(Serial(last), 0).ToDate()}};
  return period;
}

void WeatherPlan::AddWindow(const std::string& calendar, const std::array<int, 3>& start,
                            const std::array<int, 3>& finish) {
  const auto add_edge = [&](const std::string& type, const std::array<int, 3>& days) {
    Task& edge = AddWeatherTask(type, calendar);
    const auto units = [&](int offset) {
      return offset * 60.0 * plan.hours_per_day / plan.MinutesPerUnit();
    };
    edge.range = ThreePoint{0, units(days[1] - days[0]), units(days[2] - days[0])};
    edge.user_values.push_back(
        {"weather", "startdate", ToIsoText(Instant(Serial(days[0]), 0)).substr(0, 10)});
    return edge.uid;
  };
  const Uid opening = add_edge("3", start);
  const Uid closing = add_edge("4", finish);
  plan.links.push_back({.predecessor = opening, .successor = closing});
}

void WeatherPlan::Assign(const std::string& task, const std::string& calendar) {
  plan.FindTask(task)->risk_calendars.push_back({plan.FindRiskCalendar(calendar)->uid, 0.0});
}

void WeatherPlan::MarkNoSplit(const std::string& task) {
  plan.FindTask(task)->user_values.push_back({"weather", "nosplit", "True"});
}

int WeatherPlan::DayOf(Instant instant) {
  return instant.day() - kFirstDay.day() + 1;
}

std::int32_t WeatherPlan::Serial(int day) {
  return kFirstDay.day() + day - 1;
}

ThreePoint Always(double units) {
  return {units, units, units, Shape::kSingle};
}

void Listener::PlanBeforeRiskAnalysis(const PlanRef& plan) {
  if (before_analysis) {
    before_analysis(plan);
  }
}

void Listener::PlanBeforeRiskIteration(const PlanRef& plan, std::int32_t iteration) {
  if (before_iteration) {
    before_iteration(plan, iteration);
  }
}

void Listener::PlanAfterRiskIteration(const PlanRef& plan, std::int32_t iteration) {
  if (after_iteration) {
    after_iteration(plan, iteration);
  }
}

void Listener::PlanAfterRiskAnalysis(const PlanRef& plan) {
  if (after_analysis) {
    after_analysis(plan);
  }
}

RunWiring WithoutAddIn() {
  RunWiring wiring;
  wiring.host.carries_weather = [](const Task& task) {
    return !WeatherValue(task, "tasktype").empty();
  };
  wiring.no_split = [](const Task& task) { return WeatherValue(task, "nosplit") == "True"; };
  wiring.calendar_kind = [](const Plan&, const Task& task) -> std::string {
    const std::string type = WeatherValue(task, "tasktype");
    return type == "1" ? "event" : type == "3" || type == "4" ? "window" : "";
  };
  // Periods whose spans overlap.
  wiring.together = [](const Plan&, const Task& one, const Task& other) {
    return WeatherValue(one, "tasktype") == "1" && WeatherValue(other, "tasktype") == "1" &&
           SpanDay(one, 0) <= SpanDay(other, 1) && SpanDay(other, 0) <= SpanDay(one, 1);
  };
  return wiring;
}

RunWiring WithAddIn() {
  RunWiring wiring = WithoutAddIn();
  wiring.attach = [](Host& host) { return std::make_shared<CheckedAddIn>(host); };
  return wiring;
}

RunWiring WithUncheckedAddIn() {
  RunWiring wiring = WithoutAddIn();
  wiring.attach = [](Host& host) { return std::make_shared<AddIn>(host); };
  return wiring;
}

RunWiring WithListener(const Listener& listener) {
  RunWiring wiring = WithoutAddIn();
  wiring.attach = [listener](Host& host) { return std::make_shared<Subscription>(host, listener); };
  return wiring;
}

std::vector<int> DaysLate(const std::vector<Instant>& finishes, int day) {
  std::vector<int> late;
  late.reserve(finishes.size());
  for (const Instant finish : finishes) {
    late.push_back(WeatherPlan::DayOf(finish) - day);
  }
  return late;
}

void ExpectFrequencies(const std::vector<int>& values,
                       const std::function<double(int value)>& chance) {
  std::map<int, int> counts;
  for (const int value : values) {
    ++counts[value];
  }
  const auto total = static_cast<double>(values.size());
  ASSERT_GT(total, 0);
  double covered = 0;
  for (int value = counts.begin()->first - 100; value <= counts.rbegin()->first + 100; ++value) {
    const double p = chance(value);
    covered += p;
    const double expected = total * p;
    const double deviation = std::sqrt(expected * (1 - p));
    const auto found = counts.find(value);
    const int count = found == counts.end() ? 0 : found->second;
    EXPECT_NEAR(count, expected, 4.5 * deviation) << "of the value " << value;
  }
  EXPECT_NEAR(covered, 1.0, 1e-9) << "the chances do not add up";
}

}  // namespace nimbrel::engine
