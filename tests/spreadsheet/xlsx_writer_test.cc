#include "spreadsheet/xlsx_writer.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cmath>
#include <set>

#include "spreadsheet/text_coding.h"
#include "spreadsheet/workbook_reader.h"
#include "tests/spreadsheet/excel_fixture.h"

namespace nimbrel::spreadsheet {
namespace {

std::string Write(const Workbook& workbook) {
  const TemporaryFolder folder;
  WriteXlsx(workbook, folder.File("w.xlsx"));
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"w.xlsx"});
  return ReadBytes(folder.File("w.xlsx"));
}

/// The element of the first sheet that begins with `begin`, up to its ">".
std::string Element(const std::string& part, const std::string& begin) {
  const auto from = part.find(begin);
  return from == std::string::npos ? "" : part.substr(from, part.find('>', from) + 1 - from);
}

std::size_t CountOf(const std::string& text, const std::string& what) {
  std::size_t count = 0;
  for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
    ++count;
  }
  return count;
}

Workbook OneTextBook(const std::string& text) {
  Workbook workbook;
  Sheet& sheet = workbook.AddSheet("s");
  sheet.Put({1, 1, kFormatOfPlace, workbook.AddText(text)});
  return workbook;
}

std::string TextReadBack(const std::string& text) {
  const Workbook workbook = ReadWorkbookBytes(Write(OneTextBook(text)), "w");
  return workbook.Text(std::get<TextId>(workbook.sheets()[0]->Find(1, 1)->value));
}

TEST(WriteXlsx, ValuesReadBack) {
  Workbook workbook;
  workbook.AddSheet("first");
  Sheet& sheet = workbook.AddSheet("<second> & \"ünïque\"");
  sheet.Put({1, 1, kFormatOfPlace, workbook.AddText("rain")});
  sheet.Put({kRows, kColumns, kFormatOfPlace, 0.1});
  sheet.Put({2, 2, workbook.AddNumberFormat("dd mmm yyyy"), 46477.0});
  sheet.Put({2, 3, kFormatOfPlace, true});
  const Workbook read = ReadWorkbookBytes(Write(workbook), "w");
  ASSERT_EQ(read.sheets().size(), 2U);
  EXPECT_EQ(read.sheets()[0]->name(), "first");
  EXPECT_TRUE(read.sheets()[0]->cells().empty());
  const Sheet& back = *read.sheets()[1];
  EXPECT_EQ(back.name(), "<second> & \"ünïque\"");
  EXPECT_EQ(std::get<double>(back.Find(kRows, kColumns)->value), 0.1);
  EXPECT_EQ(std::get<bool>(back.Find(2, 3)->value), true);
  const Cell* const date = back.Find(2, 2);
  EXPECT_EQ(std::get<double>(date->value), 46477.0);
  EXPECT_TRUE(read.IsDate(read.NumberFormatOf(back, *date)));
}

TEST(WriteXlsx, TextThatXmlCannotHoldReadsBack) {
  for (const std::string& text :
       {std::string("a\x01z"), std::string("two\r\nlines\tand a tab"), std::string("_x0041_"),
        std::string("  blanks  "), std::string("a\0b", 3), std::string("<&>\"'"),
        std::string("🌧")}) {
    EXPECT_EQ(TextReadBack(text), text);
  }
  EXPECT_EQ(TextReadBack("bad \xFF byte"), "bad \uFFFD byte");
}

TEST(WriteXlsx, AnyTextReadsBackAsFarAsItIsText) {
  const bool holds = rc::check("texts survive", [] {
    const auto bytes = *rc::gen::container<std::string>(rc::gen::oneOf(
        rc::gen::arbitrary<char>(), rc::gen::element('_', 'x', '0', 'A', '\n', '\r')));
    RC_ASSERT(TextReadBack(bytes + "x") == ValidUtf8(bytes + "x"));
  });
  EXPECT_TRUE(holds);
}

TEST(WriteXlsx, WhatIsNoNumberIsWrittenAsItShows) {
  Workbook workbook;
  Sheet& sheet = workbook.AddSheet("s");
  sheet.Put({1, 1, kFormatOfPlace, std::nan("")});
  sheet.Put({1, 2, kFormatOfPlace, CellError::kNotAvailable});
  const Workbook read = ReadWorkbookBytes(Write(workbook), "w");
  const auto text = [&](std::int32_t column) {
    return read.Text(std::get<TextId>(read.sheets()[0]->Find(1, column)->value));
  };
  EXPECT_EQ(text(1), "#NUM!");
  EXPECT_EQ(text(2), "#N/A");
}

