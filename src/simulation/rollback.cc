// What is done after each iteration, once the host has scheduled it, and after the analysis.

#include <cstdint>
#include <optional>

#include "platform/date.h"
#include "simulation/mod_weather_events.h"
#include "simulation/run_steps.h"

namespace nimbrel::modWeatherEvents {

using Corvane8::Long;
using Corvane8::Ref;
using platform::Date;

namespace {

constexpr std::int32_t kStartNoEarlier = 3;
constexpr std::int32_t kWorked = 1;

/// The first day inside the task's scheduled span that is lost to something other than its
/// calendar's weekly pattern, at the start's time of day. A weekend that the span crosses is not.
std::optional<Date> FirstWeatherDay(const Ref<Corvane8::Task>& t) {
  Date dtDay = t->get_Dates()->get_Start();
  const Date dtEnd = t->get_Dates()->get_Finish();
  const Ref<Corvane8::Calendar> cal = t->get_Calendar();
  for (; dtDay < dtEnd; dtDay = dtDay + 1.0) {
    if (t->NextWorkingDate(dtDay, 0.0) != dtDay) {
      const std::int32_t nIndex = WeekdayIndex(platform::WeekdayNumber(dtDay));
      if (cal->WeekdayStatus(nIndex, 1) == kWorked) {
        return dtDay;
      }
    }
  }
  return std::nullopt;
}

}  // namespace

void AfterRiskIteration(const Ref<Corvane8::Plan>& Plan, Long /*Iteration*/) {
  for (;;) {
    bool bMoved = false;
    for (const Ref<Corvane8::Task>& t : *g_colNoSplit) {
      if (IsTaskSplitByWeather(t)) {
        Plan->put_AutoRecalculate(false);
        MoveTaskPastWeather(t);
        bMoved = true;
      }
    }
    if (!bMoved) {
      return;
    }
    Plan->Recalculate();
    if (Plan->get_RiskAnalysis()->get_Options()->get_RecalculateAfterMove()) {
      Plan->put_AutoRecalculate(true);
      Plan->Recalculate();
      Plan->RecalculateFinish();
    }
  }
}

void AfterRiskAnalysis(const Ref<Corvane8::Plan>& Plan) {
  ResetCalendars();
  ClearConstraints();
  g_colCalendars = nullptr;
  g_colEvents = nullptr;
  Plan->Recalculate();
}

bool IsTaskSplitByWeather(const Ref<Corvane8::Task>& t) {
  return FirstWeatherDay(t).has_value();
}

void MoveTaskPastWeather(const Ref<Corvane8::Task>& t) {
  // The walk is made anew: the dates are those of now, not those that the task was tested with.
  if (const std::optional<Date> dtDay = FirstWeatherDay(t)) {
    t->get_Dates()->put_Constraint(kStartNoEarlier);
    t->get_Dates()->put_ConstraintDate(*dtDay + 1.0);
  }
}

std::int32_t WeekdayIndex(std::int32_t nDay) {
  const std::int32_t nIndex = nDay - 2;
  return nIndex < 0 ? 6 : nIndex;
}

}  // namespace nimbrel::modWeatherEvents
