#include <fmt/format.h>

#include <memory>
#include <string>

#include "engine/risk/iteration_story.h"
#include "engine/risk/run.h"
#include "engine/risk/run_document_maker.h"
#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/explain_output.h"
#include "nimbrel/interrupt.h"
#include "nimbrel/output_file.h"
#include "nimbrel/progress_bar.h"
#include "nimbrel/run_setup.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

struct Options : RunSetup {
  std::int32_t iteration = 0;  // 0: none was named
  int percentile = 0;          // likewise
  bool json = false;
};

/// The number of the iteration that is to be told; 0 where the user ended the run that it takes to
/// find it. `iterations` becomes the number that the run has, where that took a run.
std::int32_t FindIteration(const Options& options, const engine::Plan& plan,
                           const engine::RunOptions& run, engine::RunWiring wiring,
                           std::int32_t& iterations, Console& console) {
  const auto require_within = [&options](std::int32_t iterations) {
    if (options.iteration > iterations) {
      throw BadCommandLine(
          fmt::format("--iteration: expected 1 to {}, the run's iterations, found {}", iterations,
                      options.iteration));
    }
  };
  require_within(options.iterations);
  if (options.iteration > 0 && options.until == 0) {
    return options.iteration;
  }
  const InterruptWatch interrupt;
  ProgressBar bar(console, SteadySeconds);
  wiring.cancelled = [&interrupt] { return interrupt.Raised(); };
  wiring.progress = [&bar](std::int32_t done, std::int32_t total) { bar.Show(done, total); };
  const engine::RunResult result = engine::RunForFinish(plan, run, wiring);
  if (result.stopped) {
    return 0;
  }
  iterations = result.iterations();
  require_within(iterations);
  return options.iteration > 0 ? options.iteration
                               : engine::IterationNearest(result, options.percentile);
}

ExitCode Explain(const Options& options, Console& console) {
  if (options.iteration == 0 && options.percentile == 0) {
    throw BadCommandLine("explain: expected --iteration or --percentile, found neither");
  }
  const PlanDocument document = OpenForRun(options);
  const engine::Plan& plan = document.plan;
  const engine::RunOptions run = ToRunOptions(options);
  const engine::RunWiring wiring = MakeRunWiring(HasWeather(options, plan));
  std::int32_t iteration = 0;
  std::int32_t iterations = options.iterations;
  engine::IterationStory story;
  NamingThePlan(options, [&] {
    iteration = FindIteration(options, plan, run, wiring, iterations, console);
    if (iteration > 0) {
      story = engine::TellIteration(plan, run, wiring, iteration);
    }
  });
  if (iteration == 0) {
    return ExitCode::kStopped;
  }
  const ExplainedRun explained{options.seed, iterations, options.percentile};
  if (options.json) {
    ShowWarnings(document, console);
    console.out << StoryJson(plan, story, explained);
  } else {
    console.out << StoryText(plan, story, explained);
  }
  FlushOutput(console);
  return ExitCode::kDone;
}

}  // namespace

void AddExplainCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("explain", "Tell what happened in one iteration of a run");
  CLI::Option* without = nullptr;
  AddRunSetup(*command, *options, without);
  CLI::Option* iteration =
      command->add_option("--iteration", options->iteration, "The iteration's number, from 1 on")
          ->type_name("K")
          ->check(WholeNumber(1, engine::kMaxIterations));
  command
      ->add_option("--percentile", options->percentile,
                   "The iteration whose finish is this percentile of the run's")
      ->type_name("P")
      ->check(WholeNumber(1, 100))
      ->excludes(iteration);
  command->add_flag("--json", options->json, "As JSON");
  command->footer(
      "The iteration is made again from the run's seed, and is the same: give the options that "
      "the\n"
      "run had. With Monte Carlo sampling the number of iterations makes no difference to a "
      "single\n"
      "one. With --percentile or --until the run is made again too, to see how far it goes.\n"
      "\n"
      "Examples:\n"
      "  nimbrel explain bridge.nplan --percentile 80\n"
      "  nimbrel explain bridge.nplan --percentile 80 --until 3 --iterations 20000\n"
      "  nimbrel explain bridge.nplan --iteration 417 --seed 7 --json");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Explain(*options, console); };
  });
}

}  // namespace nimbrel::cli
