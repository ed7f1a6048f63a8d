#include "simulation/mod_weather_events.h"

namespace nimbrel::modWeatherEvents {

platform::Date g_dtFirstDay;
platform::Date g_dtLastDay;
platform::Ref<CalendarCollection> g_colCalendars;
platform::Ref<TaskCollection> g_colEvents;
platform::Ref<TaskCollection> g_colWindowStarts;
platform::Ref<TaskCollection> g_colWindowEnds;
platform::Ref<TaskCollection> g_colNoSplit;
std::int32_t g_nTimeUnit = 0;
Corvane8::Ref<Corvane8::RiskAnalysis> g_oRisk;

void ReleaseRunState() {
  g_colCalendars = nullptr;
  g_colEvents = nullptr;
  g_colWindowStarts = nullptr;
  g_colWindowEnds = nullptr;
  g_colNoSplit = nullptr;
  g_oRisk = nullptr;
}

}  // namespace nimbrel::modWeatherEvents
