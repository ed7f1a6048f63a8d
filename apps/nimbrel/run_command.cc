#include <fmt/format.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/risk/iteration_story.h"
#include "engine/risk/run.h"
#include "engine/risk/run_document_maker.h"
#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/interrupt.h"
#include "nimbrel/output_file.h"
#include "nimbrel/output_folder.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/progress_bar.h"
#include "nimbrel/report/page.h"
#include "nimbrel/run_inputs.h"
#include "nimbrel/run_output.h"
#include "nimbrel/run_setup.h"
#include "nimbrel/run_tables.h"
#include "nimbrel/warnings.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

using engine::Plan;

struct Options : RunSetup {
  bool compare = false;
  bool attribute = false;
  std::vector<std::string> milestones;
  std::string json;
  std::string samples;
  std::string csv;
  std::string report;
  std::vector<std::string> tasks;
  bool quiet = false;
};

engine::RunOptions OptionsFor(const Options& options, const Plan& plan) {
  engine::RunOptions run = ToRunOptions(options);
  run.asked = TasksNamed(plan, "--tasks", options.tasks);
  run.targets = TasksNamed(plan, "--milestone", options.milestones);
  run.attribute = options.attribute;
  return run;
}

/// The options on which the results depend.
engine::InputTable OptionsTable(const Options& options, const Plan& plan) {
  const auto yes = [](bool is_on) { return std::string(is_on ? "yes" : "no"); };
  const std::string weather = !options.weather_file.empty() ? "from a file"
                              : IsWeatherPlan(plan)         ? "that of the plan"
                                                            : "none: the plan has none";
  return {"Options",
          {"option", "value"},
          {{"--iterations", std::to_string(options.iterations)},
           {"--seed", std::to_string(options.seed)},
           {"--sampling", options.sampling},
           {"--weather", weather},
           {"--no-weather", yes(options.no_weather)},
           {"--compare", yes(options.compare)},
           {"--attribute", yes(options.attribute)},
           {"--until", options.until > 0 ? fmt::format("{:g}", options.until) : "no"},
           {"--milestone", options.milestones.empty()
                               ? "none"
                               : fmt::format("{}", fmt::join(options.milestones, ", "))}}};
}

RunReport Compute(const Options& options, const Plan& plan, const engine::RunOptions& run,
                  Console& console) {
  const InterruptWatch interrupt;
  ProgressBar bar(console, SteadySeconds);
  RunReport report;
  report.weather = HasWeather(options, plan);
  report.compared = options.compare;
  engine::RunWiring wiring = MakeRunWiring(report.weather);
  wiring.cancelled = [&interrupt] { return interrupt.Raised(); };
  if (!options.quiet) {
    wiring.progress = [&bar](std::int32_t done, std::int32_t total) { bar.Show(done, total); };
  }
  if (options.compare) {
    report.results = engine::RunWithAndWithout(plan, run, wiring);
  } else {
    report.results.with_weather = engine::Run(plan, run, wiring);
  }
  engine::DocumentParts parts{.run = report.run(), .weather = report.weather};
  parts.compared = options.compare ? &report.results : nullptr;
  engine::IterationStory story;
  const bool writes_details =
      !options.json.empty() || !options.csv.empty() || !options.report.empty();
  if (writes_details && report.run().iterations() > 0 && !IsStopped(report)) {
    wiring.progress = nullptr;
    story = engine::TellIteration(plan, run, wiring, engine::IterationNearest(report.run(), 80));
    parts.p80_story = &story;
  }
  report.document = engine::MakeRunDocument(plan, parts);
  report.document.chain.options = IterationOptions(options);
  report.document.inputs = InputTables(plan, report.weather);
  report.document.inputs.insert(report.document.inputs.begin(), OptionsTable(options, plan));
  return report;
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
    RequireOtherFile("--csv", options.csv, input);
    RequireOtherFile("--report", options.report, input);
  }
  const std::pair<const char*, const std::string&> outputs[] = {{"--json", options.json},
                                                                {"--samples", options.samples},
                                                                {"--report", options.report},
                                                                {"--csv", options.csv}};
  for (std::size_t i = 0; i < std::size(outputs); ++i) {
    for (std::size_t j = i + 1; j < std::size(outputs); ++j) {
      if (IsSamePlace(outputs[i].second, outputs[j].second)) {
        throw BadCommandLine(fmt::format("{} and {}: expected two different places, found \"{}\"",
                                         outputs[i].first, outputs[j].first, outputs[j].second));
      }
    }
  }
}