TEST(WriteXlsx, DatesOf1904AreWrittenAsTheSameDays) {
  Workbook workbook;
  workbook.set_date_1904(true);
  Sheet& sheet = workbook.AddSheet("s");
  sheet.Put({1, 1, workbook.AddNumberFormat("m/d/yyyy"), 0.0});
  sheet.Put({1, 2, kFormatOfPlace, 0.0});
  const Workbook read = ReadWorkbookBytes(Write(workbook), "w");
  EXPECT_FALSE(read.date_1904());
  // 1 January 1904 counted from 30 December 1899: four years of 365 days and two days.
  EXPECT_EQ(std::get<double>(read.sheets()[0]->Find(1, 1)->value), 1462.0);
  EXPECT_EQ(std::get<double>(read.sheets()[0]->Find(1, 2)->value), 0.0);
}

TEST(WriteXlsx, NumbersKeepSixteenDigits) {
  const bool holds = rc::check("numbers survive but for their last bit", [] {
    const auto number = *rc::gen::arbitrary<double>();
    RC_PRE(std::isfinite(number));
    Workbook workbook;
    workbook.AddSheet("s").Put({1, 1, kFormatOfPlace, number});
    const Workbook read = ReadWorkbookBytes(Write(workbook), "w");
    const double back = std::get<double>(read.sheets()[0]->Find(1, 1)->value);
    // The seventeenth digit is rounded: half a unit of the sixteenth, at worst of 1.000...
    RC_ASSERT(std::abs(back - number) <= 5e-16 * std::abs(number));
  });
  EXPECT_TRUE(holds);
}

TEST(WriteXlsx, TheSameWorkbookGivesTheSameBytes) {
  const Workbook workbook = OneTextBook("rain");
  EXPECT_EQ(Write(workbook), Write(workbook));
}

TEST(WriteXlsx, AFailureLeavesWhatWasThere) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"), "before");
  Workbook none;
  EXPECT_EQ(ErrorOf([&] { WriteXlsx(none, folder.File("w.xlsx")); }).number,
            platform::kApplicationDefined);
  Workbook refused;
  refused.AddSheet("a/b");
  EXPECT_EQ(ErrorOf([&] { WriteXlsx(refused, folder.File("w.xlsx")); }).number,
            platform::kApplicationDefined);
  Workbook too_long = OneTextBook(std::string(40'000, 'x'));
  const Raised raised = ErrorOf([&] { WriteXlsx(too_long, folder.File("w.xlsx")); });
  EXPECT_EQ(raised.number, platform::kApplicationDefined);
  EXPECT_NE(raised.text.find("sheet 's', row 1, column A"), std::string::npos) << raised.text;
  Workbook huge;
  huge.AddSheet("s").SetLook(*ParseRange("A1:Z1000000"), Attribute::kBold, 1);
  EXPECT_EQ(ErrorOf([&] { WriteXlsx(huge, folder.File("w.xlsx")); }).number,
            platform::kApplicationDefined);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"w.xlsx"});
  EXPECT_EQ(ReadBytes(folder.File("w.xlsx")), "before");
}

TEST(WriteXlsx, EveryNameThatASheetMayHaveReadsBack) {
  // These take more characters in the file than a sheet's name may have.
  const std::vector<std::string> names = {
      "_x0041__x0041__x0041__x0041_abc", "_x0041_", "_x005F_x0041_", std::string(31, '_'),
      "=1+1 & <Böe> \"雨\" 🌧",      " blank "};
  Workbook workbook;
  for (const std::string& name : names) {
    workbook.AddSheet(name);
  }
  const Workbook back = ReadWorkbookBytes(Write(workbook), "w");
  ASSERT_EQ(back.sheets().size(), names.size());
  for (std::size_t i = 0; i < names.size(); ++i) {
    EXPECT_EQ(back.sheets()[i]->name(), names[i]);
  }
}

