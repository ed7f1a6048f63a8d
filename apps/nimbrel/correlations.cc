#include "nimbrel/correlations.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "nimbrel/glob.h"
#include "nimbrel/input_text.h"
#include "nimbrel/json_node.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/wiring.h"
#include "platform/text.h"

namespace nimbrel::cli {
namespace {

using engine::CorrelationGroup;
using engine::Plan;
using engine::Task;

class CorrelationReader {
 public:
  CorrelationReader(const std::string& file, const Plan& plan)
      : read_(file), plan_(plan), weather_(ReadWeather(plan)) {}

  std::vector<CorrelationGroup> Read(const Json& document) const {
    const Node root{document, "$"};
    read_.RequireObject(root, {"durations", "weather"});
    std::vector<CorrelationGroup> groups;
    for (const Node& node : read_.OptionalList(root, "durations")) {
      groups.push_back(ReadDurations(node));
    }
    for (const Node& node : read_.OptionalList(root, "weather")) {
      groups.push_back(ReadWeatherGroup(node));
    }
    return groups;
  }

 private:
  double Coefficient(const Node& node) const {
    return read_.NumberFrom(read_.Child(node, "coefficient"), -1, 1);
  }

  CorrelationGroup ReadDurations(const Node& node) const {
    read_.RequireObject(node, {"tasks", "match", "coefficient"});
    CorrelationGroup group;
    group.coefficient = Coefficient(node);
    for (const Node& item : read_.OptionalList(node, "tasks")) {
      const Task* task = plan_.FindTask(read_.Name(item));
      if (task == nullptr || CarriesWeather(*task)) {
        read_.Fail(item, "the ID of a task of the plan");
      }
      AddTask(item, task->uid, group);
    }
    if (read_.Has(node, "match")) {
      const Node match = read_.Child(node, "match");
      if (AddMatches(read_.Name(match), group) == 0) {
        read_.Fail(match, "a pattern that ordinary tasks match");
      }
    }
    RequireTwo(node, "two tasks or more", group.tasks.size());
    return group;
  }

  void AddTask(const Node& item, engine::Uid uid, CorrelationGroup& group) const {
    if (std::find(group.tasks.begin(), group.tasks.end(), uid) != group.tasks.end()) {
      read_.Fail(item.path, "each task once", QuotedText(read_.Text(item)) + " twice");
    }
    group.tasks.push_back(uid);
  }

  /// How many tasks match; those that the group has already are not added again.
  std::size_t AddMatches(const std::string& pattern, CorrelationGroup& group) const {
    std::size_t count = 0;
    for (const Task& task : plan_.tasks()) {
      if (task.kind == engine::TaskKind::kTask && !CarriesWeather(task) &&
          (GlobMatches(pattern, task.id) || GlobMatches(pattern, task.description))) {
        ++count;
        if (std::find(group.tasks.begin(), group.tasks.end(), task.uid) == group.tasks.end()) {
          group.tasks.push_back(task.uid);
        }
      }
    }
    return count;
  }

  CorrelationGroup ReadWeatherGroup(const Node& node) const {
    read_.RequireObject(node, {"calendars", "coefficient"});
    CorrelationGroup group;
    group.coefficient = Coefficient(node);
    for (const Node& item : read_.List(read_.Child(node, "calendars"))) {
      const std::string& name = read_.Name(item);
      const auto found = std::find_if(weather_.events.begin(), weather_.events.end(),
                                      [&name](const EventCalendar& calendar) {
                                        return platform::EqualsIgnoreCase(calendar.name, name);
                                      });
      if (found == weather_.events.end()) {
        read_.Fail(item, "an event calendar of the plan");
      }
      if (std::find(group.calendars.begin(), group.calendars.end(), found->name) !=
          group.calendars.end()) {
        read_.Fail(item.path, "each calendar once", QuotedText(name) + " twice");
      }
      group.calendars.push_back(found->name);
    }
    RequireTwo(node, "two calendars or more", group.calendars.size());
    return group;
  }

  void RequireTwo(const Node& node, const std::string& expected, std::size_t count) const {
    if (count < 2) {
      read_.Fail(node.path, expected, count == 0 ? "none" : "one");
    }
  }

  NodeReader read_;
  const Plan& plan_;
  Weather weather_;
};

}  // namespace

std::vector<CorrelationGroup> ParseCorrelations(const std::string& text, const std::string& file,
                                                const Plan& plan) {
  return CorrelationReader(file, plan).Read(ParseJsonDocument(text, file));
}

}  // namespace nimbrel::cli
