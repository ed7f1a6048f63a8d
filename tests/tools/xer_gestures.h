#pragma once

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "platform/automation.h"
#include "platform/locale.h"
#include "tests/support/gestures/hands.h"
#include "toolkit/desktop.h"

namespace nimbrel::gestures {

/// A plan of an XER file in the embedded host, to play scripts on where there are no plan files.
/// Excel is not there. Reading raises engine::FormatError and std::runtime_error.
class XerStage {
 public:
  explicit XerStage(const std::filesystem::path& xer);

  /// Plays the script of a file; what it leaves in the plan is there for the next one. Raises
  /// ScriptError and std::runtime_error.
  void Play(const std::filesystem::path& script, Hands& hands, const platform::Locale& locale,
            std::ostream& out);
  /// Plays a script that is given as text, on the weather dialog or what `open` shows.
  void PlayText(const std::string& script, Hands& hands, const platform::Locale& locale,
                std::ostream& out, const std::function<void(toolkit::Desktop&)>& open = {});

 private:
  /// Raises error 429, as where a program is not installed.
  class NoServers final : public platform::AutomationServers {
   public:
    platform::Ref<platform::AutomationObject> CreateObject(const std::string& identifier) override;
  };

  engine::Plan plan_;
  NoServers servers_;
};

/// Runs the tool with `arguments`, those behind the program's name:
///
///     [--face plain|win32] [--locale NAME] PLAN.xer SCRIPT...
///
/// Plays the scripts one after the other on the plan and writes their logs to `out`. Gives the exit
/// code: 0, 1 for a file that is no plan, 2 for a wrong command line and a line that is no gesture,
/// 3 for a file that cannot be read; all but 0 with a line on `err`. One run at a time in a
/// process.
int RunXerGestureTool(const std::vector<std::string>& arguments, std::ostream& out,
                      std::ostream& err);

}  // namespace nimbrel::gestures
