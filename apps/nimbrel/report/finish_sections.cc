#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "engine/results/run_document.h"
#include "nimbrel/report/sections.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli::report {
namespace {

constexpr std::size_t kCurveRows = 25;

std::string Card(const std::string& looks, const std::string& title, const std::string& value,
                 const std::string& note) {
  return fmt::format(
      "<div class=\"card {}\"><p class=\"what\">{}</p><p class=\"value\">{}</p><p>{}</p></div>\n",
      looks, title, value, note);
}

std::string DateCard(const Figures& figures, const std::string& looks, const std::string& title,
                     const std::string& place) {
  const std::string interval = figures.Interval(place, Form::kLongFinish);
  return Card(
      looks, title, figures.Show(place, Form::kLongFinish),
      interval.empty() ? "too few iterations for an interval" : "95% interval: " + interval);
}

std::string Cards(const Figures& figures, const FinishPlaces& places) {
  std::string cards;
  if (!places.weather) {
    cards = DateCard(figures, "without", "P80 of the finish, no weather", places.finish + "/p80");
  } else {
    cards = DateCard(figures, "with", "P80 of the finish, with weather", places.finish + "/p80");
    if (!places.without.empty()) {
      cards += DateCard(figures, "without", "P80 of the finish, without weather",
                        places.without + "/p80");
    }
    if (!places.delay.empty()) {
      cards += Card("both", "What the weather adds",
                    figures.Show(places.delay + "/mean", Form::kDays) + " days",
                    "on average; at most " + figures.Show(places.delay + "/p80", Form::kDays) +
                        " days in 80% of the iterations");
    }
  }
  return "<div class=\"cards\">\n" + cards + "</div>\n";
}

std::string InWords(const Figures& figures, const FinishPlaces& places) {
  const bool is_sure = figures.Has(places.finish + "/p80_low");
  const std::string way = places.weather ? "With its weather," : "Without weather,";
  std::string text =
      is_sure
          ? fmt::format(
                "<p class=\"lead\">{} there is a chance of 80% that the plan is finished by {}.",
                way, figures.Show(places.finish + "/p80", Form::kLongFinish))
          : fmt::format(
                "<p class=\"lead\">{} iterations are too few to say by when there is a chance "
                "of 80% that the plan is finished.",
                figures.Show("/iterations", Form::kCount));
  if (is_sure && places.weather && !places.without.empty()) {
    text += fmt::format(" If no weather came in the way, it would be {}.",
                        figures.Show(places.without + "/p80", Form::kLongFinish));
  }
  text += fmt::format(
      " The plan’s own dates, on likely durations and without weather, end on {}: {} of the "
      "iterations {} finished by then.</p>\n",
      figures.Show("/deterministic/finish", Form::kLongFinish),
      figures.Show("/deterministic/share", Form::kFineShare),
      places.weather ? "with weather are" : "are");
  text +=
      "<p class=\"note\">P80 is the date that 80% of the iterations keep. Its 95% interval says "
      "how "
      "far the number of iterations leaves it open; it says nothing of how good the ranges and the "
      "weather are that went in.</p>\n";
  if (places.weather && places.without.empty()) {
    text += Missing("The finish without weather", "--compare");
  }
  return text;
}

std::string FinishTable(const Figures& figures, const FinishPlaces& places) {
  std::vector<Column> columns = {{"Plan’s finish"}};
  const bool both = !places.without.empty();
  if (both) {
    columns.push_back({"without weather", true});
  }
  columns.push_back({places.weather ? "with weather" : "no weather", true});
  if (!places.cost.empty()) {
    columns.push_back({"difference in days", true});
  }
  HtmlTable table("The plan’s finish; below each percentile its 95% interval", columns);
  const auto row = [&](const std::string& title, const std::string& key, Form form, bool compared) {
    std::vector<std::string> cells = {title};
    if (both) {
      cells.push_back(figures.WithInterval(places.without + key, form));
    }
    cells.push_back(figures.WithInterval(places.finish + key, form));
    if (!places.cost.empty()) {
      cells.push_back(compared ? figures.WithInterval(places.cost + key, Form::kDays) : "");
    }
    table.AddRow(cells);
  };
  row("P10", "/p10", Form::kFinish, false);
  row("P50", "/p50", Form::kFinish, true);
  row("P80", "/p80", Form::kFinish, true);
  row("P90", "/p90", Form::kFinish, true);
  row("Mean", "/mean", Form::kFinish, true);
  row("Earliest", "/min", Form::kFinish, false);
  row("Latest", "/max", Form::kFinish, false);
  row("Standard deviation, days", "/sd_days", Form::kDays, false);
  return table.Html();
}

std::string UntilText(const Figures& figures) {
  if (!figures.Has("/until")) {
    return "";
  }
  const bool too_few = figures.At("/iterations") < engine::kLeastUntilIterations;
  return fmt::format(
      "<p>The run was to go on until the 95% interval of P80 is {} days wide; it is {} days wide "
      "after {} iterations{}.</p>\n",
      figures.Show("/until/days", Form::kDays), figures.Show("/until/width_days", Form::kDays),
      figures.Show("/iterations", Form::kCount),
      too_few ? fmt::format(", at which the run ended; {} at least would tell",
                            engine::kLeastUntilIterations)
              : "");
}

std::string CurveTable(const Figures& figures, const std::string& title, const std::string& place) {
  const std::size_t points = figures.CountAt(place + "/curve");
  const std::size_t step = std::max<std::size_t>(1, (points + kCurveRows - 2) / (kCurveRows - 1));
  HtmlTable table(title, {{"By the end of"}, {"finished", true}});
  std::size_t rows = 0;
  for (std::size_t i = 0; i < points; ++i) {
    if (i % step == 0 || i + 1 == points) {
      const std::string point = fmt::format("{}/curve/{}", place, i);
      table.AddRow(
          {figures.Show(point + "/0", Form::kText), figures.Show(point + "/1", Form::kFineShare)});
      ++rows;
    }
  }
  return "<div>" + table.Html() + CutNote(rows, points, "points of the curve", "curve.csv") +
         "</div>\n";
}

std::string HistogramTable(const Figures& figures, const FinishPlaces& places) {
  std::vector<Column> columns = {{"First day"}, {"last day"}};
  const bool both = !places.curve_without.empty();
  if (both) {
    columns.push_back({"without weather", true});
  }
  columns.push_back({places.weather ? "with weather" : "no weather", true});
  HtmlTable table("Iterations that finish from a first to a last day", columns);
  for (std::size_t i = 0; i < figures.CountAt(places.curve_with + "/histogram"); ++i) {
    const std::string bar = fmt::format("/histogram/{}", i);
    std::vector<std::string> cells = {figures.Show(places.curve_with + bar + "/0", Form::kText),
                                      figures.Show(places.curve_with + bar + "/1", Form::kText)};
    if (both) {
      cells.push_back(figures.Show(places.curve_without + bar + "/2", Form::kCount));
    }
    cells.push_back(figures.Show(places.curve_with + bar + "/2", Form::kCount));
    table.AddRow(cells);
  }
  return table.Html();
}

/// Where the curve has its point of the day of a finish; "" if it has none, as a long curve may.
std::string PointOf(const Figures& figures, const std::string& curve, const std::string& finish) {
  const engine::Instant moment =
      engine::ParseIsoText(figures.At(finish).get<std::string>()).AsFinish();
  for (std::size_t i = 0; i < figures.CountAt(curve); ++i) {
    const std::string point = fmt::format("{}/{}", curve, i);
    if (figures.At(point + "/0") == IsoDay(moment.day())) {
      return point;
    }
  }
  return "";
}

/// What the curve's marks say, which may stand above 80%.
std::string MarkText(const Figures& figures, const FinishPlaces& places) {
  std::string text =
      "A mark stands at P80, the first day by whose end at least 80% have finished: where many "
      "iterations finish on that day it is higher than 80%";
  const auto add = [&](const std::string& begin, const std::string& curve,
                       const std::string& finish, const std::string& end) {
    const std::string point = PointOf(figures, curve + "/curve", finish + "/p80");
    if (!point.empty()) {
      text += begin + figures.Show(point + "/1", Form::kFineShare) + end;
    }
  };
  const bool both = !places.curve_without.empty();
  add(", here ", places.curve_with, places.finish, both ? " with weather" : "");
  if (both) {
    add(", ", places.curve_without, places.without, " without");
  }
  return text + ".";
}

}  // namespace

