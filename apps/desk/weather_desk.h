#pragma once

#include <functional>
#include <string>

#include "desk/opened_file.h"
#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "nimbrel/command_error.h"
#include "nimbrel/console.h"
#include "toolkit/desktop.h"

namespace nimbrel::desk {

/// Lets the user edit the weather of a plan file in the weather dialog, and saves the plan when it
/// is closed.
///
/// - What cannot be saved is not lost: the user is told why, and may save under another name, go
///   back to the dialog if it is the plan that is at fault, or give the changes up in words.
/// - A file that another program has changed meanwhile is overwritten only if the user says so.
/// - Where nothing was changed nothing is saved.
class WeatherDesk {
 public:
  /// `show_dialog` opens the weather dialog for the active plan and returns when it is closed.
  /// `desktop` and `console` must outlive the desk.
  WeatherDesk(toolkit::Desktop& desktop, engine::HostOptions options,
              std::function<void()> show_dialog, cli::Console& console);

  /// Opens the plan, shows the dialog and saves. The active plan of the process is this one for as
  /// long. Gives kDone also where there was nothing to save, and kFileTrouble where the user gave
  /// the changes up. Raises cli::CommandError where the plan cannot be opened or shown.
  cli::ExitCode Run(const std::string& path);

 private:
  enum class Outcome { kSaved, kGivenUp, kBackToDialog };

  void ShowDialog(const std::string& path);
  Outcome Save(const engine::Plan& plan, const OpenedFile& file);
  /// Another name to save under; empty if the user gives the changes up.
  std::string PickName(const OpenedFile& file);
  bool Ask(const std::string& question);
  void Tell(const std::string& text);

  toolkit::Desktop& desktop_;
  engine::HostOptions options_;
  std::function<void()> show_dialog_;
  cli::Console& console_;
};

}  // namespace nimbrel::desk
