#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "spreadsheet/workbook.h"

namespace nimbrel::spreadsheet {

/// The number of the error for what the user has stopped.
inline constexpr std::int32_t kStoppedByUser = 18;

/// Writes a workbook as an .xlsx file. The same workbook gives the same bytes. The file appears
/// whole or not at all: it is written beside `path` (UTF-8), read back, and then put in its place,
/// with the permissions of the file that was there. A link is followed, and stays.
///
/// `is_stopped` is asked from time to time, and last before the file is put in place; when it says
/// so, error 18 is raised and nothing is left behind.
///
/// Numbers keep sixteen significant digits, one less than would tell every double apart.
///
/// Raises error 1004 with "PATH: cannot be written: REASON" if the file cannot be written, if the
/// workbook has no sheet or goes past what a reader takes. Numbers that are none and error values
/// are written as the text that shows them, formulas without a value as nothing; bytes that are no
/// UTF-8 become U+FFFD.
void WriteXlsx(const Workbook& workbook, const std::string& path,
               const std::function<bool()>& is_stopped = {});

}  // namespace nimbrel::spreadsheet
