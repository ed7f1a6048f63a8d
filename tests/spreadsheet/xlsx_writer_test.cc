#include "spreadsheet/xlsx_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "spreadsheet/text_coding.h"
#include "spreadsheet/workbook_reader.h"
#include "tests/spreadsheet/excel_fixture.h"
#include "tests/spreadsheet/written_workbook.h"

namespace nimbrel::spreadsheet {
namespace {

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

}  // namespace
}  // namespace nimbrel::spreadsheet
