#include "nimbrel/program.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include "engine/formats/format_error.h"
#include "nimbrel/command_error.h"
#include "nimbrel/commands.h"
#include "nimbrel/help_format.h"
#include "nimbrel/output_file.h"

namespace nimbrel::cli {
namespace {

constexpr const char* kDescription =
    "Nimbrel: what the weather can do to a project plan.\n"
    "\n"
    "A PLAN is a .nplan file, or an XER or MSPDI XML file that is read on the fly. Commands\n"
    "that change a plan need a .nplan, which 'nimbrel import' makes.";

constexpr const char* kFooter =
    "Examples:\n"
    "  nimbrel import bridge.xer -o bridge.nplan\n"
    "  nimbrel ranges bridge.nplan --default 90,100,130\n"
    "  nimbrel weather set bridge.nplan weather.json\n"
    "  nimbrel run bridge.nplan --compare\n"
    "\n"
    "'nimbrel COMMAND --help' tells a command's options.\n"
    "\n"
    "Exit codes: 0 done; 1 the input is bad; 2 the command line is wrong; 3 a file cannot be\n"
    "read or written; 4 an error inside the program; 130 stopped by the user.";

/// Texts of files and arguments may hold anything; a message is one line.
std::string OneLine(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
  return text;
}

int Fail(Console& console, ExitCode code, const std::string& message) {
  console.err << "nimbrel: " << OneLine(message) << '\n';
  console.err.flush();
  return static_cast<int>(code);
}

/// The command that is being asked for, with the commands above it: "nimbrel weather set".
std::string CommandName(const CLI::App& app) {
  const auto chosen = app.get_subcommands();
  return app.get_name() + (chosen.empty() ? "" : " " + CommandName(*chosen.front()));
}

/// Raises CommandError where a command is missing or unknown, with those that there are.
void RequireCommand(const CLI::App& app, const std::vector<std::string>& arguments,
                    std::size_t at) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  const bool is_option = at < arguments.size() && app.get_option_no_throw(arguments[at]) != nullptr;
  if (names.empty() || is_option) {
    return;
  }
  const std::string expected = fmt::format(
      "{}expected one of {}", at > 0 ? app.get_name() + ": " : "", fmt::join(names, ", "));
  if (at >= arguments.size()) {
    throw BadCommandLine(expected + ", found nothing");
  }
  const auto found = std::find(names.begin(), names.end(), arguments[at]);
  if (found == names.end()) {
    throw BadCommandLine(fmt::format("{}, found \"{}\"", expected, arguments[at]));
  }
  RequireCommand(*app.get_subcommand(*found), arguments, at + 1);
}

int Run(const std::vector<std::string>& arguments, Console& console) {
  CLI::App app(kDescription, "nimbrel");
  app.footer(kFooter);
  app.set_version_flag("--version", "nimbrel " NIMBREL_VERSION, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  app.formatter(std::make_shared<HelpFormat>());
  app.require_subcommand(1);

  Action action;
  AddImportCommand(app, console, action);
  AddInfoCommand(app, console, action);
  AddScheduleCommand(app, console, action);
  AddRangesCommand(app, console, action);
  AddWeatherCommand(app, console, action);
  AddRunCommand(app, console, action);
  AddExplainCommand(app, console, action);
  AddCorrelateCommand(app, console, action);
  AddCheckCommand(app, console, action);
  AddDialogCommand(app, console, action);

  RequireCommand(app, arguments, 0);
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::Success& asked) {  // for the help or the version
    app.exit(asked, console.out, console.err);
    FlushOutput(console);
    return static_cast<int>(ExitCode::kDone);
  } catch (const CLI::ParseError& error) {
    throw BadCommandLine(fmt::format("{} (see '{} --help')", error.what(), CommandName(app)));
  }
  const ExitCode code = action();
  FlushOutput(console);
  return static_cast<int>(code);
}

}  // namespace

int RunProgram(const std::vector<std::string>& arguments, Console& console) {
  try {
    return Run(arguments, console);
  } catch (const CommandError& error) {
    return Fail(console, error.code(), error.what());
  } catch (const engine::FormatError& error) {
    return Fail(console, ExitCode::kBadInput, error.what());
  } catch (const std::system_error& error) {
    return Fail(console, ExitCode::kFileTrouble, error.what());
  } catch (const std::bad_alloc&) {
    return Fail(console, ExitCode::kInternalError, "out of memory");
  } catch (const std::exception& error) {
    return Fail(console, ExitCode::kInternalError, fmt::format("internal error: {}", error.what()));
  }
}

}  // namespace nimbrel::cli
