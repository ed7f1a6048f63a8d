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

/// With one decimal of the two that the JSON has, so that all outputs show the same.
std::string Days(double days) {
  return fmt::format("{:.1f}", Rounded(Rounded(days, 2), 1));
}

std::string DaysText(double days) {
  return Days(days) + " days";
}

/// "-" where there are too few samples for an interval.
std::string IntervalText(double low, double high) {
  return std::isnan(low) ? "-" : Days(low) + " .. " + Days(high);
}

/// "19.7 days (18.2 .. 20.7)".
std::string WithInterval(const std::string& value, double low, double high) {
  return std::isnan(low) ? value : fmt::format("{} ({})", value, IntervalText(low, high));
}

std::string IntervalText(Instant low, Instant high) {
  return low.IsAbsent() ? "-" : DayText(low) + " .. " + DayText(high);
}

/// What was run, and how far a stopped run has come.
std::string Heading(const Plan& plan, const RunReport& report) {
  const RunResult& run = report.run();
  // The run without weather comes first, but for one that goes on until an interval is met.
  const bool weather_never_began = report.compared && run.iterations() == 0;
  const bool weather_was_complete = report.compared && !run.stopped;
  const std::int32_t done =
      weather_never_began ? report.results.without_weather.iterations() : run.iterations();
  std::string text = fmt::format("{}: {}, seed {}\n", TitleOf(plan),
                                 Counted(done, "iteration", "iterations"), run.seed);
  if (IsStopped(report) && weather_was_complete) {
    text +=
        fmt::format("Stopped: {} of {} iterations without weather were done, after all with it.\n",
                    Grouped(report.results.without_weather.iterations()), Grouped(done));
  } else if (IsStopped(report)) {
    text += fmt::format("Stopped: {} of {} iterations {}were done.\n", Grouped(done),
                        Grouped(run.iterations_asked),
                        weather_never_began ? "without weather and none with it " : "");
  }
  return text;
}

/// The plan's finish, one column for each way it was run.
std::string FinishTable(const RunReport& report) {
  const engine::RunDocument& document = report.document;
  const DateStatistics nothing;
  std::vector<std::pair<std::string, const DateStatistics*>> runs;
  if (report.compared) {
    runs.emplace_back("without weather", document.without_weather.has_value()
                                             ? &document.without_weather->statistics
                                             : &nothing);
  }
  runs.emplace_back(report.weather    ? "with weather"
                    : report.compared ? "again"
                                      : "",
                    &document.finish.statistics);

  TextTable table(std::vector<TextTable::Align>(runs.size() + 1, kLeft));
  const auto row = [&](const std::string& name, const auto& cell) {
    std::vector<std::string> cells = {name};
    for (const auto& [title, finish] : runs) {
      cells.push_back(finish->count > 0 ? cell(*finish) : "-");
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
      return IntervalText(PercentilesOf(f)[i].low, PercentilesOf(f)[i].high);
    });
  }
  row("mean", [](const DateStatistics& f) { return DayText(f.mean); });
  row("standard deviation", [](const DateStatistics& f) { return DaysText(f.sd_days); });
  return table.Text() +
         "\nOn likely durations, without weather: " + DayText(report.run().deterministic_finish) +
         "\n";
}

std::string DelayLine(const engine::DayStatistics& delay) {
  return fmt::format("Delay by weather: mean {}, P50 {}, P80 {}\n", DaysText(delay.mean),
                     WithInterval(DaysText(delay.p50), delay.p50_low, delay.p50_high),
                     WithInterval(DaysText(delay.p80), delay.p80_low, delay.p80_high));
}