TEST(WriteXlsx, ALinkIsFollowedAndStays) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("old.xlsx"), "before");
  std::filesystem::create_symlink("old.xlsx", folder.File("link.xlsx"));
  std::filesystem::create_symlink("link.xlsx", folder.File("far.xlsx"));
  WriteXlsx(OneTextBook("x"), folder.File("far.xlsx"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("far.xlsx")));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("link.xlsx")));
  EXPECT_FALSE(std::filesystem::is_symlink(folder.File("old.xlsx")));
  EXPECT_TRUE(ReadBytes(folder.File("old.xlsx")).starts_with("PK"));
  // Also to a file that is not there yet.
  std::filesystem::create_directory(folder.File("sub"));
  std::filesystem::create_symlink("sub/new.xlsx", folder.File("new.xlsx"));
  WriteXlsx(OneTextBook("x"), folder.File("new.xlsx"));
  EXPECT_TRUE(std::filesystem::is_symlink(folder.File("new.xlsx")));
  EXPECT_TRUE(ReadBytes(folder.File("sub/new.xlsx")).starts_with("PK"));
}

TEST(WriteXlsx, TheNewFileHasThePermissionsOfTheOldOne) {
  using std::filesystem::perms;
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"), "before");
  const auto own = perms::owner_read | perms::owner_write;
  std::filesystem::permissions(folder.File("w.xlsx"), own);
  WriteXlsx(OneTextBook("x"), folder.File("w.xlsx"));
  EXPECT_EQ(std::filesystem::status(folder.File("w.xlsx")).permissions(), own);
}

TEST(WriteXlsx, WhatTheUserStopsLeavesWhatWasThere) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"), "before");
  Workbook workbook = OneTextBook("x");
  workbook.AddSheet("t");
  // Asked before each sheet, before and after the file is made, and before it is put in place.
  for (int stop_at = 1; stop_at <= 5; ++stop_at) {
    int asked = 0;
    const Raised raised = ErrorOf(
        [&] { WriteXlsx(workbook, folder.File("w.xlsx"), [&] { return ++asked == stop_at; }); });
    EXPECT_EQ(raised.number, kStoppedByUser);
    EXPECT_EQ(asked, stop_at);
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"w.xlsx"});
    EXPECT_EQ(ReadBytes(folder.File("w.xlsx")), "before");
  }
  WriteXlsx(workbook, folder.File("w.xlsx"), [] { return false; });
  EXPECT_NE(ReadBytes(folder.File("w.xlsx")), "before");
}

TEST(WriteXlsx, WhatNoReaderTakesIsNotWritten) {
  const TemporaryFolder folder;
  Workbook workbook;
  workbook.AddSheet("a/b");
  EXPECT_EQ(ErrorOf([&] { WriteXlsx(workbook, folder.File("w.xlsx")); }).text,
            folder.File("w.xlsx") +
                ": cannot be written: the name of sheet 1, 'a/b', has one of "
                "the characters : \\ / ? * [ ]");
}

// The library needs files of its own while it puts the package together.
TEST(WriteXlsx, AFailureOfTheLibraryIsToldOnce) {
  const TemporaryFolder folder;
  const Workbook workbook = OneTextBook("x");
  ::testing::internal::CaptureStderr();
  const int free_descriptor = ::dup(STDERR_FILENO);
  ::close(free_descriptor);
  rlimit before{};
  ::getrlimit(RLIMIT_NOFILE, &before);
  // One for the part of the file, one for standard error as it was, one for the package.
  const rlimit few{static_cast<rlim_t>(free_descriptor) + 3, before.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &few);
  const Raised raised = ErrorOf([&] { WriteXlsx(workbook, folder.File("w.xlsx")); });
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(raised.number, platform::kApplicationDefined);
  EXPECT_TRUE(raised.text.starts_with(folder.File("w.xlsx") + ": cannot be written: the file: "))
      << raised.text;
  EXPECT_EQ(folder.Names(), std::vector<std::string>{});
}

TEST(WriteXlsx, AFormulaWithoutAValueIsWrittenAsNothing) {
  Workbook workbook = OneTextBook("x");
  workbook.sheets()[0]->Put({2, 1, kFormatOfPlace, NotComputed()});
  EXPECT_EQ(ReadWorkbookBytes(Write(workbook), "w").sheets()[0]->Find(2, 1), nullptr);
}

TEST(WriteXlsx, APlaceThatCannotBeWrittenIsNamed) {
  const TemporaryFolder folder;
  const std::string path = folder.File("none/w.xlsx");
  const Raised raised = ErrorOf([&] { WriteXlsx(OneTextBook("x"), path); });
  EXPECT_EQ(raised.number, platform::kApplicationDefined);
  EXPECT_EQ(raised.text, path + ": cannot be written: No such file or directory");
  std::filesystem::create_directory(folder.File("w.xlsx"));
  EXPECT_EQ(ErrorOf([&] { WriteXlsx(OneTextBook("x"), folder.File("w.xlsx")); }).number,
            platform::kApplicationDefined);
  EXPECT_EQ(folder.Names(), std::vector<std::string>{"w.xlsx"});
}

