#include "nimbrel/dialog_command.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "nimbrel/commands.h"
#include "nimbrel/output_file.h"
#include "platform/posix/program_folder.h"

namespace nimbrel::cli {

void BecomeDesk(const std::string& folder, const std::string& plan) {
  const std::string program = folder + "/nimbrel-desk";
  // A plan's name may begin with a dash.
  ::execl(program.c_str(), program.c_str(), "--", plan.c_str(), nullptr);
  const int error = errno;
  throw FileTrouble(error == ENOENT
                        ? "the dialog needs the program nimbrel-desk, which is not in " + folder
                        : program + ": cannot be run: " + std::strerror(error));
}

void AddDialogCommand(CLI::App& app, Console& console, Action& action) {
  CLI::App* command = app.add_subcommand(
      "dialog", "Edit a plan's weather in a window. The plan is saved when it is closed");
  auto plan = std::make_shared<std::string>();
  command->add_option("PLAN", *plan, "The .nplan to edit")->required();
  command->footer("Example:\n  nimbrel dialog bridge.nplan");
  command->callback([plan, &console, &action] {
    action = [plan, &console]() -> ExitCode {
      FlushOutput(console);
      BecomeDesk(platform::ProgramFolder(), *plan);
    };
  });
}

}  // namespace nimbrel::cli
