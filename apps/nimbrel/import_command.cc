#include <fmt/format.h>

#include <filesystem>
#include <memory>
#include <string>

#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/plan_facts.h"

namespace nimbrel::cli {
namespace {

struct Options {
  std::string file;
  std::string output;  // empty: beside the file
  ReadingChoice reading;
};

/// Where the plan goes. Without -o an existing file is never replaced.
std::string OutputPath(const Options& options) {
  if (!options.output.empty()) {
    return options.output;
  }
  const std::filesystem::path path =
      std::filesystem::path(options.file).replace_extension(".nplan");
  if (std::filesystem::exists(path)) {
    throw FileTrouble(path.string() + ": is there already; name it with -o to have it replaced");
  }
  return path.string();
}

ExitCode Import(const Options& options, Console& console) {
  const PlanDocument document = OpenPlan(options.file, options.reading);
  if (document.is_own_format) {
    throw BadInput(options.file + ": expected an XER or MSPDI XML file, found a .nplan");
  }
  const std::string output = OutputPath(options);
  console.out << TitleOf(document.plan) << ": " << CountsText(CountPlan(document.plan)) << '\n';
  for (const std::string& warning : document.warnings) {
    console.out << "  warning: " << warning << '\n';
  }
  console.out << "To " << output << '\n';
  // Before the plan is saved: after it nothing may fail any more.
  FlushOutput(console);
  SaveDocument(document.plan, output);
  return ExitCode::kDone;
}

}  // namespace

void AddImportCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("import", "Make a .nplan from an XER or MSPDI XML file");
  command->add_option("FILE", options->file, "The XER or MSPDI XML file")->required();
  command
      ->add_option("-o,--output", options->output,
                   "The plan to write; replaced if it is there. Default: FILE with the ending "
                   ".nplan, which must not be there yet")
      ->type_name("PLAN.nplan");
  AddReadingOptions(*command, options->reading);
  command->footer(
      "What the file holds and a plan cannot hold is listed, with a count.\n"
      "\n"
      "Examples:\n"
      "  nimbrel import bridge.xer\n"
      "  nimbrel import all-projects.xer --project BRIDGE -o bridge.nplan\n"
      "  nimbrel import shutdown.xml --time-unit hours");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Import(*options, console); };
  });
}

}  // namespace nimbrel::cli
