#pragma once

#include <string_view>

#include "spreadsheet/excel_dispatch.h"
#include "spreadsheet/excel_session.h"

namespace nimbrel::spreadsheet {

/// A block of cells of a sheet.
class ExcelRange final : public DispatchObject<ExcelRange> {
 public:
  static constexpr std::string_view kClassName = "Range";
  static std::span<const Member<ExcelRange>> Members();

  ExcelRange(SheetHandle handle, const CellRange& range)
      : handle_(std::move(handle)), range_(range) {}

 private:
  /// The value of one cell: a Date where its format shows one, a double, text, True or False, or
  /// empty. Raises error 13 for an error value, and error 1004 for a formula without a value.
  platform::Variant GetValue(Arguments arguments);
  /// Puts a value into every cell. Text stays the text that it is, whatever it looks like; the
  /// empty text and an empty Variant leave nothing. A date brings a date format into a cell that
  /// has none.
  void PutValue(const platform::Variant& value);
  void PutCell(std::int32_t row, std::int32_t column, const platform::Variant& value);

  platform::Variant GetNumberFormat(Arguments arguments);
  void PutNumberFormat(const platform::Variant& value);
  platform::Variant GetHorizontalAlignment(Arguments arguments);
  void PutHorizontalAlignment(const platform::Variant& value);
  platform::Variant GetVerticalAlignment(Arguments arguments);
  void PutVerticalAlignment(const platform::Variant& value);
  platform::Variant GetWrapText(Arguments arguments);
  void PutWrapText(const platform::Variant& value);
  platform::Variant GetColumnWidth(Arguments arguments);
  void PutColumnWidth(const platform::Variant& value);
  platform::Variant GetInterior(Arguments arguments);
  platform::Variant GetFont(Arguments arguments);
  platform::Variant Select(Arguments arguments);

  SheetHandle handle_;
  CellRange range_;
};

}  // namespace nimbrel::spreadsheet
