// Weather in a plan: read from it, written to it through the add-in, and taken out of it.

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "engine/objects/host.h"
#include "host/mod_global.h"
#include "model/frm_weather_storage.h"
#include "model/weather_controls.h"
#include "nimbrel/command_error.h"
#include "nimbrel/glob.h"
#include "nimbrel/input_text.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/wiring.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::cli {
namespace {

using engine::CalendarDefinition;
using engine::Plan;
using engine::RiskCalendarDefinition;
using engine::Task;
using engine::TaskKind;
using engine::Uid;
using platform::Date;
using platform::EqualsIgnoreCase;

constexpr const char* kWeatherTask = "WEATHER";
constexpr const char* kSection = "weather";
constexpr const char* kNoSplit = "nosplit";
/// What the add-in writes as the description of the risk calendars that it makes.
constexpr const char* kEventDescription = "Weather calendar";
constexpr const char* kWindowDescription = "Weather window";

std::int32_t DayNumber(Date date) {
  return static_cast<std::int32_t>(platform::DayOf(date).serial);
}

Date DateOf(std::int32_t day) {
  return Date{static_cast<double>(day)};
}

/// The calendar of this name, which must be there.
template <class Calendars>
const auto& Named(const Calendars& calendars, const std::string& name) {
  return *std::find_if(calendars.begin(), calendars.end(), [&name](const auto& calendar) {
    return EqualsIgnoreCase(calendar.name, name);
  });
}

/// A copy of a plan, open in a host of its own, with the add-in's storage of weather over it.
class OpenStorage {
 public:
  explicit OpenStorage(const Plan& plan)
      : host_(engine::MakeHost(plan, MakeHostOptions())),
        joined_(JoinAddIn(*host_)),
        storage_(controls_) {}

  model::frmWeatherStorage& operator*() { return storage_; }
  model::frmWeatherStorage* operator->() { return &storage_; }
  Corvane8::Ref<Corvane8::Plan> plan() { return host_->get_ActivePlan(); }
  const Plan& document() { return host_->document(); }

 private:
  platform::Ref<engine::Host> host_;
  std::shared_ptr<void> joined_;
  model::NoControls controls_;
  model::frmWeatherStorage storage_;
};

/// The probability of a period in as few digits as are stored as this one. It is kept in percent,
/// and what was 0.55 comes back as 0.5500000000000001.
double ShortProbability(double occurrence) {
  for (int digits = 1; digits <= 17; ++digits) {
    const double candidate =
        std::strtod(fmt::format("{:.{}g}", occurrence, digits).c_str(), nullptr);
    if (candidate * 100.0 / 100.0 == occurrence) {
      return candidate;
    }
  }
  return occurrence;
}

// Reading.

WeatherPeriod PeriodOf(const model::clsWeatherTask& task) {
  return {task.m_strTaskDesc.ToText(modGlobal::Locale()),
          DayNumber(task.m_dtStart),
          DayNumber(task.m_dtEnd),
          ShortProbability(task.m_dOccur),
          task.m_nMin,
          task.m_nLikely,
          task.m_nMax};
}

WeatherWindow WindowOf(const model::clsWWTask& task) {
  return {
      task.m_strTaskDescStart,
      {DayNumber(task.m_dtStartStart), DayNumber(task.m_dtLikelyStart),
       DayNumber(task.m_dtEndStart)},
      {DayNumber(task.m_dtStartEnd), DayNumber(task.m_dtLikelyEnd), DayNumber(task.m_dtEndEnd)}};
}

/// Calendars of one kind, in the order in which the plan's risk calendars were made; behind them
/// those that tasks point at but that have none.
template <class Calendar>
class CalendarList {
 public:
  CalendarList(const Plan& plan, const std::string& description) {
    for (const RiskCalendarDefinition& calendar : plan.risk_calendars) {
      calendars_.push_back({calendar.name, {}});
      is_shown_.push_back(calendar.description == description);
    }
  }
  /// The calendar of this name, which is shown from now on.
  Calendar& Show(const std::string& name) {
    const auto found = std::find_if(
        calendars_.begin(), calendars_.end(),
        [&name](const Calendar& calendar) { return EqualsIgnoreCase(calendar.name, name); });
    const auto at = static_cast<std::size_t>(found - calendars_.begin());
    if (found == calendars_.end()) {
      calendars_.push_back({name, {}});
      is_shown_.push_back(true);
    }
    is_shown_[at] = true;
    return calendars_[at];
  }
  std::vector<Calendar> Shown() const {
    std::vector<Calendar> shown;
    for (std::size_t i = 0; i < calendars_.size(); ++i) {
      if (is_shown_[i]) {
        shown.push_back(calendars_[i]);
      }
    }
    return shown;
  }

