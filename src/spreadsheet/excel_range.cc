#include "spreadsheet/excel_range.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/locale.h"
#include "spreadsheet/excel_look.h"
#include "spreadsheet/limits.h"
#include "spreadsheet/number_format.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

using platform::Date;
using platform::DefaultLocale;
using platform::Variant;

constexpr std::string_view kDefaultDateFormat = "m/d/yyyy";
constexpr double kWidestColumn = 255;

/// Sets an alignment that is one of those that Excel has.
void PutAlignment(Sheet& sheet, const CellRange& range, Attribute attribute, const Variant& value,
                  std::span<const std::int32_t> known) {
  const std::int32_t alignment = value.ToLong(DefaultLocale());
  if (std::find(known.begin(), known.end(), alignment) == known.end()) {
    RaiseRefused("The alignment " + std::to_string(alignment) + " is not known");
  }
  sheet.SetLook(range, attribute, alignment);
}

/// A number as a cell shows it: a date if the format says so and there is such a date.
Variant NumberOrDate(const Workbook& workbook, const Sheet& sheet, const Cell& cell,
                     double number) {
  if (workbook.IsDate(workbook.NumberFormatOf(sheet, cell))) {
    const Date date{number + (workbook.date_1904() ? kDays1904 : 0.0)};
    if (date.serial >= 0 && platform::IsValidDate(date)) {
      return date;
    }
  }
  return number;
}

}  // namespace

std::span<const Member<ExcelRange>> ExcelRange::Members() {
  static constexpr std::array<Member<ExcelRange>, 9> kMembers = {{
      {"Value", &ExcelRange::GetValue, &ExcelRange::PutValue},
      {"NumberFormat", &ExcelRange::GetNumberFormat, &ExcelRange::PutNumberFormat},
      {"HorizontalAlignment", &ExcelRange::GetHorizontalAlignment,
       &ExcelRange::PutHorizontalAlignment},
      {"VerticalAlignment", &ExcelRange::GetVerticalAlignment, &ExcelRange::PutVerticalAlignment},
      {"WrapText", &ExcelRange::GetWrapText, &ExcelRange::PutWrapText},
      {"ColumnWidth", &ExcelRange::GetColumnWidth, &ExcelRange::PutColumnWidth},
      {"Interior", &ExcelRange::GetInterior},
      {"Font", &ExcelRange::GetFont},
      {"Select", &ExcelRange::Select},
  }};
  return kMembers;
}

Variant ExcelRange::GetValue(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  if (!range_.IsOneCell()) {
    RaiseRefused("Only one cell has a value");
  }
  const Sheet& sheet = handle_.sheet();
  const Cell* const cell = sheet.Find(range_.first_row, range_.first_column);
  if (cell == nullptr) {
    return {};
  }
  if (const auto* number = std::get_if<double>(&cell->value)) {
    return NumberOrDate(handle_.workbook(), sheet, *cell, *number);
  }
  if (const auto* truth = std::get_if<bool>(&cell->value)) {
    return *truth;
  }
  if (const auto* text = std::get_if<TextId>(&cell->value)) {
    return handle_.workbook().Text(*text);
  }
  const std::string place = handle_.PlaceText(cell->row, cell->column) + ": ";
  if (std::holds_alternative<NotComputed>(cell->value)) {
    RaiseRefused(place + "the formula has no stored value");
  }
  throw platform::RuntimeError(platform::kTypeMismatch,
                               place + "the cell holds the error " +
                                   std::string(ErrorText(std::get<CellError>(cell->value))));
}

void ExcelRange::PutValue(const Variant& value) {
  if (static_cast<std::uint64_t>(range_.CellCount()) > kMaxCells) {
    RaiseRefused("The range has too many cells to take a value");
  }
  for (std::int32_t row = range_.first_row; row <= range_.last_row; ++row) {
    for (std::int32_t column = range_.first_column; column <= range_.last_column; ++column) {
      PutCell(row, column, value);
    }
  }
}

