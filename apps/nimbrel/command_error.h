#pragma once

#include <stdexcept>
#include <string>

namespace nimbrel::cli {

/// What the program tells its caller; scripts rely on the numbers.
enum class ExitCode : int {
  kDone = 0,
  kBadInput = 1,
  kBadCommandLine = 2,
  kFileTrouble = 3,
  kInternalError = 4,
  kStopped = 130,  // by the user, as shells report an interrupt
};

/// Ends a command: what() is shown on one line behind the program's name.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode code, const std::string& message)
      : std::runtime_error(message), code_(code) {}

  ExitCode code() const noexcept { return code_; }

 private:
  ExitCode code_;
};

/// The input is bad. `message` names the file, and the row or the path where there is one.
inline CommandError BadInput(const std::string& message) {
  return {ExitCode::kBadInput, message};
}
/// The command line is wrong.
inline CommandError BadCommandLine(const std::string& message) {
  return {ExitCode::kBadCommandLine, message};
}
/// A file cannot be read or written.
inline CommandError FileTrouble(const std::string& message) {
  return {ExitCode::kFileTrouble, message};
}

}  // namespace nimbrel::cli
