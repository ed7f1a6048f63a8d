#include "tests/support/host/plan_state.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "platform/number.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::recording {

namespace {

using platform::EqualsIgnoreCase;

constexpr std::int64_t kMinutesPerDay = 24 * 60;
constexpr std::int64_t kOpening = 8 * 60;          // minute at which a worked day begins
constexpr std::int64_t kLongestWalk = 200L * 366;  // days; a task without work would never end

template <class T>
std::shared_ptr<T> Find(const std::vector<std::shared_ptr<T>>& items, std::string_view key,
                        std::string T::*name) {
  const auto found = std::find_if(items.begin(), items.end(), [&](const std::shared_ptr<T>& item) {
    return EqualsIgnoreCase((*item).*name, key);
  });
  return found == items.end() ? nullptr : *found;
}

std::int64_t MinutesOf(platform::Date date) {
  return std::llround(date.serial * static_cast<double>(kMinutesPerDay));
}

platform::Date DateOf(std::int64_t minutes) {
  return {static_cast<double>(minutes) / static_cast<double>(kMinutesPerDay)};
}

/// Schedules one task after another, each behind those that it depends on.
class Scheduler {
 public:
  explicit Scheduler(PlanState& plan) : plan_(plan) {}

  void Run() {
    for (const auto& task : plan_.tasks) {
      Place(*task);
    }
  }

 private:
  void Place(TaskState& task) {
    if (!done_.insert(&task).second) {
      return;
    }
    std::int64_t moment = MinutesOf(plan_.anchor);
    for (const auto& other : plan_.tasks) {
      for (const auto& successor : other->successors) {
        if (successor.lock().get() == &task) {
          Place(*other);
          moment = std::max(moment, MinutesOf(other->finish));
        }
      }
    }
    if (task.constraint == 3) {
      moment = std::max(moment, MinutesOf(task.constraint_date));
    }
    Walk(task, moment);
  }

  void Walk(TaskState& task, std::int64_t moment) {
    const std::int64_t hours = plan_.hours_per_day;
    const double units = plan_.in_iteration ? task.sample
                         : task.duration    ? task.duration->likely
                                            : 0.0;
    auto left = std::llround(units * static_cast<double>(hours * 60) / plan_.UnitsPerDay());
    task.start = task.finish = DateOf(moment);
    bool begun = false;
    const std::int64_t last_day = moment / kMinutesPerDay + kLongestWalk;
    while (left > 0) {
      const std::int64_t day = moment / kMinutesPerDay;
      if (day > last_day) {
        throw platform::RuntimeError(platform::kApplicationDefined,
                                     "The task finds no working time: " + task.id);
      }
      const std::int64_t opening = day * kMinutesPerDay + kOpening;
      const std::int64_t closing = opening + hours * 60;
      moment = std::max(moment, opening);
      if (plan_.Worked(task, static_cast<std::int32_t>(day)) && moment < closing) {
        if (!begun) {
          task.start = DateOf(moment);
          begun = true;
        }
        const std::int64_t taken = std::min<std::int64_t>(left, closing - moment);
        left -= taken;
        task.finish = DateOf(moment + taken);
      }
      moment = (day + 1) * kMinutesPerDay;
    }
  }

  PlanState& plan_;
  std::set<const TaskState*> done_;
};

}  // namespace

bool CalendarState::Worked(std::int32_t day) const {
  // Day 2, 1 January 1900, was a Monday.
  const auto weekday = static_cast<std::size_t>(((day - 2) % 7 + 7) % 7);
  return weekdays[weekday] && !holidays.contains(day) && !weather.contains(day);
}

void TaskState::SetWeatherValue(std::string_view key, std::string_view value) {
  values[{"weather", std::string(key)}] = std::string(value);
}

std::string TaskState::WeatherValue(std::string_view key) const {
  const auto found = values.find({"weather", std::string(key)});
  return found == values.end() ? "" : found->second;
}

TaskState& PlanState::Task(std::string_view wanted) const {
  const auto task = FindTask(wanted);
  if (!task) {
    throw std::out_of_range("no task " + std::string(wanted));
  }
  return *task;
}

CalendarState& PlanState::Calendar(std::string_view wanted) const {
  const auto calendar = FindCalendar(wanted);
  if (!calendar) {
    throw std::out_of_range("no calendar " + std::string(wanted));
  }
  return *calendar;
}

std::shared_ptr<TaskState> PlanState::FindTask(std::string_view id) const {
  return Find(tasks, id, &TaskState::id);
}

std::shared_ptr<CalendarState> PlanState::FindCalendar(std::string_view wanted) const {
  return Find(calendars, wanted, &CalendarState::name);
}

