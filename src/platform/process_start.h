#pragma once

#include <cstdint>
#include <string>

namespace nimbrel::platform {

/// Starts programs and opens documents.
class ProcessStart {
 public:
  virtual ~ProcessStart() = default;

  /// Does `verb` ("open") with a file: runs a program, or opens a document in the program that it
  /// belongs to. Never waits for it. A result above 32 says that it was started; nothing is raised
  /// and nothing is shown if it was not.
  virtual std::int32_t ShellExecute(std::int32_t owner, const std::string& verb,
                                    const std::string& file, const std::string& parameters,
                                    const std::string& directory, std::int32_t show) = 0;
};

}  // namespace nimbrel::platform