/// A sheet as the export of weather data makes it, by the same calls.
class ExportedSheet : public Excel {
 protected:
  ExportedSheet() {
    MakeTitle();
    for (int column = 2; column <= 8; ++column) {
      sheet->GetRef("Columns", {column})->Put("ColumnWidth", column == 2 ? 20 : 13);
    }
    Select("C:D")->Put("NumberFormat", "dd mmm yyyy");
    Select("E:E")->Put("NumberFormat", "0.00%");
    sheet->GetRef("Cells")->Call("Select");
    Fill(excel->GetRef("Selection"), 15, 1);
    Fill(Select("B:H"), -4142, -4142);
    Fill(Select("1:5"), 15, 1);
    for (int column = 2; column <= 8; ++column) {
      At(sheet, 5, column)->Put("Value", "caption");
    }
    Fill(Select("B5:H5"), 41, 1);
    excel->GetRef("Selection")->GetRef("Font")->Put("Colorindex", 2);
    excel->GetRef("Selection")->GetRef("Font")->Put("Bold", true);
    At(sheet, 6, 2)->Put("Value", "January");
    At(sheet, 6, 3)->Put("Value", platform::MakeDate(2027, 1, 1));
    At(sheet, 6, 5)->Put("Value", 0.5);
    Select("B6:B6");
    const TemporaryFolder folder;
    viewer.save_as = folder.File("w.xlsx");
    excel->Put("Visible", true);
    bytes = ReadBytes(viewer.save_as);
  }

  void MakeTitle() {
    const Object book = AddBook();
    excel->GetRef("ActiveWindow")->Put("Zoom", 80);
    sheet = book->GetRef("Sheets", {1});
    sheet->GetRef("Columns")->Put("VerticalAlignment", -4160);
    sheet->GetRef("Columns")->Put("WrapText", true);
    for (int row = 1; row <= 3; ++row) {
      At(sheet, row, 1)->Put("Value", "title");
      At(sheet, row, 1)->Put("WrapText", false);
    }
    sheet->Call("Select");
    sheet->Put("Name", "Spring");
  }

  Object Select(const char* range) {
    sheet->GetRef("Range", {range})->Call("Select");
    return excel->GetRef("Selection");
  }
  static void Fill(const Object& range, int color, int pattern) {
    range->GetRef("Interior")->Put("Colorindex", color);
    range->GetRef("Interior")->Put("Pattern", pattern);
  }

  Object sheet;
  std::string bytes;
};

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

TEST_F(ExportedSheet, AGreyFrameStandsAroundAWhiteArea) {
  const WrittenLooks looks(bytes);
  for (const char* grey :
       {"A1", "A6", "A1048576", "I6", "XFD1048576", "XFD1", "B1", "C4", "H4", "A5", "I5", "XFD5"}) {
    EXPECT_EQ(looks.FillOf(grey), "C0C0C0") << grey;
  }
  for (const char* white : {"B6", "C6", "D7", "E6", "H6", "H1048576", "B1048576"}) {
    EXPECT_EQ(looks.FillOf(white), "") << white;
  }
}

TEST_F(ExportedSheet, TheHeaderIsBlueWithWhiteBoldText) {
  const WrittenLooks looks(bytes);
  for (const char* cell : {"B5", "C5", "E5", "H5"}) {
    EXPECT_EQ(looks.FillOf(cell), "3366FF") << cell;
    EXPECT_NE(looks.FontOf(cell).find("<b/>"), std::string::npos) << cell;
    EXPECT_NE(looks.FontOf(cell).find("FFFFFFFF"), std::string::npos) << cell;
  }
  for (const char* cell : {"A5", "I5", "B4", "B6"}) {
    EXPECT_EQ(looks.FontOf(cell).find("<b/>"), std::string::npos) << cell;
  }
}

