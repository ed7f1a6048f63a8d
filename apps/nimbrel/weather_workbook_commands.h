#pragma once

#include <CLI/CLI.hpp>

#include "nimbrel/commands.h"
#include "nimbrel/console.h"

namespace nimbrel::cli {

// Each of these declares a command under "weather", as the functions of commands.h do.

void AddWeatherExportCommand(CLI::App& weather, Console& console, Action& action);
void AddWeatherImportCommand(CLI::App& weather, Console& console, Action& action);

}  // namespace nimbrel::cli
