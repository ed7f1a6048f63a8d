#pragma once

#include <functional>
#include <string>
#include <vector>

#include "nimbrel/command_error.h"
#include "nimbrel/console.h"

namespace nimbrel::desk {

/// The desktop program but for its windows: reads the command line, hands the one plan to
/// `edit_weather`, and reports on one line what that raises. Gives the exit code, as the command
/// line's programs have it.
int RunDeskProgram(const std::vector<std::string>& arguments, cli::Console& console,
                   const std::function<cli::ExitCode(const std::string& path)>& edit_weather);

}  // namespace nimbrel::desk
