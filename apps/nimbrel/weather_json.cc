#include "nimbrel/weather_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "nimbrel/command_error.h"
#include "nimbrel/input_text.h"
#include "nimbrel/json_node.h"
#include "platform/text.h"

namespace nimbrel::cli {
namespace {

/// Reads the document from the top down.
class WeatherReader {
 public:
  explicit WeatherReader(const std::string& file) : read_(file) {}

  Weather Read(const Json& document) {
    const Node root{document, "$"};
    read_.RequireObject(root, {"events", "windows", "assign"});
    Weather weather;
    for (const Node& node : read_.OptionalList(root, "events")) {
      weather.events.push_back(ReadEventCalendar(node));
    }
    for (const Node& node : read_.OptionalList(root, "windows")) {
      weather.windows.push_back(ReadWindowCalendar(node));
    }
    for (const Node& node : read_.OptionalList(root, "assign")) {
      weather.assign.push_back(ReadAssignment(node));
    }
    return weather;
  }

 private:
  /// A calendar has one kind, and stands in the file once.
  std::string CalendarName(const Node& node) {
    const Node name = read_.Child(node, "calendar");
    if (!calendars_.insert(platform::FoldCase(read_.Name(name))).second) {
      read_.Fail(name.path, "each calendar once",
                 QuotedText(read_.Text(name)) + " for the second time");
    }
    return read_.Text(name);
  }

  std::string Description(const Node& node) const {
    return read_.Has(node, "description") ? read_.Text(read_.Child(node, "description"))
                                          : std::string();
  }

  EventCalendar ReadEventCalendar(const Node& node) {
    read_.RequireObject(node, {"calendar", "periods"});
    EventCalendar calendar;
    calendar.name = CalendarName(node);
    for (const Node& period : read_.List(read_.Child(node, "periods"))) {
      calendar.periods.push_back(ReadPeriod(period));
    }
    return calendar;
  }

  WeatherPeriod ReadPeriod(const Node& node) const {
    read_.RequireObject(node,
                        {"description", "start", "finish", "probability", "min", "likely", "max"});
    WeatherPeriod period;
    period.description = Description(node);
    period.start = read_.Day(read_.Child(node, "start"));
    const Node finish = read_.Child(node, "finish");
    period.finish = read_.Day(finish);
    if (period.finish < period.start) {
      read_.Fail(finish, "a date not before start, " + IsoDay(period.start));
    }
    if (read_.Has(node, "probability")) {
      period.probability = read_.Probability(read_.Child(node, "probability"));
    }
    period.min = read_.WholeDays(read_.Child(node, "min"));
    period.likely = read_.WholeDays(read_.Child(node, "likely"));
    period.max = read_.WholeDays(read_.Child(node, "max"));
    if (period.min > period.likely || period.likely > period.max) {
      read_.Fail(node.path, "min <= likely <= max",
                 fmt::format("{}, {}, {}", period.min, period.likely, period.max));
    }
    return period;
  }

  WindowCalendar ReadWindowCalendar(const Node& node) {
    read_.RequireObject(node, {"calendar", "windows"});
    WindowCalendar calendar;
    calendar.name = CalendarName(node);
    for (const Node& window : read_.List(read_.Child(node, "windows"))) {
      calendar.windows.push_back(ReadWindow(window));
    }
    return calendar;
  }

  WeatherWindow ReadWindow(const Node& node) const {
    read_.RequireObject(node, {"description", "start", "finish"});
    WeatherWindow window;
    window.description = Description(node);
    window.start = ReadEdge(read_.Child(node, "start"));
    const Node finish = read_.Child(node, "finish");
    window.finish = ReadEdge(finish);
    for (std::size_t i = 0; i < window.start.size(); ++i) {
      if (window.finish[i] < window.start[i]) {
        read_.Fail(fmt::format("{}[{}]", finish.path, i),
                   "a date not before that of start, " + IsoDay(window.start[i]),
                   IsoDay(window.finish[i]));
      }
    }
    return window;
  }

