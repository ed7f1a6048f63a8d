#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/report/sections.h"

namespace nimbrel::cli::report {
namespace {

constexpr std::size_t kMostDrivers = 30;
constexpr std::size_t kMostMilestones = 150;
constexpr std::size_t kMostTasks = 60;

std::string DriverTable(const Figures& figures, const std::string& place) {
  HtmlTable table("Tasks by cruciality", {{"Task"},
                                          {"name"},
                                          {"criticality", true},
                                          {"sensitivity", true},
                                          {"cruciality", true},
                                          {"schedule sensitivity index", true}});
  const std::size_t all = figures.CountAt(place + "/tasks");
  const std::size_t shown = std::min(all, kMostDrivers);
  for (std::size_t i = 0; i < shown; ++i) {
    const std::string task = fmt::format("{}/tasks/{}", place, i);
    table.AddRow({figures.Show(task + "/id", Form::kText),
                  figures.Show(task + "/name", Form::kText),
                  figures.Show(task + "/criticality", Form::kShare),
                  figures.Show(task + "/sensitivity", Form::kCorrelation),
                  figures.Show(task + "/cruciality", Form::kNumber),
                  figures.Show(task + "/ssi", Form::kNumber)});
  }
  return table.Html() + CutNote(shown, all, "tasks", "sensitivity.csv");
}

/// Tasks that the chart of a target shows a bar of, were there room for all.
std::size_t CountDrivers(const Figures& figures, const std::string& target) {
  const Json& tasks = figures.At(target + "/tasks");
  return static_cast<std::size_t>(std::count_if(tasks.begin(), tasks.end(), [](const Json& task) {
    return task.at("cruciality").get<double>() > 0;
  }));
}

/// Positions in /tasks of the tasks that were on a driving path, the most critical first.
/// Milestones are told apart, and what is over drives nothing that can still be changed.
std::vector<std::size_t> CriticalTasks(const Figures& figures) {
  std::set<std::string> milestones;
  for (const Json& milestone : figures.At("/milestones")) {
    milestones.insert(milestone.at("id").get<std::string>());
  }
  const Json& tasks = figures.At("/tasks");
  const Json& data_date = figures.At("/data_date");
  std::vector<std::size_t> found;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    const Json& task = tasks[i];
    if (task.at("criticality").get<double>() > 0 &&
        !milestones.contains(task.at("id").get<std::string>()) &&
        (data_date.is_null() || task.at("finish").at("p90") > data_date)) {
      found.push_back(i);
    }
  }
  std::stable_sort(found.begin(), found.end(), [&tasks](std::size_t a, std::size_t b) {
    return tasks[a].at("criticality") > tasks[b].at("criticality");
  });
  return found;
}

}  // namespace

std::string DriverSection(const Figures& figures) {
  std::string body =
      "<p>Sensitivity is the rank correlation of a task’s duration with the finish; criticality "
      "the "
      "share of the iterations in which the task was on a driving path; cruciality is the one "
      "times "
      "the other. The schedule sensitivity index sets how much the task’s own time spreads against "
      "the spread of the finish.</p>\n";
  for (std::size_t i = 0; i < figures.CountAt("/sensitivities"); ++i) {
    const std::string place = fmt::format("/sensitivities/{}", i);
    const bool is_finish = !figures.Has(place + "/target");
    body += is_finish
                ? "<h3>The plan’s finish</h3>\n"
                : fmt::format("<h3>{} {}</h3>\n", figures.Show(place + "/target", Form::kText),
                              figures.Show(place + "/name", Form::kText));
    const std::size_t drivers = CountDrivers(figures, place);
    if (drivers == 0) {
      body += "<p>No task’s duration varies on a way to it.</p>\n";
      continue;
    }
    const std::size_t shown = std::min(drivers, kTornadoTasks);
    const std::string tasks =
        shown == 1 ? "task" : fmt::format("{} tasks with the greatest cruciality", shown);
    body += ChartFigure(
        fmt::format("drivers-{}", i), "bars",
        fmt::format("Tornado: sensitivity of the {}. The table below has all numbers.", tasks),
        fmt::format("The {}. A long bar to the right: when this task takes longer, {} comes "
                    "later. Shortening or securing such a task pays.",
                    shown == 1 ? "only task that drives it" : tasks,
                    is_finish ? "the plan’s finish" : "the target"),
        Behind("Numbers of the drivers", DriverTable(figures, place)));
  }
  return Section("drivers", "What drives the finish", body);
}

std::string MilestoneSection(const Figures& figures) {
  const std::size_t all = figures.CountAt("/milestones");
  if (all == 0) {
    return "";
  }
  HtmlTable table(
      "Finish of the milestones; below each percentile its 95% interval",
      {{"Milestone"}, {"name"}, {"P10", true}, {"P50", true}, {"P80", true}, {"P90", true}});
  const std::size_t shown = std::min(all, kMostMilestones);
  for (std::size_t i = 0; i < shown; ++i) {
    const std::string place = fmt::format("/milestones/{}", i);
    std::vector<std::string> cells = {figures.Show(place + "/id", Form::kText),
                                      figures.Show(place + "/name", Form::kText)};
    for (const char* key : {"p10", "p50", "p80", "p90"}) {
      cells.push_back(figures.WithInterval(place + "/finish/" + key, Form::kFinish));
    }
    table.AddRow(cells);
  }
  return Section("milestones", "Milestones",
                 table.Html() + CutNote(shown, all, "milestones", "milestones.csv"));
}

std::string TaskSection(const Figures& figures) {
  const std::vector<std::size_t> found = CriticalTasks(figures);
  if (found.empty()) {
    return "";
  }
  HtmlTable table("Tasks that were on a driving path, the most critical first",
                  {{"Task"},
                   {"name"},
                   {"criticality", true},
                   {"start P50", true},
                   {"finish P50", true},
                   {"finish P80", true},
                   {"pushed by weather, mean days", true}});
  const std::size_t shown = std::min(found.size(), kMostTasks);
  for (std::size_t i = 0; i < shown; ++i) {
    const std::string place = fmt::format("/tasks/{}", found[i]);
    const bool is_pushed = figures.At(place + "/nosplit_pushed_days").get<double>() > 0;
    table.AddRow({figures.Show(place + "/id", Form::kText),
                  figures.Show(place + "/name", Form::kText),
                  figures.Show(place + "/criticality", Form::kShare),
                  figures.WithInterval(place + "/start/p50", Form::kStart),
                  figures.WithInterval(place + "/finish/p50", Form::kFinish),
                  figures.WithInterval(place + "/finish/p80", Form::kFinish),
                  is_pushed ? figures.Show(place + "/nosplit_pushed_days", Form::kDays) : ""});
  }
  return Section(
      "tasks", "The most critical tasks",
      "<p>A task is pushed where weather must not interrupt it and it waits for a stretch of good "
      "days.</p>\n" +
          Behind("Table of " + Counted(static_cast<std::int64_t>(shown), "task", "tasks"),
                 table.Html() + CutNote(shown, found.size(), "critical tasks", "tasks.csv")));
}

}  // namespace nimbrel::cli::report
