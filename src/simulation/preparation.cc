// What is done once, before the first iteration of an analysis.

#include <string>

#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/number.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "simulation/mod_weather_events.h"
#include "simulation/run_steps.h"

namespace nimbrel::modWeatherEvents {

using Corvane8::Ref;
using platform::Date;

namespace {

/// Adds the task's calendar unless it is there: the refused key is how each calendar is kept once.
void AddCalendarOf(const Ref<Corvane8::Task>& t) {
  platform::IgnoreErrors([&t] {
    const Ref<Corvane8::Calendar> calendar = t->get_Calendar();
    g_colCalendars->Add(calendar, t->get_Calendar()->get_Name());
  });
}

void PreparePeriod(const Ref<Corvane8::Task>& t) {
  const platform::Locale& locale = modGlobal::Locale();
  const Date dtStart = t->get_UserFields()->GetCustom("Weather-start").ToDate(locale);
  if (dtStart < g_dtFirstDay) {
    g_dtFirstDay = dtStart;
  }
  const Date dtEnd = t->get_UserFields()->GetCustom("Weather-end").ToDate(locale);
  if (dtEnd > g_dtLastDay) {
    g_dtLastDay = dtEnd + 1.0;
  }
  AddCalendarOf(t);
  if (const Ref<Corvane8::TaskRisk> risk = t->Risk(0)) {
    risk->put_Mode(1);
  }
  g_colEvents->Add(t);
}

void PrepareWindow(const Ref<Corvane8::Task>& t) {
  g_colWindowStarts->Add(t, "A" + t->get_ID());
  const Ref<Corvane8::Task> e = t->get_Links()->get_Successors()->Item(1)->get_Task();
  g_colWindowEnds->Add(e, "A" + t->get_ID());
  const Date dtFrom = StartDateOf(t);
  Date dtTo = StartDateOf(e);
  const std::int32_t nDays =
      modGlobal::PlanUnitsToDays(platform::ToLong(e->Duration(-1)->get_Maximum()));
  dtTo = platform::AddDays(dtTo, nDays);
  if (dtFrom < g_dtFirstDay) {
    g_dtFirstDay = dtFrom;
  }
  if (dtTo > g_dtLastDay) {
    g_dtLastDay = dtTo + 1.0;
  }
  AddCalendarOf(t);
}

}  // namespace

void BeforeRiskAnalysis(const Ref<Corvane8::Plan>& Plan) {
  g_dtFirstDay = modGlobal::Application()->get_ActivePlan()->get_Properties()->get_AnchorDate();
  g_dtLastDay = modGlobal::Application()->get_ActivePlan()->get_Properties()->get_AnchorDate();
  g_colCalendars = platform::MakeRef<CalendarCollection>();
  g_colEvents = platform::MakeRef<TaskCollection>();
  g_colWindowStarts = platform::MakeRef<TaskCollection>();
  g_colWindowEnds = platform::MakeRef<TaskCollection>();
  g_colNoSplit = platform::MakeRef<TaskCollection>();
  for (const Ref<Corvane8::Task>& t : Plan->get_Tasks()->Item("WEATHER")->get_Children()) {
    const std::string strType = t->get_UserFields()->GetValue(2, "weather", "tasktype", "0");
    if (strType == "1") {
      PreparePeriod(t);
    } else if (strType == "3") {
      PrepareWindow(t);
    }
  }
  for (const Ref<Corvane8::Task>& t : Plan->get_Tasks()->Elements()) {
    const std::string strNoSplit = t->get_UserFields()->GetValue(2, "weather", "nosplit", "");
    if (platform::EqualsIgnoreCase(strNoSplit, "True")) {
      g_colNoSplit->Add(t, "A" + t->get_ID());
    }
  }
  g_nTimeUnit = Plan->get_Properties()->get_TimeUnit();
  g_oRisk = Plan->get_RiskAnalysis();
}

}  // namespace nimbrel::modWeatherEvents