 private:
  std::vector<Calendar> calendars_;
  std::vector<bool> is_shown_;
};

std::vector<WeatherAssignment> ReadAssignments(const Plan& plan, const Weather& weather) {
  std::unordered_set<std::string> names;  // of weather calendars, folded
  for (const EventCalendar& calendar : weather.events) {
    names.insert(platform::FoldCase(calendar.name));
  }
  for (const WindowCalendar& calendar : weather.windows) {
    names.insert(platform::FoldCase(calendar.name));
  }
  std::vector<WeatherAssignment> assignments;
  std::map<std::pair<std::vector<std::string>, bool>, std::size_t> groups;
  for (const Task& task : plan.tasks()) {
    std::vector<std::string> calendars;
    for (const engine::RiskAssignment& assigned : task.risk_calendars) {
      const RiskCalendarDefinition* calendar = plan.FindRiskCalendar(assigned.risk_calendar);
      if (calendar != nullptr && names.contains(platform::FoldCase(calendar->name))) {
        calendars.push_back(calendar->name);
      }
    }
    const bool no_split = IsNoSplit(task);
    if (CarriesWeather(task) || (calendars.empty() && !no_split)) {
      continue;
    }
    const auto [group, is_new] = groups.try_emplace({calendars, no_split}, assignments.size());
    if (is_new) {
      assignments.push_back({{}, std::nullopt, calendars, no_split});
    }
    assignments[group->second].tasks.push_back(task.id);
  }
  return assignments;
}

// Taking out.

/// The calendars of a plan that are there for weather: those that weather tasks point at, and those
/// behind the risk calendars that the add-in has made.
std::unordered_set<Uid> WeatherCalendars(const Plan& plan) {
  std::unordered_set<Uid> calendars;
  for (const Task& task : plan.tasks()) {
    if (CarriesWeather(task)) {
      calendars.insert(task.calendar);
    }
  }
  for (const RiskCalendarDefinition& calendar : plan.risk_calendars) {
    if (calendar.description == kEventDescription || calendar.description == kWindowDescription) {
      calendars.insert(calendar.calendar);
    }
  }
  calendars.erase(0);
  return calendars;
}

void SetFlag(Plan& plan, const std::string& value) {
  plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = value;
}

void RemoveWeatherTasks(Plan& plan) {
  std::unordered_set<Uid> removed;
  for (const Task& task : plan.tasks()) {
    if (CarriesWeather(task) && !EqualsIgnoreCase(task.id, kWeatherTask)) {
      removed.insert(task.uid);
    }
  }
  plan.RemoveTasks(removed);
}

void RemoveCalendars(Plan& plan, const std::unordered_set<Uid>& calendars) {
  std::unordered_set<Uid> risk_calendars;
  for (const RiskCalendarDefinition& calendar : plan.risk_calendars) {
    if (calendars.contains(calendar.calendar)) {
      risk_calendars.insert(calendar.uid);
    }
  }
  std::erase_if(plan.risk_calendars, [&](const RiskCalendarDefinition& calendar) {
    return risk_calendars.contains(calendar.uid);
  });
  std::erase_if(plan.calendars, [&](const CalendarDefinition& calendar) {
    return calendars.contains(calendar.uid);
  });
  std::vector<Uid> tasks;
  for (const Task& task : plan.tasks()) {
    tasks.push_back(task.uid);
  }
  for (const Uid uid : tasks) {
    Task& task = *plan.FindTask(uid);
    std::erase_if(task.risk_calendars, [&](const engine::RiskAssignment& assigned) {
      return risk_calendars.contains(assigned.risk_calendar);
    });
    std::erase_if(task.user_values, [](const engine::UserValue& value) {
      return EqualsIgnoreCase(value.section, kSection) && EqualsIgnoreCase(value.key, kNoSplit);
    });
  }
}

// Writing.

/// Sets weather in a plan that has none.
class WeatherWriter {
 public:
  WeatherWriter(const Plan& plan, const std::string& file) : file_(file), storage_(plan) {}

