#pragma once

#include "toolkit/desktop.h"

namespace nimbrel::gestures {

/// A picture of the dialog on a plan with weather: what is done before a window is as it is to be
/// seen. "%PLAN%" in the script stands for the plan file.
struct Shot {
  const char* name;
  const char* script;
  bool converts = false;      // opens the dialog that converts a calendar, which nothing else opens
  bool has_workbook = false;  // needs the stand-in for Excel
};

inline constexpr Shot kShots[] = {
    {"page-1-weather-events", "row lstWeather 3\n"},
    {"page-2-weather-windows", "tab 1\nrow lstWW 1\n"},
    {"page-3-assign-to-tasks",
     "tab 2\nnode tvTasks \"DM-040 - Lift out old truss, span A\"\nkey tvTasks Up\n"
     "key tvTasks Down\n"},
    {"new-calendar", "click cmdAddWeatherCal\ntype txtCalName \"STORM\"\n"},
    {"new-periods", "click cmdAddNewPeriods\n"},
    {"new-window-calendar", "tab 1\nclick cmdAddWWCal\n"},
    {"import",
     "click cmdExport\nfile \"%PLAN%.shown.xlsx\"\nclick cmdImportWeather\n"
     "row lstCals 1\n",
     false, true},
    {"convert-calendar", "type txtEnd \"1/Jan/2028\"\n", true},
    {"weather-off", "click chkIsWeather\n"}};  // the last, since the plan stays so

struct BoxShot {
  const char* name;
  const char* text;
  toolkit::Buttons buttons;
};

inline constexpr BoxShot kBoxShots[] = {
    {"box-ok", "32/Foo/2027 is not a valid date!", toolkit::Buttons::kOk},
    {"box-yes-no", "This will remove all Weather Modeling data.\r\nWould you like to continue?",
     toolkit::Buttons::kYesNo},
    {"box-error", "Object variable or With block variable not set", toolkit::Buttons::kOk}};

}  // namespace nimbrel::gestures
