#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/biff_stream.h"
#include "spreadsheet/code_page.h"
#include "spreadsheet/read_error.h"
#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// Types of BIFF records.
enum BiffType : std::uint16_t {
  kBiffFormula = 0x0006,
  kBiffEof = 0x000A,
  kBiffDateMode = 0x0022,
  kBiffFilePass = 0x002F,
  kBiffCodePage = 0x0042,
  kBiffBoundSheet = 0x0085,
  kBiffMulRk = 0x00BD,
  kBiffRString = 0x00D6,
  kBiffXf = 0x00E0,
  kBiffSst = 0x00FC,
  kBiffLabelSst = 0x00FD,
  kBiffNumber = 0x0203,
  kBiffLabel = 0x0204,
  kBiffBoolErr = 0x0205,
  kBiffString = 0x0207,
  kBiffRk = 0x027E,
  kBiffFormat = 0x041E,
  kBiffBof = 0x0809,
};

/// What the begin of a part of the stream says of it.
struct BiffBegin {
  bool is_biff8 = false;
  bool is_worksheet = false;
};

/// Raises error 1004 unless the record begins a part of BIFF 5 to 8.
BiffBegin ReadBiffBegin(const BiffRecord& record, const ReadPlace& place);

/// What the first part of the stream says of the workbook as a whole.
struct XlsGlobals {
  struct SheetEntry {
    std::string name;
    std::uint32_t offset = 0;
  };

  bool is_biff8 = false;
  CodePage code_page;
  std::vector<SheetEntry> sheets;      // that hold cells
  std::vector<std::uint16_t> formats;  // number formats in the workbook, by number of the style
  std::size_t shared_texts = 0;        // the first texts of the workbook
};

/// Reads the first part of `stream`. Raises error 1004 for what is damaged, encrypted or past a
/// limit.
void ReadXlsGlobals(std::string_view stream, const ReadPlace& place, ReadCounts& counts,
                    Workbook& workbook, XlsGlobals& globals);

}  // namespace nimbrel::spreadsheet
