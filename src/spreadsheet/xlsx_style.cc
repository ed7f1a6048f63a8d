#include "spreadsheet/xlsx_style.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <utility>

#include "platform/runtime_error.h"
#include "spreadsheet/palette.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

using Alignments = std::span<const std::pair<std::int32_t, std::uint8_t>>;

constexpr std::array<std::pair<std::int32_t, std::uint8_t>, 7> kHorizontal = {{
    {-4131, LXW_ALIGN_LEFT},
    {-4108, LXW_ALIGN_CENTER},
    {-4152, LXW_ALIGN_RIGHT},
    {5, LXW_ALIGN_FILL},
    {-4130, LXW_ALIGN_JUSTIFY},
    {7, LXW_ALIGN_CENTER_ACROSS},
    {-4117, LXW_ALIGN_DISTRIBUTED},
}};
// Bottom is the default and needs no entry.
constexpr std::array<std::pair<std::int32_t, std::uint8_t>, 4> kVertical = {{
    {-4160, LXW_ALIGN_VERTICAL_TOP},
    {-4108, LXW_ALIGN_VERTICAL_CENTER},
    {-4130, LXW_ALIGN_VERTICAL_JUSTIFY},
    {-4117, LXW_ALIGN_VERTICAL_DISTRIBUTED},
}};

void SetAlignment(lxw_format* format, Alignments alignments, std::int32_t value) {
  const auto* const found =
      std::find_if(alignments.data(), alignments.data() + alignments.size(),
                   [&](const auto& alignment) { return alignment.first == value; });
  if (found != alignments.data() + alignments.size()) {
    format_set_align(format, found->second);
  }
}

lxw_color_t Color(std::int32_t index) {
  const std::uint32_t color = PaletteColor(index);
  return color == 0 ? static_cast<lxw_color_t>(LXW_COLOR_BLACK) : color;
}

void SetNumberFormat(lxw_format* format, const std::string& text) {
  const std::string escaped = EscapeXlsxText(text);
  if (escaped.size() >= LXW_FORMAT_FIELD_LEN) {
    throw platform::RuntimeError(platform::kApplicationDefined,
                                 "The number format is too long to be written: " + Quoted(text));
  }
  format_set_num_format(format, escaped.c_str());
}

}  // namespace

lxw_format* XlsxStyles::Format(const Style& style) {
  const auto [entry, is_new] = formats_.try_emplace(style, nullptr);
  if (!is_new) {
    return entry->second;
  }
  lxw_format* const format = workbook_add_format(&file_);
  if (format == nullptr) {
    throw platform::RuntimeError(platform::kApplicationDefined, "Out of memory");
  }
  if (const auto number_format = Of(style, Attribute::kNumberFormat); number_format != 0) {
    SetNumberFormat(format, workbook_.NumberFormat(number_format));
  }
  SetAlignment(format, kHorizontal, Of(style, Attribute::kHorizontalAlignment));
  SetAlignment(format, kVertical, Of(style, Attribute::kVerticalAlignment));
  if (Of(style, Attribute::kWrapText) != 0) {
    format_set_text_wrap(format);
  }
  if (Of(style, Attribute::kFillPattern) == kSolid) {
    format_set_pattern(format, LXW_PATTERN_SOLID);
    if (const auto color = Of(style, Attribute::kFillColor); color > 0) {
      // What a solid pattern shows is its foreground.
      format_set_fg_color(format, Color(color));
    }
  }
  if (const auto color = Of(style, Attribute::kFontColor); color > 0) {
    format_set_font_color(format, Color(color));
  }
  if (Of(style, Attribute::kBold) != 0) {
    format_set_bold(format);
  }
  entry->second = format;
  return format;
}

}  // namespace nimbrel::spreadsheet
