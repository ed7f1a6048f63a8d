#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "engine/calendar/instant.h"
#include "nimbrel/report/sections.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli::report {
namespace {

constexpr std::size_t kMostBars = 120;
constexpr std::size_t kMostRuns = 6;  // of days that a cell lists

double DaysOf(const Json& moment) {
  return static_cast<double>(engine::ParseIsoText(moment.get<std::string>()).Minutes()) /
         engine::kMinutesPerDay;
}

/// A number with at most two decimals.
std::string Short(double value) {
  return fmt::format("{}", Rounded(value, 2));
}

/// The time from the first to the last thing in the chart, in whole days, and its ticks.
class TimeScale {
 public:
  TimeScale(double first, double last)
      : first_(static_cast<std::int32_t>(first)),
        length_(std::max(static_cast<std::int32_t>(last) + 1 - first_, 1)) {}

  double X(double day) const { return day - first_; }
  std::int32_t length() const { return length_; }

  struct Tick {
    std::int32_t x = 0;
    std::string label;
  };
  /// At the first days of months, as many as eight.
  std::vector<Tick> Ticks() const {
    int step = 1;  // months
    for (const int months : {1, 2, 3, 6, 12, 24, 60, 120}) {
      step = months;
      if (length_ / (30.4 * months) <= 8) {
        break;
      }
    }
    std::vector<Tick> ticks;
    for (std::int32_t day = first_; day < first_ + length_; ++day) {
      const std::string iso = IsoDay(day);
      const int months = std::stoi(iso.substr(0, 4)) * 12 + std::stoi(iso.substr(5, 2)) - 1;
      if (iso.ends_with("-01") && months % step == 0) {
        ticks.push_back({day - first_, iso.substr(0, 7)});
      }
    }
    return ticks;
  }

