#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "platform/automation.h"
#include "platform/locale.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_viewer.h"
#include "tests/support/workbooks/test_files.h"

namespace nimbrel::spreadsheet {

/// Notes what it is asked to show.
class RecordingViewer : public WorkbookViewer {
 public:
  struct Shown {
    std::vector<std::string> sheets;
    std::string path;
  };

  void Show(const Workbook& workbook, const std::string& path) override {
    Shown record;
    for (const auto& sheet : workbook.sheets()) {
      record.sheets.push_back(sheet->name());
    }
    record.path = path;
    shown.push_back(std::move(record));
    if (!save_as.empty()) {
      WorkbookSaver(save_as).Show(workbook, path);
    }
  }

  /// Where to write what is shown; nowhere if empty.
  std::string save_as;

  std::vector<Shown> shown;
};

/// An application that has just been started.
class Excel : public testing::Test {
 protected:
  using Object = platform::Ref<platform::AutomationObject>;
  using Variant = platform::Variant;

  Object AddBook() { return excel->GetRef("Workbooks")->CallRef("Add"); }
  /// The cell of a sheet.
  static Object At(const Object& sheet, std::int32_t row, std::int32_t column) {
    return sheet->GetRef("Cells", {row, column});
  }
  static std::string Text(const Variant& value) { return value.ToText(platform::DefaultLocale()); }
  static std::vector<std::string> Names(const Object& book) {
    std::vector<std::string> names;
    for (const auto& sheet : book->GetRef("Sheets")->Items()) {
      names.push_back(Text(sheet->Get("Name")));
    }
    return names;
  }

  RecordingViewer viewer;
  ExcelServers servers{viewer};
  Object excel = servers.CreateObject("Excel.Application");
};

}  // namespace nimbrel::spreadsheet
