#pragma once

#include <cstdint>
#include <string_view>

namespace nimbrel::spreadsheet {

/// Whether a number format shows a date or a time: it has d, m, y, h or s outside quotes and
/// brackets, not behind a backslash, and not as the character that "_" or "*" take.
bool IsDateFormat(std::string_view format);

/// Whether Excel would take the text for a number format: not empty, up to 255 characters, quotes
/// and brackets closed, nothing but a complete pair behind a backslash, "_" or "*".
bool IsNumberFormat(std::string_view format);

/// The number format that files mean by a number without saying what it is, in its English (United
/// States) form. Empty for numbers that have no such format; the ones that depend on the country
/// are dates.
std::string_view BuiltInNumberFormat(std::int32_t id);

}  // namespace nimbrel::spreadsheet
