#include "nimbrel/explain_output.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/json_text.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/text_table.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

using engine::DayRange;
using engine::Instant;
using engine::IterationStory;
using engine::Plan;
using engine::Task;
using enum TextTable::Align;

constexpr std::size_t kNameWidth = 40;
constexpr std::size_t kMostRuns = 6;  // of days that a line of text lists

const Task& TaskOf(const Plan& plan, engine::Uid uid) {
  return *plan.FindTask(uid);
}

std::int32_t CountDays(const std::vector<DayRange>& ranges) {
  std::int32_t days = 0;
  for (const DayRange& range : ranges) {
    days += range.last - range.first + 1;
  }
  return days;
}

/// A period or a window as it came out.
struct WeatherOutcome {
  std::string calendar;
  std::string description;
  bool is_window = false;
  bool occurred = true;
  double length_days = 0;  // of a period, sampled
  std::vector<DayRange> taken;
};

std::string CalendarName(const Plan& plan, engine::Uid calendar) {
  const engine::CalendarDefinition* found = plan.FindCalendar(calendar);
  return found == nullptr ? "" : found->name;
}

/// What the user called it. A window's name is that of its opening edge, which the closing one
/// follows.
std::string DescriptionOf(const Plan& plan, const Task& task, bool is_window) {
  if (is_window) {
    const auto link = std::find_if(plan.links.begin(), plan.links.end(),
                                   [&task](const auto& l) { return l.successor == task.uid; });
    if (link != plan.links.end()) {
      return TaskOf(plan, link->predecessor).description;
    }
  }
  return task.description;
}

/// Windows are told where their closing edge stands: the days are taken when both are known.
std::vector<WeatherOutcome> OutcomesOf(const Plan& plan, const IterationStory& story) {
  const double days_a_unit = plan.MinutesPerUnit() / (plan.hours_per_day * 60.0);
  std::vector<WeatherOutcome> outcomes;
  for (const IterationStory::Draw& draw : story.draws) {
    const Task& task = TaskOf(plan, draw.task);
    const std::string role = WeatherRole(task);
    if (role != "1" && role != "4") {
      continue;
    }
    WeatherOutcome outcome;
    outcome.calendar = CalendarName(plan, task.calendar);
    outcome.is_window = role == "4";
    outcome.description = DescriptionOf(plan, task, outcome.is_window);
    outcome.occurred = draw.occurred;
    outcome.length_days = draw.units * days_a_unit;
    outcome.taken = draw.taken;
    outcomes.push_back(std::move(outcome));
  }
  return outcomes;
}

// ------------------------------------------------------------------ text

std::string DayText(Instant instant) {
  return engine::ToIsoText(instant.AsFinish()).substr(0, 10);
}

/// "2027-01-03, 2027-01-05 to 2027-01-09": the first runs of days, and how many follow.
std::string RunsText(const std::vector<DayRange>& ranges) {
  std::string text;
  for (std::size_t i = 0; i < ranges.size() && i < kMostRuns; ++i) {
    text += i == 0 ? "" : ", ";
    text += IsoDay(ranges[i].first);
    if (ranges[i].last > ranges[i].first) {
      text += " to " + IsoDay(ranges[i].last);
    }
  }
  if (ranges.size() > kMostRuns) {
    text += fmt::format(" and {} more", ranges.size() - kMostRuns);
  }
  return text;
}

std::string WeatherText(const std::vector<WeatherOutcome>& outcomes) {
  TextTable table({kLeft, kLeft, kLeft, kRight, kRight, kLeft});
  table.AddRow({"Weather", "", "", "sampled", "lost", "on"});
  table.AddRule();
  for (const WeatherOutcome& outcome : outcomes) {
    table.AddRow({CutTo(outcome.calendar, 24), CutTo(outcome.description, 32),
                  outcome.is_window  ? "window"
                  : outcome.occurred ? "occurred"
                                     : "did not occur",
                  outcome.is_window || !outcome.occurred
                      ? ""
                      : fmt::format("{:.1f} d", Rounded(outcome.length_days, 1)),
                  fmt::format("{} d", CountDays(outcome.taken)), RunsText(outcome.taken)});
  }
  return table.Text();
}

double DaysOf(const IterationStory::Push& push) {
  return static_cast<double>(push.start.Minutes() - push.first_start.Minutes()) /
         engine::kMinutesPerDay;
}

/// By how many days a task was pushed, "" if it was not.
std::string PushText(const IterationStory& story, engine::Uid task) {
  const auto push = std::find_if(story.pushed.begin(), story.pushed.end(),
                                 [task](const IterationStory::Push& p) { return p.task == task; });
  return push == story.pushed.end() ? "" : fmt::format("{:.1f} d", Rounded(DaysOf(*push), 1));
}

/// The days that tasks lost, and of those that had to be pushed how far: a task waits through its
/// open days too for a stretch that is long enough.
std::string HeldText(const Plan& plan, const IterationStory& story) {
  TextTable table({kLeft, kLeft, kLeft, kLeft, kRight, kRight, kLeft});
  table.AddRow({"Held up", "", "waiting from", "finished", "lost", "pushed", "lost on, by"});
  table.AddRule();
  for (const IterationStory::Hold& hold : story.held) {
    std::vector<std::string> names;
    for (const engine::Uid calendar : hold.calendars) {
      names.push_back(CalendarName(plan, calendar));
    }
    table.AddRow({CutTo(TaskOf(plan, hold.task).id, 20),
                  CutTo(TaskOf(plan, hold.task).description, kNameWidth), IsoDay(hold.first_day),
                  DayText(hold.finish), fmt::format("{} d", hold.lost_days),
                  PushText(story, hold.task),
                  fmt::format("{}; {}", RunsText(hold.lost), fmt::join(names, ", "))});
  }
  return table.Text();
}

