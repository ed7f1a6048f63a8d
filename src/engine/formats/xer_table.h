#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/formats/format_error.h"

namespace nimbrel::engine {

/// A row of an XER table: fields separated by tabs, named by the table's heading. Values are
/// without surrounding spaces; a field that is missing at the end of the row, or a name that the
/// table does not have, is empty. Lives as long as the file it is from.
class XerRow {
 public:
  XerRow(const std::vector<std::string_view>& names, std::string_view text, std::int64_t line,
         const std::string& file);

  std::int64_t line() const { return line_; }
  std::string_view Text(std::string_view name) const;

  // Each raises FormatError, naming the row and the field, where the value is not what it must be.

  /// A value that must be there.
  std::string_view Required(std::string_view name) const;
  /// Y or N; `fallback` if the field is empty.
  bool Flag(std::string_view name, bool fallback) const;
  /// A number; `fallback` if the field is empty.
  double Number(std::string_view name, double fallback) const;
  /// A number of hours within 200 years either way as minutes; `fallback` if the field is empty.
  std::int32_t Minutes(std::string_view name, std::int32_t fallback) const;
  /// Minutes of a duration, which is not below 0 either.
  std::int32_t Duration(std::string_view name, std::int32_t fallback) const;
  /// A date from 1950 to 2150, absent if the field is empty.
  Instant Date(std::string_view name) const;
  /// A date as Date has it, in the form of a finish: midnight is 24:00 of the day before.
  Instant FinishDate(std::string_view name) const;

  [[noreturn]] void Fail(std::string_view message) const;
  /// Raises "expected EXPECTED in FIELD, found VALUE".
  [[noreturn]] void FailField(std::string_view name, std::string_view expected) const;

 private:
  const std::vector<std::string_view>* names_;
  std::vector<std::string_view> values_;
  std::int64_t line_;
  const std::string* file_;
};

/// The tables of an XER file. Keeps the text; rows are split when they are visited.
class XerFile {
 public:
  /// Takes the file apart. Raises FormatError where lines are not what they must be and where the
  /// file ends within a row. `name` stands in errors.
  XerFile(std::string_view bytes, std::string name);
  XerFile(const XerFile&) = delete;
  XerFile& operator=(const XerFile&) = delete;

  const std::string& name() const { return name_; }
  /// Whether the last line says that the file is complete.
  bool has_end_mark() const { return has_end_mark_; }
  std::int64_t line_count() const { return line_count_; }

  /// Calls `visit` with each row of a table in turn; with none if there is no such table.
  template <class Visit>
  void ForEach(std::string_view table, Visit&& visit) const {
    const auto found = tables_.find(table);
    if (found == tables_.end()) {
      return;
    }
    for (const Line& line : found->second.rows) {
      visit(XerRow(found->second.names, line.text, line.number, name_));
    }
  }

  /// Names of the tables, in alphabetical order.
  std::vector<std::string_view> TableNames() const;
  /// How many rows of a table have `value` or nothing in a field; all if the table does not have
  /// the field. Rows of any shape are counted.
  std::int64_t CountRows(std::string_view table, std::string_view field,
                         std::string_view value) const;

 private:
  struct Line {
    std::string_view text;
    std::int64_t number = 0;
  };
  struct Table {
    std::vector<std::string_view> names;
    std::vector<Line> rows;
  };

  void ReadHeader(std::string_view line) const;
  /// Takes one line in; `table` is the one that rows belong to, `open` the row that text which
  /// starts no line of its own goes on with.
  void ReadLine(const Line& line, Table*& table, Line*& open);
  void CheckLastRow(const Table* table) const;
  [[noreturn]] void Fail(std::int64_t line, std::string_view message) const;

  std::string name_;
  std::string text_;
  std::map<std::string_view, Table> tables_;
  bool has_end_mark_ = false;
  std::int64_t line_count_ = 0;
};

}  // namespace nimbrel::engine
