#include "nimbrel/weather_summary.h"

#include <fmt/format.h>

#include <iterator>

#include "nimbrel/command_line.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/warnings.h"

namespace nimbrel::cli {

std::string WeatherSummary(const std::string& path, const engine::Plan& plan) {
  const WeatherFacts facts = CollectWeather(plan);
  std::string text = fmt::format(
      "{}: {}, {}, {}; {} exposed, {} of no split\n", path,
      Counted(std::ssize(facts.calendars), "weather calendar", "weather calendars"),
      Counted(facts.periods, "period", "periods"), Counted(facts.windows, "window", "windows"),
      Counted(facts.assigned_tasks, "task", "tasks"),
      Counted(facts.nosplit_tasks, "task", "tasks"));
  for (const std::string& warning : WeatherWarnings(plan)) {
    text += "  warning: " + warning + "\n";
  }
  return text;
}

}  // namespace nimbrel::cli
