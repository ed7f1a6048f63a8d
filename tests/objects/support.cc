#include "tests/objects/support.h"

namespace nimbrel::engine {

Plan MakePlan(TimeUnit unit) {
  Plan plan;
  plan.name = "Pier";
  plan.title = "The new pier";
  plan.start = Instant(JanuaryDay(4), 0);
  plan.time_unit = unit;
  plan.default_calendar = plan.AddCalendar(MakeWeekCalendar("STANDARD", 5, 8)).uid;
  return plan;
}

Task& AddTask(Plan& plan, const std::string& id, int days) {
  Task task;
  task.id = id;
  task.remaining_minutes = days * plan.hours_per_day * 60;
  task.original_minutes = task.remaining_minutes;
  return plan.AddTask(std::move(task));
}

void AddLink(Plan& plan, std::string_view predecessor, std::string_view successor) {
  Link link;
  link.predecessor = plan.FindTask(predecessor)->uid;
  link.successor = plan.FindTask(successor)->uid;
  plan.links.push_back(link);
}

bool CarriesWeather(const Task& task) {
  return task.FindUserValue("weather", "tasktype") != nullptr;
}

Ref<Host> MakeTestHost(Plan plan) {
  return MakeHost(std::move(plan), {.carries_weather = CarriesWeather, .path = "/opt/nimbrel"});
}

std::int32_t ErrorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const platform::RuntimeError& error) {
    return error.number();
  }
  return 0;
}

std::string ErrorTextOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const platform::RuntimeError& error) {
    return error.text();
  }
  return "";
}

void ObjectsTest::Open(const std::vector<std::pair<std::string, int>>& specs) {
  Plan plan = MakePlan();
  for (const auto& [id, days] : specs) {
    AddTask(plan, id, days);
  }
  Open(std::move(plan));
}

Ref<Corvane8::Calendar> ObjectsTest::AddWeather(const std::string& name, const std::string& task) {
  auto calendar = calendars()->Add(name);
  risk_calendars()->Add(name)->put_Calendar(calendar);
  TaskOf(task)->get_RiskCalendars()->Add(name);
  return calendar;
}

}  // namespace nimbrel::engine
