#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/process_start.h"

namespace nimbrel::platform {

/// Starts a program, found as a shell would find it, with its arguments as a process of its own: in
/// no terminal, with no open file of this process, and adopted by the system, so that none is left
/// to be waited for. `folder` is where it works; where there is no such folder, as the empty one,
/// it works where this process does. Gives 42 if it was started, 2 if it was not found and 5 if it
/// could not be run. `command` must not be empty.
std::int32_t StartDetached(std::vector<std::string> command, const std::string& folder = {});

/// Starts programs by StartDetached.
///
/// A file that can be run is run with the parameters as its one argument, if there are any. Any
/// other file is handed to the system's opener. The working folder is the one asked for, if there
/// is such a folder.
class DetachedProcessStart final : public ProcessStart {
 public:
  /// `programs` has the local program for each file that goes by another name here. `opener` is the
  /// program that opens documents, looked for in PATH if it has no folder.
  explicit DetachedProcessStart(std::map<std::string, std::string> programs = {},
                                std::string opener = "xdg-open");

  /// The verb, the owner and the way to show the window mean nothing here. The result is that of
  /// StartDetached.
  std::int32_t ShellExecute(std::int32_t owner, const std::string& verb, const std::string& file,
                            const std::string& parameters, const std::string& directory,
                            std::int32_t show) override;

 private:
  std::map<std::string, std::string> programs_;
  std::string opener_;
};

}  // namespace nimbrel::platform
