#include <fmt/format.h>

#include <memory>
#include <string>

#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/json_text.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/text_table.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/weather_summary.h"
#include "nimbrel/weather_workbook_commands.h"

namespace nimbrel::cli {
namespace {

using enum TextTable::Align;

struct Options {
  std::string plan;
  std::string file;
  bool json = false;
  ReadingChoice reading;
};

std::string DayText(std::int32_t day) {
  return engine::ToIsoText(engine::Instant(day, 0)).substr(0, 10);
}

std::string PeriodsText(const EventCalendar& calendar) {
  TextTable table({kLeft, kLeft, kLeft, kRight, kRight, kRight, kRight});
  table.AddRow({"Period", "from", "to", "chance", "min", "likely", "max"});
  table.AddRule();
  for (const WeatherPeriod& period : calendar.periods) {
    table.AddRow({CutTo(period.description, 44), DayText(period.start), DayText(period.finish),
                  fmt::format("{:g}%", period.probability * 100), fmt::format("{}", period.min),
                  fmt::format("{}", period.likely), fmt::format("{}", period.max)});
  }
  return calendar.name + " (event calendar, days lost)\n" + table.Text(2) + "\n";
}

std::string WindowsText(const WindowCalendar& calendar) {
  TextTable table({kLeft, kLeft, kLeft, kLeft, kLeft});
  table.AddRow({"Window", "", "earliest", "likely", "latest"});
  table.AddRule();
  for (const WeatherWindow& window : calendar.windows) {
    table.AddRow({CutTo(window.description, 44), "start", DayText(window.start[0]),
                  DayText(window.start[1]), DayText(window.start[2])});
    table.AddRow({"", "finish", DayText(window.finish[0]), DayText(window.finish[1]),
                  DayText(window.finish[2])});
  }
  return calendar.name + " (window calendar)\n" + table.Text(2) + "\n";
}

std::string AssignmentsText(const Weather& weather) {
  TextTable table({kLeft, kLeft, kLeft});
  table.AddRow({"Calendars", "", "Tasks"});
  table.AddRule();
  for (const WeatherAssignment& assignment : weather.assign) {
    // As many IDs a line as fit, so that a long list is readable.
    std::string calendars = fmt::format("{}", fmt::join(assignment.calendars, ", "));
    std::string split = assignment.nosplit.value_or(false) ? "no split" : "";
    std::string line;
    for (const std::string& id : assignment.tasks) {
      if (!line.empty() && DisplayWidth(line) + DisplayWidth(id) > 60) {
        table.AddRow({calendars, split, line});
        calendars.clear();
        split.clear();
        line.clear();
      }
      line += (line.empty() ? "" : " ") + id;
    }
    table.AddRow({calendars, split, line});
  }
  return weather.assign.empty() ? "" : table.Text();
}

std::string AsText(const engine::Plan& plan, const Weather& weather) {
  std::string text = TitleOf(plan) + "\n\n";
  if (weather.events.empty() && weather.windows.empty()) {
    return text + "No weather.\n";
  }
  for (const EventCalendar& calendar : weather.events) {
    text += PeriodsText(calendar);
  }
  for (const WindowCalendar& calendar : weather.windows) {
    text += WindowsText(calendar);
  }
  return text + AssignmentsText(weather);
}

ExitCode Set(const Options& options, Console& console) {
  PlanDocument document = OpenPlanToChange(options.plan);
  SetWeatherFromFile(document.plan, options.file);
  console.out << WeatherSummary(options.plan, document.plan);
  FlushOutput(console);
  SaveChanges(document.plan, document);
  return ExitCode::kDone;
}

ExitCode Show(const Options& options, Console& console) {
  const PlanDocument document = OpenPlan(options.plan, options.reading);
  const Weather weather = ReadWeather(document.plan);
  console.out << (options.json ? JsonText(WeatherJson(weather)) : AsText(document.plan, weather));
  return ExitCode::kDone;
}

ExitCode Clear(const Options& options, Console& console) {
  PlanDocument document = OpenPlanToChange(options.plan);
  ClearWeather(document.plan, options.plan);
  console.out << options.plan << ": no weather any more\n";
  FlushOutput(console);
  SaveChanges(document.plan, document);
  return ExitCode::kDone;
}

/// Declares one of the commands under "weather".
CLI::App* Declare(CLI::App& weather, const std::string& name, const std::string& description,
                  ExitCode (*run)(const Options&, Console&),
                  const std::shared_ptr<Options>& options, Console& console, Action& action) {
  CLI::App* command = weather.add_subcommand(name, description);
  command->callback([options, &console, &action, run] {
    action = [options, &console, run] { return run(*options, console); };
  });
  return command;
}

}  // namespace

void AddWeatherCommand(CLI::App& app, Console& console, Action& action) {
  CLI::App* weather =
      app.add_subcommand("weather", "Set, show, export, import or clear the weather of a plan");
  weather->require_subcommand(1);
  weather->footer(
      "Examples:\n"
      "  nimbrel weather set bridge.nplan weather.json\n"
      "  nimbrel weather show bridge.nplan --json > weather.json\n"
      "  nimbrel weather export bridge.nplan -o weather.xlsx\n"
      "  nimbrel weather import bridge.nplan weather.xlsx --replace\n"
      "  nimbrel weather clear bridge.nplan");

  auto options = std::make_shared<Options>();
  CLI::App* set = Declare(*weather, "set", "Put a file's weather in place of the plan's", Set,
                          options, console, action);
  set->add_option("PLAN", options->plan, "The .nplan to change")->required();
  set->add_option("WEATHER.json", options->file, "The weather")->required();
  set->footer(
      "Examples:\n"
      "  nimbrel weather set bridge.nplan weather.json");

  CLI::App* show =
      Declare(*weather, "show", "Show the weather of a plan", Show, options, console, action);
  show->add_option("PLAN", options->plan, "The plan")->required();
  show->add_flag("--json", options->json, "Write JSON in the shape that 'weather set' takes");
  show->footer(
      "Examples:\n"
      "  nimbrel weather show bridge.nplan\n"
      "  nimbrel weather show bridge.nplan --json > weather.json");

  AddWeatherExportCommand(*weather, console, action);
  AddWeatherImportCommand(*weather, console, action);

  CLI::App* clear =
      Declare(*weather, "clear", "Take all weather out of a plan", Clear, options, console, action);
  clear->add_option("PLAN", options->plan, "The .nplan to change")->required();
  clear->footer(
      "Examples:\n"
      "  nimbrel weather clear bridge.nplan");
}

}  // namespace nimbrel::cli
