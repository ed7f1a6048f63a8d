// Whatever a workbook has is in its file.

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cmath>
#include <utility>

#include "spreadsheet/text_coding.h"
#include "tests/spreadsheet/written_workbook.h"

namespace nimbrel::spreadsheet {
namespace {

TEST(WriteXlsx, AnyTextReadsBackAsFarAsItIsText) {
  const bool holds = rc::check("texts survive", [] {
    const auto bytes = *rc::gen::container<std::string>(rc::gen::oneOf(
        rc::gen::arbitrary<char>(), rc::gen::element('_', 'x', '0', 'A', '\n', '\r')));
    RC_ASSERT(TextReadBack(bytes + "x") == ValidUtf8(bytes + "x"));
  });
  EXPECT_TRUE(holds);
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
