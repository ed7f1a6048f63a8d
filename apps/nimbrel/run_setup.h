#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/risk/run.h"
#include "nimbrel/command_line.h"
#include "nimbrel/plan_document.h"

namespace nimbrel::cli {

/// Which run of which plan: what the commands that run or look into a run have in common.
struct RunSetup {
  std::string plan;
  std::string weather_file;
  bool no_weather = false;
  std::int32_t iterations = 1000;
  std::uint64_t seed = 1;
  std::int32_t workers = 0;  // 0: as many as there are processors
  std::string sampling = "mc";
  double until = 0;  // 0: all iterations
  ReadingChoice reading;
};

/// Declares PLAN, --weather, --no-weather, --iterations, --seed, --workers, --sampling, --until and
/// the options of reading. `without` becomes the option --no-weather.
void AddRunSetup(CLI::App& command, RunSetup& setup, CLI::Option*& without);

/// Opens the plan and puts the weather of --weather into it. Raises as these do.
PlanDocument OpenForRun(const RunSetup& setup);

/// Whether the run has weather.
bool HasWeather(const RunSetup& setup, const engine::Plan& plan);

engine::RunOptions ToRunOptions(const RunSetup& setup);

/// The options that a run's iterations depend on, as they are written after `nimbrel explain PLAN
/// --iteration K`. A weather file is called WEATHER.json, since plans and files have other places
/// elsewhere.
std::string IterationOptions(const RunSetup& setup);

/// Does something with a run of the plan; errors of the plan are told by its file. Raises
/// CommandError (the input is bad).
void NamingThePlan(const RunSetup& setup, const std::function<void()>& step);

/// The tasks with some IDs, each once. Raises CommandError (the command line is wrong), which names
/// `option`, for IDs that no task with dates has.
std::vector<engine::Uid> TasksNamed(const engine::Plan& plan, const std::string& option,
                                    const std::vector<std::string>& ids);

}  // namespace nimbrel::cli
