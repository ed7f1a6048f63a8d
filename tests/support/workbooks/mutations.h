#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/workbooks/test_files.h"

namespace nimbrel::spreadsheet {

/// Makes damaged workbooks out of a sound one. Some have bytes changed, cut out or doubled wherever
/// it comes; most are damaged inside and put together again, so that the damage gets past check
/// sums and tables: the XML of an .xlsx in its tags, numbers and texts, an .xls in its records.
class Mutator {
 public:
  /// `bytes` are those of an .xlsx or .xls file that can be read.
  explicit Mutator(std::string bytes);

  /// The damaged workbook of a number: the same for the same number, on every machine.
  std::string Make(std::uint64_t number) const;

  /// Bytes of the sound workbook.
  std::size_t size() const { return bytes_.size(); }

 private:
  std::string bytes_;
  Parts parts_;         // of an .xlsx
  std::string stream_;  // of an .xls
};

}  // namespace nimbrel::spreadsheet
