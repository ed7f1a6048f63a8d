#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace nimbrel::spreadsheet {

/// Where a reader is, for the messages of its errors. Only the parts that are known are filled.
struct ReadPlace {
  std::string file = {};
  std::string sheet = {};
  std::int32_t row = 0;
  std::int32_t column = 0;
};

/// Raises error 1004 with a text of one line: "FILE: sheet 'SHEET', row 7, column C: REASON".
[[noreturn]] void RaiseReadError(const ReadPlace& place, const std::string& reason);

/// "64 MiB": a size in whole mebibytes, rounded down.
std::string MebibytesText(std::uint64_t bytes);

/// Raises as above if a text of this many bytes is longer than a cell can hold.
void CheckTextSize(const ReadPlace& place, std::size_t bytes);

/// Counts what a workbook takes of the limits, and raises as above when it takes too much.
class ReadCounts {
 public:
  void AddCell(const ReadPlace& place);
  /// A text that is kept, of so many bytes.
  void AddText(const ReadPlace& place, std::size_t bytes);

 private:
  std::uint64_t cells_ = 0;
  std::uint64_t texts_ = 0;
  std::uint64_t text_bytes_ = 0;
};

}  // namespace nimbrel::spreadsheet
