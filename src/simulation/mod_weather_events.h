#pragma once

#include <cstdint>

#include "host/corvane8.h"
#include "platform/collection.h"
#include "platform/date.h"
#include "platform/ref.h"

/// The weather of a risk run: what is done before an analysis, before and after each iteration, and
/// after the analysis, through the host's object library alone.
///
/// A weather task delays nothing through the network; its calendar does. Each iteration turns the
/// sampled values of the weather tasks into days off on the weather calendars, and the tasks of the
/// plan that have those calendars are held up by the host's own scheduling.
///
/// No operation handles an error: what the host raises goes up to it, and the plan and the run
/// state stay as far as they got.
namespace nimbrel::modWeatherEvents {

/// A collection that can be Nothing: it is until a run is prepared, and again once it is released.
template <class T>
class RunCollection final : public platform::Object, public platform::Collection<T> {};

using TaskCollection = RunCollection<Corvane8::Ref<Corvane8::Task>>;
using CalendarCollection = RunCollection<Corvane8::Ref<Corvane8::Calendar>>;

/// The run state. BeforeRiskAnalysis sets all of it, and nothing else writes it, but for the two
/// collections that AfterRiskAnalysis releases. The objects in it are the plan's live ones.
extern platform::Date g_dtFirstDay;  ///< lower bound of every calendar reset
extern platform::Date g_dtLastDay;   ///< upper bound of every calendar reset
extern platform::Ref<CalendarCollection>
    g_colCalendars;  ///< every calendar of a period or window, by its name
extern platform::Ref<TaskCollection>
    g_colEvents;  ///< the event periods, in the plan's order, without keys
extern platform::Ref<TaskCollection> g_colWindowStarts;  ///< the start edges, by "A" and their ID
extern platform::Ref<TaskCollection>
    g_colWindowEnds;  ///< the end edges, by "A" and the ID of their start edge
extern platform::Ref<TaskCollection>
    g_colNoSplit;                 ///< all tasks marked "nosplit", by "A" and their ID
extern std::int32_t g_nTimeUnit;  ///< the plan's units of duration in a day: 1, 24 or 96
extern Corvane8::Ref<Corvane8::RiskAnalysis> g_oRisk;  ///< source of the random numbers

/// Walks the plan once and lays out the run state for the iterations. The bounds start from the
/// active plan's anchor date; all else is read from `Plan`. Sets the mode of every period that has
/// a risk object to 1.
///
/// Raises what the host raises: for a plan without the task "WEATHER", for a window without a
/// successor link, for a "startdate" that is no date, for two windows or marked tasks of one ID.
void BeforeRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& Plan);

/// Turns the samples of the iteration into days off: resets the calendars, places the periods and
/// then the windows, and takes the constraints off the marked tasks, their own included.
/// `Iteration` changes nothing.
void BeforeRiskIteration(const Corvane8::Ref<Corvane8::Plan>& Plan, Corvane8::Long Iteration);

/// Takes the sampled working time of the period `t` out of its calendar: as single days at random
/// places of its span for a certain period, as one block of calendar days otherwise. A sample of 0
/// or a period that the host has ruled out takes nothing.
void PlaceEventPeriod(const Corvane8::Ref<Corvane8::Plan>& Plan,
                      const Corvane8::Ref<Corvane8::Task>& t);

/// Takes the days from the sampled opening to the sampled closing out of the start edge's calendar.
void PlaceWindow(const Corvane8::Ref<Corvane8::Plan>& Plan,
                 const Corvane8::Ref<Corvane8::Task>& tStart,
                 const Corvane8::Ref<Corvane8::Task>& tEnd);

/// Pushes each marked task that a weather day has cut past that day and schedules the plan again,
/// until no marked task is cut. There is no limit of passes. `Iteration` changes nothing.
void AfterRiskIteration(const Corvane8::Ref<Corvane8::Plan>& Plan, Corvane8::Long Iteration);

/// Resets the calendars, takes the constraints off the marked tasks, releases g_colCalendars and
/// g_colEvents and schedules the plan once more. The rest of the run state stays.
void AfterRiskAnalysis(const Corvane8::Ref<Corvane8::Plan>& Plan);

/// Whether a day inside the task's scheduled span is off though its calendar's weekly pattern works
/// it. Days are visited at the start's time of day, from the start to before the finish.
bool IsTaskSplitByWeather(const Corvane8::Ref<Corvane8::Task>& t);

/// Holds the task back to the day after the first day that cuts it, at the start's time of day; a
/// task that is not cut stays as it is.
void MoveTaskPastWeather(const Corvane8::Ref<Corvane8::Task>& t);

/// The host's number of a weekday (Monday 0 to Sunday 6) from the platform's (Sunday 1 to
/// Saturday 7).
std::int32_t WeekdayIndex(std::int32_t nDay);

/// Lets all of the run state go: it holds objects of the host, which may end before this process
/// does.
void ReleaseRunState();

}  // namespace nimbrel::modWeatherEvents
