#pragma once

#include <filesystem>
#include <string>

#include "nimbrel/console.h"

namespace nimbrel::cli {

/// Text for a file, or for standard output where the path is "-". Nothing is seen of a file until
/// Commit: the text stands in a temporary file beside it, which takes its place in one step. Let go
/// without Commit, it leaves no trace. Devices and pipes are written to at Commit.
class PendingOutput {
 public:
  /// Writes the text aside. Raises CommandError if that cannot be done.
  PendingOutput(Console& console, const std::string& path, std::string text);
  ~PendingOutput();
  PendingOutput(PendingOutput&& other) noexcept;
  PendingOutput(const PendingOutput&) = delete;
  PendingOutput& operator=(const PendingOutput&) = delete;
  PendingOutput& operator=(PendingOutput&&) = delete;

  /// Puts the file in place, or writes to standard output. Raises CommandError.
  void Commit();

 private:
  Console& console_;
  std::filesystem::path path_;
  std::filesystem::path temporary_;  // empty: written to as it is, or done
  std::string text_;                 // for what is written to as it is
};

/// Whether two outputs would stand in one place, however their paths are written. "" is no place.
bool IsSamePlace(const std::string& one, const std::string& other);

/// Raises CommandError where `output`, the file of `option`, is the file `input` that the command
/// reads: results must never take the place of what they come from. "" and "-" are no files.
void RequireOtherFile(const std::string& option, const std::string& output,
                      const std::string& input);

/// Sends out what was written to standard output; raises CommandError if that fails, for example
/// because a pipe was closed.
void FlushOutput(Console& console);

}  // namespace nimbrel::cli
