#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "engine/calendar/instant.h"
#include "nimbrel/report/sections.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli::report {
namespace {

constexpr int kLevels = 20;  // of colour

std::int32_t DayOf(const std::string& iso) {
  return engine::ParseIsoText(iso).day();
}

int YearOf(std::int32_t day) {
  return std::stoi(IsoDay(day).substr(0, 4));
}

std::int32_t FirstDayOf(int year) {
  return DayOf(fmt::format("{:04}-01-01", year));
}

struct Years {
  int first = 0;
  int last = -1;
};

/// The years in which any of the calendars loses a day.
Years YearsOf(const Figures& figures, const std::vector<std::size_t>& shown) {
  Years years;
  for (const std::size_t index : shown) {
    const Json& map = figures.At(fmt::format("/heat_maps/{}", index));
    const std::int32_t first = DayOf(map.at("first_day").get<std::string>());
    const int begin = YearOf(first);
    const int end = YearOf(first + static_cast<std::int32_t>(map.at("chance").size()) - 1);
    years = years.last < years.first
                ? Years{begin, end}
                : Years{std::min(years.first, begin), std::max(years.last, end)};
  }
  return years;
}

/// 0 for no chance, else 1 to kLevels.
int LevelOf(double chance) {
  return chance <= 0 ? 0 : std::clamp(static_cast<int>(std::ceil(chance * kLevels)), 1, kLevels);
}

/// How opaque a level is; the lowest one can still be told from none.
std::string Opacity(int level) {
  return fmt::format("{:.2f}", 0.1 + 0.9 * (level - 1) / (kLevels - 1));
}

/// A row of boxes for each year, a column for each day of the year; neighbours of one colour are
/// one box. One path for each colour.
std::string Boxes(const Json& map, const Years& years) {
  std::array<std::string, kLevels + 1> paths;
  const std::int32_t first = DayOf(map.at("first_day").get<std::string>());
  const Json& chance = map.at("chance");
  int year = years.first;
  std::int32_t january = FirstDayOf(year);
  std::int32_t next_january = FirstDayOf(year + 1);
  std::size_t i = 0;
  while (i < chance.size()) {
    const std::int32_t day = first + static_cast<std::int32_t>(i);
    while (day >= next_january) {
      ++year;
      january = next_january;
      next_january = FirstDayOf(year + 1);
    }
    const int level = LevelOf(chance[i].get<double>());
    std::int32_t length = 1;
    while (++i < chance.size() && day + length < next_january &&
           LevelOf(chance[i].get<double>()) == level) {
      ++length;
    }
    if (level > 0) {
      paths[static_cast<std::size_t>(level)] +=
          fmt::format("M{} {}h{}v1h-{}z", day - january, year - years.first, length, length);
    }
  }
  std::string html;
  for (int level = 1; level <= kLevels; ++level) {
    const std::string& path = paths[static_cast<std::size_t>(level)];
    if (!path.empty()) {
      html += fmt::format("<path fill-opacity=\"{}\" d=\"{}\"/>", Opacity(level), path);
    }
  }
  return html;
}

/// Lines between the months, as far from January as in a year of 365 days.
constexpr std::array<int, 11> kMonthStarts = {31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

std::string HeatMapHtml(const Figures& figures, std::size_t index, const Years& years) {
  const Json& map = figures.At(fmt::format("/heat_maps/{}", index));
  const int rows = years.last - years.first + 1;
  std::string labels;
  for (int year = years.first; year <= years.last; ++year) {
    labels += fmt::format("<span>{}</span>", year);
  }
  std::string lines;
  for (const int start : kMonthStarts) {
    lines += fmt::format("M{} 0v{}", start, rows);
  }
  std::string months;
  for (const char* month :
       {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"}) {
    months += fmt::format("<span>{}</span>", month);
  }
  return fmt::format(
      "<h3>{}</h3>\n<div class=\"heat\" role=\"img\" aria-label=\"Heat map, a row for each year "
      "from "
      "{} to {} and a column for each day: the stronger, the greater the chance that the day is "
      "lost. "
      "The table below has the days by month.\"><div class=\"years\">{}</div><svg viewBox=\"0 0 "
      "366 "
      "{}\" preserveAspectRatio=\"none\" style=\"height:{}px\" data-heat=\"{}\" "
      "data-year=\"{}\">{}<path class=\"months\" d=\"{}\"/></svg><div "
      "class=\"month-names\">{}</div>"
      "</div>\n",
      figures.Show(fmt::format("/heat_maps/{}/name", index), Form::kText), years.first, years.last,
      labels, rows, rows * 18, index, years.first, Boxes(map, years), lines, months);
}

std::string MonthTable(const Figures& figures, const std::vector<std::size_t>& shown) {
  std::vector<Column> columns = {{"Month"}};
  std::set<std::string> months;
  for (const std::size_t index : shown) {
    const Json& map = figures.At(fmt::format("/heat_maps/{}", index));
    columns.push_back({map.at("name").get<std::string>(), true});
    for (const auto& [month, days] : map.at("months").items()) {
      months.insert(month);
    }
  }
  HtmlTable table("Mean days that each calendar loses in a month", columns);
  for (const std::string& month : months) {
    std::vector<std::string> cells = {month};
    for (const std::size_t index : shown) {
      const std::string place = fmt::format("/heat_maps/{}/months/{}", index, month);
      cells.push_back(figures.Has(place) ? figures.Show(place, Form::kDays) : "");
    }
    table.AddRow(cells);
  }
  return table.Html();
}

std::string Legend() {
  std::string html =
      "<div class=\"legend\" aria-hidden=\"true\"><span>chance that the day is lost: "
      "0%</span>";
  for (int level = 1; level <= kLevels; ++level) {
    html += fmt::format("<i style=\"opacity:{}\"></i>", Opacity(level));
  }
  return html + "<span>100%</span></div>\n";
}

}  // namespace

namespace {

bool LosesDays(const Figures& figures) {
  bool loses = false;
  for (std::size_t i = 0; i < figures.CountAt("/heat_maps"); ++i) {
    loses = loses || !figures.At(fmt::format("/heat_maps/{}/first_day", i)).is_null();
  }
  return loses;
}

}  // namespace

std::vector<std::size_t> HeatMapsShown(const Figures& figures) {
  std::vector<std::size_t> shown;
  const std::size_t count = figures.CountAt("/heat_maps");
  std::vector<std::pair<double, std::size_t>> order;
  for (std::size_t i = 0; i < count; ++i) {
    const Json& map = figures.At(fmt::format("/heat_maps/{}", i));
    double days = 0;
    for (const auto& [month, lost] : map.at("months").items()) {
      days += lost.get<double>();
    }
    if (!map.at("first_day").is_null()) {
      order.emplace_back(days, i);
    }
  }
  std::stable_sort(order.begin(), order.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  std::size_t days = 0;
  for (const auto& [lost, i] : order) {
    days += figures.CountAt(fmt::format("/heat_maps/{}/chance", i));
    if (shown.size() == kHeatMaps || days > kHeatDays) {
      break;
    }
    shown.push_back(i);
  }
  std::sort(shown.begin(), shown.end());
  return shown;
}

std::string SeasonSection(const Figures& figures, const FinishPlaces& places) {
  if (!places.weather) {
    return "";
  }
  const std::string title = "When the weather strikes";
  const std::vector<std::size_t> shown = HeatMapsShown(figures);
  if (shown.empty()) {
    return Section("season", title,
                   LosesDays(figures)
                       ? "<p>The calendars span too many years to draw them: " +
                             std::string("the table heat_map.csv of --csv has every day.</p>\n")
                       : "<p>No calendar loses a day in any iteration.</p>\n");
  }
  const Years years = YearsOf(figures, shown);
  std::string body =
      "<p>A row is a year and a column a day of the year; the stronger its colour, the more of the "
      "iterations lose it on that calendar, whether or not a task would have worked on it. Days "
      "that a "
      "calendar has off anyway, such as weekends of its own, cannot be lost and stay "
      "blank.</p>\n" +
      Legend() +
      "<div class=\"lookup\" hidden><label for=\"lookup-day\">Look up a day</label> <input "
      "type=\"date\" id=\"lookup-day\"> <output for=\"lookup-day\" id=\"lookup-found\">"
      "</output></div>\n";
  for (const std::size_t index : shown) {
    body += HeatMapHtml(figures, index, years);
  }
  body += CutNote(shown.size(), figures.CountAt("/heat_maps"), "calendars", "heat_map.csv");
  return Section("season", title,
                 body + Behind("Numbers of the heat maps, by month", MonthTable(figures, shown)));
}

}  // namespace nimbrel::cli::report
