#include "nimbrel/run_tables.h"

#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "nimbrel/json_text.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli {
namespace {

using engine::DateStatistics;
using engine::DayRange;
using engine::DayStatistics;
using engine::RunDocument;
using Row = std::vector<std::string>;

/// Nothing for what is not a number: see engine::LeaveOutIntervals.
std::string Number(double value, int decimals = 2) {
  return std::isfinite(value) ? fmt::format("{}", Rounded(value, decimals)) : "";
}

std::string Cell(engine::Instant date) {
  return DateText(date);
}
std::string Cell(double days) {
  return Number(days);
}

const Row kPercentileColumns = {"p10", "p10_low", "p10_high", "p50", "p50_low", "p50_high",
                                "p80", "p80_low", "p80_high", "p90", "p90_low", "p90_high"};

template <class Statistics>
void AddPercentiles(const Statistics& statistics, Row& row) {
  for (const auto& percentile : engine::PercentilesOf(statistics)) {
    row.push_back(Cell(percentile.value));
    row.push_back(Cell(percentile.low));
    row.push_back(Cell(percentile.high));
  }
}

Row With(Row first, const Row& more) {
  first.insert(first.end(), more.begin(), more.end());
  return first;
}

Row FinishRow(const std::string& name, const DateStatistics& finish) {
  Row row = {name, DateText(finish.mean), Number(finish.sd_days), DateText(finish.min),
             DateText(finish.max)};
  AddPercentiles(finish, row);
  return row;
}

ResultTable RunTable(const RunDocument& document) {
  const engine::RunChoices& choices = document.choices;
  ResultTable table{"run", {"what", "value"}, {}};
  table.rows = {{"version", document.version},
                {"plan", document.plan},
                {"seed", std::to_string(choices.seed)},
                {"iterations", std::to_string(choices.iterations)},
                {"sampling", choices.sampling},
                {"weather", choices.weather ? "yes" : "no"},
                {"deterministic finish", DateText(document.deterministic_finish)},
                {"share finished by then", Number(document.deterministic_share, 4)}};
  if (choices.until.has_value()) {
    table.rows.push_back({"interval of P80 asked for, days", Number(choices.until->days, 4)});
    table.rows.push_back({"interval of P80, days", Number(choices.until->width_days)});
  }
  for (const std::string& warning : document.warnings) {
    table.rows.push_back({"warning", warning});
  }
  return table;
}

/// The run that is compared with. A plan without weather is run twice, without any.
std::string NameOfOtherRun(const RunDocument& document) {
  return document.choices.weather ? "without weather" : "without weather, again";
}

ResultTable FinishTable(const RunDocument& document) {
  ResultTable table{
      "finish", With({"run", "mean", "sd_days", "min", "max"}, kPercentileColumns), {}};
  table.rows.push_back(FinishRow(document.choices.weather ? "with weather" : "without weather",
                                 document.finish.statistics));
  if (document.without_weather.has_value()) {
    table.rows.push_back(FinishRow(NameOfOtherRun(document), document.without_weather->statistics));
  }
  if (document.weather_delay.has_value()) {
    const DayStatistics& delay = *document.weather_delay;
    Row row = {"delay by weather, days", Number(delay.mean), Number(delay.sd), Number(delay.min),
               Number(delay.max)};
    AddPercentiles(delay, row);
    table.rows.push_back(std::move(row));
  }
  return table;
}

void AddShapes(const std::string& name, const engine::FinishDistribution& finish,
               ResultTable& curve, ResultTable& histogram) {
  for (const engine::CurvePoint& point : finish.curve) {
    curve.rows.push_back({name, IsoDay(point.day), Number(point.share, 4)});
  }
  for (const engine::HistogramBar& bar : finish.histogram) {
    histogram.rows.push_back(
        {name, IsoDay(bar.days.first), IsoDay(bar.days.last), std::to_string(bar.count)});
  }
}

ResultTable DatedTable(const std::string& name, const std::vector<engine::DatedTask>& tasks) {
  ResultTable table{
      name,
      With(With({"id", "name", "start_p50", "start_p50_low", "start_p50_high", "finish_mean"},
                kPercentileColumns),
           {"criticality", "nosplit_pushed_days"}),
      {}};
  for (const engine::DatedTask& task : tasks) {
    Row row = {task.id,
               task.name,
               DateText(task.start.value),
               DateText(task.start.low),
               DateText(task.start.high),
               DateText(task.finish.mean)};
    AddPercentiles(task.finish, row);
    row.push_back(Number(task.criticality, 4));
    row.push_back(Number(task.nosplit_pushed_days));
    table.rows.push_back(std::move(row));
  }
  return table;
}

ResultTable CalendarsTable(const RunDocument& document) {
  ResultTable table{"calendars", With({"calendar", "kind", "mean"}, kPercentileColumns), {}};
  for (const engine::CalendarLoss& calendar : document.calendars) {
    Row row = {calendar.name, calendar.kind, Number(calendar.lost_days.mean)};
    AddPercentiles(calendar.lost_days, row);
    table.rows.push_back(std::move(row));
  }
  return table;
}

ResultTable HeatTable(const RunDocument& document) {
  ResultTable table{"heat_map", {"calendar", "day", "chance"}, {}};
  for (const engine::HeatMap& map : document.heat_maps) {
    for (std::size_t i = 0; i < map.chance.size(); ++i) {
      if (map.chance[i] > 0) {
        table.rows.push_back({map.name, IsoDay(map.first_day + static_cast<std::int32_t>(i)),
                              Number(map.chance[i], 4)});
      }
    }
  }
  return table;
}

ResultTable MonthsTable(const RunDocument& document) {
  ResultTable table{"months", {"calendar", "month", "days"}, {}};
  for (const engine::HeatMap& map : document.heat_maps) {
    for (const engine::MonthLoss& month : map.months) {
      table.rows.push_back({map.name, month.month, Number(month.days, 4)});
    }
  }
  return table;
}

ResultTable SensitivityTable(const RunDocument& document) {
  ResultTable table{"sensitivity",
                    {"target", "id", "name", "criticality", "sensitivity", "cruciality", "ssi"},
                    {}};
  for (const engine::Sensitivity& target : document.sensitivities) {
    for (const engine::TaskDrive& task : target.tasks) {
      table.rows.push_back({target.id, task.id, task.name, Number(task.criticality, 4),
                            Number(task.sensitivity, 4), Number(task.cruciality, 4),
                            Number(task.ssi, 4)});
    }
  }
  return table;
}

Row CostRow(const std::string& name, const std::string& way, const DateStatistics& finish,
            const engine::DayFigures& cost) {
  Row row = {name, way, Number(cost.mean)};
  AddPercentiles(cost, row);
  row.push_back(DateText(finish.mean));
  AddPercentiles(finish, row);
  return row;
}

ResultTable AttributionTable(const engine::Attribution& attribution) {
  ResultTable table{"attribution",
                    With({"calendar", "way", "cost_mean", "cost_p50", "cost_p50_low",
                          "cost_p50_high", "cost_p80", "cost_p80_low", "cost_p80_high", "cost_p90",
                          "cost_p90_low", "cost_p90_high", "finish_mean"},
                         kPercentileColumns),
                    {}};
  table.rows.push_back(CostRow("", "none", attribution.none, attribution.cost));
  for (const engine::CalendarAttribution& calendar : attribution.calendars) {
    table.rows.push_back(CostRow(calendar.name, "left out", calendar.left_out, calendar.cost));
    table.rows.push_back(CostRow(calendar.name, "alone", calendar.alone, calendar.cost_alone));
  }
  return table;
}

ResultTable LedgerTable(const RunDocument& document) {
  ResultTable table{
      "ledger", {"calendar", "kind", "tasks", "lost", "off", "idle", "absorbed", "moving"}, {}};
  for (const engine::LedgerRow& row : document.ledger) {
    table.rows.push_back({row.name, row.kind, std::to_string(row.tasks), Number(row.lost, 4),
                          Number(row.off, 4), Number(row.idle, 4), Number(row.absorbed, 4),
                          Number(row.moving, 4)});
  }
  return table;
}

ResultTable ChainTable(const engine::CriticalChain& chain) {
  ResultTable table{
      "critical_chain", {"id", "name", "start", "finish", "pushed", "lost", "calendars"}, {}};
  for (const engine::ChainTask& task : chain.tasks) {
    std::string lost;
    for (const DayRange& days : task.lost) {
      lost += fmt::format("{}{} to {}", lost.empty() ? "" : "; ", IsoDay(days.first),
                          IsoDay(days.last));
    }
    table.rows.push_back({task.id, task.name, DateText(task.start), DateText(task.finish),
                          task.is_pushed ? "yes" : "no", lost,
                          fmt::format("{}", fmt::join(task.causes, "; "))});
  }
  return table;
}

ResultTable InputsTable(const RunDocument& document) {
  ResultTable table{"inputs", {"table", "row", "column", "value"}, {}};
  for (const engine::InputTable& input : document.inputs) {
    for (std::size_t row = 0; row < input.rows.size(); ++row) {
      for (std::size_t column = 0; column < input.columns.size(); ++column) {
        table.rows.push_back(
            {input.title, std::to_string(row + 1), input.columns[column], input.rows[row][column]});
      }
    }
  }
  return table;
}

}  // namespace

