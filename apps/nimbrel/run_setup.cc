#include "nimbrel/run_setup.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "engine/schedule/scheduler.h"
#include "nimbrel/command_error.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/wiring.h"
#include "platform/runtime_error.h"

namespace nimbrel::cli {
namespace {

/// Accepts a number of days above 0.
CLI::Validator PositiveDays() {
  return {[](const std::string& text) {
            char* end = nullptr;
            const double days = std::strtod(text.c_str(), &end);
            const bool is_number = !text.empty() && *end == '\0';
            return is_number && std::isfinite(days) && days > 0
                       ? std::string()
                       : "expected a number of days above 0, found \"" + text + "\"";
          },
          ""};
}

/// A word as a POSIX shell takes it for one.
std::string ShellWord(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) {
    quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return quoted + "'";
}

}  // namespace

void AddRunSetup(CLI::App& command, RunSetup& setup, CLI::Option*& without) {
  command.add_option("PLAN", setup.plan, "The plan: .nplan, XER or MSPDI XML")->required();
  CLI::Option* file =
      command
          .add_option("--weather", setup.weather_file,
                      "Run with this weather in place of the plan's; the plan stays as it is")
          ->type_name("WEATHER.json");
  without =
      command.add_flag("--no-weather", setup.no_weather, "Leave all weather out")->excludes(file);
  command
      .add_option("--iterations", setup.iterations,
                  "How often the plan is sampled and scheduled; "
                  "default 1000")
      ->type_name("N")
      ->check(WholeNumber(1, engine::kMaxIterations));
  command.add_option("--seed", setup.seed, "Start of the random numbers; default 1")
      ->type_name("S")
      ->check(WholeNumber(0, UINT64_MAX));
  command
      .add_option("--workers", setup.workers,
                  "Processes that share the iterations; default as many as there are processors. "
                  "The results do not depend on it")
      ->type_name("N")
      ->check(WholeNumber(1, engine::kMaxWorkers));
  command
      .add_option("--sampling", setup.sampling,
                  "How values are sampled: mc (Monte Carlo) or lhs (Latin hypercube)")
      ->type_name("METHOD")
      ->check(OneOf({"mc", "lhs"}));
  command
      .add_option("--until", setup.until,
                  "The run ends when the 95% interval of the finish's P80 is at most so many days "
                  "wide, which is looked at after 256 iterations for the first time; --iterations "
                  "are the most")
      ->type_name("DAYS")
      ->check(PositiveDays());
  AddReadingOptions(command, setup.reading);
}

PlanDocument OpenForRun(const RunSetup& setup) {
  PlanDocument document = OpenPlan(setup.plan, setup.reading);
  if (!setup.weather_file.empty()) {
    SetWeatherFromFile(document.plan, setup.weather_file);
  }
  return document;
}

bool HasWeather(const RunSetup& setup, const engine::Plan& plan) {
  return !setup.no_weather && IsWeatherPlan(plan);
}

engine::RunOptions ToRunOptions(const RunSetup& setup) {
  engine::RunOptions run;
  run.iterations = setup.iterations;
  run.seed = setup.seed;
  run.workers = setup.workers;
  if (run.workers == 0) {
    const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
    run.workers =
        std::min<std::int32_t>(static_cast<std::int32_t>(processors), engine::kMaxWorkers);
  }
  run.until_days = setup.until;
  run.sampling =
      setup.sampling == "lhs" ? engine::Sampling::kLatinHypercube : engine::Sampling::kMonteCarlo;
  return run;
}

std::string IterationOptions(const RunSetup& setup) {
  std::string options = fmt::format("--seed {} --sampling {} --iterations {}", setup.seed,
                                    setup.sampling, setup.iterations);
  if (setup.until > 0) {
    options += fmt::format(" --until {}", setup.until);
  }
  if (!setup.weather_file.empty()) {
    options += " --weather WEATHER.json";
  }
  if (setup.no_weather) {
    options += " --no-weather";
  }
  if (!setup.reading.project.empty()) {
    options += " --project " + ShellWord(setup.reading.project);
  }
  if (!setup.reading.time_unit.empty()) {
    options += " --time-unit " + setup.reading.time_unit;
  }
  return options;
}

void NamingThePlan(const RunSetup& setup, const std::function<void()>& step) {
  try {
    step();
  } catch (const engine::SchedulingError& error) {
    throw BadInput(setup.plan + ": " + error.what());
  } catch (const engine::SamplingError& error) {
    throw BadInput(setup.plan + ": " + error.what());
  } catch (const platform::RuntimeError& error) {
    // The add-in stumbles over weather data that are not as it writes them.
    throw BadInput(fmt::format("{}: the weather cannot be run: {}", setup.plan, error.what()));
  }
}

std::vector<engine::Uid> TasksNamed(const engine::Plan& plan, const std::string& option,
                                    const std::vector<std::string>& ids) {
  std::vector<engine::Uid> tasks;
  for (const std::string& id : ids) {
    const engine::Task* task = plan.FindTask(id);
    if (task == nullptr || CarriesWeather(*task)) {
      throw BadCommandLine(
          fmt::format("{}: expected IDs of the plan's tasks, found \"{}\"", option, id));
    }
    if (std::find(tasks.begin(), tasks.end(), task->uid) == tasks.end()) {
      tasks.push_back(task->uid);
    }
  }
  return tasks;
}

}  // namespace nimbrel::cli
