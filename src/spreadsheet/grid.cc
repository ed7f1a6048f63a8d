#include "spreadsheet/grid.h"

#include <algorithm>
#include <tuple>

namespace nimbrel::spreadsheet {
namespace {

/// One side of a range: a cell, or a column or a row alone, where the other number is 0.
struct Corner {
  std::int32_t row = 0;
  std::int32_t column = 0;
};

bool IsLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

void SkipDollar(std::string_view& text) {
  if (!text.empty() && text.front() == '$') {
    text.remove_prefix(1);
  }
}

/// Takes letters from the front; 0 if there are none, a number past the sheet if they name no
/// column.
std::int32_t TakeColumn(std::string_view& text) {
  std::int32_t column = 0;
  while (!text.empty() && IsLetter(text.front())) {
    const int letter = (text.front() | 0x20) - 'a' + 1;
    column = std::min(column * 26 + letter, kColumns + 1);
    text.remove_prefix(1);
  }
  return column;
}

std::int32_t TakeRow(std::string_view& text) {
  std::int32_t row = 0;
  while (!text.empty() && IsDigit(text.front())) {
    row = std::min(row * 10 + (text.front() - '0'), kRows + 1);
    text.remove_prefix(1);
  }
  return row;
}

std::optional<Corner> ParseCorner(std::string_view text) {
  Corner corner;
  SkipDollar(text);
  corner.column = TakeColumn(text);
  const std::string_view before_row = text;
  if (corner.column > 0) {
    SkipDollar(text);
  }
  corner.row = TakeRow(text);
  const bool row_is_number = text.data() != before_row.data();
  if (!text.empty() || (row_is_number && corner.row == 0) || corner.row > kRows ||
      corner.column > kColumns || (corner.row == 0 && corner.column == 0)) {
    return std::nullopt;
  }
  return corner;
}

}  // namespace

std::optional<CellRange> ParseRange(std::string_view text) {
  const auto colon = text.find(':');
  if (colon == std::string_view::npos) {
    return ParseCell(text);
  }
  const auto first = ParseCorner(text.substr(0, colon));
  const auto last = ParseCorner(text.substr(colon + 1));
  if (!first || !last || (first->row == 0) != (last->row == 0) ||
      (first->column == 0) != (last->column == 0)) {
    return std::nullopt;
  }
  CellRange range = kWholeSheet;
  if (first->row > 0) {
    std::tie(range.first_row, range.last_row) = std::minmax(first->row, last->row);
  }
  if (first->column > 0) {
    std::tie(range.first_column, range.last_column) = std::minmax(first->column, last->column);
  }
  return range;
}

std::optional<CellRange> ParseCell(std::string_view text) {
  const auto corner = ParseCorner(text);
  if (!corner || corner->row == 0 || corner->column == 0) {
    return std::nullopt;
  }
  return OneCell(corner->row, corner->column);
}

std::string ColumnLetters(std::int32_t column) {
  std::string letters;
  for (; column > 0; column = (column - 1) / 26) {
    letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
  }
  return letters;
}

}  // namespace nimbrel::spreadsheet
