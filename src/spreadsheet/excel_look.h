#pragma once

#include <string_view>

#include "spreadsheet/excel_dispatch.h"
#include "spreadsheet/excel_session.h"

namespace nimbrel::spreadsheet {

/// The value that an attribute has in all cells of a range; empty if they differ.
platform::Variant CommonLong(const SheetHandle& handle, const CellRange& range,
                             Attribute attribute);
platform::Variant CommonBoolean(const SheetHandle& handle, const CellRange& range,
                                Attribute attribute);

/// The fill of a range. Setting a colour fills what had none; no colour and no pattern are the
/// same.
class ExcelInterior final : public DispatchObject<ExcelInterior> {
 public:
  static constexpr std::string_view kClassName = "Interior";
  static std::span<const Member<ExcelInterior>> Members();

  ExcelInterior(SheetHandle handle, const CellRange& range)
      : handle_(std::move(handle)), range_(range) {}

 private:
  platform::Variant GetColorIndex(Arguments arguments);
  void PutColorIndex(const platform::Variant& value);
  platform::Variant GetPattern(Arguments arguments);
  void PutPattern(const platform::Variant& value);

  SheetHandle handle_;
  CellRange range_;
};

/// The letters of a range.
class ExcelFont final : public DispatchObject<ExcelFont> {
 public:
  static constexpr std::string_view kClassName = "Font";
  static std::span<const Member<ExcelFont>> Members();

  ExcelFont(SheetHandle handle, const CellRange& range)
      : handle_(std::move(handle)), range_(range) {}

 private:
  platform::Variant GetColorIndex(Arguments arguments);
  void PutColorIndex(const platform::Variant& value);
  platform::Variant GetBold(Arguments arguments);
  void PutBold(const platform::Variant& value);

  SheetHandle handle_;
  CellRange range_;
};

}  // namespace nimbrel::spreadsheet