  /// The plan with the weather in it.
  Plan Write(const Weather& weather) {
    modGlobal::AddWeatherFields();
    modGlobal::SetIsWeatherPlan(storage_.plan(), true);
    storage_->FindOrCreateWeatherTask();
    for (const EventCalendar& calendar : weather.events) {
      WriteEventCalendar(calendar);
    }
    for (const WindowCalendar& calendar : weather.windows) {
      WriteWindowCalendar(calendar);
    }
    for (std::size_t i = 0; i < weather.assign.size(); ++i) {
      WriteAssignment(weather.assign[i], fmt::format("$.assign[{}]", i));
    }
    return storage_.document();
  }

 private:
  void WriteEventCalendar(const EventCalendar& calendar) {
    const Corvane8::Ref<Corvane8::Calendar> cal = storage_->AddEventCalendar(calendar.name);
    for (const WeatherPeriod& period : calendar.periods) {
      const auto task = platform::MakeRef<model::clsWeatherTask>();
      task->InitFromTask(storage_->AddEventTask(cal));
      task->m_strTaskDesc = period.description;
      task->m_dtStart = DateOf(period.start);
      task->m_dtEnd = DateOf(period.finish);
      task->m_dOccur = period.probability;
      task->m_nMin = period.min;
      task->m_nLikely = period.likely;
      task->m_nMax = period.max;
      task->UpdateTask();
    }
  }

  void WriteWindowCalendar(const WindowCalendar& calendar) {
    storage_->AddWindowCalendar(calendar.name, false);
    const auto cal = storage_.plan()->get_Calendars()->Item(calendar.name);
    for (const WeatherWindow& window : calendar.windows) {
      const std::string id = storage_->AddWindowTasks(cal);
      const auto task = platform::MakeRef<model::clsWWTask>();
      task->InitFromTask(storage_.plan()->get_Tasks()->Item(id));
      task->m_strTaskDescStart = window.description;
      task->m_dtStartStart = DateOf(window.start[0]);
      task->m_dtLikelyStart = DateOf(window.start[1]);
      task->m_dtEndStart = DateOf(window.start[2]);
      task->m_dtStartEnd = DateOf(window.finish[0]);
      task->m_dtLikelyEnd = DateOf(window.finish[1]);
      task->m_dtEndEnd = DateOf(window.finish[2]);
      task->UpdateTask();
    }
  }

  void WriteAssignment(const WeatherAssignment& assignment, const std::string& path) {
    for (const std::string& id : TasksOf(assignment, path)) {
      const auto task = storage_.plan()->get_Tasks()->Item(id);
      for (const std::string& calendar : assignment.calendars) {
        if (!IsAssigned(id, calendar)) {
          task->get_RiskCalendars()->Add(calendar)->put_Value(0.0);
        }
      }
      // A task must not be split if any assignment says so, whatever another one says.
      if (assignment.nosplit && (*assignment.nosplit || !IsNoSplit(*Find(id)))) {
        task->get_UserFields()->SetValue(2, kSection, kNoSplit,
                                         *assignment.nosplit ? "True" : "False");
      }
    }
  }

  const Task* Find(const std::string& id) { return storage_.document().FindTask(id); }

  bool IsAssigned(const std::string& id, const std::string& calendar) {
    const Uid uid = storage_.document().FindRiskCalendar(calendar)->uid;
    const auto& assigned = Find(id)->risk_calendars;
    return std::any_of(assigned.begin(), assigned.end(),
                       [uid](const auto& assignment) { return assignment.risk_calendar == uid; });
  }

