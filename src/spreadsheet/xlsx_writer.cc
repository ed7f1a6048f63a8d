#include "spreadsheet/xlsx_writer.h"

#include <xlsxwriter.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>
#include <new>
#include <system_error>
#include <vector>

#include "platform/files.h"
#include "platform/runtime_error.h"
#include "spreadsheet/limits.h"
#include "spreadsheet/text_coding.h"
#include "spreadsheet/workbook_reader.h"
#include "spreadsheet/xlsx_style.h"

namespace nimbrel::spreadsheet {
namespace {

// 1 January 2000: the time of writing must not get into the bytes.
constexpr time_t kCreated = 946'684'800;

[[noreturn]] void RaiseWriteError(const std::string& path, const std::string& reason) {
  throw platform::RuntimeError(platform::kApplicationDefined,
                               path + ": cannot be written: " + reason);
}

std::string WithoutPrefix(const std::string& text, const std::string& prefix) {
  return text.starts_with(prefix) ? text.substr(prefix.size()) : text;
}

void Check(lxw_error error, const std::string& path, const std::string& place) {
  if (error != LXW_NO_ERROR) {
    RaiseWriteError(path, place + ": " + lxw_strerror(error));
  }
}

/// The file that a path means, behind all links, also where that is not there yet.
std::filesystem::path BehindLinks(std::filesystem::path path) {
  constexpr int kMostLinks = 40;  // as the system has it
  std::error_code error;
  for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(path, error); ++i) {
    const auto target = std::filesystem::read_symlink(path, error);
    path = path.parent_path() / target;
  }
  return path;
}

/// Raises error 1004 for `path` if `target`, the file that it means, is something else than a file.
void CheckPlace(const std::filesystem::path& target, const std::string& path) {
  std::error_code error;
  const auto there = std::filesystem::status(target, error);
  if (std::filesystem::exists(there) && !std::filesystem::is_regular_file(there)) {
    RaiseWriteError(path, "there is something in its place that is no file");
  }
}

struct FreeWorkbook {
  void operator()(lxw_workbook* file) const { lxw_workbook_free(file); }
};

lxw_row_t Row(std::int32_t row) {
  return static_cast<lxw_row_t>(row - 1);
}
lxw_col_t Column(std::int32_t column) {
  return static_cast<lxw_col_t>(column - 1);
}

/// A run of columns or rows, edges included.
struct Stretch {
  std::int32_t first;
  std::int32_t last;
};

std::vector<Stretch> Stretches(const std::vector<std::int32_t>& cuts, std::int32_t size) {
  std::vector<Stretch> stretches;
  for (std::size_t i = 0; i < cuts.size(); ++i) {
    stretches.push_back({cuts[i], i + 1 < cuts.size() ? cuts[i + 1] - 1 : size});
  }
  return stretches;
}

/// Writes one sheet. What reaches to the bottom of the sheet goes into the columns' formats, what
/// reaches to its right edge into the rows', and the rest into cells without a value.
class SheetWriter {
 public:
  SheetWriter(const Workbook& workbook, const Sheet& sheet, lxw_worksheet& target,
              XlsxStyles& styles, const std::string& path)
      : workbook_(workbook),
        sheet_(sheet),
        target_(target),
        styles_(styles),
        path_(path),
        columns_(Stretches(sheet.looks().ColumnCuts(), kColumns)) {}

  void Write() {
    WriteColumns();
    const auto rows = Stretches(sheet_.looks().RowCuts(), kRows);
    for (const Stretch& stretch : rows) {
      if (stretch.last < kRows) {
        WriteRows(stretch);
      }
    }
    for (const Cell& cell : sheet_.cells()) {
      WriteCell(cell);
    }
    const CellRange& selection = sheet_.selection();
    worksheet_set_selection(&target_, Row(selection.first_row), Column(selection.first_column),
                            Row(selection.last_row), Column(selection.last_column));
    worksheet_set_zoom(&target_, static_cast<std::uint16_t>(sheet_.zoom()));
  }

 private:
  Style ColumnStyle(std::int32_t column) const { return sheet_.looks().At(kRows, column); }

