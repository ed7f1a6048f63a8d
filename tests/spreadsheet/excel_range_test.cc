#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "platform/date.h"
#include "platform/runtime_error.h"
#include "tests/spreadsheet/excel_fixture.h"

namespace nimbrel::spreadsheet {
namespace {

using platform::Date;
using platform::MakeDate;

class ExcelRangeObject : public Excel {
 protected:
  Variant ValueAfter(const Variant& value, const char* format = "General") {
    At(sheet, 1, 1)->Put("NumberFormat", format);
    At(sheet, 1, 1)->Put("Value", value);
    return At(sheet, 1, 1)->Get("Value");
  }
  Object Range(const char* text) { return sheet->GetRef("Range", {text}); }

  Object book = AddBook();
  Object sheet = book->GetRef("Sheets", {1});
};

TEST_F(ExcelRangeObject, AnEmptyCellHasAnEmptyValue) {
  EXPECT_TRUE(At(sheet, 1, 1)->Get("Value").IsEmpty());
  EXPECT_TRUE(At(sheet, kRows, kColumns)->Get("Value").IsEmpty());
}

TEST_F(ExcelRangeObject, EveryNumberIsADouble) {
  EXPECT_EQ(ValueAfter(5), Variant(5.0));
  EXPECT_EQ(ValueAfter(0.25), Variant(0.25));
  EXPECT_EQ(ValueAfter(true), Variant(true));
}

TEST_F(ExcelRangeObject, TextStaysTheTextThatItIs) {
  for (const char* text : {"rain", "12", "1/2", "50%", "007", "=A1", "'quoted", " a ", "January"}) {
    EXPECT_EQ(ValueAfter(text), Variant(text));
  }
}

TEST_F(ExcelRangeObject, EmptyTextLeavesNothing) {
  ValueAfter("rain");
  EXPECT_TRUE(ValueAfter("").IsEmpty());
  ValueAfter(1);
  EXPECT_TRUE(ValueAfter(Variant()).IsEmpty());
}

TEST_F(ExcelRangeObject, ADateComesBackAsADate) {
  const Date date = MakeDate(2027, 3, 31);
  EXPECT_EQ(ValueAfter(date, "dd mmm yyyy"), Variant(date));
  EXPECT_EQ(Text(At(sheet, 1, 1)->Get("NumberFormat")), "dd mmm yyyy");
}

TEST_F(ExcelRangeObject, ADateBringsItsFormatIntoACellThatHasNone) {
  const Date date = MakeDate(2027, 3, 31);
  EXPECT_EQ(ValueAfter(date), Variant(date));
  EXPECT_EQ(Text(At(sheet, 1, 1)->Get("NumberFormat")), "m/d/yyyy");
  At(sheet, 1, 1)->Put("Value", 2);
  EXPECT_EQ(At(sheet, 1, 1)->Get("Value"), Variant(Date{2}));
}

TEST_F(ExcelRangeObject, TheFormatTellsADateFromANumber) {
  EXPECT_EQ(ValueAfter(MakeDate(2027, 3, 31), "0.00"), Variant(46477.0));
  EXPECT_EQ(ValueAfter(46477, "dd mmm yyyy"), Variant(MakeDate(2027, 3, 31)));
  At(sheet, 1, 1)->Put("NumberFormat", "0.00%");
  EXPECT_EQ(At(sheet, 1, 1)->Get("Value"), Variant(46477.0));
}

TEST_F(ExcelRangeObject, ANumberWithoutADateStaysANumber) {
  EXPECT_EQ(ValueAfter(-1, "dd mmm yyyy"), Variant(-1.0));
  EXPECT_EQ(ValueAfter(1e7, "dd mmm yyyy"), Variant(1e7));
}

TEST_F(ExcelRangeObject, ValuesThatACellCannotHoldAreRefused) {
  const Object cell = At(sheet, 6, 2);
  for (const Variant& value :
       {Variant(std::nan("")), Variant(std::numeric_limits<double>::infinity()),
        Variant(MakeDate(1899, 1, 1)), Variant(std::string(32'768, 'x'))}) {
    const Raised raised = ErrorOf([&] { cell->Put("Value", value); });
    EXPECT_EQ(raised.number, platform::kApplicationDefined);
    EXPECT_TRUE(raised.text.starts_with("sheet 'Sheet1', row 6, column B: ")) << raised.text;
  }
  EXPECT_NO_THROW(cell->Put("Value", std::string(32'767, 'x')));
}

TEST_F(ExcelRangeObject, AnObjectIsNoValueOfACell) {
  EXPECT_EQ(ErrorOf([&] { At(sheet, 1, 1)->Put("Value", sheet); }).number,
            platform::kMemberNotFound);
}

TEST_F(ExcelRangeObject, ABlockTakesAValueInEveryCell) {
  Range("B2:C3")->Put("Value", "x");
  EXPECT_EQ(At(sheet, 2, 2)->Get("Value"), Variant("x"));
  EXPECT_EQ(At(sheet, 3, 3)->Get("Value"), Variant("x"));
  EXPECT_TRUE(At(sheet, 4, 3)->Get("Value").IsEmpty());
  EXPECT_EQ(ErrorOf([&] { Range("B2:C3")->Get("Value"); }).number, platform::kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { sheet->GetRef("Cells")->Put("Value", 1); }).number,
            platform::kApplicationDefined);
}

TEST_F(ExcelRangeObject, CellsOutsideTheSheetAreRefused) {
  for (const auto& [row, column] :
       {std::pair{0, 1}, {1, 0}, {-1, 1}, {kRows + 1, 1}, {1, kColumns + 1}}) {
    EXPECT_EQ(ErrorOf([&] {
                sheet->Get("Cells", {row, column});
              }).number,
              platform::kApplicationDefined);
  }
}

TEST_F(ExcelRangeObject, RangesThatAreNoneAreRefused) {
  for (const char* text : {"", "B", "5", ":5", "5:", "B5:H", "XFE1", "A0"}) {
    EXPECT_EQ(ErrorOf([&] { sheet->Get("Range", {text}); }).number, platform::kApplicationDefined)
        << text;
    EXPECT_EQ(ErrorOf([&] { excel->Get("Range", {text}); }).number, platform::kApplicationDefined)
        << text;
  }
}

TEST_F(ExcelRangeObject, ColumnsAreFoundByNumberAndByLetters) {
  sheet->GetRef("Columns", {2})->Put("ColumnWidth", 20);
  sheet->GetRef("Columns", {"C:D"})->Put("ColumnWidth", 13);
  sheet->GetRef("Columns", {"E"})->Put("ColumnWidth", 5);
  EXPECT_EQ(At(sheet, 9, 2)->Get("ColumnWidth"), Variant(20.0));
  EXPECT_EQ(At(sheet, 9, 4)->Get("ColumnWidth"), Variant(13.0));
  EXPECT_EQ(At(sheet, 9, 5)->Get("ColumnWidth"), Variant(5.0));
  EXPECT_EQ(At(sheet, 9, 1)->Get("ColumnWidth"), Variant(8.43));
  for (const Variant& columns : {Variant(0), Variant(kColumns + 1), Variant("B5:H5"),
                                 Variant("1:5"), Variant("XFE"), Variant("")}) {
    EXPECT_EQ(ErrorOf([&] { sheet->Get("Columns", {columns}); }).number,
              platform::kApplicationDefined);
  }
}

TEST_F(ExcelRangeObject, AllColumnsAreTheWholeSheet) {
  sheet->GetRef("Columns")->Put("VerticalAlignment", -4160);
  EXPECT_EQ(At(sheet, kRows, kColumns)->Get("VerticalAlignment"), Variant(-4160));
  EXPECT_EQ(sheet->GetRef("Cells")->Get("VerticalAlignment"), Variant(-4160));
}

TEST_F(ExcelRangeObject, WidthsThatNoColumnHasAreRefused) {
  EXPECT_EQ(ErrorOf([&] { At(sheet, 1, 1)->Put("ColumnWidth", -1); }).number,
            platform::kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { At(sheet, 1, 1)->Put("ColumnWidth", 255.5); }).number,
            platform::kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { At(sheet, 1, 1)->Put("ColumnWidth", std::nan("")); }).number,
            platform::kApplicationDefined);
}

TEST_F(ExcelRangeObject, CellsThatDifferHaveNothingInCommon) {
  At(sheet, 1, 1)->Put("WrapText", true);
  At(sheet, 1, 1)->GetRef("Font")->Put("ColorIndex", 3);
  At(sheet, 1, 1)->Put("NumberFormat", "0.00%");
  At(sheet, 1, 1)->Put("ColumnWidth", 10);
  const Object pair = Range("A1:B1");
  EXPECT_TRUE(pair->Get("WrapText").IsEmpty());
  EXPECT_TRUE(pair->Get("NumberFormat").IsEmpty());
  EXPECT_TRUE(pair->Get("ColumnWidth").IsEmpty());
  EXPECT_TRUE(pair->GetRef("Font")->Get("ColorIndex").IsEmpty());
  EXPECT_EQ(pair->GetRef("Font")->Get("Bold"), Variant(false));
}

TEST_F(ExcelRangeObject, AFormatThatAValueBroughtIsADifference) {
  At(sheet, 1, 1)->Put("Value", MakeDate(2027, 1, 1));
  EXPECT_TRUE(Range("A1:B1")->Get("NumberFormat").IsEmpty());
}

TEST_F(ExcelRangeObject, NumberFormatsThatAreNoneAreRefused) {
  for (const char* format : {"", "\"open", "[open", "0\\"}) {
    EXPECT_EQ(ErrorOf([&] { At(sheet, 1, 1)->Put("NumberFormat", format); }).number,
              platform::kApplicationDefined)
        << format;
  }
}

TEST_F(ExcelRangeObject, AlignmentsThatAreNoneAreRefused) {
  const Object cell = At(sheet, 1, 1);
  cell->Put("HorizontalAlignment", -4108);
  EXPECT_EQ(cell->Get("HorizontalAlignment"), Variant(-4108));
  EXPECT_EQ(ErrorOf([&] { cell->Put("HorizontalAlignment", -4160); }).number,
            platform::kApplicationDefined);
  EXPECT_EQ(ErrorOf([&] { cell->Put("VerticalAlignment", -4131); }).number,
            platform::kApplicationDefined);
}

TEST_F(ExcelRangeObject, AColourFillsWhatHadNone) {
  const Object interior = At(sheet, 1, 1)->GetRef("Interior");
  EXPECT_EQ(interior->Get("Colorindex"), Variant(-4142));
  interior->Put("Colorindex", 15);
  EXPECT_EQ(interior->Get("Pattern"), Variant(1));
  interior->Put("Pattern", -4142);
  EXPECT_EQ(interior->Get("Colorindex"), Variant(-4142));
  interior->Put("Colorindex", 41);
  interior->Put("Colorindex", -4142);
  EXPECT_EQ(interior->Get("Pattern"), Variant(-4142));
}

TEST_F(ExcelRangeObject, ColoursOutsideThePaletteAreRefused) {
  const Object cell = At(sheet, 1, 1);
  for (const char* part : {"Interior", "Font"}) {
    EXPECT_NO_THROW(cell->GetRef(part)->Put("ColorIndex", 1));
    EXPECT_NO_THROW(cell->GetRef(part)->Put("ColorIndex", 56));
    EXPECT_EQ(ErrorOf([&] { cell->GetRef(part)->Put("ColorIndex", 57); }).number,
              platform::kApplicationDefined);
    EXPECT_EQ(ErrorOf([&] { cell->GetRef(part)->Put("ColorIndex", -1); }).number,
              platform::kApplicationDefined);
    EXPECT_EQ(cell->GetRef(part)->Get("ColorIndex"), Variant(56));
  }
  EXPECT_EQ(ErrorOf([&] { cell->GetRef("Interior")->Put("Pattern", 99); }).number,
            platform::kApplicationDefined);
}

TEST_F(ExcelRangeObject, AFontBecomesAutomaticAgain) {
  const Object font = At(sheet, 1, 1)->GetRef("Font");
  EXPECT_EQ(font->Get("ColorIndex"), Variant(-4105));
  font->Put("ColorIndex", 2);
  font->Put("ColorIndex", -4105);
  EXPECT_EQ(font->Get("ColorIndex"), Variant(-4105));
}

TEST_F(ExcelRangeObject, AnErrorInACellIsNoValueAndSaysWhereItIs) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"),
             XlsxFile{.sheets = {"<row r='7'><c r='C7' t='e'><v>#N/A</v></c></row>"}}.Bytes());
  const Object opened = excel->GetRef("Workbooks")->CallRef("open", {folder.File("w.xlsx")});
  const Raised raised = ErrorOf([&] { At(opened->GetRef("Sheets", {1}), 7, 3)->Get("Value"); });
  EXPECT_EQ(raised.number, platform::kTypeMismatch);
  EXPECT_EQ(raised.text, folder.File("w.xlsx") +
                             ": sheet 'Sheet1', row 7, column C: the cell holds the error #N/A");
}

TEST_F(ExcelRangeObject, OnlyAReadCellMustHaveBeenComputed) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"), XlsxFile{.sheets = {"<row r='1'><c r='A1'><f>B1</f></c>"
                                                        "<c r='B1'><v>5</v></c></row>"}}
                                        .Bytes());
  const Object book = excel->GetRef("Workbooks")->CallRef("open", {folder.File("w.xlsx")});
  const Object opened = book->GetRef("Sheets", {1});
  EXPECT_EQ(At(opened, 1, 2)->Get("Value"), Variant(5.0));
  const Raised raised = ErrorOf([&] { At(opened, 1, 1)->Get("Value"); });
  EXPECT_EQ(raised.number, platform::kApplicationDefined);
  EXPECT_EQ(raised.text, folder.File("w.xlsx") +
                             ": sheet 'Sheet1', row 1, column A: the formula has no stored value");
}

TEST_F(ExcelRangeObject, DatesOf1904AreTheSameDays) {
  const TemporaryFolder folder;
  WriteBytes(folder.File("w.xlsx"),
             XlsxFile{.sheets = {"<row r='1'><c r='A1' s='1'><v>45015</v></c>"
                                 "<c r='B1'><v>45015</v></c></row>"},
                      .styles = "<cellXfs><xf/><xf numFmtId='14'/></cellXfs>",
                      .workbook_properties = "<workbookPr date1904='1'/>"}
                 .Bytes());
  const Object opened =
      excel->GetRef("Workbooks")->CallRef("open", {folder.File("w.xlsx")})->GetRef("Sheets", {1});
  // 45015 and 1462 days from 30 December 1899 on.
  EXPECT_EQ(At(opened, 1, 1)->Get("Value"), Variant(MakeDate(2027, 3, 31)));
  EXPECT_EQ(At(opened, 1, 2)->Get("Value"), Variant(45015.0));
  At(opened, 1, 1)->Put("Value", MakeDate(2027, 4, 1));
  EXPECT_EQ(At(opened, 1, 1)->Get("Value"), Variant(MakeDate(2027, 4, 1)));
}

}  // namespace
}  // namespace nimbrel::spreadsheet