FinishPlaces::FinishPlaces(const Figures& figures)
    : weather(figures.At("/weather").get<bool>()),
      finish("/finish"),
      curve_with("/distribution/finish") {
  if (!weather) {
    return;  // a comparison then compares the run with itself
  }
  if (figures.Has("/without_weather")) {
    without = "/without_weather/finish";
    delay = "/weather_delay_days";
  }
  if (figures.Has("/attribution")) {
    cost = "/attribution/cost_days";
    if (without.empty()) {
      without = "/attribution/none/finish";
      delay = "/attribution/delay_days";
    } else if (figures.At(without) != figures.At("/attribution/none/finish")) {
      cost.clear();  // of another way to leave the weather out
    }
  }
  if (figures.Has("/distribution/without_weather")) {
    curve_without = "/distribution/without_weather";
  }
}

std::string SummarySection(const Figures& figures, const FinishPlaces& places) {
  return Section("summary", "In short",
                 Cards(figures, places) + InWords(figures, places) + FinishTable(figures, places) +
                     UntilText(figures));
}

std::string WarningSection(const Figures& figures) {
  const std::size_t count = figures.CountAt("/warnings");
  if (count == 0) {
    return "";
  }
  std::string list = "<ul>\n";
  for (std::size_t i = 0; i < count; ++i) {
    list += "<li>" + figures.Show(fmt::format("/warnings/{}", i), Form::kText) + "</li>\n";
  }
  return Section("warnings", "Warnings", "<div class=\"warnings\">" + list + "</ul></div>\n");
}