std::vector<ResultTable> TablesOf(const RunDocument& document) {
  ResultTable curve{"curve", {"run", "day", "share"}, {}};
  ResultTable histogram{"histogram", {"run", "first_day", "last_day", "iterations"}, {}};
  AddShapes(document.choices.weather ? "with weather" : "without weather", document.finish, curve,
            histogram);
  if (document.without_weather.has_value()) {
    AddShapes(NameOfOtherRun(document), *document.without_weather, curve, histogram);
  }
  std::vector<ResultTable> tables = {RunTable(document),
                                     FinishTable(document),
                                     curve,
                                     histogram,
                                     DatedTable("tasks", document.tasks),
                                     DatedTable("milestones", document.milestones),
                                     CalendarsTable(document),
                                     HeatTable(document),
                                     MonthsTable(document),
                                     SensitivityTable(document),
                                     LedgerTable(document),
                                     ChainTable(document.chain),
                                     InputsTable(document)};
  if (document.attribution.has_value()) {
    tables.push_back(AttributionTable(*document.attribution));
  }
  std::erase_if(tables, [](const ResultTable& table) { return table.rows.empty(); });
  return tables;
}

std::string TableCsv(const ResultTable& table) {
  std::string text;
  const auto add = [&text](const Row& row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
      text += (i == 0 ? "" : ",") + CsvField(row[i]);
    }
    text += "\n";
  };
  add(table.columns);
  for (const Row& row : table.rows) {
    add(row);
  }
  return text;
}

}  // namespace nimbrel::cli
