#include "nimbrel/run_inputs.h"

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "nimbrel/json_text.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

using engine::InputTable;
using engine::Plan;
using engine::Task;

std::string Number(double value) {
  return fmt::format("{}", Rounded(value, 4));
}

std::string ShapeName(engine::Shape shape) {
  switch (shape) {
    case engine::Shape::kUniform:
      return "uniform";
    case engine::Shape::kPert:
      return "pert";
    case engine::Shape::kSingle:
      return "single";
    case engine::Shape::kTriangular:
      break;
  }
  return "triangular";
}

/// Durations in working days of the plan's hours a day.
InputTable Durations(const Plan& plan) {
  InputTable table{"Durations in days", {"id", "name", "min", "likely", "max", "shape"}, {}};
  const double days = plan.MinutesPerUnit() / (plan.hours_per_day * 60.0);
  for (const Task& task : plan.tasks()) {
    if (CarriesWeather(task) || !task.range.has_value() || task.IsFinished()) {
      continue;
    }
    table.rows.push_back({task.id, task.description, Number(task.range->minimum * days),
                          Number(task.range->likely * days), Number(task.range->maximum * days),
                          ShapeName(task.range->shape)});
  }
  return table;
}

/// What the ranges of each shape are like, on average.
InputTable Shapes(const Plan& plan) {
  InputTable table{
      "Durations by shape", {"shape", "tasks", "min, % of likely", "max, % of likely"}, {}};
  for (const engine::Shape shape : {engine::Shape::kTriangular, engine::Shape::kPert,
                                    engine::Shape::kUniform, engine::Shape::kSingle}) {
    std::int64_t tasks = 0;
    std::int64_t comparable = 0;
    double least = 0;
    double most = 0;
    for (const Task& task : plan.tasks()) {
      if (CarriesWeather(task) || !task.range.has_value() || task.IsFinished() ||
          task.range->shape != shape) {
        continue;
      }
      ++tasks;
      if (task.range->likely > 0) {
        ++comparable;
        least += task.range->minimum / task.range->likely;
        most += task.range->maximum / task.range->likely;
      }
    }
    if (tasks > 0) {
      const auto percent = [comparable](double sum) {
        return comparable == 0 ? std::string()
                               : fmt::format("{:.1f}", 100 * sum / static_cast<double>(comparable));
      };
      table.rows.push_back(
          {ShapeName(shape), std::to_string(tasks), percent(least), percent(most)});
    }
  }
  return table;
}

std::string UnitName(engine::TimeUnit unit) {
  switch (unit) {
    case engine::TimeUnit::kHours:
      return "hours";
    case engine::TimeUnit::kQuarters:
      return "quarters of an hour";
    case engine::TimeUnit::kDays:
      break;
  }
  return "days";
}

InputTable PlanFacts(const Plan& plan) {
  const PlanCounts counts = CountPlan(plan);
  return {"Plan",
          {"what", "value"},
          {{"name", plan.name},
           {"title", plan.title},
           {"data date", DateText(plan.data_date)},
           {"time unit", UnitName(plan.time_unit)},
           {"hours a day", Number(plan.hours_per_day)},
           {"tasks", std::to_string(counts.tasks)},
           {"milestones", std::to_string(counts.milestones)},
           {"links", std::to_string(counts.links)},
           {"tasks with three points", std::to_string(counts.ranges)}}};
}

InputTable Risks(const Plan& plan) {
  InputTable table{"Tasks that may not occur", {"id", "name", "probability"}, {}};
  for (const Task& task : plan.tasks()) {
    if (!CarriesWeather(task) && task.risk.has_value() && task.risk->probability < 100) {
      table.rows.push_back({task.id, task.description, Number(task.risk->probability / 100)});
    }
  }
  return table;
}

InputTable Periods(const Weather& weather) {
  InputTable table{
      "Weather periods, lengths in days",
      {"calendar", "description", "start", "finish", "probability", "min", "likely", "max"},
      {}};
  for (const EventCalendar& calendar : weather.events) {
    for (const WeatherPeriod& period : calendar.periods) {
      table.rows.push_back({calendar.name, period.description, IsoDay(period.start),
                            IsoDay(period.finish), Number(period.probability),
                            std::to_string(period.min), std::to_string(period.likely),
                            std::to_string(period.max)});
    }
  }
  return table;
}

InputTable Windows(const Weather& weather) {
  InputTable table{"Weather windows",
                   {"calendar", "description", "start, earliest", "likely", "latest",
                    "finish, earliest", "likely", "latest"},
                   {}};
  for (const WindowCalendar& calendar : weather.windows) {
    for (const WeatherWindow& window : calendar.windows) {
      std::vector<std::string> row = {calendar.name, window.description};
      for (const auto& edge : {window.start, window.finish}) {
        for (const std::int32_t day : edge) {
          row.push_back(IsoDay(day));
        }
      }
      table.rows.push_back(std::move(row));
    }
  }
  return table;
}

InputTable Assignments(const Plan& plan, const Weather& weather) {
  InputTable table{"Weather on tasks", {"id", "name", "calendars", "not to be split"}, {}};
  for (const WeatherAssignment& assignment : weather.assign) {
    for (const std::string& id : assignment.tasks) {
      const Task* task = plan.FindTask(id);
      table.rows.push_back({id, task == nullptr ? "" : task->description,
                            fmt::format("{}", fmt::join(assignment.calendars, ", ")),
                            assignment.nosplit.value_or(false) ? "yes" : "no"});
    }
  }
  return table;
}

InputTable Correlations(const Plan& plan) {
  InputTable table{"Correlation", {"of", "coefficient", "members"}, {}};
  for (const engine::CorrelationGroup& group : plan.correlations) {
    std::vector<std::string> members = group.calendars;
    for (const engine::Uid uid : group.tasks) {
      members.push_back(plan.FindTask(uid)->id);
    }
    table.rows.push_back({group.calendars.empty() ? "durations" : "weather",
                          Number(group.coefficient), fmt::format("{}", fmt::join(members, ", "))});
  }
  return table;
}

}  // namespace

std::vector<InputTable> InputTables(const Plan& plan, bool weather) {
  std::vector<InputTable> tables = {PlanFacts(plan), Shapes(plan), Durations(plan), Risks(plan)};
  if (weather) {
    const Weather all = ReadWeather(plan);
    tables.push_back(Periods(all));
    tables.push_back(Windows(all));
    tables.push_back(Assignments(plan, all));
  }
  tables.push_back(Correlations(plan));
  std::erase_if(tables, [](const InputTable& table) { return table.rows.empty(); });
  return tables;
}

}  // namespace nimbrel::cli
