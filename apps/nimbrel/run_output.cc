#include "nimbrel/run_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/finish_chart.h"
#include "nimbrel/json_text.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/run_charts.h"
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

/// A date as planners write it in tables: the day alone. A finish at midnight ends the day before.
std::string DayText(Instant instant) {
  return instant.IsAbsent() ? "-" : engine::ToIsoText(instant.AsFinish()).substr(0, 10);
}

std::string DaysText(double days) {
  return fmt::format("{:.1f} days", Rounded(days, 1));
}

std::string IntervalText(double low, double high) {
  return fmt::format("{:.1f} .. {:.1f}", Rounded(low, 1), Rounded(high, 1));
}

/// What was run, and how far a stopped run has come.
std::string Heading(const Plan& plan, const RunReport& report) {
  const RunResult& run = report.run();
  // The run without weather comes first.
  const bool weather_never_began = report.compared && run.iterations() == 0;
  const std::int32_t done =
      weather_never_began ? report.results.without_weather.iterations() : run.iterations();
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
    runs.emplace_back("without weather", &report.results.without_weather);
  }
  runs.emplace_back(report.weather    ? "with weather"
                    : report.compared ? "again"
                                      : "",
                    &report.run());

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
  for (std::size_t i = 0; i < 4; ++i) {
    row(fmt::format("P{}", PercentilesOf(DateStatistics{})[i].percent),
        [i](const DateStatistics& f) { return DayText(PercentilesOf(f)[i].value); });
    row("  95% interval", [i](const DateStatistics& f) {
      return DayText(PercentilesOf(f)[i].low) + " .. " + DayText(PercentilesOf(f)[i].high);
    });
  }
  row("mean", [](const DateStatistics& f) { return DayText(f.mean); });
  row("standard deviation", [](const DateStatistics& f) { return DaysText(f.sd_days); });
  return table.Text() +
         "\nOn likely durations, without weather: " + DayText(report.run().deterministic_finish) +
         "\n";
}

std::string DelayLine(const RunReport& report) {
  const engine::DayStatistics& delay = report.results.delay;
  return fmt::format("Delay by weather: mean {}, P50 {} ({}), P80 {} ({})\n", DaysText(delay.mean),
                     DaysText(delay.p50), IntervalText(delay.p50_low, delay.p50_high),
                     DaysText(delay.p80), IntervalText(delay.p80_low, delay.p80_high));
}

std::string CalendarTable(const RunResult& run) {
  TextTable table({kLeft, kLeft, kRight, kRight, kRight});
  table.AddRow({"Weather calendar", "kind", "lost days, mean", "P80", "95% interval"});
  table.AddRule();
  for (const engine::CalendarResult& calendar : run.calendars) {
    table.AddRow({CutTo(calendar.name, kNameWidth), calendar.kind,
                  fmt::format("{:.1f}", Rounded(calendar.lost_days.mean, 1)),
                  fmt::format("{:.1f}", Rounded(calendar.lost_days.p80, 1)),
                  IntervalText(calendar.lost_days.p80_low, calendar.lost_days.p80_high)});
  }
  return table.Text();
}

/// What the weather costs, calendar by calendar, at P80.
std::string AttributionText(const engine::RunDocument& document, bool chart,
                            const Terminal& terminal) {
  const engine::Attribution& attribution = *document.attribution;
  TextTable table({kLeft, kLeft, kRight, kRight, kRight, kRight});
  table.AddRow({"Cost in days", "", "mean", "P50", "P80", "P90"});
  table.AddRule();
  const auto row = [&table](const std::string& name, const std::string& way,
                            const engine::DayFigures& cost) {
    std::vector<std::string> cells = {CutTo(name, kNameWidth), way};
    for (const double days : {cost.mean, cost.p50, cost.p80, cost.p90}) {
      cells.push_back(fmt::format("{:.1f}", Rounded(days, 1)));
    }
    table.AddRow(std::move(cells));
  };
  row("all weather", "", attribution.cost);
  std::vector<TornadoBar> bars;
  for (const engine::CalendarAttribution& calendar : attribution.calendars) {
    row(calendar.name, "with the others", calendar.cost);
    row("", "alone", calendar.cost_alone);
    bars.push_back(
        {calendar.name, calendar.cost.p80, fmt::format("{:.1f} d", Rounded(calendar.cost.p80, 1))});
  }
  std::stable_sort(bars.begin(), bars.end(),
                   [](const TornadoBar& a, const TornadoBar& b) { return a.value > b.value; });
  std::string text = table.Text();
  if (chart && !bars.empty()) {
    text += "\n" + TornadoChart("What each calendar adds to P80 with the others", bars, terminal);
  }
  return text;
}

