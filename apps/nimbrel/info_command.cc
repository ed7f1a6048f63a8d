#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/json_text.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/text_table.h"
#include "nimbrel/warnings.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

using engine::CalendarDefinition;
using engine::Plan;
using enum TextTable::Align;

struct Options {
  std::string plan;
  bool json = false;
  ReadingChoice reading;
};

/// A calendar of the plan, as info tells of it.
struct CalendarFacts {
  std::string name;
  std::int64_t days_a_week = 0;
  double hours_a_week = 0;
  std::int64_t exceptions = 0;
  std::int64_t tasks = 0;  // that work by it; by default too
};

std::vector<CalendarFacts> CollectCalendars(const Plan& plan) {
  std::vector<CalendarFacts> all;
  for (const CalendarDefinition& calendar : plan.calendars) {
    CalendarFacts facts;
    facts.name = calendar.name;
    std::int32_t minutes = 0;
    for (const engine::DayPattern& day : calendar.week) {
      facts.days_a_week += day.empty() ? 0 : 1;
      minutes += engine::MinutesOf(day);
    }
    facts.hours_a_week = minutes / 60.0;
    facts.exceptions = static_cast<std::int64_t>(calendar.exceptions.size());
    facts.tasks =
        std::count_if(plan.tasks().begin(), plan.tasks().end(), [&](const engine::Task& task) {
          return !CarriesWeather(task) && task.kind != engine::TaskKind::kSummary &&
                 (task.calendar != 0 ? task.calendar : plan.default_calendar) == calendar.uid;
        });
    all.push_back(std::move(facts));
  }
  return all;
}

const char* UnitName(engine::TimeUnit unit) {
  switch (unit) {
    case engine::TimeUnit::kDays:
      return "days";
    case engine::TimeUnit::kHours:
      return "hours";
    case engine::TimeUnit::kQuarters:
      return "quarters of an hour";
  }
  return "days";
}

std::string AsJson(const Plan& plan, const std::vector<std::string>& warnings) {
  const PlanCounts counts = CountPlan(plan);
  const WeatherFacts weather = CollectWeather(plan);
  Json json;
  json["name"] = plan.name;
  json["title"] = plan.title;
  json["start"] = DateJson(plan.start);
  json["data_date"] = DateJson(plan.StatusDate());
  json["time_unit"] = static_cast<std::int32_t>(plan.time_unit);
  json["hours_per_day"] = plan.hours_per_day;
  json["counts"] = {{"tasks", counts.tasks},         {"milestones", counts.milestones},
                    {"summaries", counts.summaries}, {"levels_of_effort", counts.levels_of_effort},
                    {"started", counts.started},     {"finished", counts.finished},
                    {"links", counts.links},         {"constraints", counts.constraints},
                    {"ranges", counts.ranges},       {"risks", counts.risks}};
  json["calendars"] = Json::array();
  for (const CalendarFacts& calendar : CollectCalendars(plan)) {
    json["calendars"].push_back({{"name", calendar.name},
                                 {"days_a_week", calendar.days_a_week},
                                 {"hours_a_week", Rounded(calendar.hours_a_week, 2)},
                                 {"exceptions", calendar.exceptions},
                                 {"tasks", calendar.tasks}});
  }
  Json& part = json["weather"];
  part["is_weather_plan"] = weather.is_weather_plan;
  part["calendars"] = Json::array();
  for (const WeatherCalendarFacts& calendar : weather.calendars) {
    part["calendars"].push_back({{"name", calendar.name},
                                 {"kind", calendar.kind},
                                 {"items", calendar.items},
                                 {"tasks", calendar.tasks}});
  }
  part["periods"] = weather.periods;
  part["windows"] = weather.windows;
  part["assigned_tasks"] = weather.assigned_tasks;
  part["nosplit_tasks"] = weather.nosplit_tasks;
  json["warnings"] = warnings;
  return JsonText(json);
}

std::string DatesText(const Plan& plan) {
  return fmt::format("  start {}, data date {}\n", DateText(plan.start),
                     DateText(plan.StatusDate())) +
         fmt::format("  durations in {}, {} hours a day\n", UnitName(plan.time_unit),
                     plan.hours_per_day);
}

std::string TasksText(const PlanCounts& counts) {
  return fmt::format("  {}\n", CountsText(counts)) +
         fmt::format(
             "  {} under way, {} finished; {} constrained; {} with a range, {} that may "
             "not occur\n",
             Grouped(counts.started), Grouped(counts.finished), Grouped(counts.constraints),
             Grouped(counts.ranges), Grouped(counts.risks));
}

std::string CalendarsText(const Plan& plan) {
  TextTable table({kLeft, kRight, kRight, kRight, kRight});
  table.AddRow({"Calendar", "days a week", "hours a week", "exceptions", "tasks"});
  table.AddRule();
  for (const CalendarFacts& calendar : CollectCalendars(plan)) {
    table.AddRow({CutTo(calendar.name, 44), Grouped(calendar.days_a_week),
                  fmt::format("{:g}", Rounded(calendar.hours_a_week, 2)),
                  Grouped(calendar.exceptions), Grouped(calendar.tasks)});
  }
  return "\n" + table.Text(2);
}

std::string WeatherText(const WeatherFacts& weather) {
  if (!weather.is_weather_plan) {
    return "\n  This is no weather plan: it runs without weather.\n";
  }
  std::string text = fmt::format("\n  Weather: {}, {}; {} exposed, {} of no split\n",
                                 Counted(weather.periods, "period", "periods"),
                                 Counted(weather.windows, "window", "windows"),
                                 Counted(weather.assigned_tasks, "task", "tasks"),
                                 Counted(weather.nosplit_tasks, "task", "tasks"));
  if (!weather.calendars.empty()) {
    TextTable table({kLeft, kLeft, kRight, kRight});
    table.AddRow({"Weather calendar", "kind", "periods or windows", "tasks"});
    table.AddRule();
    for (const WeatherCalendarFacts& calendar : weather.calendars) {
      table.AddRow({CutTo(calendar.name, 44), calendar.kind, Grouped(calendar.items),
                    Grouped(calendar.tasks)});
    }
    text += "\n" + table.Text(2);
  }
  return text;
}

std::string AsText(const Plan& plan, const std::vector<std::string>& warnings) {
  std::string text = TitleOf(plan) + "\n" + DatesText(plan) + TasksText(CountPlan(plan)) +
                     CalendarsText(plan) + WeatherText(CollectWeather(plan));
  if (!warnings.empty()) {
    text += "\n  Warnings\n";
    for (const std::string& warning : warnings) {
      text += "    " + warning + "\n";
    }
  }
  return text;
}

ExitCode Info(const Options& options, Console& console) {
  const PlanDocument document = OpenPlan(options.plan, options.reading);
  std::vector<std::string> warnings = document.warnings;
  for (std::string& warning : WeatherWarnings(document.plan)) {
    warnings.push_back(std::move(warning));
  }
  console.out << (options.json ? AsJson(document.plan, warnings) : AsText(document.plan, warnings));
  return ExitCode::kDone;
}

}  // namespace

void AddInfoCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "info", "Tell what is in a plan: tasks, calendars, ranges, weather, warnings");
  command->add_option("PLAN", options->plan, "The plan: .nplan, XER or MSPDI XML")->required();
  command->add_flag("--json", options->json, "Write JSON");
  AddReadingOptions(*command, options->reading);
  command->footer(
      "Examples:\n"
      "  nimbrel info bridge.nplan\n"
      "  nimbrel info all-projects.xer --project BRIDGE --json");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Info(*options, console); };
  });
}

}  // namespace nimbrel::cli
