#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "spreadsheet/grid.h"

namespace nimbrel::spreadsheet {

/// What can be set of how a cell looks. The values are the numbers that Excel has for them.
enum class Attribute : std::uint8_t {
  kNumberFormat,         // number of a format in the workbook
  kHorizontalAlignment,  // 1 general, -4131 left, -4108 centre, -4152 right, ...
  kVerticalAlignment,    // -4160 top, -4108 centre, -4107 bottom, ...
  kWrapText,             // 0 or 1
  kFillColor,            // 1 to 56 or kNone
  kFillPattern,          // kSolid or kNone
  kFontColor,            // 1 to 56 or kAutomatic
  kBold,                 // 0 or 1
};
inline constexpr std::size_t kAttributes = 8;

inline constexpr std::int32_t kNone = -4142;
inline constexpr std::int32_t kAutomatic = -4105;
inline constexpr std::int32_t kSolid = 1;
inline constexpr std::int32_t kGeneral = 1;
inline constexpr std::int32_t kBottom = -4107;

/// The whole look of a cell: the value of each attribute.
using Style = std::array<std::int32_t, kAttributes>;

inline constexpr Style kDefaultStyle = {0, kGeneral, kBottom, 0, kNone, kNone, kAutomatic, 0};

constexpr std::int32_t Of(const Style& style, Attribute attribute) {
  return style[static_cast<std::size_t>(attribute)];
}

/// How the cells of a sheet look: what has been set on which range, in the order of setting. A
/// whole column or sheet costs as much as a cell.
class Looks {
 public:
  /// Sets an attribute of all cells of a range.
  void Set(const CellRange& range, Attribute attribute, std::int32_t value);

  Style At(std::int32_t row, std::int32_t column) const;

  /// The value that all cells of the range have in common, if there is one.
  std::optional<std::int32_t> Common(const CellRange& range, Attribute attribute) const;

  /// The first rows, and the first columns, of the stretches within which all cells of a column,
  /// or of a row, look the same. Ascending, the first is 1.
  std::vector<std::int32_t> RowCuts() const;
  std::vector<std::int32_t> ColumnCuts() const;

 private:
  struct Setting {
    CellRange range;
    Attribute attribute;
    std::int32_t value;
  };

  std::int32_t At(std::int32_t row, std::int32_t column, Attribute attribute) const;

  std::vector<Setting> settings_;
};

}  // namespace nimbrel::spreadsheet