  /// IDs of the tasks that an assignment names.
  std::vector<std::string> TasksOf(const WeatherAssignment& assignment, const std::string& path) {
    std::vector<std::string> ids;
    for (std::size_t i = 0; i < assignment.tasks.size(); ++i) {
      const Task* task = Find(assignment.tasks[i]);
      if (task == nullptr || CarriesWeather(*task)) {
        throw BadInput(
            fmt::format("{}: {}.tasks[{}]: expected the ID of a task of the plan, found {}", file_,
                        path, i, QuotedText(assignment.tasks[i])));
      }
      ids.push_back(task->id);
    }
    if (!assignment.match) {
      return ids;
    }
    const std::size_t before = ids.size();
    for (const Task& task : storage_.document().tasks()) {
      if (task.kind != TaskKind::kSummary && !CarriesWeather(task) &&
          (GlobMatches(*assignment.match, task.id) ||
           GlobMatches(*assignment.match, task.description))) {
        ids.push_back(task.id);
      }
    }
    if (ids.size() == before) {
      throw BadInput(fmt::format(
          "{}: {}.match: expected a pattern that matches the ID or the description of a task, "
          "found {}, which matches none",
          file_, path, QuotedText(*assignment.match)));
    }
    return ids;
  }

  const std::string& file_;
  OpenStorage storage_;
};

/// Raises CommandError where the weather would take a calendar or a task that the plan has for
/// something else.
void RequireFreeNames(const Plan& plan, const Weather& weather, const std::string& file) {
  const auto require = [&](const std::string& name, const std::string& path) {
    const CalendarDefinition* calendar = plan.FindCalendar(name);
    const std::string work = calendar == nullptr ? std::string() : WorkOn(plan, calendar->uid);
    if (!work.empty()) {
      throw BadInput(fmt::format(
          "{}: {}.calendar: expected the name of a calendar for weather alone, found {}, which is "
          "{}",
          file, path, QuotedText(name), work));
    }
  };
  for (std::size_t i = 0; i < weather.events.size(); ++i) {
    require(weather.events[i].name, fmt::format("$.events[{}]", i));
  }
  for (std::size_t i = 0; i < weather.windows.size(); ++i) {
    require(weather.windows[i].name, fmt::format("$.windows[{}]", i));
  }
  const Task* task = plan.FindTask(kWeatherTask);
  if (task != nullptr && !CarriesWeather(*task)) {
    throw BadInput(fmt::format(
        "{}: expected a plan whose ID \"WEATHER\" is free for the weather data, found a task of "
        "the plan's own with it",
        file));
  }
}

/// Dates go through the plan's date format, which may show two digits of the year only. Raises
/// CommandError for one that did not come through.
void RequireDatesKept(const Weather& stored, const Weather& weather, const std::string& file) {
  const auto require = [&file](std::int32_t kept, std::int32_t given, const std::string& path) {
    if (kept != given) {
      throw BadInput(fmt::format(
          "{}: {}: expected a date that the plan's date format can hold, found {}, which it turns "
          "into {}",
          file, path, IsoDay(given), IsoDay(kept)));
    }
  };
  for (std::size_t i = 0; i < weather.events.size(); ++i) {
    const auto& given = weather.events[i].periods;
    const auto& kept = Named(stored.events, weather.events[i].name).periods;
    for (std::size_t k = 0; k < given.size(); ++k) {
      const std::string path = fmt::format("$.events[{}].periods[{}]", i, k);
      require(kept[k].start, given[k].start, path + ".start");
      require(kept[k].finish, given[k].finish, path + ".finish");
    }
  }
  for (std::size_t i = 0; i < weather.windows.size(); ++i) {
    const auto& given = weather.windows[i].windows;
    const auto& kept = Named(stored.windows, weather.windows[i].name).windows;
    for (std::size_t k = 0; k < given.size(); ++k) {
      for (std::size_t n = 0; n < 3; ++n) {
        const std::string path = fmt::format("$.windows[{}].windows[{}]", i, k);
        require(kept[k].start[n], given[k].start[n], fmt::format("{}.start[{}]", path, n));
        require(kept[k].finish[n], given[k].finish[n], fmt::format("{}.finish[{}]", path, n));
      }
    }
  }
}

/// The stream of a weather task by what it is. The top bit sets it apart from small numbers.
std::uint64_t WeatherStream(const std::string& what, int attempt) {
  return engine::StreamOfId(fmt::format("weather {} {}", attempt, what)) |
         (std::uint64_t{1} << 63U);
}

}  // namespace