 private:
  std::int32_t first_;
  std::int32_t length_;
};

TimeScale ScaleOf(const Json& tasks) {
  double first = DaysOf(tasks[0].at("start"));
  double last = first;
  for (const Json& task : tasks) {
    first = std::min(first, DaysOf(task.at("start")));
    last = std::max(last, DaysOf(task.at("finish")));
    for (const Json& days : task.at("lost")) {
      first = std::min(first, DaysOf(days[0]));
    }
  }
  return {first, last};
}

/// One row: the time of the task, and over it the days that the weather took.
std::string Bar(const Json& task, const TimeScale& scale) {
  const double start = scale.X(DaysOf(task.at("start")));
  const double finish = scale.X(DaysOf(task.at("finish")));
  if (task.at("milestone").get<bool>()) {
    return fmt::format("<i class=\"stone\" style=\"left:{}%\"></i>",
                       Short(100 * finish / scale.length()));
  }
  std::string lost;
  for (const Json& days : task.at("lost")) {
    const double first = scale.X(DaysOf(days[0]));
    const double last = scale.X(DaysOf(days[1])) + 1;
    lost += fmt::format("M{} 0h{}v1h-{}z", first, last - first, last - first);
  }
  return fmt::format(
      "<svg viewBox=\"0 0 {} 1\" preserveAspectRatio=\"none\"><path class=\"work\" d=\"M{} "
      ".1h{}v.8H{}z\"/>{}</svg>",
      scale.length(), Short(start), Short(std::max(finish - start, 0.2)), Short(start),
      lost.empty() ? "" : fmt::format("<path class=\"lost\" d=\"{}\"/>", lost));
}

std::string Gantt(const Figures& figures, const std::vector<std::size_t>& shown) {
  const Json& tasks = figures.At("/critical_chain/tasks");
  const TimeScale scale = ScaleOf(tasks);
  std::string axis;
  std::string grid;
  for (const TimeScale::Tick& tick : scale.Ticks()) {
    const std::string left = Short(100.0 * tick.x / scale.length());
    if (tick.x < 0.92 * scale.length()) {  // else its label would leave the page
      axis += fmt::format("<span style=\"left:{}%\">{}</span>", left, tick.label);
    }
    grid += fmt::format("<i style=\"left:{}%\"></i>", left);
  }
  std::string rows;
  for (const std::size_t i : shown) {
    rows += fmt::format(
        "<div class=\"row\"><div class=\"name\"><b>{}</b> {}</div><div class=\"track\">{}</div>"
        "</div>\n",
        Isolated(tasks[i].at("id").get<std::string>()),
        Isolated(tasks[i].at("name").get<std::string>()), Bar(tasks[i], scale));
  }
  return fmt::format(
      "<div class=\"gantt\" role=\"img\" aria-label=\"Gantt chart: the tasks of the driving path "
      "from top to bottom, with the days that the weather took. The table below has all of it.\">"
      "<div class=\"axis\"><div class=\"track\">{}</div></div>\n<div class=\"rows\"><div "
      "class=\"grid\">{}</div>\n{}</div></div>\n",
      axis, grid, rows);
}

/// The longest ones where there are too many, in the order of the path.
std::vector<std::size_t> TasksShown(const Json& tasks) {
  std::vector<std::size_t> shown(tasks.size());
  std::iota(shown.begin(), shown.end(), std::size_t{0});
  if (shown.size() > kMostBars) {
    const auto length = [&tasks](std::size_t i) {
      return DaysOf(tasks[i].at("finish")) - DaysOf(tasks[i].at("start"));
    };
    std::stable_sort(shown.begin(), shown.end(),
                     [&](std::size_t a, std::size_t b) { return length(a) > length(b); });
    shown.resize(kMostBars);
    std::sort(shown.begin(), shown.end());
  }
  return shown;
}

std::string LostText(const Figures& figures, const std::string& place) {
  std::string text;
  const std::size_t runs = figures.CountAt(place);
  for (std::size_t i = 0; i < std::min(runs, kMostRuns); ++i) {
    const std::string days = fmt::format("{}/{}", place, i);
    text += i == 0 ? "" : ", ";
    text += figures.Show(days + "/0", Form::kText);
    if (figures.At(days + "/0") != figures.At(days + "/1")) {
      text += " to " + figures.Show(days + "/1", Form::kText);
    }
  }
  return text + (runs > kMostRuns ? fmt::format(" and {} more", runs - kMostRuns) : "");
}

std::string ChainTable(const Figures& figures, const std::vector<std::size_t>& shown) {
  HtmlTable table("The driving path", {{"Task"},
                                       {"name"},
                                       {"start", true},
                                       {"finish", true},
                                       {"lost days", true},
                                       {"on"},
                                       {"by"},
                                       {"pushed"}});
  for (const std::size_t i : shown) {
    const std::string place = fmt::format("/critical_chain/tasks/{}", i);
    const Json& task = figures.At(place);
    double lost = 0;
    for (const Json& days : task.at("lost")) {
      lost += DaysOf(days[1]) - DaysOf(days[0]) + 1;
    }
    std::string calendars;
    for (std::size_t k = 0; k < task.at("calendars").size(); ++k) {
      calendars += (k == 0 ? "" : ", ") +
                   figures.Show(fmt::format("{}/calendars/{}", place, k), Form::kText);
    }
    table.AddRow({figures.Show(place + "/id", Form::kText),
                  figures.Show(place + "/name", Form::kText),
                  figures.Show(place + "/start", Form::kStart),
                  figures.Show(place + "/finish", Form::kFinish),
                  lost > 0 ? fmt::format("{:.0f}", lost) : "", LostText(figures, place + "/lost"),
                  calendars, task.at("pushed").get<bool>() ? "yes" : ""});
  }
  return table.Html();
}

}  // namespace

std::string ChainSection(const Figures& figures, const FinishPlaces& places) {
  const std::size_t all = figures.CountAt("/critical_chain/tasks");
  if (all == 0) {
    return "";
  }
  const std::vector<std::size_t> shown = TasksShown(figures.At("/critical_chain/tasks"));
  const std::string cut =
      CutNote(shown.size(), all, "tasks of the path, the longest", "critical_chain.csv");
  return Section(
      "chain", "The critical chain at P80",
      fmt::format(
          "<p>One iteration in full: number {}, the first that finishes on the P80, {}. Each task "
          "begins or ends by the one above it; the last one ends the plan. <code>nimbrel explain "
          "PLAN --iteration {} {}</code> tells all of it.</p>\n",
          figures.Show("/critical_chain/iteration", Form::kCount),
          figures.Show("/critical_chain/finish", Form::kLongFinish),
          figures.Plain("/critical_chain/iteration", Form::kText),
          figures.Show("/critical_chain/options", Form::kText)) +
          "<figure>" + Gantt(figures, shown) + "<figcaption>" +
          (places.weather
               ? "<span class=\"key work\"></span> from start to finish <span class=\"key "
                 "lost\"></span> days on which weather kept the task from working, also "
                 "before its start where it could have begun"
               : "Bars run from start to finish.") +
          "</figcaption>\n" + cut + Behind("Numbers of the chain", ChainTable(figures, shown)) +
          "</figure>\n");
}

}  // namespace nimbrel::cli::report
