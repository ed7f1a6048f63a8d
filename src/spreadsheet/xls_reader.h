#pragma once

#include <string>
#include <string_view>

#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// Reads the bytes of an .xls file of Excel 5 to 2003; see ReadWorkbookBytes.
Workbook ReadXls(std::string_view bytes, const std::string& name);

}  // namespace nimbrel::spreadsheet
