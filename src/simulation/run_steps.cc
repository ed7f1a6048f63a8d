#include "simulation/run_steps.h"

#include "host/mod_global.h"
#include "platform/locale.h"
#include "simulation/mod_weather_events.h"

namespace nimbrel::modWeatherEvents {

using Corvane8::Ref;

void ResetCalendars() {
  for (const Ref<Corvane8::Calendar>& calendar : *g_colCalendars) {
    calendar->SetDays(1, g_dtFirstDay, g_dtLastDay);
  }
}

void ClearConstraints() {
  for (const Ref<Corvane8::Task>& t : *g_colNoSplit) {
    t->get_Dates()->put_Constraint(0);
    t->get_Dates()->put_ConstraintDate({0.0});
  }
}

platform::Date StartDateOf(const Ref<Corvane8::Task>& t) {
  return platform::ParseDate(t->get_UserFields()->GetValue(2, "weather", "startdate", ""),
                             modGlobal::Locale());
}

}  // namespace nimbrel::modWeatherEvents
