#include <fmt/format.h>

#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>

#include "nimbrel/json_text.h"
#include "nimbrel/run_report.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli {
namespace {

using engine::DateStatistics;
using engine::DayFigures;
using engine::DayStatistics;
using engine::Instant;
using engine::Percentile;
using engine::RunDocument;

/// Null for what is not a number, as the bounds of an interval that too few samples do not have.
Json Number(double value, int decimals) {
  return std::isfinite(value) ? Json(Rounded(value, decimals)) : Json(nullptr);
}

Json Days(double days) {
  return Number(days, 2);
}

Json ToJson(Instant date) {
  return DateJson(date);
}
Json ToJson(double days) {
  return Days(days);
}

/// Puts percentiles, then the bounds of their intervals: "p80", "p80_low" and "p80_high".
template <class Statistics>
void PutPercentiles(const Statistics& statistics, std::initializer_list<int> wanted, Json& json) {
  const auto all = engine::PercentilesOf(statistics);
  const auto each = [&](const auto& put) {
    for (const int percent : wanted) {
      for (const auto& percentile : all) {
        if (percentile.percent == percent) {
          put("p" + std::to_string(percent), percentile);
        }
      }
    }
  };
  each([&](const std::string& key, const auto& p) { json[key] = ToJson(p.value); });
  each([&](const std::string& key, const auto& p) {
    json[key + "_low"] = ToJson(p.low);
    json[key + "_high"] = ToJson(p.high);
  });
}

Json FinishJson(const DateStatistics& finish) {
  Json json;
  json["mean"] = DateJson(finish.mean);
  json["sd_days"] = Days(finish.sd_days);
  json["min"] = DateJson(finish.min);
  json["max"] = DateJson(finish.max);
  json["p10"] = DateJson(finish.p10);
  json["p50"] = DateJson(finish.p50);
  json["p80"] = DateJson(finish.p80);
  json["p90"] = DateJson(finish.p90);
  json["p80_low"] = DateJson(finish.p80_low);
  json["p80_high"] = DateJson(finish.p80_high);
  json["p10_low"] = DateJson(finish.p10_low);
  json["p10_high"] = DateJson(finish.p10_high);
  json["p50_low"] = DateJson(finish.p50_low);
  json["p50_high"] = DateJson(finish.p50_high);
  json["p90_low"] = DateJson(finish.p90_low);
  json["p90_high"] = DateJson(finish.p90_high);
  return json;
}

/// The curve as pairs of a day and the share that has finished by its end; the bars as their first
/// day, their last day and the iterations in them.
void PutShape(const engine::FinishDistribution& finish, Json& json) {
  json["curve"] = Json::array();
  for (const engine::CurvePoint& point : finish.curve) {
    json["curve"].push_back({IsoDay(point.day), Rounded(point.share, 4)});
  }
  json["histogram"] = Json::array();
  for (const engine::HistogramBar& bar : finish.histogram) {
    json["histogram"].push_back({IsoDay(bar.days.first), IsoDay(bar.days.last), bar.count});
  }
}

Json DatedJson(const engine::DatedTask& task) {
  Json json;
  json["id"] = task.id;
  json["name"] = task.name;
  json["start"] = {{"p50", DateJson(task.start.value)},
                   {"p50_low", DateJson(task.start.low)},
                   {"p50_high", DateJson(task.start.high)}};
  json["finish"]["mean"] = DateJson(task.finish.mean);
  PutPercentiles(task.finish, {10, 50, 80, 90}, json["finish"]);
  return json;
}

Json TaskJson(const engine::DatedTask& task) {
  Json json = DatedJson(task);
  json["criticality"] = Rounded(task.criticality, 4);
  json["nosplit_pushed_days"] = Days(task.nosplit_pushed_days);
  return json;
}

void PutCalendars(const RunDocument& document, Json& json) {
  json["calendars"] = Json::array();
  for (const engine::CalendarLoss& calendar : document.calendars) {
    Json one;
    one["name"] = calendar.name;
    one["kind"] = calendar.kind;
    one["lost_days"]["mean"] = Days(calendar.lost_days.mean);
    PutPercentiles(calendar.lost_days, {80}, one["lost_days"]);
    json["calendars"].push_back(std::move(one));
  }
}

Json DelayJson(const DayStatistics& delay, std::initializer_list<int> wanted) {
  Json json;
  json["mean"] = Days(delay.mean);
  PutPercentiles(delay, wanted, json);
  return json;
}

Json FiguresJson(const DayFigures& figures) {
  Json json;
  json["mean"] = Days(figures.mean);
  PutPercentiles(figures, {50, 80, 90}, json);
  return json;
}

Json AttributionJson(const engine::Attribution& attribution) {
  Json json;
  json["all"]["finish"] = FinishJson(attribution.all);
  json["none"]["finish"] = FinishJson(attribution.none);
  json["cost_days"] = FiguresJson(attribution.cost);
  json["delay_days"] = DelayJson(attribution.delay, {50, 80, 90});
  json["calendars"] = Json::array();
  for (const engine::CalendarAttribution& calendar : attribution.calendars) {
    Json one;
    one["name"] = calendar.name;
    one["kind"] = calendar.kind;
    one["left_out"]["finish"] = FinishJson(calendar.left_out);
    one["left_out"]["cost_days"] = FiguresJson(calendar.cost);
    one["left_out"]["delay_days"] = DelayJson(calendar.delay, {50, 80, 90});
    one["alone"]["finish"] = FinishJson(calendar.alone);
    one["alone"]["cost_days"] = FiguresJson(calendar.cost_alone);
    one["alone"]["delay_days"] = DelayJson(calendar.delay_alone, {50, 80, 90});
    json["calendars"].push_back(std::move(one));
  }
  return json;
}

Json LedgerJson(const RunDocument& document) {
  Json json = Json::array();
  for (const engine::LedgerRow& row : document.ledger) {
    json.push_back({{"name", row.name},
                    {"kind", row.kind},
                    {"tasks", row.tasks},
                    {"lost_days", Rounded(row.lost, 4)},
                    {"off_days", Rounded(row.off, 4)},
                    {"idle_days", Rounded(row.idle, 4)},
                    {"absorbed_days", Rounded(row.absorbed, 4)},
                    {"moving_days", Rounded(row.moving, 4)}});
  }
  return json;
}

Json SensitivitiesJson(const RunDocument& document) {
  Json json = Json::array();
  for (const engine::Sensitivity& target : document.sensitivities) {
    Json one;
    one["target"] = target.id.empty() ? Json(nullptr) : Json(target.id);
    one["name"] = target.id.empty() ? Json(nullptr) : Json(target.name);
    one["tasks"] = Json::array();
    for (const engine::TaskDrive& task : target.tasks) {
      one["tasks"].push_back({{"id", task.id},
                              {"name", task.name},
                              {"criticality", Rounded(task.criticality, 4)},
                              {"sensitivity", Rounded(task.sensitivity, 4)},
                              {"cruciality", Rounded(task.cruciality, 4)},
                              {"ssi", Rounded(task.ssi, 4)}});
    }
    json.push_back(std::move(one));
  }
  return json;
}

Json HeatMapsJson(const RunDocument& document) {
  Json json = Json::array();
  for (const engine::HeatMap& map : document.heat_maps) {
    Json one;
    one["name"] = map.name;
    one["kind"] = map.kind;
    one["first_day"] = map.chance.empty() ? Json(nullptr) : Json(IsoDay(map.first_day));
    one["chance"] = Json::array();
    for (const double chance : map.chance) {
      one["chance"].push_back(Rounded(chance, 4));
    }
    one["months"] = Json::object();
    for (const engine::MonthLoss& month : map.months) {
      one["months"][month.month] = Rounded(month.days, 4);
    }
    json.push_back(std::move(one));
  }
  return json;
}

Json ChainJson(const engine::CriticalChain& chain) {
  Json json;
  json["iteration"] = chain.iteration;
  json["finish"] = DateJson(chain.finish);
  json["options"] = chain.options;
  json["tasks"] = Json::array();
  for (const engine::ChainTask& task : chain.tasks) {
    Json one;
    one["id"] = task.id;
    one["name"] = task.name;
    one["milestone"] = task.is_milestone;
    one["start"] = DateJson(task.start);
    one["finish"] = DateJson(task.finish);
    one["pushed"] = task.is_pushed;
    one["lost"] = Json::array();
    for (const engine::DayRange& days : task.lost) {
      one["lost"].push_back({IsoDay(days.first), IsoDay(days.last)});
    }
    one["calendars"] = task.causes;
    json["tasks"].push_back(std::move(one));
  }
  return json;
}

Json InputsJson(const RunDocument& document) {
  Json json = Json::array();
  for (const engine::InputTable& table : document.inputs) {
    json.push_back({{"title", table.title}, {"columns", table.columns}, {"rows", table.rows}});
  }
  return json;
}

/// What came later than the keys before it, and stands behind them.
void PutDetails(const RunDocument& document, Json& json) {
  json["title"] = document.title;
  json["data_date"] = DateJson(document.data_date);
  json["deterministic"]["share"] = Rounded(document.deterministic_share, 4);
  json["iterations_asked"] = document.choices.iterations_asked;
  json["sampling"] = document.choices.sampling;
  if (const auto& until = document.choices.until) {
    json["until"] = {
        {"days", until->days}, {"width_days", Days(until->width_days)}, {"met", until->met}};
  }
  PutShape(document.finish, json["distribution"]["finish"]);
  if (document.without_weather.has_value()) {
    PutShape(*document.without_weather, json["distribution"]["without_weather"]);
  }
  if (document.attribution.has_value()) {
    json["attribution"] = AttributionJson(*document.attribution);
    json["ledger"] = LedgerJson(document);
  }
  json["sensitivities"] = SensitivitiesJson(document);
  json["heat_maps"] = HeatMapsJson(document);
  json["milestones"] = Json::array();
  for (const engine::DatedTask& milestone : document.milestones) {
    json["milestones"].push_back(DatedJson(milestone));
  }
  json["critical_chain"] = ChainJson(document.chain);
  json["inputs"] = InputsJson(document);
}

}  // namespace

Json RunJson(const RunReport& report) {
  const RunDocument& document = report.document;
  Json json;
  json["version"] = document.version;
  json["plan"] = document.plan;
  json["iterations"] = document.choices.iterations;
  json["seed"] = document.choices.seed;
  json["time_unit"] = static_cast<std::int32_t>(document.time_unit);
  json["weather"] = report.weather;
  json["deterministic"]["finish"] = DateJson(document.deterministic_finish);
  json["finish"] = FinishJson(document.finish.statistics);
  if (report.compared) {
    json["without_weather"]["finish"] = FinishJson(document.without_weather->statistics);
    json["weather_delay_days"] = DelayJson(*document.weather_delay, {50, 80});
  }
  PutCalendars(document, json);
  json["tasks"] = Json::array();
  for (const engine::DatedTask& task : document.tasks) {
    json["tasks"].push_back(TaskJson(task));
  }
  json["warnings"] = document.warnings;
  PutDetails(document, json);
  return json;
}

}  // namespace nimbrel::cli