std::shared_ptr<RiskCalendarState> PlanState::FindRiskCalendar(std::string_view wanted) const {
  return Find(risk_calendars, wanted, &RiskCalendarState::name);
}

std::shared_ptr<CalendarState> PlanState::AddCalendar(std::string_view wanted) {
  auto calendar = std::make_shared<CalendarState>();
  calendar->name = std::string(wanted);
  calendars.push_back(calendar);
  return calendar;
}

std::shared_ptr<TaskState> PlanState::AddTask(std::string_view id, double duration,
                                              std::string_view calendar) {
  auto task = std::make_shared<TaskState>();
  task->id = std::string(id);
  task->duration = DurationState{duration, duration, duration};
  task->calendar = FindCalendar(calendar);
  tasks.push_back(task);
  return task;
}

std::shared_ptr<TaskState> PlanState::AddWeatherSummary() {
  auto summary = AddTask("WEATHER", 0.0);
  summary->duration.reset();
  summary->calendar = nullptr;
  summary->SetWeatherValue("tasktype", "10");
  return summary;
}

std::shared_ptr<TaskState> PlanState::AddPeriod(std::string_view id, std::string_view calendar,
                                                platform::Date start, platform::Date end) {
  if (!FindCalendar(calendar)) {
    AddCalendar(calendar);
  }
  auto period = AddTask(id, 0.0, calendar);
  period->parent = FindTask("WEATHER");
  period->SetWeatherValue("tasktype", "1");
  period->custom["Weather-start"] = start;
  period->custom["Weather-end"] = end;
  return period;
}

std::shared_ptr<TaskState> PlanState::AddWindow(std::string_view id, std::string_view calendar,
                                                std::string_view start, std::string_view end) {
  if (!FindCalendar(calendar)) {
    AddCalendar(calendar);
  }
  auto first = AddTask(id, 0.0, calendar);
  first->parent = FindTask("WEATHER");
  first->SetWeatherValue("tasktype", "3");
  first->SetWeatherValue("startdate", start);
  auto second = AddTask(std::string(id) + "-END", 0.0, calendar);
  second->parent = FindTask("WEATHER");
  second->SetWeatherValue("tasktype", "4");
  second->SetWeatherValue("startdate", end);
  first->successors.push_back(second);
  return first;
}

void PlanState::Assign(std::string_view task, std::string_view calendar) {
  auto risk_calendar = FindRiskCalendar(calendar);
  if (!risk_calendar) {
    risk_calendar = std::make_shared<RiskCalendarState>();
    risk_calendar->name = std::string(calendar);
    risk_calendar->calendar = FindCalendar(calendar);
    risk_calendars.push_back(risk_calendar);
  }
  Task(task).risk_calendars.push_back({risk_calendar, 0.0});
}

void PlanState::Link(std::string_view from, std::string_view to) {
  Task(from).successors.push_back(FindTask(to));
}

std::int32_t PlanState::UnitsPerDay() const {
  return time_unit == 24 ? hours_per_day : time_unit == 96 ? hours_per_day * 4 : 1;
}

bool PlanState::Worked(const TaskState& task, std::int32_t day) const {
  const CalendarState* own = task.calendar ? task.calendar.get() : calendars.front().get();
  return own->Worked(day) && std::all_of(task.risk_calendars.begin(), task.risk_calendars.end(),
                                         [day](const AssignedRiskCalendar& assigned) {
                                           const auto& behind = assigned.risk_calendar->calendar;
                                           return !behind || behind->Worked(day);
                                         });
}

void PlanState::Schedule() {
  Scheduler(*this).Run();
}

void PlanState::Sample(std::size_t iteration) {
  for (const auto& task : tasks) {
    task->skip = task->risk && NextRandom() * 100.0 >= task->risk->probability;
    if (!task->scripted_skips.empty()) {
      task->skip = task->scripted_skips[std::min(iteration, task->scripted_skips.size() - 1)];
    }
    task->sample = task->skip || !task->duration ? 0 : platform::ToLong(task->duration->likely);
    if (!task->scripted_samples.empty()) {
      task->sample = task->scripted_samples[std::min(iteration, task->scripted_samples.size() - 1)];
    }
  }
}

double PlanState::NextRandom() {
  // A 64-bit linear congruential step with Knuth's constants; the upper 53 bits are the number.
  random_state = random_state * 6364136223846793005ULL + 1442695040888963407ULL;
  return static_cast<double>(random_state >> 11) * 0x1p-53;
}

std::shared_ptr<PlanState> MakePlanState() {
  auto plan = std::make_shared<PlanState>();
  const auto standard = plan->AddCalendar("STANDARD");
  standard->weekdays[5] = standard->weekdays[6] = false;
  return plan;
}

}  // namespace nimbrel::recording
