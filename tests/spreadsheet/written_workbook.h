#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>

#include "spreadsheet/text_coding.h"
#include "spreadsheet/workbook.h"
#include "spreadsheet/workbook_reader.h"
#include "spreadsheet/xlsx_writer.h"
#include "tests/support/workbooks/test_files.h"

namespace nimbrel::spreadsheet {

/// The bytes of the file that a workbook is written to.
inline std::string Write(const Workbook& workbook) {
  const TemporaryFolder folder;
  WriteXlsx(workbook, folder.File("w.xlsx"));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"w.xlsx"});
  return ReadBytes(folder.File("w.xlsx"));
}

/// The element of the first sheet that begins with `begin`, up to its ">".
inline std::string Element(const std::string& part, const std::string& begin) {
  const auto from = part.find(begin);
  return from == std::string::npos ? "" : part.substr(from, part.find('>', from) + 1 - from);
}

inline std::size_t CountOf(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    ++count;
  }
  return count;
}

inline Workbook OneTextBook(const std::string& text) {
  Workbook workbook;
  Sheet& sheet = workbook.AddSheet("s");
  sheet.Put({1, 1, kFormatOfPlace, workbook.AddText(text)});
  return workbook;
}

inline std::string TextReadBack(const std::string& text) {
  const Workbook workbook = ReadWorkbookBytes(Write(OneTextBook(text)), "w");
  return workbook.Text(std::get<TextId>(workbook.sheets()[0]->Find(1, 1)->value));
}

/// The looks of a sheet as a program that opens the file finds them, taken from its XML: a cell's
/// own style, or its row's, or its column's.
class WrittenLooks {
 public:
  explicit WrittenLooks(const std::string& bytes)
      : sheet_(PartOf(bytes, "xl/worksheets/sheet1.xml")),
        styles_(PartOf(bytes, "xl/styles.xml")) {}

  std::string StyleOf(const std::string& cell) const {
    const auto range = ParseCell(cell);
    if (const std::string own = Element(sheet_, "<c r=\"" + cell + "\""); !own.empty()) {
      return Xf(own, "s");
    }
    const std::string row = Element(sheet_, "<row r=\"" + std::to_string(range->first_row) + "\"");
    if (row.find("customFormat=\"1\"") != std::string::npos) {
      return Xf(row, "s");
    }
    for (auto at = sheet_.find("<col "); at != std::string::npos;
         at = sheet_.find("<col ", at + 1)) {
      const std::string column = sheet_.substr(at, sheet_.find('>', at) + 1 - at);
      if (Number(column, "min") <= range->first_column &&
          Number(column, "max") >= range->first_column) {
        return Xf(column, "style");
      }
    }
    return Xf("", "s");
  }

  /// The fill of a cell as RRGGBB, empty without one.
  std::string FillOf(const std::string& cell) const {
    const std::string fill = Nth(styles_, "<fill>", "</fill>", Number(StyleOf(cell), "fillId"));
    const auto color = fill.find("<fgColor rgb=\"FF");
    return color == std::string::npos ? "" : fill.substr(color + 16, 6);
  }
  std::string FontOf(const std::string& cell) const {
    return Nth(styles_, "<font>", "</font>", Number(StyleOf(cell), "fontId"));
  }
  /// The number format of a cell if it is one of the file's own, else nothing.
  std::string FormatOf(const std::string& cell) const {
    const std::string id = std::to_string(Number(StyleOf(cell), "numFmtId"));
    const std::string format = Element(styles_, "<numFmt numFmtId=\"" + id + "\"");
    const auto code = format.find("formatCode=\"");
    return code == std::string::npos ? "" : format.substr(code + 12, format.rfind('"') - code - 12);
  }

 private:
  std::string Xf(const std::string& element, const std::string& attribute) const {
    const std::string list = styles_.substr(styles_.find("<cellXfs"));
    const int number =
        element.find(" " + attribute + "=\"") == std::string::npos ? 0 : Number(element, attribute);
    std::size_t at = list.find("<xf ");
    for (int i = 0; i < number; ++i) {
      at = list.find("<xf ", at + 1);
    }
    const auto next = list.find("<xf ", at + 1);
    return list.substr(at, std::min(next, list.find("</cellXfs>")) - at);
  }
  static int Number(const std::string& element, const std::string& attribute) {
    const auto at = element.find(" " + attribute + "=\"");
    return at == std::string::npos ? 0 : std::stoi(element.substr(at + attribute.size() + 3));
  }
  static std::string Nth(const std::string& text, const std::string& begin, const std::string& end,
                         int number) {
    std::size_t at = text.find(begin);
    for (int i = 0; i < number; ++i) {
      at = text.find(begin, at + 1);
    }
    return text.substr(at, text.find(end, at) - at);
  }

  std::string sheet_;
  std::string styles_;
};

}  // namespace nimbrel::spreadsheet
