// What is done before each iteration, once the host has sampled it.

#include <cmath>
#include <cstdint>

#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/number.h"
#include "platform/runtime_error.h"
#include "simulation/mod_weather_events.h"
#include "simulation/run_steps.h"

namespace nimbrel::modWeatherEvents {

using Corvane8::Long;
using Corvane8::Ref;
using platform::Date;

namespace {

constexpr Date kDateZero{0.0};
constexpr double kCertain = 100.0;
constexpr std::int32_t kPlanInDays = 1;

/// `dt` moved by days and parts of days. Raises error 6 where no date is.
Date Moved(Date dt, double dDays) {
  const Date dtMoved = dt + dDays;
  if (!platform::IsValidDate(dtMoved)) {
    throw platform::RuntimeError(platform::kOverflow, "Overflow: weather past the last date");
  }
  return dtMoved;
}

/// Takes single days at random until no more than `nSpare` of the span's working time is left. A
/// draw that hits a day off changes nothing and the next one is taken, so weekends cost no weather;
/// there is no other limit.
void ScatterDays(const Ref<Corvane8::Plan>& Plan, const Ref<Corvane8::Task>& t, Date dtStart,
                 Date dtEnd, std::int32_t nSpare) {
  const std::int32_t nSpan = platform::DaysBetween(dtStart, dtEnd) + 1;
  while (t->get_Calendar()->WorkingTime(dtStart, dtEnd, 1) > nSpare) {
    double dOffset = nSpan * g_oRisk->get_Rnd();
    if (Plan->get_Properties()->get_TimeUnit() == kPlanInDays) {
      dOffset = std::trunc(dOffset);
    }
    t->get_Calendar()->SetDays(0, Moved(dtStart, dOffset), kDateZero);
  }
}

/// Takes one piece of as many calendar days as were sampled, which begins within the spare working
/// time of the span and may run past its end. The offset keeps its fraction in any unit.
void PlaceBlock(const Ref<Corvane8::Task>& t, Date dtStart, std::int32_t nSpare) {
  const double dOffset = nSpare * g_oRisk->get_Rnd();
  const Date dtFrom = Moved(dtStart, dOffset);
  const Date dtTo = Moved(dtFrom, static_cast<double>(t->get_SampledDuration()) - 1.0);
  t->get_Calendar()->SetDays(0, dtFrom, dtTo);
}

}  // namespace

void BeforeRiskIteration(const Ref<Corvane8::Plan>& Plan, Long /*Iteration*/) {
  ResetCalendars();
  for (const Ref<Corvane8::Task>& t : *g_colEvents) {
    PlaceEventPeriod(Plan, t);
  }
  for (const Ref<Corvane8::Task>& t : *g_colWindowStarts) {
    PlaceWindow(Plan, t, g_colWindowEnds->Item("A" + t->get_ID()));
  }
  ClearConstraints();
}

void PlaceEventPeriod(const Ref<Corvane8::Plan>& Plan, const Ref<Corvane8::Task>& t) {
  if (t->get_SampledDuration() == 0) {
    return;
  }
  const platform::Locale& locale = modGlobal::Locale();
  const Date dtStart = t->get_UserFields()->GetCustom("Weather-start").ToDate(locale);
  const Date dtEnd = t->get_UserFields()->GetCustom("Weather-end").ToDate(locale);
  bool bCertain = true;
  if (const Ref<Corvane8::TaskRisk> risk = t->Risk(0)) {
    bCertain = !(risk->get_Probability() < kCertain);
  }
  const std::int32_t nWork = t->get_Calendar()->WorkingTime(dtStart, dtEnd, 1);
  std::int32_t nSpare = platform::SubtractLong(nWork, t->get_SampledDuration());
  if (nSpare < 0) {
    nSpare = 0;
  }
  if (t->get_SkipInIteration()) {
    return;
  }
  if (bCertain) {
    ScatterDays(Plan, t, dtStart, dtEnd, nSpare);
  } else {
    PlaceBlock(t, dtStart, nSpare);
  }
}

void PlaceWindow(const Ref<Corvane8::Plan>& /*Plan*/, const Ref<Corvane8::Task>& tStart,
                 const Ref<Corvane8::Task>& tEnd) {
  Date dtFrom = StartDateOf(tStart);
  Date dtTo = StartDateOf(tEnd);
  // Units of a calendar day here, 24 or 96 of them, and not of a working day.
  dtFrom = platform::AddDays(dtFrom, platform::Divide(tStart->get_SampledDuration(), g_nTimeUnit));
  dtTo = platform::AddDays(dtTo, platform::Divide(tEnd->get_SampledDuration(), g_nTimeUnit));
  tStart->get_Calendar()->SetDays(0, dtFrom, dtTo);
}

}  // namespace nimbrel::modWeatherEvents