  void WriteColumns() {
    // The ranges must not overlap: a column with a width of its own is a range of its own.
    const auto& widths = sheet_.column_widths();
    for (const Stretch& stretch : columns_) {
      std::int32_t first = stretch.first;
      for (auto width = widths.lower_bound(first); width != widths.end(); ++width) {
        if (width->first > stretch.last) {
          break;
        }
        WriteColumnRange({first, width->first - 1}, kDefaultColumnWidth);
        WriteColumnRange({width->first, width->first}, width->second);
        first = width->first + 1;
      }
      WriteColumnRange({first, stretch.last}, kDefaultColumnWidth);
    }
  }

  void WriteColumnRange(const Stretch& range, double width) {
    if (range.first > range.last) {
      return;
    }
    const Style style = ColumnStyle(range.first);
    if (style == kDefaultStyle && width == kDefaultColumnWidth) {
      return;
    }
    Check(worksheet_set_column(&target_, Column(range.first), Column(range.last), width,
                               style == kDefaultStyle ? nullptr : styles_.Format(style)),
          path_, "columns of sheet " + Quoted(sheet_.name()));
  }

  void WriteRows(const Stretch& rows) {
    const Style right = sheet_.looks().At(rows.first, kColumns);
    const bool has_row_format = right != ColumnStyle(kColumns);
    struct Block {
      Stretch columns;
      lxw_format* format;
    };
    std::vector<Block> blocks;
    for (const Stretch& columns : columns_) {
      const Style style = sheet_.looks().At(rows.first, columns.first);
      if (style != (has_row_format ? right : ColumnStyle(columns.first))) {
        blocks.push_back({columns, styles_.Format(style)});
      }
    }
    for (std::int32_t row = rows.first; row <= rows.last; ++row) {
      if (has_row_format) {
        Count(1);
        Check(worksheet_set_row(&target_, Row(row), LXW_DEF_ROW_HEIGHT, styles_.Format(right)),
              path_, "row " + std::to_string(row) + " of sheet " + Quoted(sheet_.name()));
      }
      for (const Block& block : blocks) {
        for (std::int32_t column = block.columns.first; column <= block.columns.last; ++column) {
          Count(1);
          Check(worksheet_write_blank(&target_, Row(row), Column(column), block.format), path_,
                PlaceText(row, column));
        }
      }
    }
  }

  /// Keeps a look on a huge block from making a huge file.
  void Count(std::uint64_t records) {
    records_ += records;
    if (records_ > kMaxCells) {
      RaiseWriteError(path_, "the looks of sheet " + Quoted(sheet_.name()) + " take over " +
                                 std::to_string(kMaxCells) + " cells");
    }
  }

  void WriteCell(const Cell& cell) {
    Style style = sheet_.looks().At(cell.row, cell.column);
    style[static_cast<std::size_t>(Attribute::kNumberFormat)] =
        workbook_.NumberFormatOf(sheet_, cell);
    lxw_format* const format = styles_.Format(style);
    const lxw_row_t row = Row(cell.row);
    const lxw_col_t column = Column(cell.column);
    lxw_error error = LXW_NO_ERROR;
    if (const auto* number = std::get_if<double>(&cell.value)) {
      // The file counts days from 1899.
      const bool is_date = workbook_.IsDate(Of(style, Attribute::kNumberFormat));
      const double shift = is_date && workbook_.date_1904() ? kDays1904 : 0.0;
      error = std::isfinite(*number)
                  ? worksheet_write_number(&target_, row, column, *number + shift, format)
                  : WriteText(row, column, std::string(ErrorText(CellError::kNumber)), format);
    } else if (const auto* truth = std::get_if<bool>(&cell.value)) {
      error = worksheet_write_boolean(&target_, row, column, *truth ? 1 : 0, format);
    } else if (const auto* text = std::get_if<TextId>(&cell.value)) {
      error = WriteText(row, column, EscapeXlsxText(workbook_.Text(*text)), format);
    } else if (const auto* fault = std::get_if<CellError>(&cell.value)) {
      error = WriteText(row, column, std::string(ErrorText(*fault)), format);
    }
    Check(error, path_, PlaceText(cell.row, cell.column));
  }