std::vector<std::string> CsvNames() {
  std::vector<std::string> names;
  for (const char* table : kTableNames) {
    names.push_back(std::string(table) + ".csv");
  }
  return names;
}

PendingFolder CsvFolder(const Options& options, const RunReport& report) {
  PendingFolder::Files files;
  for (const ResultTable& table : TablesOf(report.document)) {
    files.emplace_back(table.name + ".csv", TableCsv(table));
  }
  return {options.csv, files, CsvNames()};
}

/// Whether results go anywhere but to the text for people.
bool WritesData(const Options& options) {
  return !options.json.empty() || !options.samples.empty() || !options.csv.empty() ||
         !options.report.empty();
}

ExitCode RunPlan(const Options& options, Console& console) {
  RequireOutputsApart(options);
  const PlanDocument document = OpenForRun(options);
  const Plan& plan = document.plan;
  const engine::RunOptions run = OptionsFor(options, plan);
  RunReport report;
  NamingThePlan(options, [&] { report = Compute(options, plan, run, console); });
  for (std::string& warning : CollectWarnings(options, document)) {
    report.document.warnings.push_back(std::move(warning));
  }

  const bool stopped = IsStopped(report);
  std::vector<PendingOutput> files;
  std::vector<PendingFolder> folders;
  if (!stopped) {  // what a stopped run has found depends on when it was stopped
    const Json json = options.json.empty() && options.report.empty() ? Json() : RunJson(report);
    if (!options.json.empty()) {
      files.emplace_back(console, options.json, JsonText(json));
    }
    if (!options.report.empty()) {
      files.emplace_back(console, options.report, ReportPage(json));
    }
    if (!options.samples.empty()) {
      files.emplace_back(console, options.samples, RunSamplesCsv(plan, report));
    }
    if (!options.csv.empty()) {
      folders.push_back(CsvFolder(options, report));
    }
  }
  const bool data_to_output =
      options.json == "-" || options.samples == "-" || options.report == "-";
  if (!data_to_output || stopped) {
    // Whoever reads data from standard output finds data there, or nothing.
    std::ostream& out = data_to_output ? console.err : console.out;
    out << RunText(plan, report, run.asked, !options.quiet, console.terminal);
    FlushOutput(console);
  }
  if (stopped && WritesData(options)) {
    console.err << "nimbrel: stopped: no results were written, and no file has changed\n";
  }
  for (PendingFolder& folder : folders) {
    folder.Commit();
  }
  for (PendingOutput& file : files) {
    file.Commit();
  }
  return stopped ? ExitCode::kStopped : ExitCode::kDone;
}

void DeclareRun(CLI::App& command, Options& options) {
  CLI::Option* without = nullptr;
  AddRunSetup(command, options, without);
  command
      .add_flag("--compare", options.compare,
                "Run the same samples with and without weather, and tell both")
      ->excludes(without);
  command
      .add_flag("--attribute", options.attribute,
                "Schedule each iteration with calendars left out too, and tell what each costs and "
                "where its days go")
      ->excludes(without);
  command
      .add_option("--milestone", options.milestones,
                  "IDs of milestones or tasks whose drivers are told, beside the finish's")
      ->type_name("ID,ID...")
      ->delimiter(',');
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
      .add_option("--csv", options.csv,
                  "Write all tables of the results as CSV files into this folder")
      ->type_name("FOLDER");
  command
      .add_option("--report", options.report,
                  "Write a report with charts as one HTML file that needs no network; \"-\" is "
                  "standard output, in place of the text")
      ->type_name("FILE.html");
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
  DeclareRun(*command, *options);
  DeclareOutput(*command, *options);
  command->footer(
      "The same plan, options and seed give the same results. Ctrl-C ends the run; what was done\n"
      "by then is told, but no file is written.\n"
      "\n"
      "Examples:\n"
      "  nimbrel run bridge.nplan --compare\n"
      "  nimbrel run bridge.xer --weather weather.json --iterations 5000 --seed 7\n"
      "  nimbrel run bridge.nplan --sampling lhs --until 3 --iterations 20000\n"
      "  nimbrel run bridge.nplan --attribute --milestone MS080 --csv tables\n"
      "  nimbrel run bridge.nplan --attribute --compare --report report.html\n"
      "  nimbrel run bridge.nplan --json - --quiet\n"
      "  nimbrel run bridge.nplan --samples samples.csv --tasks MS080,MS090");
  command->callback([options, &console, &action] {
    action = [options, &console] { return RunPlan(*options, console); };
  });
}

}  // namespace nimbrel::cli
