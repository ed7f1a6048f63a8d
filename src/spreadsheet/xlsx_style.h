#pragma once

#include <map>

#include "spreadsheet/workbook.h"

extern "C" {
struct lxw_format;
struct lxw_workbook;
}

namespace nimbrel::spreadsheet {

/// The formats of an .xlsx file that is being written: one for each different style.
class XlsxStyles {
 public:
  /// Both must live as long as this.
  XlsxStyles(lxw_workbook& file, const Workbook& workbook) : file_(file), workbook_(workbook) {}

  /// The format of a style; belongs to the file. Raises error 1004 for a number format that is too
  /// long for the writer and when memory runs out.
  lxw_format* Format(const Style& style);

 private:
  lxw_workbook& file_;
  const Workbook& workbook_;
  std::map<Style, lxw_format*> formats_;
};

}  // namespace nimbrel::spreadsheet
