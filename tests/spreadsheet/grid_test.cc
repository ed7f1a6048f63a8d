#include "spreadsheet/grid.h"

#include <gtest/gtest.h>

namespace nimbrel::spreadsheet {
namespace {

TEST(ParseRange, ABlockHasItsTwoCorners) {
  EXPECT_EQ(ParseRange("B5:H5"), (CellRange{5, 2, 5, 8}));
  EXPECT_EQ(ParseRange("b5:xfd1048576"), (CellRange{5, 2, kRows, kColumns}));
  EXPECT_EQ(ParseRange("$B$5:$H$5"), (CellRange{5, 2, 5, 8}));
}

TEST(ParseRange, TheCornersMayStandInAnyOrder) {
  EXPECT_EQ(ParseRange("H9:B5"), (CellRange{5, 2, 9, 8}));
  EXPECT_EQ(ParseRange("B9:H5"), (CellRange{5, 2, 9, 8}));
  EXPECT_EQ(ParseRange("H:B"), ParseRange("B:H"));
  EXPECT_EQ(ParseRange("5:1"), ParseRange("1:5"));
}

TEST(ParseRange, ACellIsARange) {
  EXPECT_EQ(ParseRange("B6"), OneCell(6, 2));
  EXPECT_EQ(ParseRange("XFD1048576"), OneCell(kRows, kColumns));
}

TEST(ParseRange, ColumnsReachFromTopToBottom) {
  EXPECT_EQ(ParseRange("C:D"), (CellRange{1, 3, kRows, 4}));
  EXPECT_EQ(ParseRange("E:E"), (CellRange{1, 5, kRows, 5}));
  EXPECT_EQ(ParseRange("$C:$D"), (CellRange{1, 3, kRows, 4}));
}

TEST(ParseRange, RowsReachFromEdgeToEdge) {
  EXPECT_EQ(ParseRange("1:5"), (CellRange{1, 1, 5, kColumns}));
  EXPECT_EQ(ParseRange("$1:$5"), (CellRange{1, 1, 5, kColumns}));
}

TEST(ParseRange, AnyOtherTextIsNone) {
  for (const char* text : {"",
                           ":",
                           "B",
                           "5",
                           "B5:",
                           ":B5",
                           "B5:H",
                           "B:5",
                           "5B",
                           "B0",
                           "0:5",
                           "B5:H5:J5",
                           "B5 :H5",
                           "XFE1",
                           "A1048577",
                           "A99999999999",
                           "AAAAAAAAAA1",
                           "B-5",
                           "$",
                           "B$",
                           "$$B5",
                           "Sheet1!B5",
                           "5:",
                           "1:1048577",
                           "B5,C6"}) {
    EXPECT_FALSE(ParseRange(text)) << text;
  }
}

TEST(ParseCell, OnlyACellIsOne) {
  EXPECT_EQ(ParseCell("AA10"), OneCell(10, 27));
  EXPECT_FALSE(ParseCell("A:A"));
  EXPECT_FALSE(ParseCell("A1:A2"));
  EXPECT_FALSE(ParseCell("1"));
}

TEST(ColumnLetters, EveryColumnReadsBack) {
  EXPECT_EQ(ColumnLetters(1), "A");
  EXPECT_EQ(ColumnLetters(26), "Z");
  EXPECT_EQ(ColumnLetters(27), "AA");
  EXPECT_EQ(ColumnLetters(78), "BZ");
  EXPECT_EQ(ColumnLetters(kColumns), "XFD");
  for (std::int32_t column = 1; column <= kColumns; ++column) {
    ASSERT_EQ(ParseCell(ColumnLetters(column) + "1"), OneCell(1, column));
  }
}

TEST(CellRange, CountsItsCells) {
  EXPECT_EQ((CellRange{5, 2, 6, 4}).CellCount(), 6);
  EXPECT_EQ(kWholeSheet.CellCount(), std::int64_t{1} << 34);
}

}  // namespace
}  // namespace nimbrel::spreadsheet
