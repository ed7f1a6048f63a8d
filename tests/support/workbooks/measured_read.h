#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nimbrel::spreadsheet {

/// What it took to read a workbook in a process of its own.
struct MeasuredRead {
  enum class Outcome {
    kRead,
    kRefused,
    kBroken,  ///< it crashed, was stopped, or raised what no reader raises
  };
  Outcome outcome = Outcome::kBroken;
  /// The message that refuses it; or how it broke.
  std::string text;
  double seconds = 0;  ///< of processor time
  /// The most memory in bytes that was held at one time. The whole process is counted, the
  /// workbook's bytes included; under the address sanitizer, which needs much for itself, the bytes
  /// that were allocated since the reading began, and the workbook's.
  std::uint64_t memory = 0;
};

/// Reads the bytes of a workbook in a child process, so that nothing of it is left behind. It is
/// stopped after ten seconds of processor time.
MeasuredRead ReadMeasured(std::string_view bytes);

}  // namespace nimbrel::spreadsheet