std::string PushedText(const Plan& plan, const IterationStory& story) {
  TextTable table({kLeft, kLeft, kLeft, kLeft, kRight, kLeft});
  table.AddRow({"Pushed", "", "from", "to", "by", "past lost days"});
  table.AddRule();
  for (const IterationStory::Push& push : story.pushed) {
    table.AddRow({CutTo(TaskOf(plan, push.task).id, 20),
                  CutTo(TaskOf(plan, push.task).description, kNameWidth),
                  DateText(push.first_start), DateText(push.start), PushText(story, push.task),
                  RunsText(push.past)});
  }
  return table.Text();
}

std::string PathText(const Plan& plan, const IterationStory& story) {
  TextTable table({kLeft, kLeft, kLeft, kLeft, kRight, kRight});
  table.AddRow({"Driving path", "", "start", "finish", "lost", "pushed"});
  table.AddRule();
  for (const IterationStory::Step& step : story.path) {
    const auto hold =
        std::find_if(story.held.begin(), story.held.end(),
                     [&step](const IterationStory::Hold& h) { return h.task == step.task; });
    table.AddRow({CutTo(TaskOf(plan, step.task).id, 20),
                  CutTo(TaskOf(plan, step.task).description, kNameWidth), DateText(step.start),
                  DateText(step.finish),
                  hold == story.held.end() ? "" : fmt::format("{} d", hold->lost_days),
                  PushText(story, step.task)});
  }
  return table.Text();
}

// ------------------------------------------------------------------ JSON

Json DaysJson(const std::vector<DayRange>& ranges) {
  Json json = Json::array();
  for (const DayRange& range : ranges) {
    json.push_back({IsoDay(range.first), IsoDay(range.last)});
  }
  return json;
}

Json NamedJson(const Plan& plan, engine::Uid uid) {
  Json json;
  json["id"] = TaskOf(plan, uid).id;
  json["name"] = TaskOf(plan, uid).description;
  return json;
}

Json HeldJson(const Plan& plan, const IterationStory& story) {
  Json list = Json::array();
  for (const IterationStory::Hold& hold : story.held) {
    Json json = NamedJson(plan, hold.task);
    json["waiting_from"] = IsoDay(hold.first_day);
    json["start"] = DateJson(hold.start);
    json["finish"] = DateJson(hold.finish);
    json["lost_days"] = hold.lost_days;
    json["days"] = DaysJson(hold.lost);
    json["calendars"] = Json::array();
    for (const engine::Uid calendar : hold.calendars) {
      json["calendars"].push_back(CalendarName(plan, calendar));
    }
    list.push_back(std::move(json));
  }
  return list;
}

void PutWeather(const Plan& plan, const IterationStory& story, Json& json) {
  json["periods"] = Json::array();
  json["windows"] = Json::array();
  for (const WeatherOutcome& outcome : OutcomesOf(plan, story)) {
    Json one;
    one["calendar"] = outcome.calendar;
    one["description"] = outcome.description;
    if (!outcome.is_window) {
      one["occurred"] = outcome.occurred;
      one["length_days"] = Rounded(outcome.length_days, 2);
    }
    one["lost_days"] = CountDays(outcome.taken);
    one["days"] = DaysJson(outcome.taken);
    json[outcome.is_window ? "windows" : "periods"].push_back(std::move(one));
  }
}

}  // namespace

std::string StoryText(const Plan& plan, const IterationStory& story, const ExplainedRun& run) {
  std::string text = fmt::format("{}: iteration {} of {}, seed {}\n", TitleOf(plan),
                                 Grouped(story.iteration), Grouped(run.iterations), run.seed);
  if (run.percentile > 0) {
    text += fmt::format("The first one that finishes on the P{}.\n", run.percentile);
  }
  text += "Finish: " + DateText(story.finish) + "\n";
  const std::vector<WeatherOutcome> outcomes = OutcomesOf(plan, story);
  if (!outcomes.empty()) {
    text += "\n" + WeatherText(outcomes);
  }
  if (!story.held.empty()) {
    text += "\n" + HeldText(plan, story);
  } else if (!outcomes.empty()) {
    text += "\nNo task was held up.\n";
  }
  if (!story.pushed.empty()) {
    text += "\n" + PushedText(plan, story);
  }
  return text + "\n" + PathText(plan, story);
}

std::string StoryJson(const Plan& plan, const IterationStory& story, const ExplainedRun& run) {
  Json json;
  json["plan"] = plan.name;
  json["seed"] = run.seed;
  json["iterations"] = run.iterations;
  json["iteration"] = story.iteration;
  if (run.percentile > 0) {
    json["percentile"] = run.percentile;
  }
  json["finish"] = DateJson(story.finish);
  PutWeather(plan, story, json);
  json["held_up"] = HeldJson(plan, story);
  json["pushed"] = Json::array();
  for (const IterationStory::Push& push : story.pushed) {
    Json one = NamedJson(plan, push.task);
    one["from"] = DateJson(push.first_start);
    one["to"] = DateJson(push.start);
    one["days"] = Rounded(DaysOf(push), 2);
    one["past"] = DaysJson(push.past);
    json["pushed"].push_back(std::move(one));
  }
  json["driving_path"] = Json::array();
  for (const IterationStory::Step& step : story.path) {
    Json one = NamedJson(plan, step.task);
    one["start"] = DateJson(step.start);
    one["finish"] = DateJson(step.finish);
    json["driving_path"].push_back(std::move(one));
  }
  return JsonText(json);
}

}  // namespace nimbrel::cli
