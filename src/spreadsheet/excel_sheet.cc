#include "spreadsheet/excel_sheet.h"

#include <algorithm>
#include <array>

#include "platform/locale.h"
#include "platform/text.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/excel_range.h"
#include "spreadsheet/limits.h"
#include "spreadsheet/sheet_name.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

using platform::DefaultLocale;
using platform::MakeRef;
using platform::Variant;

/// The sheet of a name without regard to case, or the end of the list.
auto FindSheet(const Workbook& workbook, std::string_view name) {
  return std::find_if(workbook.sheets().begin(), workbook.sheets().end(), [&](const auto& sheet) {
    return platform::EqualsIgnoreCase(sheet->name(), name);
  });
}

Variant MakeRange(const SheetHandle& handle, const CellRange& range) {
  handle.sheet();
  return MakeRef<ExcelRange>(handle, range);
}

}  // namespace

Variant RangeOf(const SheetHandle& handle, Arguments arguments) {
  RequireArguments(arguments, 1, 1);
  const std::string text = arguments[0].ToText(DefaultLocale());
  const auto range = ParseRange(text);
  if (!range) {
    RaiseRefused(Quoted(text) + " is no range of a sheet");
  }
  return MakeRange(handle, *range);
}

std::span<const Member<ExcelSheet>> ExcelSheet::Members() {
  static constexpr std::array<Member<ExcelSheet>, 7> kMembers = {{
      {"Application", &ExcelSheet::GetApplication},
      {"Name", &ExcelSheet::GetName, &ExcelSheet::PutName},
      {"Cells", &ExcelSheet::GetCells},
      {"Columns", &ExcelSheet::GetColumns},
      {"Range", &ExcelSheet::GetRange},
      {"Select", &ExcelSheet::Select},
      {"Delete", &ExcelSheet::Delete},
  }};
  return kMembers;
}

Variant ExcelSheet::GetApplication(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  handle_.sheet();
  return MakeRef<ExcelApplication>(handle_.session());
}

Variant ExcelSheet::GetName(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return handle_.sheet().name();
}

void ExcelSheet::PutName(const Variant& value) {
  Sheet& sheet = handle_.sheet();
  std::string name = value.ToText(DefaultLocale());
  if (const auto fault = SheetNameFault(name); !fault.empty()) {
    RaiseRefused("The sheet name " + Quoted(name) + " " + std::string(fault));
  }
  const auto holder = FindSheet(handle_.workbook(), name);
  if (holder != handle_.workbook().sheets().end() && holder->get() != &sheet) {
    RaiseRefused("The sheet name " + Quoted(name) + " is taken");
  }
  sheet.set_name(std::move(name));
}

Variant ExcelSheet::GetCells(Arguments arguments) {
  if (arguments.empty()) {
    return MakeRange(handle_, kWholeSheet);
  }
  RequireArguments(arguments, 2, 2);
  const std::int32_t row = arguments[0].ToLong(DefaultLocale());
  const std::int32_t column = arguments[1].ToLong(DefaultLocale());
  if (!kWholeSheet.Contains(row, column)) {
    RaiseRefused("There is no cell in row " + std::to_string(row) + ", column " +
                 std::to_string(column));
  }
  return MakeRange(handle_, OneCell(row, column));
}

Variant ExcelSheet::GetColumns(Arguments arguments) {
  if (arguments.empty()) {
    return MakeRange(handle_, kWholeSheet);
  }
  RequireArguments(arguments, 1, 1);
  if (const auto* text = arguments[0].Get<std::string>()) {
    // One column may be named by its letters alone.
    const auto range =
        ParseRange(text->find(':') == std::string::npos ? *text + ":" + *text : *text);
    if (!range || range->first_row != 1 || range->last_row != kRows) {
      RaiseRefused(Quoted(*text) + " names no columns");
    }
    return MakeRange(handle_, *range);
  }
  const std::int32_t column = arguments[0].ToLong(DefaultLocale());
  if (column < 1 || column > kColumns) {
    RaiseRefused("There is no column " + std::to_string(column));
  }
  return MakeRange(handle_, {1, column, kRows, column});
}

Variant ExcelSheet::GetRange(Arguments arguments) {
  return RangeOf(handle_, arguments);
}

Variant ExcelSheet::Select(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  const std::size_t index = handle_.Index();
  if (handle_.session()->ActiveBook() != handle_.book()) {
    RaiseRefused("A sheet can be selected only in the active workbook");
  }
  handle_.workbook().set_active_sheet(index);
  return true;
}

Variant ExcelSheet::Delete(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  const std::size_t index = handle_.Index();
  Workbook& workbook = handle_.workbook();
  if (workbook.sheets().size() == 1) {
    RaiseRefused("The only sheet of a workbook cannot be deleted");
  }
  workbook.sheets().erase(workbook.sheets().begin() + static_cast<std::ptrdiff_t>(index));
  const std::size_t active = workbook.active_sheet();
  if (active > index || active == workbook.sheets().size()) {
    workbook.set_active_sheet(active - 1);
  }
  return true;
}

std::span<const Member<ExcelSheets>> ExcelSheets::Members() {
  static constexpr std::array<Member<ExcelSheets>, 2> kMembers = {{
      {"Count", &ExcelSheets::GetCount},
      {"Add", &ExcelSheets::Add},
  }};
  return kMembers;
}

platform::Ref<ExcelSheet> ExcelSheets::ObjectOf(const std::shared_ptr<Sheet>& sheet) const {
  return MakeRef<ExcelSheet>(SheetHandle(session_, book_, sheet));
}

Variant ExcelSheets::Item(const Variant& index) {
  session_->RequireOpen(*book_);
  const auto& sheets = book_->workbook.sheets();
  if (const auto* name = index.Get<std::string>()) {
    const auto found = FindSheet(book_->workbook, *name);
    if (found == sheets.end()) {
      throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                   "There is no sheet " + Quoted(*name));
    }
    return ObjectOf(*found);
  }
  const std::int32_t number = index.ToLong(DefaultLocale());
  if (number < 1 || static_cast<std::size_t>(number) > sheets.size()) {
    throw platform::RuntimeError(platform::kSubscriptOutOfRange,
                                 "No sheet " + std::to_string(number) + " in a workbook of " +
                                     std::to_string(sheets.size()));
  }
  return ObjectOf(sheets[static_cast<std::size_t>(number - 1)]);
}

std::vector<platform::Ref<platform::AutomationObject>> ExcelSheets::DoItems() {
  session_->RequireOpen(*book_);
  std::vector<platform::Ref<platform::AutomationObject>> items;
  for (const auto& sheet : book_->workbook.sheets()) {
    items.emplace_back(ObjectOf(sheet));
  }
  return items;
}

Variant ExcelSheets::GetCount(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireOpen(*book_);
  return static_cast<std::int32_t>(book_->workbook.sheets().size());
}

Variant ExcelSheets::Add(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  session_->RequireOpen(*book_);
  Workbook& workbook = book_->workbook;
  if (workbook.sheets().size() >= kMaxSheets) {
    RaiseRefused("A workbook holds no more than " + std::to_string(kMaxSheets) + " sheets");
  }
  std::string name;
  do {
    name = "Sheet" + std::to_string(++book_->last_number);
  } while (FindSheet(workbook, name) != workbook.sheets().end());
  const auto place =
      workbook.sheets().begin() + static_cast<std::ptrdiff_t>(workbook.active_sheet());
  // The new sheet takes the active one's place, and its number with it.
  return ObjectOf(*workbook.sheets().insert(place, std::make_shared<Sheet>(std::move(name))));
}

}  // namespace nimbrel::spreadsheet
