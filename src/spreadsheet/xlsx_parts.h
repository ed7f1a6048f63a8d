#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/package.h"
#include "spreadsheet/read_error.h"
#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// What the workbook part says of a sheet.
struct XlsxSheetEntry {
  std::string name;
  std::string relationship;
};

/// What the workbook part of a package says.
struct XlsxWorkbookPart {
  std::vector<XlsxSheetEntry> sheets;
  bool date_1904 = false;
};

/// The parts of an .xlsx package one by one. All raise error 1004 for what is damaged or past a
/// limit.

XlsxWorkbookPart ReadXlsxWorkbookPart(Package& package, std::string_view part);

/// Adds the shared texts to the workbook, without phonetic hints, in their order.
void ReadXlsxSharedTexts(Package& package, std::string_view part, ReadCounts& counts,
                         Workbook& workbook);

/// Adds the number formats of the cell styles to the workbook; their numbers there, by the number
/// of the style.
std::vector<std::uint16_t> ReadXlsxStyles(Package& package, std::string_view part,
                                          Workbook& workbook);

/// What the cells of a sheet refer to.
struct XlsxCellContext {
  Workbook& workbook;
  ReadCounts& counts;
  bool has_styles = false;
  std::vector<std::uint16_t> formats;
  std::size_t shared_texts = 0;  // the first texts of the workbook
};

/// Reads the cells of a worksheet part into `sheet`.
void ReadXlsxSheet(Package& package, std::string_view part, XlsxCellContext& context, Sheet& sheet);

}  // namespace nimbrel::spreadsheet
