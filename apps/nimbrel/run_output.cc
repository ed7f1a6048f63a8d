#include "nimbrel/run_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/finish_chart.h"
#include "nimbrel/json_text.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/text_table.h"

namespace nimbrel::cli {
namespace {

using engine::DateStatistics;
using engine::Instant;
using engine::Plan;
using engine::RunResult;
using engine::TaskResult;
using enum TextTable::Align;

constexpr std::size_t kMostCritical = 10;
constexpr std::size_t kNameWidth = 44;

// ------------------------------------------------------------------ JSON and CSV

Json FinishJson(const DateStatistics& finish) {
  Json json;
  json["mean"] = DateJson(finish.mean);
  json["sd_days"] = Rounded(finish.sd_days, 2);
  json["min"] = DateJson(finish.min);
  json["max"] = DateJson(finish.max);
  json["p10"] = DateJson(finish.p10);
  json["p50"] = DateJson(finish.p50);
  json["p80"] = DateJson(finish.p80);
  json["p90"] = DateJson(finish.p90);
  json["p80_low"] = DateJson(finish.p80_low);
  json["p80_high"] = DateJson(finish.p80_high);
  return json;
}

Json TaskJson(const Plan& plan, const TaskResult& result) {
  const engine::Task& task = *plan.FindTask(result.task);
  Json json;
  json["id"] = task.id;
  json["name"] = task.description;
  json["start"] = {{"p50", DateJson(result.start.value)}};
  Json& finish = json["finish"];
  finish["mean"] = DateJson(result.finish.mean);
  finish["p10"] = DateJson(result.finish.p10);
  finish["p50"] = DateJson(result.finish.p50);
  finish["p80"] = DateJson(result.finish.p80);
  finish["p90"] = DateJson(result.finish.p90);
  json["criticality"] = Rounded(result.criticality, 4);
  json["nosplit_pushed_days"] = Rounded(result.nosplit_pushed_days, 2);
  return json;
}

// ------------------------------------------------------------------ text

/// A date as planners write it in tables: the day alone. A finish at midnight ends the day before.
std::string DayText(Instant instant) {
  return instant.IsAbsent() ? "-" : engine::ToIsoText(instant.AsFinish()).substr(0, 10);
}

std::string DaysText(double days) {
  return fmt::format("{:.1f} days", Rounded(days, 1));
}

/// What was run, and how far a stopped run has come.
std::string Heading(const Plan& plan, const RunReport& report) {
  const RunResult& run = report.main;
  // The run without weather comes first.
  const bool weather_never_began = report.compared && run.iterations() == 0;
  const std::int32_t done =
      weather_never_began ? report.without_weather.iterations() : run.iterations();
  std::string text = fmt::format("{}: {}, seed {}\n", TitleOf(plan),
                                 Counted(done, "iteration", "iterations"), run.seed);
  if (IsStopped(report)) {
    text += fmt::format("Stopped: {} of {} iterations {}were done.\n", Grouped(done),
                        Grouped(run.iterations_asked),
                        weather_never_began ? "without weather and none with it " : "");
  }
  return text;
}

/// The plan's finish, one column for each way it was run.
std::string FinishTable(const RunReport& report) {
  std::vector<std::pair<std::string, const RunResult*>> runs;
  if (report.compared) {
    runs.emplace_back("without weather", &report.without_weather);
  }
  runs.emplace_back(report.weather ? "with weather" : report.compared ? "again" : "", &report.main);

  TextTable table(std::vector<TextTable::Align>(runs.size() + 1, kLeft));
  const auto row = [&](const std::string& name, const auto& cell) {
    std::vector<std::string> cells = {name};
    for (const auto& [title, run] : runs) {
      cells.push_back(run->iterations() > 0 ? cell(run->finish) : "-");
    }
    table.AddRow(std::move(cells));
  };
  std::vector<std::string> titles = {"Finish"};
  for (const auto& [title, run] : runs) {
    titles.push_back(title);
  }
  table.AddRow(std::move(titles));
  table.AddRule();
  row("P10", [](const DateStatistics& f) { return DayText(f.p10); });
  row("P50", [](const DateStatistics& f) { return DayText(f.p50); });
  row("P80", [](const DateStatistics& f) { return DayText(f.p80); });
  row("  95% interval",
      [](const DateStatistics& f) { return DayText(f.p80_low) + " .. " + DayText(f.p80_high); });
  row("P90", [](const DateStatistics& f) { return DayText(f.p90); });
  row("mean", [](const DateStatistics& f) { return DayText(f.mean); });
  row("standard deviation", [](const DateStatistics& f) { return DaysText(f.sd_days); });
  return table.Text() +
         "\nOn likely durations, without weather: " + DayText(report.main.deterministic_finish) +
         "\n";
}

std::string DelayLine(const RunReport& report) {
  const engine::DayStatistics& delay = report.delay;
  return fmt::format("Delay by weather: mean {}, P50 {}, P80 {}\n", DaysText(delay.mean),
                     DaysText(delay.p50), DaysText(delay.p80));
}

std::string CalendarTable(const RunResult& run) {
  TextTable table({kLeft, kLeft, kRight, kRight});
  table.AddRow({"Weather calendar", "kind", "lost days, mean", "P80"});
  table.AddRule();
  for (const engine::CalendarResult& calendar : run.calendars) {
    table.AddRow({CutTo(calendar.name, kNameWidth), calendar.kind,
                  fmt::format("{:.1f}", Rounded(calendar.lost_days.mean, 1)),
                  fmt::format("{:.1f}", Rounded(calendar.lost_days.p80, 1))});
  }
  return table.Text();
}

std::string TaskTable(const Plan& plan, const std::string& title,
                      const std::vector<const TaskResult*>& results) {
  TextTable table({kLeft, kLeft, kRight, kLeft, kLeft, kLeft, kRight});
  table.AddRow({title, "", "critical", "start P50", "finish P50", "finish P80", "pushed"});
  table.AddRule();
  for (const TaskResult* result : results) {
    const engine::Task& task = *plan.FindTask(result->task);
    table.AddRow({CutTo(task.id, 20), CutTo(task.description, kNameWidth),
                  fmt::format("{:.0f}%", result->criticality * 100), DayText(result->start.value),
                  DayText(result->finish.p50), DayText(result->finish.p80),
                  result->nosplit_pushed_days > 0
                      ? fmt::format("{:.1f} d", result->nosplit_pushed_days)
                      : ""});
  }
  return table.Text();
}

/// The tasks that drove the finish most often; the earlier in the plan the first among equals.
std::vector<const TaskResult*> MostCritical(const Plan& plan, const RunResult& run) {
  std::vector<const TaskResult*> results;
  for (const TaskResult& result : run.tasks) {
    const engine::Task& task = *plan.FindTask(result.task);
    if (result.criticality > 0 && task.kind == engine::TaskKind::kTask && !task.IsFinished()) {
      results.push_back(&result);
    }
  }
  std::stable_sort(results.begin(), results.end(), [](const TaskResult* a, const TaskResult* b) {
    return a->criticality > b->criticality;
  });
  results.resize(std::min(results.size(), kMostCritical));
  return results;
}

std::vector<const TaskResult*> ResultsOf(const RunResult& run,
                                         const std::vector<engine::Uid>& tasks) {
  std::vector<const TaskResult*> results;
  for (const engine::Uid uid : tasks) {
    const auto found = std::find_if(run.tasks.begin(), run.tasks.end(),
                                    [uid](const TaskResult& r) { return r.task == uid; });
    if (found != run.tasks.end()) {
      results.push_back(&*found);
    }
  }
  return results;
}

}  // namespace

bool IsStopped(const RunReport& report) {
  return report.main.stopped || (report.compared && report.without_weather.stopped);
}

std::string RunJson(const Plan& plan, const RunReport& report) {
  const RunResult& run = report.main;
  Json json;
  json["version"] = run.version;
  json["plan"] = plan.name;
  json["iterations"] = run.iterations();
  json["seed"] = run.seed;
  json["time_unit"] = static_cast<std::int32_t>(plan.time_unit);
  json["weather"] = report.weather;
  json["deterministic"]["finish"] = DateJson(run.deterministic_finish);
  json["finish"] = FinishJson(run.finish);
  if (report.compared) {
    json["without_weather"]["finish"] = FinishJson(report.without_weather.finish);
    Json& delay = json["weather_delay_days"];
    delay["mean"] = Rounded(report.delay.mean, 2);
    delay["p50"] = Rounded(report.delay.p50, 2);
    delay["p80"] = Rounded(report.delay.p80, 2);
  }
  json["calendars"] = Json::array();
  for (const engine::CalendarResult& calendar : run.calendars) {
    Json one;
    one["name"] = calendar.name;
    one["kind"] = calendar.kind;
    one["lost_days"]["mean"] = Rounded(calendar.lost_days.mean, 2);
    one["lost_days"]["p80"] = Rounded(calendar.lost_days.p80, 2);
    json["calendars"].push_back(std::move(one));
  }
  json["tasks"] = Json::array();
  for (const TaskResult& result : run.tasks) {
    json["tasks"].push_back(TaskJson(plan, result));
  }
  json["warnings"] = report.warnings;
  return JsonText(json);
}

std::string RunSamplesCsv(const Plan& plan, const RunReport& report) {
  const RunResult& run = report.main;
  std::string text = "iteration,finish";
  for (const engine::TaskSamples& samples : run.samples) {
    const std::string& id = plan.FindTask(samples.task)->id;
    text += "," + CsvField("start:" + id) + "," + CsvField("finish:" + id);
  }
  text += report.compared ? ",finish_without_weather\n" : "\n";
  for (std::size_t at = 0; at < run.iteration_numbers.size(); ++at) {
    text += fmt::format("{},{}", run.iteration_numbers[at], DateText(run.finish_samples[at]));
    for (const engine::TaskSamples& samples : run.samples) {
      text += "," + DateText(samples.start[at]) + "," + DateText(samples.finish[at]);
    }
    text +=
        report.compared ? "," + DateText(report.without_weather.finish_samples[at]) + "\n" : "\n";
  }
  return text;
}

std::string RunText(const Plan& plan, const RunReport& report,
                    const std::vector<engine::Uid>& asked, bool chart, const Terminal& terminal) {
  const RunResult& run = report.main;
  std::string text = Heading(plan, report);
  if (!report.weather) {
    text += "Without weather.\n";
  }
  text += "\n" + FinishTable(report);
  if (report.compared && !report.delay_minutes.empty()) {
    text += DelayLine(report);
  }
  if (chart && run.iterations() > 0) {
    text += "\n" + FinishChart(run.finish_samples, report.without_weather.finish_samples, terminal);
  }
  if (!run.calendars.empty()) {
    text += "\n" + CalendarTable(run);
  }
  const auto critical = MostCritical(plan, run);
  if (!critical.empty()) {
    text += "\n" + TaskTable(plan, "Most critical", critical);
  }
  if (!asked.empty() && run.iterations() > 0) {
    text += "\n" + TaskTable(plan, "Asked for", ResultsOf(run, asked));
  }
  if (!report.warnings.empty()) {
    text += "\nWarnings\n";
    for (const std::string& warning : report.warnings) {
      text += "  " + warning + "\n";
    }
  }
  return text;
}

}  // namespace nimbrel::cli
