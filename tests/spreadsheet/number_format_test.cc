#include "spreadsheet/number_format.h"

#include <gtest/gtest.h>

#include <string>

namespace nimbrel::spreadsheet {
namespace {

TEST(IsDateFormat, DaysMonthsYearsAndTimesMakeADate) {
  for (const char* format :
       {"dd mmm yyyy", "m/d/yyyy", "YYYY-MM-DD", "h:mm AM/PM", "ss.0", "[$-409]d-mmm-yy;@",
        "[h]:mm:ss", "d\\.m\\.yy", "\"Tag\" d", "[Red]hh:mm"}) {
    EXPECT_TRUE(IsDateFormat(format)) << format;
  }
}

TEST(IsDateFormat, LettersThatOnlyStandForThemselvesDoNot) {
  for (const char* format :
       {"General", "GENERAL", "Standard", "0.00", "0.00%", "#,##0 \"days\"", "0\\d", "0_d", "*y0",
        "[Red]0", "[$USD] 0", "[$-809]0.00", "0.00E+00", "# ?/?", "@", "", "\"dd mmm yyyy\""}) {
    EXPECT_FALSE(IsDateFormat(format)) << format;
  }
}

TEST(IsDateFormat, WhatIsNotClosedEndsTheFormat) {
  EXPECT_FALSE(IsDateFormat("0\"d"));
  EXPECT_FALSE(IsDateFormat("0[d"));
  EXPECT_FALSE(IsDateFormat("0\\"));
  EXPECT_TRUE(IsDateFormat("d\"0"));
}

TEST(IsNumberFormat, QuotesBracketsAndPairsMustBeComplete) {
  EXPECT_TRUE(IsNumberFormat("0.00%"));
  EXPECT_TRUE(IsNumberFormat("[Red]0 \"days\"\\d_x"));
  EXPECT_TRUE(IsNumberFormat(std::string(255, '0')));
  EXPECT_FALSE(IsNumberFormat(""));
  EXPECT_FALSE(IsNumberFormat(std::string(256, '0')));
  EXPECT_FALSE(IsNumberFormat("0 \"days"));
  EXPECT_FALSE(IsNumberFormat("[Red"));
  EXPECT_FALSE(IsNumberFormat("0\\"));
}

// The numbers below are the ones that the file formats fix.
TEST(BuiltInNumberFormat, DatesAndTimesAreTheOnesThatFilesMean) {
  const auto is_date_id = [](int id) {
    return (id >= 14 && id <= 22) || (id >= 27 && id <= 36) || (id >= 45 && id <= 47) ||
           (id >= 50 && id <= 58);
  };
  for (int id = 0; id <= 200; ++id) {
    EXPECT_EQ(IsDateFormat(BuiltInNumberFormat(id)), is_date_id(id)) << id;
  }
}

TEST(BuiltInNumberFormat, CommonOnesHaveTheirText) {
  EXPECT_EQ(BuiltInNumberFormat(0), "General");
  EXPECT_EQ(BuiltInNumberFormat(10), "0.00%");
  EXPECT_EQ(BuiltInNumberFormat(13), "# ?\?/?\?");
  EXPECT_EQ(BuiltInNumberFormat(14), "m/d/yyyy");
  EXPECT_EQ(BuiltInNumberFormat(46), "[h]:mm:ss");
  EXPECT_EQ(BuiltInNumberFormat(49), "@");
  EXPECT_EQ(BuiltInNumberFormat(-1), "");
  EXPECT_EQ(BuiltInNumberFormat(164), "");
}

}  // namespace
}  // namespace nimbrel::spreadsheet
