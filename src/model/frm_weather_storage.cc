#include "model/frm_weather_storage.h"

#include <cstdint>

#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"

namespace nimbrel::model {

using Corvane8::Ref;
using modGlobal::DaysToPlanUnits;
using modGlobal::NormalisePlanDate;
using platform::Collection;
using platform::IgnoreErrors;
using platform::MakeRef;

namespace {

constexpr std::string_view kSection = "weather";
constexpr std::string_view kTaskType = "tasktype";
constexpr std::string_view kStartDate = "startdate";

Ref<Corvane8::Plan> ActivePlan() {
  return modGlobal::Application()->get_ActivePlan();
}

/// The task's type, empty if it cannot be read. A child without one counts as a period.
std::string TypeOf(const Ref<Corvane8::Task>& t) {
  std::string strType;
  IgnoreErrors([&] { strType = t->get_UserFields()->GetValue(2, kSection, kTaskType, "1"); });
  return strType;
}

std::vector<Ref<Corvane8::Task>> ChildrenOf(const Ref<Corvane8::Task>& summary) {
  std::vector<Ref<Corvane8::Task>> children;
  IgnoreErrors([&] { children = summary->get_Children(); });
  return children;
}

void Count(Collection<Ref<clsWeatherCal>>& calendars, const std::string& strName) {
  Ref<clsWeatherCal> calendar;
  IgnoreErrors([&] { calendar = calendars.Item(strName); });
  if (calendar.IsNothing()) {
    calendar = MakeRef<clsWeatherCal>();
    calendar->nCount = 1;
    calendar->strName = strName;
    IgnoreErrors([&] { calendars.Add(calendar, strName); });
  } else {
    ++calendar->nCount;
  }
}

void RemoveCalendars(const Collection<Ref<clsWeatherCal>>& calendars) {
  for (std::int32_t index = 1; index <= calendars.Count(); ++index) {
    const std::string& strName = calendars.Item(index)->strName;
    if (!strName.empty()) {
      ActivePlan()->get_RiskCalendars()->Remove(strName);
      ActivePlan()->get_Calendars()->Remove(strName);
    }
  }
}

void SetDurations(const Ref<Corvane8::Duration>& duration, std::int32_t nMinimum,
                  std::int32_t nLikely, std::int32_t nMaximum) {
  duration->put_Minimum(DaysToPlanUnits(nMinimum));
  duration->put_Likely(DaysToPlanUnits(nLikely));
  duration->put_Maximum(DaysToPlanUnits(nMaximum));
}

std::string NormalisedText(platform::Date dt) {
  return platform::DefaultDateText(NormalisePlanDate(dt), modGlobal::Locale());
}

}  // namespace

void frmWeatherStorage::FindOrCreateWeatherTask() {
  IgnoreErrors([&] { m_taskWeather = ActivePlan()->get_Tasks()->Item("WEATHER"); });
  if (m_taskWeather.IsNothing()) {
    IgnoreErrors([&] { m_taskWeather = ActivePlan()->get_Tasks()->Add(); });
    IgnoreErrors([&] { m_taskWeather->put_ID("WEATHER"); });
    IgnoreErrors([&] { m_taskWeather->get_UserFields()->SetValue(2, kSection, kTaskType, "10"); });
    IgnoreErrors([&] { m_taskWeather->put_Calendar(nullptr); });
  }
}

Ref<Corvane8::Calendar> frmWeatherStorage::MakeCalendar(const std::string& strName,
                                                        const std::string& strDescription) {
  Ref<Corvane8::Calendar> calendar;
  IgnoreErrors([&] { calendar = ActivePlan()->get_Calendars()->Item(strName); });
  if (calendar.IsNothing()) {
    calendar = ActivePlan()->get_Calendars()->Add(strName);
  }
  Ref<Corvane8::RiskCalendar> risk_calendar;
  IgnoreErrors([&] { risk_calendar = ActivePlan()->get_RiskCalendars()->Item(strName); });
  if (risk_calendar.IsNothing()) {
    risk_calendar = ActivePlan()->get_RiskCalendars()->Add(strName);
  }
  risk_calendar->put_Calendar(calendar);
  risk_calendar->put_Description(strDescription);
  controls_.FillCalendarCombo();
  return calendar;
}

Ref<Corvane8::Calendar> frmWeatherStorage::AddEventCalendar(const std::string& strName) {
  return MakeCalendar(strName, "Weather calendar");
}

void frmWeatherStorage::AddWindowCalendar(const std::string& strName, bool bAddWindow) {
  const Ref<Corvane8::Calendar> calendar = MakeCalendar(strName, "Weather window");
  if (bAddWindow) {
    AddWindowTasks(calendar);
  }
}

Ref<Corvane8::Task> frmWeatherStorage::AddEventTask(const Ref<Corvane8::Calendar>& cal) {
  Ref<Corvane8::Task> t = ActivePlan()->get_Tasks()->Add();
  t->MoveUnder(0, m_taskWeather);
  t->put_Calendar(cal);
  t->get_UserFields()->SetValue(2, kSection, kTaskType, "1");
  SetDurations(t->Duration(-1), 1, 2, 3);
  return t;
}

std::string frmWeatherStorage::AddWindowTasks(const Ref<Corvane8::Calendar>& cal) {
  const platform::Date d1 = ActivePlan()->get_Properties()->get_ReferenceDate();
  const platform::Date d2 = platform::AddMonths(d1, 2);
  const Ref<Corvane8::Task> t1 = ActivePlan()->get_Tasks()->Add();
  const Ref<Corvane8::Task> t2 = ActivePlan()->get_Tasks()->Add();
  t1->put_Description("Weather window");
  t2->put_Description("Weather window");
  t1->put_Calendar(cal);
  t2->put_Calendar(cal);
  const Ref<Corvane8::Duration> duration1 = t1->Duration(-1);
  const Ref<Corvane8::Duration> duration2 = t2->Duration(-1);
  t1->MoveUnder(0, m_taskWeather);
  t2->MoveUnder(0, m_taskWeather);
  t1->get_Links()->get_Successors()->Add(t2->get_ID(), 2, 0, 0, 0);
  t1->get_UserFields()->SetValue(2, kSection, kTaskType, "3");
  t2->get_UserFields()->SetValue(2, kSection, kTaskType, "4");
  t1->get_UserFields()->SetValue(2, kSection, kStartDate, NormalisedText(d1));
  t2->get_UserFields()->SetValue(2, kSection, kStartDate, NormalisedText(d2));
  SetDurations(duration1, 0, 1, 2);
  SetDurations(duration2, 0, 1, 2);
  return t1->get_ID();
}

void frmWeatherStorage::LoadEventCalendars() {
  ClearCalendars(CalendarKind::kEvent);
  m_colEventTasks.Clear();
  m_colEventCals.Clear();
  if (!m_taskWeather.IsNothing()) {
    for (const Ref<Corvane8::Task>& child : ChildrenOf(m_taskWeather)) {
      if (TypeOf(child) == "1") {
        const Ref<clsWeatherTask> t = MakeRef<clsWeatherTask>();
        t->InitFromTask(child);
        IgnoreErrors([&] { m_colEventTasks.Add(t, t->m_strTaskID); });
        CountEventTask(t);
      }
    }
  }
  ShowCalendars(CalendarKind::kEvent, m_colEventCals);
}

void frmWeatherStorage::LoadWindowCalendars() {
  ClearCalendars(CalendarKind::kWindow);
  m_colWindowTasks.Clear();
  m_colWindowCals.Clear();
  if (!m_taskWeather.IsNothing()) {
    for (const Ref<Corvane8::Task>& child : ChildrenOf(m_taskWeather)) {
      if (TypeOf(child) == "3") {
        const Ref<clsWWTask> t = MakeRef<clsWWTask>();
        t->InitFromTask(child);
        IgnoreErrors([&] { m_colWindowTasks.Add(t, t->m_strTaskIDStart); });
        CountWindowTask(t);
      }
    }
  }
  ShowCalendars(CalendarKind::kWindow, m_colWindowCals);
  IgnoreErrors([&] { controls_.ClickWindowCalendars(); });
}

void frmWeatherStorage::CountEventTask(const Ref<clsWeatherTask>& t) {
  Count(m_colEventCals, t->m_strCalName);
}

void frmWeatherStorage::CountWindowTask(const Ref<clsWWTask>& t) {
  Count(m_colWindowCals, t->m_strCalName);
}

void frmWeatherStorage::RemoveAllWeatherData() {
  for (const Ref<clsWeatherTask>& t : m_colEventTasks) {
    if (!t->m_strTaskID.empty()) {
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskID);
    }
  }
  for (const Ref<clsWWTask>& t : m_colWindowTasks) {
    if (!t->m_strTaskIDStart.empty()) {
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDStart);
      ActivePlan()->get_Tasks()->Remove(t->m_strTaskIDEnd);
    }
  }
  RemoveCalendars(m_colEventCals);
  RemoveCalendars(m_colWindowCals);
  m_colEventCals.Clear();
  m_colEventTasks.Clear();
  m_colWindowCals.Clear();
  m_colWindowTasks.Clear();
  controls_.ClearRows(CalendarKind::kEvent);
  controls_.ClearRows(CalendarKind::kWindow);
  controls_.ClearCalendarList(CalendarKind::kEvent);
  controls_.ClearCalendarList(CalendarKind::kWindow);
  controls_.ClearCheckList(CalendarKind::kEvent);
  controls_.ClearCheckList(CalendarKind::kWindow);
}

void frmWeatherStorage::ShowCalendars(CalendarKind kind,
                                      const Collection<Ref<clsWeatherCal>>& calendars) {
  for (const Ref<clsWeatherCal>& calendar : calendars) {
    IgnoreErrors([&] { controls_.AddToCalendarList(kind, calendar->strName); });
    IgnoreErrors([&] { controls_.AddToCheckList(kind, calendar->strName); });
  }
}

void frmWeatherStorage::ClearCalendars(CalendarKind kind) {
  IgnoreErrors([&] { controls_.ClearCalendarList(kind); });
  IgnoreErrors([&] { controls_.ClearCheckList(kind); });
}

}  // namespace nimbrel::model
