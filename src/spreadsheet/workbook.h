#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "spreadsheet/grid.h"
#include "spreadsheet/looks.h"

namespace nimbrel::spreadsheet {

/// The error values that a cell can hold, by the codes that files and programs have for them.
enum class CellError : std::uint8_t {
  kNull = 0x00,
  kDivision = 0x07,
  kValue = 0x0F,
  kReference = 0x17,
  kName = 0x1D,
  kNumber = 0x24,
  kNotAvailable = 0x2A,
};

/// How a cell shows an error: "#N/A".
std::string_view ErrorText(CellError error);

/// What a cell holds. Text belongs to the workbook's store and is named by its number there.
struct TextId {
  std::uint32_t value = 0;
  friend bool operator==(const TextId&, const TextId&) = default;
};
/// A formula whose value nobody has worked out.
struct NotComputed {
  friend bool operator==(const NotComputed&, const NotComputed&) = default;
};
using CellValue = std::variant<double, bool, CellError, TextId, NotComputed>;

/// Stands for "as the place is formatted" where a cell's own number format is asked for.
inline constexpr std::uint16_t kFormatOfPlace = 0xFFFF;

/// A cell that holds a value; an empty cell is none.
struct Cell {
  std::int32_t row = 1;
  std::uint16_t column = 1;
  /// Number of the workbook's number format that the value brought along, or kFormatOfPlace.
  std::uint16_t format = kFormatOfPlace;
  CellValue value;
};

/// A sheet: values, looks, and how a window shows it. Not the keeper of the texts (see Workbook).
class Sheet {
 public:
  explicit Sheet(std::string name) : name_(std::move(name)) {}

  const std::string& name() const { return name_; }
  void set_name(std::string name) { name_ = std::move(name); }

  /// All cells that hold a value, by row and then by column.
  const std::vector<Cell>& cells() const { return cells_; }
  /// The cell at a place, or null if it is empty. Lives until the next change of the sheet.
  const Cell* Find(std::int32_t row, std::int32_t column) const;
  /// Puts a cell in its place, over what is there.
  void Put(const Cell& cell);
  void Clear(std::int32_t row, std::int32_t column);

  /// Takes cells in any order, for readers of files. Until SortCells the sheet is not in order.
  void Append(const Cell& cell) { cells_.push_back(cell); }
  /// Puts what was appended in order; of several cells for a place the last one stays.
  void SortCells();

  const Looks& looks() const { return looks_; }
  /// Sets an attribute of a range. A number format replaces the ones that cells brought along.
  void SetLook(const CellRange& range, Attribute attribute, std::int32_t value);

  /// Widths of columns, in characters, where they are not the default.
  const std::map<std::int32_t, double>& column_widths() const { return column_widths_; }
  void SetColumnWidth(std::int32_t column, double characters) {
    column_widths_[column] = characters;
  }

  const CellRange& selection() const { return selection_; }
  void set_selection(const CellRange& selection) { selection_ = selection; }

  /// Percent, 10 to 400.
  int zoom() const { return zoom_; }
  void set_zoom(int percent) { zoom_ = percent; }

 private:
  std::vector<Cell>::iterator Place(std::int32_t row, std::int32_t column);

  std::string name_;
  std::vector<Cell> cells_;
  Looks looks_;
  std::map<std::int32_t, double> column_widths_;
  CellRange selection_;
  int zoom_ = 100;
};

/// The width of a column that nobody has set, in characters.
inline constexpr double kDefaultColumnWidth = 8.43;

/// Sheets, and the texts and number formats that their cells refer to.
class Workbook {
 public:
  Workbook();

  std::vector<std::shared_ptr<Sheet>>& sheets() { return sheets_; }
  const std::vector<std::shared_ptr<Sheet>>& sheets() const { return sheets_; }
  Sheet& AddSheet(std::string name);

  /// The sheet that a window shows, counted from 0.
  std::size_t active_sheet() const { return active_sheet_; }
  void set_active_sheet(std::size_t index) { active_sheet_ = index; }

  /// Keeps a text (UTF-8) and gives it a number. The same text may be kept more than once.
  TextId AddText(std::string text);
  const std::string& Text(TextId id) const { return texts_[id.value]; }
  std::size_t text_count() const { return texts_.size(); }

  /// The number of a number format, the same for the same text. 0 is "General". Raises error 1004
  /// past 65,000 different ones.
  std::uint16_t AddNumberFormat(std::string_view format);
  const std::string& NumberFormat(std::int32_t id) const {
    return formats_[static_cast<std::size_t>(id)].text;
  }
  /// Whether the format shows a date or a time.
  bool IsDate(std::int32_t format) const {
    return formats_[static_cast<std::size_t>(format)].is_date;
  }

  /// The format that a cell's value shows in: its own, or that of its place.
  std::int32_t NumberFormatOf(const Sheet& sheet, const Cell& cell) const;

  /// Whether day counts begin at 1 January 1904 instead of at 30 December 1899.
  bool date_1904() const { return date_1904_; }
  void set_date_1904(bool date_1904) { date_1904_ = date_1904; }

 private:
  struct Format {
    std::string text;
    bool is_date;
  };

  std::vector<std::shared_ptr<Sheet>> sheets_;
  std::size_t active_sheet_ = 0;
  std::vector<std::string> texts_;
  std::vector<Format> formats_;
  std::unordered_map<std::string, std::uint16_t> format_ids_;
  bool date_1904_ = false;
};

/// Days from 30 December 1899 to 1 January 1904.
inline constexpr double kDays1904 = 1462.0;

}  // namespace nimbrel::spreadsheet
