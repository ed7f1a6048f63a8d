#include "nimbrel/weather_json.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/calendar/instant.h"
#include "nimbrel/command_error.h"
#include "nimbrel/input_text.h"
#include "platform/text.h"

namespace nimbrel::cli {
namespace {

constexpr double kMostDays = 73050;  // 200 years, as in plans that are imported

/// A value of the document, by its path.
struct Node {
  const Json& value;
  std::string path;
};

/// Reads nodes; whatever is not as expected is an error that names file and path.
class NodeReader {
 public:
  explicit NodeReader(const std::string& file) : file_(file) {}

  [[noreturn]] void Fail(const std::string& path, const std::string& expected,
                         const std::string& found) const {
    throw BadInput(fmt::format("{}: {}: expected {}, found {}", file_, path, expected, found));
  }
  [[noreturn]] void Fail(const Node& node, const std::string& expected) const {
    if (node.value.is_object() || node.value.is_array()) {
      Fail(node.path, expected, node.value.is_object() ? "an object" : "a list");
    }
    if (node.value.is_string()) {
      Fail(node.path, expected, QuotedText(node.value.get_ref<const std::string&>()));
    }
    Fail(node.path, expected, node.value.dump());
  }

  /// Checks that the node is an object with no other keys than these.
  void RequireObject(const Node& node, std::initializer_list<std::string_view> keys) const {
    if (!node.value.is_object()) {
      Fail(node, "an object");
    }
    for (const auto& [key, value] : node.value.items()) {
      if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
        Fail(node.path, fmt::format("only the keys {}", fmt::join(keys, ", ")), QuotedText(key));
      }
    }
  }

  bool Has(const Node& node, const char* key) const { return node.value.contains(key); }
  Node Child(const Node& node, const char* key) const {
    const auto found = node.value.find(key);
    if (found == node.value.end()) {
      Fail(node.path, fmt::format("the key \"{}\"", key), "none");
    }
    return {*found, node.path + "." + key};
  }

  /// The items of a list; none where the key is missing.
  std::vector<Node> OptionalList(const Node& node, const char* key) const {
    return Has(node, key) ? List(Child(node, key)) : std::vector<Node>();
  }
  std::vector<Node> List(const Node& node) const {
    if (!node.value.is_array()) {
      Fail(node, "a list");
    }
    std::vector<Node> items;
    for (std::size_t i = 0; i < node.value.size(); ++i) {
      items.push_back({node.value[i], fmt::format("{}[{}]", node.path, i)});
    }
    return items;
  }

  const std::string& Text(const Node& node) const {
    if (!node.value.is_string()) {
      Fail(node, "a text");
    }
    return node.value.get_ref<const std::string&>();
  }
  /// A text with something in it.
  const std::string& Name(const Node& node) const {
    const std::string& name = Text(node);
    if (platform::Trim(name).empty()) {
      Fail(node, "a name");
    }
    return name;
  }
  std::vector<std::string> OptionalNames(const Node& node, const char* key) const {
    std::vector<std::string> names;
    for (const Node& item : OptionalList(node, key)) {
      names.push_back(Name(item));
    }
    return names;
  }

  std::int32_t Day(const Node& node) const {
    const engine::Instant day =
        node.value.is_string() ? engine::ParseIsoText(Text(node)) : engine::Instant();
    if (day.IsAbsent() || Text(node).size() != 10) {
      Fail(node, "a date YYYY-MM-DD");
    }
    return day.day();
  }

  std::int32_t WholeDays(const Node& node) const {
    const double days = node.value.is_number() ? node.value.get<double>() : -1;
    if (days < 0 || days > kMostDays || days != std::floor(days)) {
      Fail(node, fmt::format("a whole number of days from 0 to {}", kMostDays));
    }
    return static_cast<std::int32_t>(days);
  }

  double Probability(const Node& node) const {
    const double probability = node.value.is_number() ? node.value.get<double>() : -1;
    if (probability < 0 || probability > 1) {
      Fail(node, "a number from 0 to 1");
    }
    return probability;
  }

  bool Boolean(const Node& node) const {
    if (!node.value.is_boolean()) {
      Fail(node, "true or false");
    }
    return node.value.get<bool>();
  }

 private:
  const std::string& file_;
};

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

/// Refuses an object that has a key twice, of which a parser would silently take one.
class UniqueKeys {
 public:
  explicit UniqueKeys(const std::string& file) : file_(file) {}

  bool operator()(int /*depth*/, Json::parse_event_t event, const Json& parsed) {
    if (event == Json::parse_event_t::object_start) {
      open_.emplace_back();
    } else if (event == Json::parse_event_t::object_end) {
      open_.pop_back();
    } else if (event == Json::parse_event_t::key) {
      const auto& key = parsed.get_ref<const std::string&>();
      if (!open_.back().insert(key).second) {
        throw BadInput(fmt::format("{}: expected each key of an object once, found {} twice", file_,
                                   QuotedText(key)));
      }
    }
    return true;
  }

 private:
  const std::string& file_;
  std::vector<std::set<std::string>> open_;  // keys of the objects around this place
};

Json ParseDocument(const std::string& text, const std::string& file) {
  try {
    UniqueKeys unique(file);
    return Json::parse(text, std::ref(unique));
  } catch (const Json::parse_error& error) {
    const std::size_t at = std::min(error.byte > 0 ? error.byte - 1 : 0, text.size());
    const auto row =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
    throw BadInput(fmt::format(
        "{}:{}: expected JSON, found {}", file, row,
        at >= text.size() ? std::string("the end of the file") : QuotedText(text.substr(at, 20))));
  }
}

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
  return WeatherReader(file).Read(ParseDocument(text, file));
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
