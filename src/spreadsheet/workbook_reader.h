#pragma once

#include <string>
#include <string_view>

#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// Reads the values of a workbook, .xlsx or .xls; which of the two its content tells, not its name.
/// Formulas give the values that are stored with them; one without is NotComputed. Of the looks
/// only number formats are kept, since they tell dates from numbers. Sheets without cells (charts)
/// are left out.
///
/// Raises error 1004 with one line that names the file and, where there is one, sheet, row and
/// column: if the file cannot be read, is none of the two, is damaged or encrypted, goes past a
/// limit (see limits.h), or has sheets whose names Excel refuses.
Workbook ReadWorkbook(const std::string& path);

/// As above, of the bytes of a file; `name` stands for it in messages.
Workbook ReadWorkbookBytes(std::string_view bytes, const std::string& name);

}  // namespace nimbrel::spreadsheet