  lxw_error WriteText(lxw_row_t row, lxw_col_t column, const std::string& text,
                      lxw_format* format) {
    return worksheet_write_string(&target_, row, column, text.c_str(), format);
  }

  std::string PlaceText(std::int32_t row, std::int32_t column) const {
    return "sheet " + Quoted(sheet_.name()) + ", row " + std::to_string(row) + ", column " +
           ColumnLetters(column);
  }

  const Workbook& workbook_;
  const Sheet& sheet_;
  lxw_worksheet& target_;
  XlsxStyles& styles_;
  const std::string& path_;
  std::vector<Stretch> columns_;
  std::uint64_t records_ = 0;
};

/// Gives a sheet its name. The library counts the characters of a name as it stands in the file, so
/// it refuses some that are short enough but hold what looks like an escape there.
void SetName(lxw_worksheet& sheet, const std::string& name) {
  const std::string escaped = EscapeXlsxText(name);
  auto* const own = static_cast<char*>(std::malloc(escaped.size() + 1));
  if (own == nullptr) {
    throw std::bad_alloc();
  }
  std::memcpy(own, escaped.c_str(), escaped.size() + 1);
  std::free(sheet.name);
  sheet.name = own;  // the library frees it
}

void WriteSheets(const Workbook& workbook, lxw_workbook& file, const std::string& path,
                 const std::function<void()>& check_stop) {
  XlsxStyles styles(file, workbook);
  std::vector<lxw_worksheet*> targets;
  for (std::size_t index = 0; index < workbook.sheets().size(); ++index) {
    check_stop();
    lxw_worksheet* const target = workbook_add_worksheet(&file, nullptr);
    if (target == nullptr) {
      RaiseWriteError(path, "out of memory");
    }
    SheetWriter(workbook, *workbook.sheets()[index], *target, styles, path).Write();
    if (index == workbook.active_sheet()) {
      worksheet_activate(target);
    }
    targets.push_back(target);
  }
  for (std::size_t index = 0; index < targets.size(); ++index) {
    SetName(*targets[index], workbook.sheets()[index]->name());
  }
}

void WriteInPlace(const Workbook& workbook, const std::string& path,
                  const std::function<void()>& check_stop) {
  const std::filesystem::path target = BehindLinks(path);
  CheckPlace(target, path);
  platform::PartialFile partial(target.string());
  std::unique_ptr<lxw_workbook, FreeWorkbook> file(workbook_new(partial.CPath().c_str()));
  if (!file) {
    RaiseWriteError(path, "out of memory");
  }
  lxw_doc_properties properties{};
  properties.created = kCreated;
  Check(workbook_set_properties(file.get(), &properties), path, "properties");
  WriteSheets(workbook, *file, path, check_stop);
  check_stop();
  {
    // The library prints its errors, beside giving them back.
    const platform::SilentErrors silent;
    Check(workbook_close(file.release()), path, "the file");
  }
  check_stop();
  // The library does not notice when its own temporary files run out of space.
  try {
    ReadWorkbook(partial.path());
  } catch (const platform::RuntimeError& error) {
    RaiseWriteError(path, WithoutPrefix(error.text(), partial.path() + ": "));
  }
  check_stop();
  partial.PutInPlace();
}

}  // namespace

void WriteXlsx(const Workbook& workbook, const std::string& path,
               const std::function<bool()>& is_stopped) {
  if (workbook.sheets().empty()) {
    RaiseWriteError(path, "the workbook has no sheet");
  }
  const auto check_stop = [&] {
    if (is_stopped && is_stopped()) {
      throw platform::RuntimeError(kStoppedByUser, path + ": stopped by the user");
    }
  };
  try {
    WriteInPlace(workbook, path, check_stop);
  } catch (const std::system_error& error) {
    RaiseWriteError(path, error.code().message());
  }
}

}  // namespace nimbrel::spreadsheet
