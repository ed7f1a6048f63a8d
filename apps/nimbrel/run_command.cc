#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "engine/risk/run.h"
#include "engine/schedule/scheduler.h"
#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/interrupt.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/progress_bar.h"
#include "nimbrel/run_output.h"
#include "nimbrel/warnings.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/wiring.h"
#include "platform/runtime_error.h"

namespace nimbrel::cli {
namespace {

using engine::Plan;
using engine::Task;

struct Options {
  std::string plan;
  std::string weather_file;
  std::int32_t iterations = 1000;
  std::uint64_t seed = 1;
  std::int32_t workers = 0;  // 0: as many as there are processors
  bool no_weather = false;
  bool compare = false;
  std::string sampling = "mc";
  std::string json;
  std::string samples;
  std::vector<std::string> tasks;
  bool quiet = false;
  ReadingChoice reading;
};

std::int32_t WorkersFor(const Options& options) {
  if (options.workers > 0) {
    return options.workers;
  }
  const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
  return std::min<std::int32_t>(static_cast<std::int32_t>(processors), engine::kMaxWorkers);
}

/// The tasks named on the command line, each once.
std::vector<engine::Uid> AskedTasks(const Plan& plan, const std::vector<std::string>& ids) {
  std::vector<engine::Uid> asked;
  for (const std::string& id : ids) {
    const Task* task = plan.FindTask(id);
    if (task == nullptr || CarriesWeather(*task)) {
      throw BadCommandLine(
          fmt::format("--tasks: expected IDs of the plan's tasks, found \"{}\"", id));
    }
    if (std::find(asked.begin(), asked.end(), task->uid) == asked.end()) {
      asked.push_back(task->uid);
    }
  }
  return asked;
}

engine::RunOptions ToRunOptions(const Options& options, const Plan& plan) {
  engine::RunOptions run;
  run.iterations = options.iterations;
  run.seed = options.seed;
  run.workers = WorkersFor(options);
  run.asked = AskedTasks(plan, options.tasks);
  return run;
}

RunReport Compute(const Options& options, const Plan& plan, const engine::RunOptions& run,
                  Console& console) {
  const InterruptWatch interrupt;
  ProgressBar bar(console, SteadySeconds);
  RunReport report;
  report.weather = !options.no_weather && IsWeatherPlan(plan);
  engine::RunWiring wiring = MakeRunWiring(report.weather);
  wiring.cancelled = [&interrupt] { return interrupt.Raised(); };
  if (!options.quiet) {
    wiring.progress = [&bar](std::int32_t done, std::int32_t total) { bar.Show(done, total); };
  }
  if (!options.compare) {
    report.main = engine::Run(plan, run, wiring);
    return report;
  }
  engine::ComparedResult both = engine::RunWithAndWithout(plan, run, wiring);
  report.compared = true;
  report.main = std::move(both.with_weather);
  report.without_weather = std::move(both.without_weather);
  report.delay_minutes = std::move(both.delay_minutes);
  report.delay = both.delay;
  return report;
}

/// Runs, and tells errors of the plan by its file.
RunReport ComputeNamed(const Options& options, const Plan& plan, const engine::RunOptions& run,
                       Console& console) {
  try {
    return Compute(options, plan, run, console);
  } catch (const engine::SchedulingError& error) {
    throw BadInput(options.plan + ": " + error.what());
  } catch (const platform::RuntimeError& error) {
    // The add-in stumbles over weather data that are not as it writes them.
    throw BadInput(fmt::format("{}: the weather cannot be run: {}", options.plan, error.what()));
  }
}

std::vector<std::string> CollectWarnings(const Options& options, const PlanDocument& document) {
  std::vector<std::string> warnings = document.warnings;
  if (options.no_weather) {
    return warnings;
  }
  if (!IsWeatherPlan(document.plan)) {
    warnings.emplace_back("The plan is no weather plan: it ran without weather.");
  }
  for (std::string& warning : WeatherWarnings(document.plan)) {
    warnings.push_back(std::move(warning));
  }
  return warnings;
}

/// The outputs must be able to stand side by side, and beside the files that are read.
void RequireOutputsApart(const Options& options) {
  for (const std::string& input : {options.plan, options.weather_file}) {
    RequireOtherFile("--json", options.json, input);
    RequireOtherFile("--samples", options.samples, input);
  }
  if (!options.json.empty() && options.json == options.samples) {
    throw BadCommandLine("--json and --samples: expected two different files, found \"" +
                         options.json + "\" twice");
  }
}

ExitCode RunPlan(const Options& options, Console& console) {
  RequireOutputsApart(options);
  PlanDocument document = OpenPlan(options.plan, options.reading);
  if (!options.weather_file.empty()) {
    SetWeatherFromFile(document.plan, options.weather_file);
  }
  const Plan& plan = document.plan;
  const engine::RunOptions run = ToRunOptions(options, plan);
  RunReport report = ComputeNamed(options, plan, run, console);
  report.warnings = CollectWarnings(options, document);

  const bool stopped = IsStopped(report);
  std::vector<PendingOutput> files;
  if (!stopped) {  // what a stopped run has found depends on when it was stopped
    if (!options.json.empty()) {
      files.emplace_back(console, options.json, RunJson(plan, report));
    }
    if (!options.samples.empty()) {
      files.emplace_back(console, options.samples, RunSamplesCsv(plan, report));
    }
  }
  const bool data_to_output = options.json == "-" || options.samples == "-";
  if (!data_to_output || stopped) {
    // Whoever reads data from standard output finds data there, or nothing.
    std::ostream& out = data_to_output ? console.err : console.out;
    out << RunText(plan, report, run.asked, !options.quiet, console.terminal);
    FlushOutput(console);
  }
  for (PendingOutput& file : files) {
    file.Commit();
  }
  return stopped ? ExitCode::kStopped : ExitCode::kDone;
}

void DeclareRun(CLI::App& command, Options& options) {
  command
      .add_option("--iterations", options.iterations,
                  "How often the plan is sampled and scheduled; "
                  "default 1000")
      ->type_name("N")
      ->check(WholeNumber(1, engine::kMaxIterations));
  command.add_option("--seed", options.seed, "Start of the random numbers; default 1")
      ->type_name("S")
      ->check(WholeNumber(0, UINT64_MAX));
  command
      .add_option("--workers", options.workers,
                  "Processes that share the iterations; default as many as there are processors. "
                  "The results do not depend on it")
      ->type_name("N")
      ->check(WholeNumber(1, engine::kMaxWorkers));
  command.add_option("--sampling", options.sampling, "How durations are sampled: mc (Monte Carlo)")
      ->type_name("METHOD")
      ->check(OneOf({"mc"}));
}

void DeclareWeather(CLI::App& command, Options& options) {
  CLI::Option* file =
      command
          .add_option("--weather", options.weather_file,
                      "Run with this weather in place of the plan's; the plan stays as it is")
          ->type_name("WEATHER.json");
  CLI::Option* without =
      command.add_flag("--no-weather", options.no_weather, "Leave all weather out")->excludes(file);
  command
      .add_flag("--compare", options.compare,
                "Run the same samples with and without weather, and tell both")
      ->excludes(without);
}

void DeclareOutput(CLI::App& command, Options& options) {
  command
      .add_option("--json", options.json,
                  "Write the results as JSON; \"-\" is standard output, in place of the text")
      ->type_name("FILE");
  command
      .add_option("--samples", options.samples,
                  "Write one line an iteration as CSV; \"-\" is standard output, in place of the "
                  "text")
      ->type_name("FILE.csv");
  command
      .add_option("--tasks", options.tasks,
                  "IDs of tasks to list, and to keep one by one in --samples")
      ->type_name("ID,ID...")
      ->delimiter(',');
  command.add_flag("--quiet", options.quiet, "No progress and no chart");
}

}  // namespace

void AddRunCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("run", "Run a risk analysis: when the plan finishes, with its weather");
  command->add_option("PLAN", options->plan, "The plan: .nplan, XER or MSPDI XML")->required();
  DeclareWeather(*command, *options);
  DeclareRun(*command, *options);
  DeclareOutput(*command, *options);
  AddReadingOptions(*command, options->reading);
  command->footer(
      "The same plan, options and seed give the same results. Ctrl-C ends the run; what was done\n"
      "by then is told, but no file is written.\n"
      "\n"
      "Examples:\n"
      "  nimbrel run bridge.nplan --compare\n"
      "  nimbrel run bridge.xer --weather weather.json --iterations 5000 --seed 7\n"
      "  nimbrel run bridge.nplan --json - --quiet\n"
      "  nimbrel run bridge.nplan --samples samples.csv --tasks MS080,MS090");
  command->callback([options, &console, &action] {
    action = [options, &console] { return RunPlan(*options, console); };
  });
}

}  // namespace nimbrel::cli
