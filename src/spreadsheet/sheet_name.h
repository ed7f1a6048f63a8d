#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/read_error.h"

namespace nimbrel::spreadsheet {

/// Why Excel refuses a name for a sheet, as the end of a sentence that begins with the name; empty
/// if it takes it. Whether another sheet has the name already is not looked at.
std::string_view SheetNameFault(std::string_view name);

/// Raises error 1004 for a workbook whose sheets have names that Excel would refuse, or two of them
/// the same one without regard to case: who looks a sheet up by its name must find one.
void CheckSheetNames(const ReadPlace& place, const std::vector<std::string>& names);

}  // namespace nimbrel::spreadsheet
