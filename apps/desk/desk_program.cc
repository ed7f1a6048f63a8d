#include "desk/desk_program.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <memory>
#include <new>
#include <system_error>

#include "nimbrel/help_format.h"

namespace nimbrel::desk {
namespace {

using cli::Console;
using cli::ExitCode;

constexpr const char* kDescription =
    "Opens the weather dialog for a plan. The plan, a .nplan, is saved when the dialog is closed.";

int Fail(Console& console, ExitCode code, std::string message) {
  std::replace_if(
      message.begin(), message.end(), [](unsigned char c) { return c < 0x20 || c == 0x7f; }, ' ');
  console.err << "nimbrel: " << message << '\n';
  console.err.flush();
  return static_cast<int>(code);
}

}  // namespace

int RunDeskProgram(const std::vector<std::string>& arguments, Console& console,
                   const std::function<ExitCode(const std::string& path)>& edit_weather) {
  CLI::App app(kDescription, "nimbrel-desk");
  app.formatter(std::make_shared<cli::HelpFormat>());
  app.set_version_flag("--version", "nimbrel " NIMBREL_VERSION, "Print the version");
  app.set_help_flag("-h,--help", "Print this help");
  std::string plan;
  app.add_option("PLAN", plan, "The plan to edit")->required();
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::Success& asked) {  // for the help or the version
    app.exit(asked, console.out, console.err);
    return static_cast<int>(ExitCode::kDone);
  } catch (const CLI::ParseError& error) {
    return Fail(console, ExitCode::kBadCommandLine,
                std::string(error.what()) + " (see 'nimbrel-desk --help')");
  }
  try {
    return static_cast<int>(edit_weather(plan));
  } catch (const cli::CommandError& error) {
    return Fail(console, error.code(), error.what());
  } catch (const std::system_error& error) {
    return Fail(console, ExitCode::kFileTrouble, error.what());
  } catch (const std::bad_alloc&) {
    return Fail(console, ExitCode::kInternalError, "out of memory");
  } catch (const std::exception& error) {
    return Fail(console, ExitCode::kInternalError, std::string("internal error: ") + error.what());
  }
}

}  // namespace nimbrel::desk
