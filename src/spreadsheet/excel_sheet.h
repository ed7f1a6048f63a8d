#pragma once

#include <string_view>

#include "spreadsheet/excel_dispatch.h"
#include "spreadsheet/excel_session.h"

namespace nimbrel::spreadsheet {

/// The range of a text argument on a sheet. Raises error 1004 for a text that names none.
platform::Variant RangeOf(const SheetHandle& handle, Arguments arguments);

/// A sheet of an open workbook.
class ExcelSheet final : public DispatchObject<ExcelSheet> {
 public:
  static constexpr std::string_view kClassName = "Worksheet";
  static std::span<const Member<ExcelSheet>> Members();

  explicit ExcelSheet(SheetHandle handle) : handle_(std::move(handle)) {}

 private:
  platform::Variant GetApplication(Arguments arguments);
  platform::Variant GetName(Arguments arguments);
  void PutName(const platform::Variant& value);
  platform::Variant GetCells(Arguments arguments);
  platform::Variant GetColumns(Arguments arguments);
  platform::Variant GetRange(Arguments arguments);
  platform::Variant Select(Arguments arguments);
  platform::Variant Delete(Arguments arguments);

  SheetHandle handle_;
};

/// The sheets of an open workbook.
class ExcelSheets final : public DispatchObject<ExcelSheets> {
 public:
  static constexpr std::string_view kClassName = "Sheets";
  static std::span<const Member<ExcelSheets>> Members();

  ExcelSheets(std::shared_ptr<ExcelSession> session, std::shared_ptr<OpenBook> book)
      : session_(std::move(session)), book_(std::move(book)) {}

  /// The sheet with a number from 1 or with a name in any case. Raises error 9 if there is none.
  platform::Variant Item(const platform::Variant& index);

 protected:
  std::vector<platform::Ref<platform::AutomationObject>> DoItems() override;

 private:
  platform::Variant GetCount(Arguments arguments);
  /// Makes a new sheet in front of the active one, and makes it the active one.
  platform::Variant Add(Arguments arguments);

  platform::Ref<ExcelSheet> ObjectOf(const std::shared_ptr<Sheet>& sheet) const;

  std::shared_ptr<ExcelSession> session_;
  std::shared_ptr<OpenBook> book_;
};

}  // namespace nimbrel::spreadsheet
