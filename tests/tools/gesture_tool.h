#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/locale.h"
#include "tests/support/gestures/gesture_script.h"
#include "tests/support/gestures/hands.h"
#include "toolkit/desktop.h"

namespace nimbrel::gestures {

/// Plays a script on the plan file `plan` with these hands, writes the log to `out`, and saves the
/// plan. `open` shows a form on the desktop that it is given; empty for the weather dialog, opened
/// as the program does. Raises cli::CommandError for a file that is no plan or can't be read or
/// written. One run at a time in a process.
void PlayOnPlan(const std::string& plan, std::vector<Gesture> script, Hands& hands,
                const platform::Locale& locale, std::ostream& out,
                const std::function<void(toolkit::Desktop&)>& open = {});

/// Runs the tool with `arguments`, those behind the program's name:
///
///     [--face plain|qt|win32] [--locale NAME] PLAN.nplan SCRIPT
///
/// Opens the weather dialog on the plan as the program does, plays the script, writes the log to
/// `out`, and saves the plan. A workbook that the dialog shows to the user is written beside the
/// plan, as PLAN.nplan.shown.xlsx. Gives the exit code: 0, also where gestures could not be made; 1
/// for a file that is no plan; 2, with a line on `err`, for a wrong command line, a face that was
/// not built, and a line of the script that is no gesture, and then nothing has been played; 3 for
/// a file that cannot be read or written. One run at a time in a process.
int RunGestureTool(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

}  // namespace nimbrel::gestures
