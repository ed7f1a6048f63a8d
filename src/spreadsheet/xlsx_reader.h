#pragma once

#include <string>
#include <string_view>

#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// Reads the bytes of an .xlsx file; see ReadWorkbookBytes.
Workbook ReadXlsx(std::string_view bytes, const std::string& name);

}  // namespace nimbrel::spreadsheet
