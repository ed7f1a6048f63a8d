// The sheets of an exported workbook.

#include <cstdint>

#include "desktop/mod_tool_box.h"
#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "host/mod_global.h"

namespace nimbrel::modImportExport {

using modExcel::GetColumnLetter;
using platform::Collection;
using platform::Variant;

namespace {

constexpr std::int32_t kHeaderRow = 5;
constexpr std::int32_t kFirstRow = 6;
constexpr std::int32_t kFirstColumn = 2;
constexpr std::int32_t kLastEventColumn = 8;
constexpr std::int32_t kLastWindowColumn = 9;

void PutCell(const Ref<AutomationObject>& Sheet, std::int32_t row, std::int32_t column,
             const Variant& value) {
  Sheet->GetRef("Cells", {row, column})->Put("Value", value);
}

void PutTitle(const Ref<AutomationObject>& Sheet, std::int32_t row, const std::string& text) {
  PutCell(Sheet, row, 1, text);
  Sheet->GetRef("Cells", {row, 1})->Put("WrapText", false);
}

void SetWidths(const Ref<AutomationObject>& Sheet, std::initializer_list<std::int32_t> widths) {
  std::int32_t column = kFirstColumn;
  for (const std::int32_t width : widths) {
    Sheet->GetRef("Columns", {column++})->Put("ColumnWidth", width);
  }
}

/// Columns `first` to `last`, from 1, as a range.
std::string Columns(std::int32_t first, std::int32_t last) {
  return GetColumnLetter(first) + ":" + GetColumnLetter(last);
}

/// Sets what all columns share, and names the sheet.
void BeginSheet(const Ref<AutomationObject>& Sheet, const std::string& strMarker,
                const std::string& CalName) {
  Sheet->GetRef("Columns")->Put("VerticalAlignment", modExcel::kTop);
  Sheet->GetRef("Columns")->Put("WrapText", true);
  PutTitle(Sheet, 1, modGlobal::Application()->get_ActivePlan()->get_Name());
  PutTitle(Sheet, 2, modToolBox::FormatMsg("Risk Analysis %x Modeling", {"Weather"}));
  PutTitle(Sheet, 3, strMarker);
  Sheet->Call("Select");
  Sheet->Put("Name", CalName);
}

/// Paints a grey frame around the data columns, 2 to `last`, and writes the header row.
void PaintSheet(const Ref<AutomationObject>& Sheet, std::int32_t last,
                const Collection<std::string>& headers) {
  Sheet->GetRef("Cells")->Call("Select");
  const Ref<AutomationObject> interior =
      Sheet->GetRef("Application")->GetRef("Selection")->GetRef("Interior");
  interior->Put("Colorindex", modExcel::kGrey);
  interior->Put("Pattern", modExcel::kSolid);
  modExcel::SetRangeFill(Sheet, Columns(kFirstColumn, last), modExcel::kNone, modExcel::kNone);
  modExcel::SetRangeFill(Sheet, "1:5", modExcel::kGrey, modExcel::kSolid);
  for (std::int32_t i = 1; i <= headers.Count(); ++i) {
    PutCell(Sheet, kHeaderRow, i + 1, headers.Item(i));
  }
  modExcel::SetBlockFill(Sheet, kFirstColumn, last, kHeaderRow, kHeaderRow, modExcel::kBlue,
                         modExcel::kSolid);
  modExcel::SetBlockFont(Sheet, kFirstColumn, last, kHeaderRow, kHeaderRow, modExcel::kWhite, true);
}

/// Puts the cursor on the first data cell.
void EndSheet(const Ref<AutomationObject>& Sheet) {
  modExcel::SelectRange(Sheet, kFirstColumn, kFirstColumn, kFirstRow, kFirstRow);
}

}  // namespace

Variant ExportEventSheet(const Ref<AutomationObject>& Sheet,
                         const Collection<Ref<model::clsWeatherTask>>& Tasks,
                         const std::string& CalName) {
  BeginSheet(Sheet, "Weather-Events", CalName);
  SetWidths(Sheet, {20, 13, 13, 13, 13, 13, 13});
  const Ref<AutomationObject> App = Sheet->GetRef("Application");
  modExcel::SetDateFormat(App, Sheet, Columns(3, 4));
  modExcel::SetPercentFormat(App, Sheet, Columns(5, 5));
  PaintSheet(Sheet, kLastEventColumn, modGlobal::g_colEventHeaders);
  std::int32_t row = kFirstRow;
  for (const Ref<model::clsWeatherTask>& t : Tasks) {
    if (t->m_strCalName != CalName) {
      continue;
    }
    PutCell(Sheet, row, 2, t->m_strTaskDesc);
    PutCell(Sheet, row, 3, t->m_dtStart);
    PutCell(Sheet, row, 4, t->m_dtEnd);
    PutCell(Sheet, row, 5, t->m_dOccur);
    PutCell(Sheet, row, 6, t->m_nMin);
    PutCell(Sheet, row, 7, t->m_nLikely);
    PutCell(Sheet, row, 8, t->m_nMax);
    ++row;
  }
  EndSheet(Sheet);
  return {};
}

Variant ExportWindowSheet(const Ref<AutomationObject>& Sheet,
                          const Collection<Ref<model::clsWWTask>>& Tasks,
                          const std::string& CalName) {
  BeginSheet(Sheet, "Weather-Windows", CalName);
  SetWidths(Sheet, {20, 15, 15, 15, 5, 15, 15, 15});
  modExcel::SetColumnsAlignment(Sheet, Columns(3, kLastWindowColumn), modExcel::kCentre);
  PaintSheet(Sheet, kLastWindowColumn, modGlobal::g_colWindowHeaders);
  const Ref<AutomationObject> App = Sheet->GetRef("Application");
  modExcel::SetDateFormat(App, Sheet, Columns(3, 5));
  modExcel::SetDateFormat(App, Sheet, Columns(7, kLastWindowColumn));
  std::int32_t row = kFirstRow;
  for (const Ref<model::clsWWTask>& t : Tasks) {
    if (t->m_strCalName != CalName) {
      continue;
    }
    PutCell(Sheet, row, 2, t->m_strTaskDescStart);
    PutCell(Sheet, row, 3, t->m_dtStartStart);
    PutCell(Sheet, row, 4, t->m_dtLikelyStart);
    PutCell(Sheet, row, 5, t->m_dtEndStart);
    PutCell(Sheet, row, 7, t->m_dtStartEnd);
    PutCell(Sheet, row, 8, t->m_dtLikelyEnd);
    PutCell(Sheet, row, 9, t->m_dtEndEnd);
    ++row;
  }
  EndSheet(Sheet);
  return {};
}

}  // namespace nimbrel::modImportExport
