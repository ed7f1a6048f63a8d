#pragma once

#include <cstdint>

namespace nimbrel::spreadsheet {

/// Colour indices count from 1 to this.
inline constexpr std::int32_t kPaletteSize = 56;

/// The colour of an index in Excel's default palette, as 0xRRGGBB. The index must be 1 to 56.
std::uint32_t PaletteColor(std::int32_t index);

}  // namespace nimbrel::spreadsheet
