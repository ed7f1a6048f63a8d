#pragma once

#include <string>

#include "host/corvane8.h"
#include "model/cls_weather_cal.h"
#include "model/cls_weather_task.h"
#include "model/cls_ww_task.h"
#include "model/weather_controls.h"
#include "platform/collection.h"
#include "platform/ref.h"

namespace nimbrel::model {

/// Where the weather data stands in the active plan, and who writes it. The dialog owns one.
///
/// All weather data lives in the plan: a summary task "WEATHER" with the event periods and the
/// edges of the windows as its direct children, told apart by their text "tasktype" of the section
/// "weather" ("1" period, "3" and "4" start and end edge, "10" the summary); and for each weather
/// calendar one entry of the plan's calendars and one of its risk calendars with the same name. A
/// calendar is an event or a window calendar by the tasks that point at it alone.
///
/// An operation that does not say otherwise raises what the host raises, and what it had done until
/// then stays in the plan.
class frmWeatherStorage {
 public:
  /// `controls` must outlive the storage.
  explicit frmWeatherStorage(WeatherControls& controls) : controls_(controls) {}

  /// What the load operations read, in the plan's order; keys are strName, m_strTaskID, strName and
  /// m_strTaskIDStart.
  platform::Collection<platform::Ref<clsWeatherCal>> m_colEventCals;
  platform::Collection<platform::Ref<clsWeatherTask>> m_colEventTasks;
  platform::Collection<platform::Ref<clsWeatherCal>> m_colWindowCals;
  platform::Collection<platform::Ref<clsWWTask>> m_colWindowTasks;
  /// The summary task; Nothing until FindOrCreateWeatherTask.
  Corvane8::Ref<Corvane8::Task> m_taskWeather;

  /// Takes the task "WEATHER" of the active plan into m_taskWeather, and makes it if there is none.
  /// Errors are ignored statement by statement, so a task that cannot be got reads as missing.
  void FindOrCreateWeatherTask();

  /// Makes the two host objects of an event calendar, taking over those of that name that are
  /// there, and gives the working-time calendar.
  Corvane8::Ref<Corvane8::Calendar> AddEventCalendar(const std::string& strName);
  /// The same for a window calendar, with one window in it if `bAddWindow`.
  void AddWindowCalendar(const std::string& strName, bool bAddWindow);

  /// Makes a period task of 1, 2 and 3 days on `cal` under the summary task. It has no description,
  /// no dates and no risk yet.
  Corvane8::Ref<Corvane8::Task> AddEventTask(const Corvane8::Ref<Corvane8::Calendar>& cal);
  /// Makes a window on `cal` whose start is the plan's reference date, the next day or the day
  /// after that, and its finish the same two months later. Gives the ID of the start edge.
  std::string AddWindowTasks(const Corvane8::Ref<Corvane8::Calendar>& cal);

  /// Read all periods or windows of the plan into the collections and the controls, which are
  /// emptied first. Without a summary task they stay empty. Errors are ignored statement by
  /// statement: a task that cannot be read in full leaves a half-filled object, one with an ID that
  /// was there before is counted but not kept.
  void LoadEventCalendars();
  void LoadWindowCalendars();

  /// Count a period or window for its calendar, which is made if this is its first.
  void CountEventTask(const platform::Ref<clsWeatherTask>& t);
  void CountWindowTask(const platform::Ref<clsWWTask>& t);

  /// Takes the loaded tasks and calendars out of the plan, and empties the collections and the
  /// controls. The summary task and the plan's flag stay.
  void RemoveAllWeatherData();

 private:
  Corvane8::Ref<Corvane8::Calendar> MakeCalendar(const std::string& strName,
                                                 const std::string& strDescription);
  void ShowCalendars(CalendarKind kind,
                     const platform::Collection<platform::Ref<clsWeatherCal>>& calendars);
  void ClearCalendars(CalendarKind kind);

  WeatherControls& controls_;
};

}  // namespace nimbrel::model
