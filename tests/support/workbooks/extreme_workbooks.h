#pragma once

#include <functional>
#include <string>
#include <vector>

namespace nimbrel::spreadsheet {

/// A workbook that takes as much of something as the readers let through, or a little more.
struct ExtremeWorkbook {
  std::string name;
  std::function<std::string()> make_bytes;  ///< up to some dozens of megabytes, in a second or two
  /// Part of the message that refuses it; empty if it is read.
  std::string refusal;
};

/// One for each thing that costs a reader memory or time. Those that are read are as large as real
/// workbooks may be.
std::vector<ExtremeWorkbook> ExtremeWorkbooks();

}  // namespace nimbrel::spreadsheet
