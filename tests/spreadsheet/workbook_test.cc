#include "spreadsheet/workbook.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "spreadsheet/palette.h"
#include "spreadsheet/sheet_name.h"

namespace nimbrel::spreadsheet {
namespace {

std::int32_t LookAt(const Looks& looks, std::int32_t row, std::int32_t column, Attribute what) {
  return Of(looks.At(row, column), what);
}

TEST(Looks, WhatNobodyHasSetIsTheDefault) {
  const Looks looks;
  EXPECT_EQ(looks.At(1, 1), kDefaultStyle);
  EXPECT_EQ(looks.At(kRows, kColumns), kDefaultStyle);
  EXPECT_EQ(looks.RowCuts(), std::vector<std::int32_t>{1});
  EXPECT_EQ(looks.ColumnCuts(), std::vector<std::int32_t>{1});
}

TEST(Looks, TheLastSettingOfACellCounts) {
  Looks looks;
  looks.Set(kWholeSheet, Attribute::kFillColor, 15);
  looks.Set(*ParseRange("B:H"), Attribute::kFillColor, kNone);
  looks.Set(*ParseRange("1:5"), Attribute::kFillColor, 15);
  looks.Set(*ParseRange("B5:H5"), Attribute::kFillColor, 41);
  EXPECT_EQ(LookAt(looks, 6, 1, Attribute::kFillColor), 15);
  EXPECT_EQ(LookAt(looks, 6, 2, Attribute::kFillColor), kNone);
  EXPECT_EQ(LookAt(looks, 4, 2, Attribute::kFillColor), 15);
  EXPECT_EQ(LookAt(looks, 5, 2, Attribute::kFillColor), 41);
  EXPECT_EQ(LookAt(looks, 5, 9, Attribute::kFillColor), 15);
  EXPECT_EQ(LookAt(looks, 5, 2, Attribute::kBold), 0);
}

TEST(Looks, CellsOfARangeMayHaveAValueInCommon) {
  Looks looks;
  looks.Set(*ParseRange("B:H"), Attribute::kBold, 1);
  looks.Set(OneCell(6, 4), Attribute::kBold, 0);
  EXPECT_EQ(looks.Common(*ParseRange("B7:H9"), Attribute::kBold), 1);
  EXPECT_EQ(looks.Common(*ParseRange("B5:H7"), Attribute::kBold), std::nullopt);
  EXPECT_EQ(looks.Common(*ParseRange("A1:B1"), Attribute::kBold), std::nullopt);
  EXPECT_EQ(looks.Common(OneCell(6, 4), Attribute::kBold), 0);
}

TEST(Looks, NothingChangesBetweenTwoCuts) {
  const bool holds = rc::check("cuts part what looks different", [] {
    Looks looks;
    const auto edges = [](std::int32_t size) {
      return rc::gen::map(rc::gen::pair(rc::gen::inRange(1, 9), rc::gen::inRange(1, 9)),
                          [size](std::pair<std::int32_t, std::int32_t> pair) {
                            const auto [a, b] = pair;
                            const auto last = std::max(a, b);
                            return std::pair(std::min(a, b), last == 8 ? size : last);
                          });
    };
    // A second model: the value of each of the first ten rows and columns.
    std::map<std::pair<int, int>, std::int32_t> cells;
    for (int i = 0; i < *rc::gen::inRange(0, 8); ++i) {
      const auto rows = *edges(kRows);
      const auto columns = *edges(kColumns);
      const auto value = *rc::gen::inRange(1, 4);
      looks.Set({rows.first, columns.first, rows.second, columns.second}, Attribute::kFillColor,
                value);
      for (int row = rows.first; row <= std::min(rows.second, 10); ++row) {
        for (int column = columns.first; column <= std::min(columns.second, 10); ++column) {
          cells[{row, column}] = value;
        }
      }
    }
    const auto cuts = looks.RowCuts();
    const std::set<std::int32_t> starts(cuts.begin(), cuts.end());
    for (int row = 1; row <= 10; ++row) {
      for (int column = 1; column <= 10; ++column) {
        const auto found = cells.find({row, column});
        RC_ASSERT(LookAt(looks, row, column, Attribute::kFillColor) ==
                  (found == cells.end() ? kNone : found->second));
        if (!starts.contains(row)) {
          RC_ASSERT(looks.At(row, column) == looks.At(row - 1, column));
        }
      }
    }
  });
  EXPECT_TRUE(holds);
}

TEST(Sheet, CellsAreInOrderHoweverTheyCome) {
  Sheet sheet("s");
  for (const auto& [row, column] : {std::pair{3, 1}, {1, 2}, {3, 2}, {1, 1}}) {
    sheet.Put({row, static_cast<std::uint16_t>(column), kFormatOfPlace, row * 10.0 + column});
  }
  ASSERT_EQ(sheet.cells().size(), 4U);
  EXPECT_EQ(std::get<double>(sheet.cells()[0].value), 11.0);
  EXPECT_EQ(std::get<double>(sheet.cells()[1].value), 12.0);
  EXPECT_EQ(std::get<double>(sheet.cells()[3].value), 32.0);
  EXPECT_EQ(std::get<double>(sheet.Find(3, 1)->value), 31.0);
  EXPECT_EQ(sheet.Find(2, 1), nullptr);
  sheet.Clear(3, 1);
  sheet.Clear(9, 9);
  EXPECT_EQ(sheet.Find(3, 1), nullptr);
  EXPECT_EQ(sheet.cells().size(), 3U);
}

TEST(Sheet, TheLastOfSeveralCellsForAPlaceStays) {
  Sheet sheet("s");
  for (const auto& [row, value] : {std::pair{2, 1.0}, {1, 2.0}, {2, 3.0}, {1, 4.0}, {2, 5.0}}) {
    sheet.Append({row, 1, kFormatOfPlace, value});
  }
  sheet.SortCells();
  ASSERT_EQ(sheet.cells().size(), 2U);
  EXPECT_EQ(std::get<double>(sheet.cells()[0].value), 4.0);
  EXPECT_EQ(std::get<double>(sheet.cells()[1].value), 5.0);
}

TEST(Sheet, ANumberFormatReplacesWhatCellsBroughtAlong) {
  Workbook workbook;
  Sheet& sheet = workbook.AddSheet("s");
  const auto date = workbook.AddNumberFormat("m/d/yyyy");
  const auto percent = workbook.AddNumberFormat("0.00%");
  sheet.Put({1, 1, date, 1.0});
  sheet.Put({2, 1, date, 1.0});
  sheet.SetLook(OneCell(1, 1), Attribute::kNumberFormat, percent);
  EXPECT_EQ(workbook.NumberFormatOf(sheet, *sheet.Find(1, 1)), percent);
  EXPECT_EQ(workbook.NumberFormatOf(sheet, *sheet.Find(2, 1)), date);
  EXPECT_TRUE(workbook.IsDate(date));
  EXPECT_FALSE(workbook.IsDate(percent));
  EXPECT_EQ(workbook.AddNumberFormat("0.00%"), percent);
  EXPECT_EQ(workbook.AddNumberFormat("General"), 0);
}

// The colours are those of Excel's palette as its documentation shows it.
TEST(PaletteColor, TheColoursOfTheExportAreTheirs) {
  EXPECT_EQ(PaletteColor(1), 0x000000U);
  EXPECT_EQ(PaletteColor(2), 0xFFFFFFU);
  EXPECT_EQ(PaletteColor(15), 0xC0C0C0U);
  EXPECT_EQ(PaletteColor(41), 0x3366FFU);
  EXPECT_EQ(PaletteColor(56), 0x333333U);
}

TEST(SheetNameFault, NamesThatExcelTakesHaveNone) {
  for (const char* name :
       {"Spring", "Frühling 2027", "it's", "a", "1234567890123456789012345678901", "Histories",
        "History 2", "a-b (c) & <d>", "x!"}) {
    EXPECT_EQ(SheetNameFault(name), "") << name;
  }
  // 31 characters count, not bytes.
  std::string umlauts;
  for (int i = 0; i < 31; ++i) {
    umlauts += "ü";
  }
  EXPECT_EQ(SheetNameFault(umlauts), "");
  EXPECT_NE(SheetNameFault(umlauts + "ü"), "");
}

TEST(SheetNameFault, NamesThatExcelRefusesHaveOne) {
  for (const char* name :
       {"", "12345678901234567890123456789012", "a:b", "a\\b", "a/b", "a?", "*", "[a", "a]", "'a",
        "a'", "'", "History", "HISTORY", "history", "a\nb", "a\xFF"}) {
    EXPECT_NE(SheetNameFault(name), "") << name;
  }
}

}  // namespace
}  // namespace nimbrel::spreadsheet