TEST_F(ExportedSheet, EveryCellStandsAtTheTopAndWrapsButForTheTitle) {
  const WrittenLooks looks(bytes);
  for (const char* cell : {"A4", "A1048576", "B1", "B6", "C6", "E9", "H5", "I5", "XFD1048576"}) {
    EXPECT_NE(looks.StyleOf(cell).find("vertical=\"top\""), std::string::npos) << cell;
    EXPECT_NE(looks.StyleOf(cell).find("wrapText=\"1\""), std::string::npos) << cell;
  }
  for (const char* cell : {"A1", "A2", "A3"}) {
    EXPECT_NE(looks.StyleOf(cell).find("vertical=\"top\""), std::string::npos) << cell;
    EXPECT_EQ(looks.StyleOf(cell).find("wrapText"), std::string::npos) << cell;
  }
}

TEST_F(ExportedSheet, ColumnsHaveTheirNumberFormats) {
  const WrittenLooks looks(bytes);
  EXPECT_EQ(looks.FormatOf("C6"), "dd mmm yyyy");
  EXPECT_EQ(looks.FormatOf("D1048576"), "dd mmm yyyy");
  EXPECT_EQ(looks.FormatOf("E7"), "0.00%");
  EXPECT_EQ(looks.FormatOf("B6"), "");
  EXPECT_EQ(looks.FormatOf("F6"), "");
}

TEST_F(ExportedSheet, RangesOfColumnsDoNotOverlap) {
  const std::string part = PartOf(bytes, "xl/worksheets/sheet1.xml");
  int last = 0;
  std::size_t count = 0;
  for (auto at = part.find("<col "); at != std::string::npos; at = part.find("<col ", at + 1)) {
    const int from = std::stoi(part.substr(part.find("min=\"", at) + 5));
    const int to = std::stoi(part.substr(part.find("max=\"", at) + 5));
    EXPECT_EQ(from, last + 1);
    EXPECT_GE(to, from);
    last = to;
    ++count;
  }
  EXPECT_EQ(last, kColumns);
  EXPECT_EQ(count, 9U) << "A, B to H, and the rest";
  EXPECT_EQ(CountOf(part, "customWidth=\"1\""), 7U);
}

TEST_F(ExportedSheet, TheSheetOpensAtTheFirstDataCellAtItsZoom) {
  const std::string part = PartOf(bytes, "xl/worksheets/sheet1.xml");
  EXPECT_NE(part.find("activeCell=\"B6\" sqref=\"B6\""), std::string::npos);
  EXPECT_NE(part.find("zoomScale=\"80\""), std::string::npos);
  EXPECT_NE(PartOf(bytes, "xl/workbook.xml").find("name=\"Spring\""), std::string::npos);
}

TEST_F(ExportedSheet, AWholeSheetOfGreyMakesNoLargeFile) {
  EXPECT_LT(bytes.size(), 16U << 10);
  EXPECT_LT(CountOf(PartOf(bytes, "xl/worksheets/sheet1.xml"), "<c "), 100U);
}

TEST(WriteXlsx, LooksOfAnyRangesAreThoseOfTheModel) {
  const bool holds = rc::check("every cell looks as it was made to", [] {
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("s");
    const auto stretch = [](std::int32_t size) {
      const auto first = *rc::gen::inRange(1, 8);
      const auto last = *rc::gen::inRange(first, 9);
      return std::pair(*rc::gen::element(1, first), last == 8 ? size : last);
    };
    for (int i = *rc::gen::inRange(0, 7); i > 0; --i) {
      const auto rows = stretch(kRows);
      const auto columns = stretch(kColumns);
      // A block that is high and wide but reaches no edge would only make a large file.
      const auto color = *rc::gen::element(kNone, 3, 41);
      const CellRange range{rows.first, columns.first, rows.second, columns.second};
      sheet.SetLook(range, Attribute::kFillColor, color);
      sheet.SetLook(range, Attribute::kFillPattern, color == kNone ? kNone : kSolid);
    }
    for (int i = *rc::gen::inRange(0, 3); i > 0; --i) {
      sheet.SetColumnWidth(*rc::gen::inRange(1, 10), 20);
    }
    sheet.Put({2, 2, kFormatOfPlace, 1.0});
    const WrittenLooks looks(Write(workbook));
    for (int row = 1; row <= 9; ++row) {
      for (int column = 1; column <= 9; ++column) {
        const auto color = Of(sheet.looks().At(row, column), Attribute::kFillColor);
        const std::string expected = color == 3 ? "FF0000" : color == 41 ? "3366FF" : "";
        RC_ASSERT(looks.FillOf(ColumnLetters(column) + std::to_string(row)) == expected);
      }
    }
  });
  EXPECT_TRUE(holds);
}

}  // namespace
}  // namespace nimbrel::spreadsheet
