#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "host/corvane8.h"
#include "platform/collection.h"
#include "platform/locale.h"

/// What everything else leans on to talk to a plan in the plan's own terms: the application, the
/// plan's flag and custom fields, and the conversions of dates and durations.
namespace nimbrel::modGlobal {

/// What the process hands in at its start.
struct Wiring {
  /// Makes the reference to the running host. Asked once, at the first use of Application.
  std::function<Corvane8::Ref<Corvane8::Application>()> create_application;
  /// The user's locale.
  platform::Locale locale = platform::DefaultLocale();
};

/// Set anew whenever the weather dialog opens, and left behind after it.
extern std::string g_strModulesFolder;  ///< where the file dialogs of the import start
extern platform::Collection<std::string>
    g_colEventHeaders;  ///< the column titles of an event sheet, in their order
extern platform::Collection<std::string> g_colWindowHeaders;  ///< the same of a window sheet

/// Puts `wiring` in place. To be called before anything else of the add-in runs; called again, it
/// also lets the application of the former wiring go, so that the next use makes a new one.
void Wire(Wiring wiring);

/// The one reference to the running host in this process. It is made on first use and stays for
/// the rest of the process, also beyond the end of main. An error in making it goes to the caller,
/// and the next use tries again. Raises error 91 if nothing was wired or no host was made.
const Corvane8::Ref<Corvane8::Application>& Application();

/// The locale handed in at wiring, English before that.
const platform::Locale& Locale();

/// Whether the plan's option says that it is a weather plan: the stored text is exactly "TRUE".
/// Nothing is no weather plan. The option is read from the plan each time.
bool IsWeatherPlan(const Corvane8::Ref<Corvane8::Plan>& plan);

/// Stores the option as "TRUE" or "FALSE"; with Nothing it does nothing.
void SetIsWeatherPlan(const Corvane8::Ref<Corvane8::Plan>& plan, bool bValue);

/// Creates the custom date fields of the weather data in the active plan. Every error is ignored:
/// that a field is there already is one, and so is that no plan is open.
void AddWeatherFields();

/// The date as the active plan's date format shows it: written in that format and read back, so
/// that what the format does not show is lost, as the time of day in each of the fifteen formats.
/// An unknown format code gives the default text of a date and with it keeps the time of day.
/// The text is read in the user's locale, whatever its order of day and month. Raises error 13
/// when the text does not read back and error 91 without an active plan.
platform::Date NormalisePlanDate(platform::Date dtValue);

/// Whole working days in the active plan's units of duration: times HoursPerDay in hours, times
/// four again in quarters, unchanged in any other unit. Raises error 6 on overflow and error 91
/// without an active plan.
std::int32_t DaysToPlanUnits(std::int32_t nDays);

/// The active plan's units of duration as whole working days, rounded to the nearest with a tie
/// going to the even neighbour. Raises error 11 for an HoursPerDay of zero in hours and quarters,
/// error 91 without an active plan.
std::int32_t PlanUnitsToDays(std::int32_t nUnits);

}  // namespace nimbrel::modGlobal
