#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nimbrel::spreadsheet {

/// The size of a sheet. Rows and columns count from 1.
inline constexpr std::int32_t kRows = 1'048'576;
inline constexpr std::int32_t kColumns = 16'384;

/// A block of cells, edges included. Always on the sheet and never empty.
struct CellRange {
  std::int32_t first_row = 1;
  std::int32_t first_column = 1;
  std::int32_t last_row = 1;
  std::int32_t last_column = 1;

  bool IsOneCell() const { return first_row == last_row && first_column == last_column; }
  bool Contains(std::int32_t row, std::int32_t column) const {
    return row >= first_row && row <= last_row && column >= first_column && column <= last_column;
  }
  bool Contains(const CellRange& other) const {
    return Contains(other.first_row, other.first_column) &&
           Contains(other.last_row, other.last_column);
  }
  /// Number of cells, up to 2^34.
  std::int64_t CellCount() const {
    return std::int64_t{last_row - first_row + 1} * (last_column - first_column + 1);
  }

  friend bool operator==(const CellRange&, const CellRange&) = default;
};

inline constexpr CellRange kWholeSheet{1, 1, kRows, kColumns};

constexpr CellRange OneCell(std::int32_t row, std::int32_t column) {
  return {row, column, row, column};
}

/// The range of a text such as "B5:H5", "B6", "C:D", "1:5", in any case, with or without "$". The
/// corners may be given in any order. Nothing for any other text and outside the sheet.
std::optional<CellRange> ParseRange(std::string_view text);

/// The row and column of a text such as "B6". Nothing for any other text and outside the sheet.
std::optional<CellRange> ParseCell(std::string_view text);

/// The letters of a column from 1 to kColumns: A to XFD.
std::string ColumnLetters(std::int32_t column);

}  // namespace nimbrel::spreadsheet