std::string CalendarTable(const engine::RunDocument& document) {
  TextTable table({kLeft, kLeft, kRight, kRight, kRight});
  table.AddRow({"Weather calendar", "kind", "lost days, mean", "P80", "95% interval"});
  table.AddRule();
  for (const engine::CalendarLoss& calendar : document.calendars) {
    table.AddRow({CutTo(calendar.name, kNameWidth), calendar.kind, Days(calendar.lost_days.mean),
                  Days(calendar.lost_days.p80),
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
    cells.push_back(Days(cost.mean));
    for (const auto& p : PercentilesOf(cost)) {
      cells.push_back(WithInterval(Days(p.value), p.low, p.high));
    }
    table.AddRow(std::move(cells));
  };
  row("all weather", "", attribution.cost);
  std::vector<TornadoBar> bars;
  for (const engine::CalendarAttribution& calendar : attribution.calendars) {
    row(calendar.name, "with the others", calendar.cost);
    row("", "alone", calendar.cost_alone);
    bars.push_back({calendar.name, calendar.cost.p80, Days(calendar.cost.p80) + " d"});
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
      cells.push_back(fmt::format("{:.1f}", Rounded(Rounded(days, 4), 1)));
    }
    table.AddRow(std::move(cells));
  }
  std::string text = table.Text();
  for (const engine::LedgerRow& line : document.ledger) {
    if (line.tasks == 0) {
      text += fmt::format("{} is assigned to no task: all its days count as no work anyway.\n",
                          line.name);
    }
  }
  return text;
}

/// The tasks that bear most on a target by cruciality: bars of their sensitivity, the longest
/// first.
std::string SensitivityText(const engine::Sensitivity& target, const Terminal& terminal) {
  std::vector<TornadoBar> bars;
  for (const engine::TaskDrive& task : target.tasks) {
    if (bars.size() < kMostCritical && task.cruciality > 0) {
      bars.push_back({task.id + "  " + task.name, task.sensitivity,
                      fmt::format("{:+.2f}", Rounded(Rounded(task.sensitivity, 4), 2))});
    }
  }
  std::stable_sort(bars.begin(), bars.end(), [](const TornadoBar& a, const TornadoBar& b) {
    return std::abs(a.value) > std::abs(b.value);
  });
  if (bars.empty()) {
    return "";
  }
  const std::string title = fmt::format(
      "What drives {}: correlation of duration and finish\n({}, those that correlate most first)",
      target.id.empty() ? "the finish" : target.id,
      bars.size() == 1 ? "the only task that does"
                       : fmt::format("the {} tasks of the greatest cruciality", bars.size()));
  return "\n" + TornadoChart(title, bars, terminal);
}

std::string UntilLine(const engine::UntilOutcome& until, std::int32_t iterations) {
  if (std::isnan(until.width_days)) {
    return fmt::format("Too few iterations for a 95% interval of P80; {:g} days were asked for.\n",
                       until.days);
  }
  const bool too_few = iterations < engine::kLeastUntilIterations;
  return fmt::format("The 95% interval of P80 is {} days wide; {:g} were asked for{}\n",
                     Days(until.width_days), until.days,
                     until.met ? "."
                     : too_few
                         ? fmt::format(", of {} iterations at least; the run ended at its {}.",
                                       engine::kLeastUntilIterations, iterations)
                         : ", and not reached.");
}

/// A percentile of a date with its interval, if it has one: "2027-08-18 (08-17 .. 08-21)".
std::string PercentileText(const engine::Percentile<Instant>& percentile) {
  const std::string value = DayText(percentile.value);
  if (percentile.low.IsAbsent()) {
    return value;
  }
  const auto bound = [&value](Instant instant) {
    const std::string day = DayText(instant);
    return day.substr(0, 5) == value.substr(0, 5) ? day.substr(5) : day;
  };
  return fmt::format("{} ({} .. {})", value, bound(percentile.low), bound(percentile.high));
}

std::string TaskTable(const std::string& title,
                      const std::vector<const engine::DatedTask*>& results) {
  TextTable table({kLeft, kLeft, kRight, kLeft, kLeft, kRight});
  table.AddRow({title, "", "critical", "finish P50", "finish P80", "pushed"});
  table.AddRule();
  for (const engine::DatedTask* task : results) {
    const auto percentiles = PercentilesOf(task->finish);
    table.AddRow({CutTo(task->id, 20), CutTo(task->name, kNameWidth),
                  fmt::format("{:.0f}%", Rounded(100 * Rounded(task->criticality, 4), 0)),
                  PercentileText(percentiles[1]), PercentileText(percentiles[2]),
                  task->nosplit_pushed_days > 0 ? Days(task->nosplit_pushed_days) + " d" : ""});
  }
  return table.Text();
}

/// The tasks that drove the finish most often; the earlier in the plan the first among equals.
/// The document's tasks stand in the order of the run's.
std::vector<const engine::DatedTask*> MostCritical(const Plan& plan, const RunReport& report) {
  std::vector<const engine::DatedTask*> results;
  for (std::size_t i = 0; i < report.document.tasks.size(); ++i) {
    const engine::Task& task = *plan.FindTask(report.run().tasks[i].task);
    const engine::DatedTask& dated = report.document.tasks[i];
    if (dated.criticality > 0 && task.kind == engine::TaskKind::kTask && !dated.is_finished) {
      results.push_back(&dated);
    }
  }
  std::stable_sort(results.begin(), results.end(),
                   [](const auto* a, const auto* b) { return a->criticality > b->criticality; });
  results.resize(std::min(results.size(), kMostCritical));
  return results;
}

std::vector<const engine::DatedTask*> ResultsOf(const RunReport& report,
                                                const std::vector<engine::Uid>& tasks) {
  std::vector<const engine::DatedTask*> results;
  const std::vector<TaskResult>& all = report.run().tasks;
  for (const engine::Uid uid : tasks) {
    const auto found =
        std::find_if(all.begin(), all.end(), [uid](const TaskResult& r) { return r.task == uid; });
    if (found != all.end()) {
      results.push_back(&report.document.tasks[static_cast<std::size_t>(found - all.begin())]);
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
  if (report.compared && report.document.weather_delay.has_value()) {
    text += DelayLine(*report.document.weather_delay);
  }
  if (report.document.choices.until.has_value() && run.iterations() > 0) {
    text += UntilLine(*report.document.choices.until, run.iterations());
  }
  if (chart && run.iterations() > 0) {
    text += "\n" + CurveChart(report.document, terminal);
    text += "\n" + FinishChart(run.finish_samples, report.results.without_weather.finish_samples,
                               terminal);
  }
  if (!run.calendars.empty()) {
    text += "\n" + CalendarTable(report.document);
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
  const auto critical = MostCritical(plan, report);
  if (!critical.empty()) {
    text += "\n" + TaskTable("Most critical", critical);
  }
  if (!asked.empty() && run.iterations() > 0) {
    text += "\n" + TaskTable("Asked for", ResultsOf(report, asked));
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