std::string FinishSection(const Figures& figures, const FinishPlaces& places) {
  const bool both = !places.curve_without.empty();
  std::string curves = "<div class=\"side\">";
  if (both) {
    curves += CurveTable(figures, "Finished without weather", places.curve_without);
  }
  curves +=
      CurveTable(figures, places.weather ? "Finished with weather" : "Finished", places.curve_with);
  const std::string label = fmt::format(
      "S-curve: the share of the iterations that have finished, by date{}. P80 is {}{}.",
      both ? ", without weather and with it" : "", figures.Plain("/finish/p80", Form::kLongFinish),
      both ? " with weather and " + figures.Plain(places.without + "/p80", Form::kLongFinish) +
                 " without"
           : "");
  return Section(
      "finish", "When the plan finishes",
      "<h3>How sure is a date?</h3>\n" +
          ChartFigure(
              "curve", "tall", label,
              std::string("Read it from a date upwards: the curve’s height is the chance to "
                          "be finished by the end of that day. ") +
                  (both ? "The room between the two curves is what the weather takes. " : "") +
                  MarkText(figures, places),
              Behind("Numbers of the S-curve", curves + "</div>")) +
          "<h3>How often does each date come out?</h3>\n" +
          ChartFigure(
              "histogram", "medium",
              "Histogram: how many of the iterations finish in each span of days. The table "
              "below has all numbers.",
              "Each bar counts the iterations that finish in its days. A long tail to the "
              "right is bad luck that P50 does not show.",
              Behind("Numbers of the histogram", HistogramTable(figures, places))));
}

}  // namespace nimbrel::cli::report
