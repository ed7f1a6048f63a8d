#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "engine/risk/correlation.h"
#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/correlations.h"
#include "nimbrel/input_text.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

struct Options {
  std::string plan;
  std::string file;
};

ExitCode Correlate(const Options& options, Console& console) {
  PlanDocument document = OpenPlanToChange(options.plan);
  engine::Plan& plan = document.plan;
  plan.correlations = ParseCorrelations(ReadTextFile(options.file), options.file, plan);
  engine::Correlation correlation;
  try {
    correlation = engine::MakeCorrelation(plan, MakeRunWiring(true).together);
  } catch (const engine::SamplingError& error) {
    throw BadInput(options.file + ": " + error.what());
  }
  const auto weather =
      std::count_if(plan.correlations.begin(), plan.correlations.end(),
                    [](const engine::CorrelationGroup& group) { return !group.calendars.empty(); });
  const auto durations = static_cast<std::int64_t>(plan.correlations.size()) - weather;
  console.out << fmt::format("{}: {} and {}\n", options.plan,
                             Counted(durations, "group of durations", "groups of durations"),
                             Counted(weather, "of calendars", "of calendars"));
  for (const std::string& note : correlation.notes) {
    console.out << note << '\n';
  }
  FlushOutput(console);
  SaveChanges(plan, document);
  return ExitCode::kDone;
}

}  // namespace

void AddCorrelateCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("correlate", "Say which durations and which weather go together");
  command->add_option("PLAN", options->plan, "The .nplan to change")->required();
  command
      ->add_option("--apply", options->file,
                   "Put the groups of this file in place of the plan's; {} takes them all out")
      ->type_name("FILE.json")
      ->required();
  command->footer(
      "A coefficient is the rank correlation of every two members of a group. In weather, periods\n"
      "of different calendars go together where their spans overlap: whether they occur, and how\n"
      "long they are.\n"
      "\n"
      "Examples:\n"
      "  nimbrel correlate bridge.nplan --apply correlation.json\n"
      "\n"
      "where correlation.json holds\n"
      "  { \"durations\": [ { \"match\": \"*piling*\", \"coefficient\": 0.6 } ],\n"
      "    \"weather\": [ { \"calendars\": [\"NORTH SEA\", \"WEST SEA\"], \"coefficient\": 0.8 } ] "
      "}");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Correlate(*options, console); };
  });
}

}  // namespace nimbrel::cli
