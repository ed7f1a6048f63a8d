#include <memory>
#include <string>

#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/ranges.h"

namespace nimbrel::cli {
namespace {

struct Options {
  std::string plan;
  std::string percent;  // of --default
  std::string file;     // of --apply
  std::string shape = "triangular";
};

ExitCode Ranges(const Options& options, Console& console) {
  if (options.percent.empty() && options.file.empty()) {
    throw BadCommandLine("ranges: expected --default or --apply, found neither");
  }
  const engine::Shape shape = *ParseShape(options.shape);
  PercentRange percent;
  if (!options.percent.empty()) {
    percent = ParsePercentRange(options.percent);  // before any file is touched
  }
  PlanDocument document = OpenPlanToChange(options.plan);
  const std::int64_t count = options.file.empty()
                                 ? ApplyDefaultRanges(document.plan, percent, shape)
                                 : ApplyRangesCsv(document.plan, options.file, shape);
  console.out << options.plan << ": ranges of " << Counted(count, "task", "tasks") << '\n';
  FlushOutput(console);
  SaveChanges(document.plan, document);
  return ExitCode::kDone;
}

}  // namespace

void AddRangesCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("ranges", "Give the tasks of a plan three-point estimates");
  command->add_option("PLAN", options->plan, "The .nplan to change")->required();
  CLI::Option* percent =
      command
          ->add_option("--default", options->percent,
                       "Three points of every incomplete ordinary task, as percentages of its "
                       "remaining duration")
          ->type_name("MIN,LIKELY,MAX");
  command
      ->add_option("--apply", options->file,
                   "Three points by task, in days: a CSV with the columns id,min,likely,max and, "
                   "if wanted, shape")
      ->type_name("FILE.csv")
      ->excludes(percent);
  command
      ->add_option("--shape", options->shape,
                   "Distribution where the CSV names none: triangular, pert or uniform. Default: "
                   "triangular")
      ->type_name("SHAPE")
      ->check(OneOf({"triangular", "pert", "uniform"}));
  command->footer(
      "Examples:\n"
      "  nimbrel ranges bridge.nplan --default 90,100,130 --shape pert\n"
      "  nimbrel ranges bridge.nplan --apply ranges.csv");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Ranges(*options, console); };
  });
}

}  // namespace nimbrel::cli