void ExcelRange::PutCell(std::int32_t row, std::int32_t column, const Variant& value) {
  Sheet& sheet = handle_.sheet();
  Workbook& workbook = handle_.workbook();
  const auto refuse = [&](const std::string& what) {
    RaiseRefused(handle_.PlaceText(row, column) + ": the cell cannot hold " + what);
  };
  const auto* const text = value.Get<std::string>();
  if (value.IsEmpty() || (text != nullptr && text->empty())) {
    sheet.Clear(row, column);
    return;
  }
  const Cell* const before = sheet.Find(row, column);
  Cell cell{row, static_cast<std::uint16_t>(column),
            before != nullptr ? before->format : kFormatOfPlace, 0.0};
  if (text != nullptr) {
    if (Utf16Length(*text) > kMaxCellText) {
      refuse("a text of more than " + std::to_string(kMaxCellText) + " characters");
    }
    cell.value = workbook.AddText(*text);
  } else if (const auto* truth = value.Get<bool>()) {
    cell.value = *truth;
  } else if (const auto* date = value.Get<Date>()) {
    const double serial = date->serial - (workbook.date_1904() ? kDays1904 : 0.0);
    if (!platform::IsValidDate(*date) || serial < 0) {
      refuse("a date before its calendar begins");
    }
    cell.value = serial;
    if (workbook.NumberFormatOf(sheet, cell) == 0) {
      cell.format = workbook.AddNumberFormat(kDefaultDateFormat);
    }
  } else {
    const double number = value.ToDouble(DefaultLocale());
    if (!std::isfinite(number)) {
      refuse("what is no number");
    }
    cell.value = number;
  }
  sheet.Put(cell);
}

Variant ExcelRange::GetNumberFormat(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  const Sheet& sheet = handle_.sheet();
  auto format = sheet.looks().Common(range_, Attribute::kNumberFormat);
  for (const Cell& cell : sheet.cells()) {
    if (range_.Contains(cell.row, cell.column) && cell.format != kFormatOfPlace) {
      if (!range_.IsOneCell()) {
        return {};
      }
      format = cell.format;
    }
  }
  return format ? Variant(handle_.workbook().NumberFormat(*format)) : Variant();
}

void ExcelRange::PutNumberFormat(const Variant& value) {
  const std::string format = value.ToText(DefaultLocale());
  if (!IsNumberFormat(format)) {
    RaiseRefused(Quoted(format) + " is no number format");
  }
  handle_.sheet().SetLook(range_, Attribute::kNumberFormat,
                          handle_.workbook().AddNumberFormat(format));
}

Variant ExcelRange::GetHorizontalAlignment(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return CommonLong(handle_, range_, Attribute::kHorizontalAlignment);
}

void ExcelRange::PutHorizontalAlignment(const Variant& value) {
  // General, left, centre, right, fill, justify, centre across the selection, distributed.
  static constexpr std::array<std::int32_t, 8> kKnown = {kGeneral, -4131, -4108, -4152,
                                                         5,        -4130, 7,     -4117};
  PutAlignment(handle_.sheet(), range_, Attribute::kHorizontalAlignment, value, kKnown);
}

Variant ExcelRange::GetVerticalAlignment(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return CommonLong(handle_, range_, Attribute::kVerticalAlignment);
}

void ExcelRange::PutVerticalAlignment(const Variant& value) {
  // Bottom, top, centre, justify, distributed.
  static constexpr std::array<std::int32_t, 5> kKnown = {kBottom, -4160, -4108, -4130, -4117};
  PutAlignment(handle_.sheet(), range_, Attribute::kVerticalAlignment, value, kKnown);
}

Variant ExcelRange::GetWrapText(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return CommonBoolean(handle_, range_, Attribute::kWrapText);
}

void ExcelRange::PutWrapText(const Variant& value) {
  handle_.sheet().SetLook(range_, Attribute::kWrapText, value.ToBoolean(DefaultLocale()) ? 1 : 0);
}

Variant ExcelRange::GetColumnWidth(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  const auto& widths = handle_.sheet().column_widths();
  const auto width_of = [&](std::int32_t column) {
    const auto width = widths.find(column);
    return width == widths.end() ? kDefaultColumnWidth : width->second;
  };
  const double width = width_of(range_.first_column);
  for (std::int32_t column = range_.first_column; column <= range_.last_column; ++column) {
    if (width_of(column) != width) {
      return {};
    }
  }
  return width;
}

void ExcelRange::PutColumnWidth(const Variant& value) {
  const double width = value.ToDouble(DefaultLocale());
  if (!(width >= 0 && width <= kWidestColumn)) {
    RaiseRefused("A column is 0 to 255 characters wide");
  }
  Sheet& sheet = handle_.sheet();
  for (std::int32_t column = range_.first_column; column <= range_.last_column; ++column) {
    sheet.SetColumnWidth(column, width);
  }
}

Variant ExcelRange::GetInterior(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  handle_.sheet();
  return platform::MakeRef<ExcelInterior>(handle_, range_);
}

Variant ExcelRange::GetFont(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  handle_.sheet();
  return platform::MakeRef<ExcelFont>(handle_, range_);
}

Variant ExcelRange::Select(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  if (!handle_.IsActive()) {
    RaiseRefused("A range can be selected only on the active sheet; " +
                 Quoted(handle_.sheet().name()) + " is not");
  }
  handle_.sheet().set_selection(range_);
  return true;
}

}  // namespace nimbrel::spreadsheet
