#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace nimbrel::gestures {

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
