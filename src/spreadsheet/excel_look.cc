#include "spreadsheet/excel_look.h"

#include <array>

#include "platform/locale.h"
#include "spreadsheet/palette.h"

namespace nimbrel::spreadsheet {
namespace {

using platform::DefaultLocale;
using platform::Variant;

[[noreturn]] void RaiseColorIndex(std::int32_t index) {
  RaiseRefused("There is no colour with the index " + std::to_string(index));
}

}  // namespace

Variant CommonLong(const SheetHandle& handle, const CellRange& range, Attribute attribute) {
  const auto value = handle.sheet().looks().Common(range, attribute);
  return value ? Variant(*value) : Variant();
}

Variant CommonBoolean(const SheetHandle& handle, const CellRange& range, Attribute attribute) {
  const auto value = handle.sheet().looks().Common(range, attribute);
  return value ? Variant(*value != 0) : Variant();
}

std::span<const Member<ExcelInterior>> ExcelInterior::Members() {
  static constexpr std::array<Member<ExcelInterior>, 2> kMembers = {{
      {"ColorIndex", &ExcelInterior::GetColorIndex, &ExcelInterior::PutColorIndex},
      {"Pattern", &ExcelInterior::GetPattern, &ExcelInterior::PutPattern},
  }};
  return kMembers;
}

Variant ExcelInterior::GetColorIndex(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return CommonLong(handle_, range_, Attribute::kFillColor);
}

void ExcelInterior::PutColorIndex(const Variant& value) {
  const std::int32_t index = value.ToLong(DefaultLocale());
  const bool clears = index == kNone || index == kAutomatic || index == 0;
  if (!clears && (index < 1 || index > kPaletteSize)) {
    RaiseColorIndex(index);
  }
  Sheet& sheet = handle_.sheet();
  sheet.SetLook(range_, Attribute::kFillColor, clears ? kNone : index);
  sheet.SetLook(range_, Attribute::kFillPattern, clears ? kNone : kSolid);
}

Variant ExcelInterior::GetPattern(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return CommonLong(handle_, range_, Attribute::kFillPattern);
}

void ExcelInterior::PutPattern(const Variant& value) {
  const std::int32_t pattern = value.ToLong(DefaultLocale());
  if (pattern != kSolid && pattern != kNone) {
    RaiseRefused("The pattern " + std::to_string(pattern) + " is not known");
  }
  Sheet& sheet = handle_.sheet();
  sheet.SetLook(range_, Attribute::kFillPattern, pattern);
  if (pattern == kNone) {
    sheet.SetLook(range_, Attribute::kFillColor, kNone);
  }
}

std::span<const Member<ExcelFont>> ExcelFont::Members() {
  static constexpr std::array<Member<ExcelFont>, 2> kMembers = {{
      {"ColorIndex", &ExcelFont::GetColorIndex, &ExcelFont::PutColorIndex},
      {"Bold", &ExcelFont::GetBold, &ExcelFont::PutBold},
  }};
  return kMembers;
}

Variant ExcelFont::GetColorIndex(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return CommonLong(handle_, range_, Attribute::kFontColor);
}

void ExcelFont::PutColorIndex(const Variant& value) {
  const std::int32_t index = value.ToLong(DefaultLocale());
  const bool clears = index == kAutomatic || index == 0;
  if (!clears && (index < 1 || index > kPaletteSize)) {
    RaiseColorIndex(index);
  }
  handle_.sheet().SetLook(range_, Attribute::kFontColor, clears ? kAutomatic : index);
}

Variant ExcelFont::GetBold(Arguments arguments) {
  RequireArguments(arguments, 0, 0);
  return CommonBoolean(handle_, range_, Attribute::kBold);
}

void ExcelFont::PutBold(const Variant& value) {
  handle_.sheet().SetLook(range_, Attribute::kBold, value.ToBoolean(DefaultLocale()) ? 1 : 0);
}

}  // namespace nimbrel::spreadsheet
