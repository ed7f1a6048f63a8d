#pragma once

#include <string>
#include <vector>

#include "nimbrel/console.h"

namespace nimbrel::cli {

/// Runs the program: picks the command by the arguments (without the program's own name), runs it
/// and gives the exit code. Nothing is raised: what goes wrong is one line on `console.err`.
int RunProgram(const std::vector<std::string>& arguments, Console& console);

}  // namespace nimbrel::cli
