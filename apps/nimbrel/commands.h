#pragma once

#include <CLI/CLI.hpp>
#include <functional>

#include "nimbrel/command_error.h"
#include "nimbrel/console.h"

namespace nimbrel::cli {

/// What is to be done once the whole command line has been found to be right.
using Action = std::function<ExitCode()>;

// Each of these declares one command with its options on `app`. When that command is given, it puts
// what is to be done into `action`. The console must live until that has run.

void AddImportCommand(CLI::App& app, Console& console, Action& action);
void AddInfoCommand(CLI::App& app, Console& console, Action& action);
void AddScheduleCommand(CLI::App& app, Console& console, Action& action);
void AddRangesCommand(CLI::App& app, Console& console, Action& action);
void AddWeatherCommand(CLI::App& app, Console& console, Action& action);
void AddRunCommand(CLI::App& app, Console& console, Action& action);
void AddExplainCommand(CLI::App& app, Console& console, Action& action);
void AddCorrelateCommand(CLI::App& app, Console& console, Action& action);
void AddCheckCommand(CLI::App& app, Console& console, Action& action);
void AddDialogCommand(CLI::App& app, Console& console, Action& action);

}  // namespace nimbrel::cli