  std::array<std::int32_t, 3> ReadEdge(const Node& node) const {
    const std::vector<Node> dates = read_.List(node);
    if (dates.size() != 3) {
      read_.Fail(node.path, "three dates: earliest, likely, latest", std::to_string(dates.size()));
    }
    std::array<std::int32_t, 3> edge = {};
    for (std::size_t i = 0; i < edge.size(); ++i) {
      edge[i] = read_.Day(dates[i]);
      if (i > 0 && edge[i] < edge[i - 1]) {
        read_.Fail(dates[i], "a date not before the one before it, " + IsoDay(edge[i - 1]));
      }
    }
    return edge;
  }

  WeatherAssignment ReadAssignment(const Node& node) const {
    read_.RequireObject(node, {"tasks", "match", "calendars", "nosplit"});
    if (!read_.Has(node, "tasks") && !read_.Has(node, "match")) {
      read_.Fail(node.path, "the key \"tasks\" or \"match\"", "neither");
    }
    WeatherAssignment assignment;
    assignment.tasks = read_.OptionalNames(node, "tasks");
    if (read_.Has(node, "match")) {
      assignment.match = read_.Name(read_.Child(node, "match"));
    }
    assignment.calendars = read_.OptionalNames(node, "calendars");
    for (std::size_t i = 0; i < assignment.calendars.size(); ++i) {
      if (!calendars_.contains(platform::FoldCase(assignment.calendars[i]))) {
        read_.Fail(fmt::format("{}.calendars[{}]", node.path, i), "a calendar of this file",
                   QuotedText(assignment.calendars[i]));
      }
    }
    if (read_.Has(node, "nosplit")) {
      assignment.nosplit = read_.Boolean(read_.Child(node, "nosplit"));
    }
    return assignment;
  }

  NodeReader read_;
  std::unordered_set<std::string> calendars_;  // names read so far, folded
};

Json EdgeJson(const std::array<std::int32_t, 3>& edge) {
  return {IsoDay(edge[0]), IsoDay(edge[1]), IsoDay(edge[2])};
}

Json AssignmentJson(const WeatherAssignment& assignment) {
  Json json = Json::object();
  if (!assignment.match || !assignment.tasks.empty()) {
    json["tasks"] = assignment.tasks;
  }
  if (assignment.match) {
    json["match"] = *assignment.match;
  }
  json["calendars"] = assignment.calendars;
  if (assignment.nosplit) {
    json["nosplit"] = *assignment.nosplit;
  }
  return json;
}

}  // namespace

std::string IsoDay(std::int32_t day) {
  return engine::ToIsoText({day, 0}).substr(0, 10);
}

Weather ParseWeatherJson(const std::string& text, const std::string& file) {
  return WeatherReader(file).Read(ParseJsonDocument(text, file));
}

Json WeatherJson(const Weather& weather) {
  Json json = {{"events", Json::array()}, {"windows", Json::array()}, {"assign", Json::array()}};
  for (const EventCalendar& calendar : weather.events) {
    Json periods = Json::array();
    for (const WeatherPeriod& period : calendar.periods) {
      periods.push_back({{"description", period.description},
                         {"start", IsoDay(period.start)},
                         {"finish", IsoDay(period.finish)},
                         {"probability", period.probability},
                         {"min", period.min},
                         {"likely", period.likely},
                         {"max", period.max}});
    }
    json["events"].push_back({{"calendar", calendar.name}, {"periods", periods}});
  }
  for (const WindowCalendar& calendar : weather.windows) {
    Json windows = Json::array();
    for (const WeatherWindow& window : calendar.windows) {
      windows.push_back({{"description", window.description},
                         {"start", EdgeJson(window.start)},
                         {"finish", EdgeJson(window.finish)}});
    }
    json["windows"].push_back({{"calendar", calendar.name}, {"windows", windows}});
  }
  for (const WeatherAssignment& assignment : weather.assign) {
    json["assign"].push_back(AssignmentJson(assignment));
  }
  return json;
}

}  // namespace nimbrel::cli