std::string WorkOn(const Plan& plan, Uid calendar) {
  if (plan.default_calendar == calendar) {
    return "the plan's default calendar";
  }
  for (const Task& task : plan.tasks()) {
    if (task.calendar == calendar && !CarriesWeather(task)) {
      return "the working calendar of task " + QuotedText(task.id);
    }
  }
  return {};
}

Weather ReadWeather(const Plan& plan) {
  Weather weather;
  CalendarList<EventCalendar> events(plan, kEventDescription);
  CalendarList<WindowCalendar> windows(plan, kWindowDescription);
  const Task* summary = plan.FindTask(kWeatherTask);
  if (summary != nullptr && CarriesWeather(*summary)) {
    OpenStorage storage(plan);
    storage->FindOrCreateWeatherTask();
    storage->LoadEventCalendars();
    storage->LoadWindowCalendars();
    for (const auto& task : storage->m_colEventTasks) {
      if (CarriesWeather(*plan.FindTask(task->m_strTaskID))) {
        events.Show(task->m_strCalName).periods.push_back(PeriodOf(*task));
      }
    }
    for (const auto& task : storage->m_colWindowTasks) {
      windows.Show(task->m_strCalName).windows.push_back(WindowOf(*task));
    }
  }
  weather.events = events.Shown();
  weather.windows = windows.Shown();
  weather.assign = ReadAssignments(plan, weather);
  return weather;
}

void SetWeather(Plan& plan, const Weather& weather, const std::string& file) {
  RequireFreeNames(plan, weather, file);
  Plan cleared = plan;
  ClearWeather(cleared, file);
  Plan next;
  try {
    next = WeatherWriter(cleared, file).Write(weather);
  } catch (const platform::RuntimeError& error) {
    throw BadInput(
        fmt::format("{}: expected weather that the plan can store, found: {}", file, error.what()));
  }
  RequireDatesKept(ReadWeather(next), weather, file);
  NameWeatherStreams(next, cleared);
  plan = std::move(next);
}

void NameWeatherStreams(Plan& plan, const Plan& before) {
  std::unordered_set<std::uint64_t> taken;
  std::vector<std::pair<Uid, std::string>> fresh;  // and what the task is
  std::map<std::string, int> numbers;              // of the tasks of one role on one calendar
  for (const Task& task : plan.tasks()) {
    const CalendarDefinition* calendar =
        CarriesWeather(task) ? plan.FindCalendar(task.calendar) : nullptr;
    std::string what;
    if (calendar != nullptr) {
      what = WeatherRole(task) + " " + platform::FoldCase(calendar->name);
      what = fmt::format("{} {}", ++numbers[what], what);
    }
    if (calendar == nullptr || before.FindTask(task.uid) != nullptr) {
      taken.insert(task.stream);
    } else {
      fresh.emplace_back(task.uid, std::move(what));
    }
  }
  for (const auto& [uid, what] : fresh) {
    std::uint64_t stream = WeatherStream(what, 0);
    for (int attempt = 1; !taken.insert(stream).second; ++attempt) {
      stream = WeatherStream(what, attempt);
    }
    plan.FindTask(uid)->stream = stream;
  }
}

void SetWeatherFromFile(Plan& plan, const std::string& path) {
  SetWeather(plan, ParseWeatherJson(ReadTextFile(path), path), path);
}

void ClearWeather(Plan& plan, const std::string& file) {
  const std::unordered_set<Uid> calendars = WeatherCalendars(plan);
  for (const CalendarDefinition& calendar : plan.calendars) {
    const std::string work =
        calendars.contains(calendar.uid) ? WorkOn(plan, calendar.uid) : std::string();
    if (!work.empty()) {
      throw BadInput(
          fmt::format("{}: expected weather calendars that can be taken out, found {}, which is {}",
                      file, QuotedText(calendar.name), work));
    }
  }
  RemoveWeatherTasks(plan);
  RemoveCalendars(plan, calendars);
  SetFlag(plan, "FALSE");
}

}  // namespace nimbrel::cli
