// The import. The export's sheets are in export_sheets.cc.

#include "exchange/mod_import_export.h"

#include <cstdint>
#include <utility>

#include "desktop/mod_tool_box.h"
#include "exchange/mod_excel.h"
#include "host/mod_global.h"
#include "platform/date.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"

namespace nimbrel::modImportExport {

using modGlobal::Locale;
using platform::Date;
using platform::Variant;
using toolkit::ListItemRef;
using toolkit::ListView;

namespace {

constexpr std::int32_t kFirstRow = 6;
/// A sheet is read until this many test cells were empty, wherever they are.
constexpr int kEmptyCellsToEnd = 3;

Services& TheServices() {
  static Services services;
  return services;
}

void Tell(const std::string& text, const std::string& title) {
  if (TheServices().message_box == nullptr) {
    platform::RaiseNothing();
  }
  TheServices().message_box->Show(text, title);
}

Variant CellValue(const Ref<AutomationObject>& Sheet, std::int32_t row, std::int32_t column) {
  return Sheet->GetRef("Cells", {row, column})->Get("Value");
}

std::string CellText(const Ref<AutomationObject>& Sheet, std::int32_t row, std::int32_t column) {
  return CellValue(Sheet, row, column).ToText(Locale());
}

std::string ListDate(Date dt) {
  return platform::FormatDate(dt, "dd/mmm/yyyy", Locale());
}

/// A number is a day count if there is such a day.
bool IsDayCount(const Variant& value) {
  if (const auto* text = value.Get<std::string>()) {
    return platform::IsNumeric(*text, Locale()) &&
           platform::IsValidDate(Date{platform::ParseNumber(*text, Locale())});
  }
  const bool is_number = value.Is<double>() || value.Is<std::int32_t>() || value.Is<Date>();
  return is_number && platform::IsValidDate(Date{value.ToDouble(Locale())});
}

/// The value as a date in the form of the lists, or as it is if it does not read as one.
std::string DateText(const Variant& value) {
  const auto* text = value.Get<std::string>();
  if (text != nullptr && platform::IsDate(*text, Locale())) {
    return ListDate(platform::ParseDate(*text, Locale()));
  }
  if (IsDayCount(value)) {
    return ListDate(Date{value.ToDouble(Locale())});
  }
  return value.ToText(Locale());
}

std::string PercentText(const Variant& value) {
  return platform::DefaultNumberText(value.ToDouble(Locale()) * 100.0, Locale()) + "%";
}

/// Adds a row to the list for each row of the sheet whose cell in `test_column` is not empty, and
/// has `fill` put the cells into it.
template <class Fill>
void ReadRows(const Ref<AutomationObject>& Sheet, ListView& List, std::int32_t test_column,
              const Fill& fill) {
  List.ListItems().Clear();
  int blank = 0;
  for (std::int32_t row = kFirstRow; blank < kEmptyCellsToEnd; ++row) {
    if (CellText(Sheet, row, test_column).empty()) {
      ++blank;
    } else {
      fill(row, List.ListItems().Add());
    }
  }
}

/// Asks the user which sheet of the workbook to read.
SheetChoice ChooseSheet(const Ref<AutomationObject>& workbook, const std::string& DataType) {
  std::vector<ListedSheet> sheets;
  for (const Ref<AutomationObject>& sheet : workbook->GetRef("Sheets")->Items()) {
    const std::string name = sheet->Get("Name").ToText(Locale());
    sheets.push_back({name + "k", name, ReadMarker(sheet)});
  }
  if (!TheServices().choose_sheet) {
    platform::RaiseNothing();
  }
  return TheServices().choose_sheet(sheets, DataType);
}

}  // namespace

void Wire(Services services) {
  TheServices() = std::move(services);
}

std::string ChooseWorkbook() {
  const std::string path =
      modToolBox::ShowFileDialog("Import Weather Calendar", modGlobal::g_strModulesFolder,
                                 "xls (*.xls;*.xlsx)", "*.xls;*.xlsx", "", false);
  if (path == "False" || path.empty()) {
    return {};
  }
  if (!modToolBox::FileExists(path, true)) {
    Tell("This file does not exist or can't be opened", "Export Weather");
    return {};
  }
  return path;
}

std::string ReadMarker(const Ref<AutomationObject>& Sheet) {
  return CellText(Sheet, 3, 1);
}

bool ReadEventRows(const Ref<AutomationObject>& Sheet, ListView& List) {
  constexpr std::int32_t kDescriptionColumn = 2;
  ReadRows(Sheet, List, kDescriptionColumn, [&](std::int32_t row, const ListItemRef& item) {
    item->SetSubItems(1, CellText(Sheet, row, 2));
    item->SetSubItems(2, DateText(CellValue(Sheet, row, 3)));
    item->SetSubItems(3, DateText(CellValue(Sheet, row, 4)));
    item->SetSubItems(4, PercentText(CellValue(Sheet, row, 5)));
    item->SetSubItems(5, CellText(Sheet, row, 6));
    item->SetSubItems(6, CellText(Sheet, row, 7));
    item->SetSubItems(7, CellText(Sheet, row, 8));
  });
  return false;
}

bool ReadWindowRows(const Ref<AutomationObject>& Sheet, ListView& List) {
  constexpr std::int32_t kEarlyStartColumn = 3;
  ReadRows(Sheet, List, kEarlyStartColumn, [&](std::int32_t row, const ListItemRef& item) {
    item->SetText(CellText(Sheet, row, 2));                  // replaced by the ID of a task later
    for (const std::int32_t cell : {1, 2, 3, 4, 6, 7, 8}) {  // cell 5 is the blank column
      item->SetSubItems(cell, DateText(CellValue(Sheet, row, cell + 1)));
    }
  });
  return false;
}

void EndImport(Ref<AutomationObject>& Workbook, Ref<AutomationObject>& Excel) {
  Workbook->Call("Close", {false});
  Excel->Call("Quit");
  Workbook = nullptr;
  Excel = nullptr;
  Tell("Import completed!", "Import Weather");
}

bool ImportCalendarSheet(ListView& List, const std::string& DataType) {
  List.ListItems().Clear();
  Ref<AutomationObject> excel = modExcel::StartExcel();
  if (excel.IsNothing()) {
    return false;
  }
  const std::string path = ChooseWorkbook();
  if (path.empty()) {
    return false;
  }
  Ref<AutomationObject> workbook = excel->GetRef("Workbooks")->CallRef("open", {path});
  excel->Put("Visible", false);
  const SheetChoice choice = ChooseSheet(workbook, DataType);
  if (choice.m_bOk) {
    const Ref<AutomationObject> sheet = workbook->GetRef("Sheets", {choice.m_strSelCal});
    sheet->Call("Select");
    ReadMarker(sheet);
    modExcel::InitColumnLetters();
    if (DataType == kWindowData) {
      ReadWindowRows(sheet, List);
    } else {
      ReadEventRows(sheet, List);
    }
  }
  EndImport(workbook, excel);
  return choice.m_bOk;
}

}  // namespace nimbrel::modImportExport
