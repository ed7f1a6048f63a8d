#pragma once

#include <string_view>

namespace nimbrel::spreadsheet {

/// Why Excel refuses a name for a sheet, as the end of a sentence that begins with the name; empty
/// if it takes it. Whether another sheet has the name already is not looked at.
std::string_view SheetNameFault(std::string_view name);

}  // namespace nimbrel::spreadsheet
