#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "nimbrel/json_text.h"

namespace nimbrel::cli {

/// A stretch of time in which weather may take days. Days are counted as in engine::Instant;
/// lengths are whole days.
struct WeatherPeriod {
  std::string description;
  std::int32_t start = 0;   // first day
  std::int32_t finish = 0;  // last day, included
  double probability = 1;   // 0 to 1; 1 is certain
  std::int32_t min = 0;
  std::int32_t likely = 0;
  std::int32_t max = 0;
  friend bool operator==(const WeatherPeriod&, const WeatherPeriod&) = default;
};

/// Days in which no work is possible, from an uncertain start to an uncertain finish: the earliest,
/// the likely and the latest day of each.
struct WeatherWindow {
  std::string description;
  std::array<std::int32_t, 3> start = {};
  std::array<std::int32_t, 3> finish = {};
  friend bool operator==(const WeatherWindow&, const WeatherWindow&) = default;
};

struct EventCalendar {
  std::string name;
  std::vector<WeatherPeriod> periods;
  friend bool operator==(const EventCalendar&, const EventCalendar&) = default;
};

struct WindowCalendar {
  std::string name;
  std::vector<WeatherWindow> windows;
  friend bool operator==(const WindowCalendar&, const WindowCalendar&) = default;
};

/// Which tasks feel which calendars: those with an ID in `tasks` and those that `match` picks. A
/// task feels the calendars of all assignments that name it, and must not be split if any of them
/// says so.
struct WeatherAssignment {
  std::vector<std::string> tasks;
  std::optional<std::string> match;  // for ordinary tasks, see GlobMatches
  std::vector<std::string> calendars;
  std::optional<bool> nosplit;
  friend bool operator==(const WeatherAssignment&, const WeatherAssignment&) = default;
};

/// All the weather of a plan.
struct Weather {
  std::vector<EventCalendar> events;
  std::vector<WindowCalendar> windows;
  std::vector<WeatherAssignment> assign;
  friend bool operator==(const Weather&, const Weather&) = default;
};

/// "YYYY-MM-DD".
std::string IsoDay(std::int32_t day);

/// Reads the text of a weather file; everything that can be known without a plan is checked. `file`
/// stands in errors. Raises CommandError (the input is bad): "FILE:ROW: ..." for text that is no
/// JSON, otherwise "FILE: $.events[0].periods[2].min: ...".
Weather ParseWeatherJson(const std::string& text, const std::string& file);

/// The weather in the shape that ParseWeatherJson reads.
Json WeatherJson(const Weather& weather);

/// The weather of a plan: its calendars in the order in which they were made, and the ordinary
/// tasks with any of them or with a no-split mark, those with the same calendars and mark together,
/// in the plan's order. What the plan holds otherwise than a file may say it (dates out of order,
/// a probability above 1) is given as it stands.
Weather ReadWeather(const engine::Plan& plan);

/// What ordinary work of the plan runs on a calendar, as "the plan's default calendar"; empty if
/// none does.
std::string WorkOn(const engine::Plan& plan, engine::Uid calendar);

/// Puts this weather in place of the plan's, by the add-in's own operations, and marks the plan as
/// a weather plan. A calendar of the plan that has the name of a weather calendar becomes it.
/// Raises CommandError (the input is bad), which names `file`, with the plan as it was: for unknown
/// tasks, a match without tasks, a calendar that ordinary work runs on, a task "WEATHER" of the
/// user's own, and dates that the plan's date format cannot hold.
void SetWeather(engine::Plan& plan, const Weather& weather, const std::string& file);

/// Names the random streams of the weather tasks that `plan` has and `before` has not: by their
/// role, the name of their calendar and their number on it, so that the same weather is sampled the
/// same however often it is set anew, and a period that is changed leaves the samples of the others
/// as they were. No two tasks of the plan share one.
void NameWeatherStreams(engine::Plan& plan, const engine::Plan& before);

/// Reads a weather file and sets it. Raises CommandError also if the file cannot be read.
void SetWeatherFromFile(engine::Plan& plan, const std::string& path);

/// Takes out all weather data, the weather calendars with their assignments and all no-split marks,
/// and marks the plan as no weather plan. The summary task "WEATHER" stays, as in the dialog.
/// Raises CommandError (the input is bad), with the plan as it was, if ordinary work runs on a
/// weather calendar; `file` is the plan's file.
void ClearWeather(engine::Plan& plan, const std::string& file);

}  // namespace nimbrel::cli
