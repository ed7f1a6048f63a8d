#pragma once

#include <string>
#include <vector>

namespace nimbrel::cli {

/// Columns that a text takes in a terminal, counting each character of its UTF-8 as one.
std::size_t DisplayWidth(const std::string& text);

/// The text, cut to `width` characters if it is longer; the last one is then a point.
std::string CutTo(const std::string& text, std::size_t width);

/// The text with blanks behind it up to `width`.
std::string Padded(const std::string& text, std::size_t width);

/// Rows of text in columns that are as wide as they have to be.
class TextTable {
 public:
  enum class Align { kLeft, kRight };

  /// One alignment a column.
  explicit TextTable(std::vector<Align> columns) : columns_(std::move(columns)) {}

  /// Missing cells at the end are empty. The first row is the heading if `AddRule` follows it.
  void AddRow(std::vector<std::string> cells);
  /// A line under the rows so far.
  void AddRule();

  /// The lines, each with `indent` blanks before it and none behind.
  std::string Text(int indent = 0) const;

 private:
  struct Row {
    std::vector<std::string> cells;
    bool is_rule = false;
  };

  std::vector<Align> columns_;
  std::vector<Row> rows_;
};

}  // namespace nimbrel::cli