std::string LedgerText(const engine::RunDocument& document) {
  TextTable table({kLeft, kRight, kRight, kRight, kRight, kRight});
  table.AddRow({"Mean days an iteration", "lost", "no work anyway", "none under way",
                "absorbed by float", "moving the finish"});
  table.AddRule();
  for (const engine::LedgerRow& line : document.ledger) {
    std::vector<std::string> cells = {CutTo(line.name, kNameWidth)};
    for (const double days : {line.lost, line.off, line.idle, line.absorbed, line.moving}) {
      cells.push_back(fmt::format("{:.1f}", Rounded(days, 1)));
    }
    table.AddRow(std::move(cells));
  }
  return table.Text();
}

/// The tasks that bear most on a target by cruciality: bars of their sensitivity, the longest
/// first.
std::string SensitivityText(const engine::Sensitivity& target, const Terminal& terminal) {
  std::vector<TornadoBar> bars;
  for (const engine::TaskDrive& task : target.tasks) {
    if (bars.size() < kMostCritical && task.cruciality > 0) {
      bars.push_back({task.id + "  " + task.name, task.sensitivity,
                      fmt::format("{:+.2f}", Rounded(task.sensitivity, 2))});
    }
  }
  std::stable_sort(bars.begin(), bars.end(), [](const TornadoBar& a, const TornadoBar& b) {
    return std::abs(a.value) > std::abs(b.value);
  });
  return bars.empty()
             ? ""
             : "\n" + TornadoChart("What drives " +
                                       (target.id.empty() ? std::string("the finish") : target.id) +
                                       ": correlation of duration and finish",
                                   bars, terminal);
}

std::string UntilLine(const engine::UntilOutcome& until) {
  return fmt::format("The 95% interval of P80 is {:.1f} days wide; {:g} were asked for{}\n",
                     Rounded(until.width_days, 1), until.days,
                     until.met ? "." : ", and not reached.");
}

/// A percentile of a date with its interval: "2027-08-18 (08-17 .. 08-21)".
std::string PercentileText(const engine::Percentile<Instant>& percentile) {
  const std::string value = DayText(percentile.value);
  const auto bound = [&value](Instant instant) {
    const std::string day = DayText(instant);
    return day.substr(0, 5) == value.substr(0, 5) ? day.substr(5) : day;
  };
  return fmt::format("{} ({} .. {})", value, bound(percentile.low), bound(percentile.high));
}

std::string TaskTable(const Plan& plan, const std::string& title,
                      const std::vector<const TaskResult*>& results) {
  TextTable table({kLeft, kLeft, kRight, kLeft, kLeft, kRight});
  table.AddRow({title, "", "critical", "finish P50", "finish P80", "pushed"});
  table.AddRule();
  for (const TaskResult* result : results) {
    const engine::Task& task = *plan.FindTask(result->task);
    const auto percentiles = PercentilesOf(result->finish);
    table.AddRow({CutTo(task.id, 20), CutTo(task.description, kNameWidth),
                  fmt::format("{:.0f}%", result->criticality * 100), PercentileText(percentiles[1]),
                  PercentileText(percentiles[2]),
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

std::string RunText(const Plan& plan, const RunReport& report,
                    const std::vector<engine::Uid>& asked, bool chart, const Terminal& terminal) {
  const RunResult& run = report.run();
  std::string text = Heading(plan, report);
  if (!report.weather) {
    text += "Without weather.\n";
  }
  text += "\n" + FinishTable(report);
  if (report.compared && !report.results.delay_minutes.empty()) {
    text += DelayLine(report);
  }
  if (report.document.choices.until.has_value() && run.iterations() > 0) {
    text += UntilLine(*report.document.choices.until);
  }
  if (chart && run.iterations() > 0) {
    text += "\n" + CurveChart(report.document, terminal);
    text += "\n" + FinishChart(run.finish_samples, report.results.without_weather.finish_samples,
                               terminal);
  }
  if (!run.calendars.empty()) {
    text += "\n" + CalendarTable(run);
  }
  if (report.document.attribution.has_value()) {
    text += "\n" + AttributionText(report.document, chart, terminal);
    text += "\n" + LedgerText(report.document);
  }
  if (chart && run.iterations() > 0) {
    for (const engine::Sensitivity& target : report.document.sensitivities) {
      text += SensitivityText(target, terminal);
    }
  }
  const auto critical = MostCritical(plan, run);
  if (!critical.empty()) {
    text += "\n" + TaskTable(plan, "Most critical", critical);
  }
  if (!asked.empty() && run.iterations() > 0) {
    text += "\n" + TaskTable(plan, "Asked for", ResultsOf(run, asked));
  }
  if (!report.document.warnings.empty()) {
    text += "\nWarnings\n";
    for (const std::string& warning : report.document.warnings) {
      text += "  " + warning + "\n";
    }
  }
  return text;
}

}  // namespace nimbrel::cli
