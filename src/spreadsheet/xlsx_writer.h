#pragma once

#include <string>

#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// Writes a workbook as an .xlsx file. The same workbook gives the same bytes. The file appears
/// whole or not at all: it is written beside `path` (UTF-8), read back, and then put in its place.
///
/// Numbers keep sixteen significant digits, one less than would tell every double apart.
///
/// Raises error 1004 if the file cannot be written, if the workbook has no sheet or has a sheet
/// name that the format cannot hold. Numbers that are none and error values are written as the text
/// that shows them; bytes that are no UTF-8 become U+FFFD.
void WriteXlsx(const Workbook& workbook, const std::string& path);

}  // namespace nimbrel::spreadsheet
