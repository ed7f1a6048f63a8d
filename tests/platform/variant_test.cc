#include "platform/variant.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <utility>

#include "platform/locale.h"
#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

const Locale& English() {
  return DefaultLocale();
}

TEST(Variant, KnowsItsType) {
  EXPECT_TRUE(Variant().IsEmpty());
  EXPECT_TRUE(Variant(true).Is<bool>());
  EXPECT_TRUE(Variant(5).Is<std::int32_t>());
  EXPECT_TRUE(Variant(5.0).Is<double>());
  EXPECT_TRUE(Variant(Date{5}).Is<Date>());
  EXPECT_TRUE(Variant("5").Is<std::string>());
  EXPECT_EQ(*Variant(5).Get<std::int32_t>(), 5);
  EXPECT_EQ(Variant(5).Get<double>(), nullptr);
}

TEST(Variant, EmptyIsZeroFalseAndTheEmptyText) {
  const Variant empty;
  EXPECT_EQ(empty.ToLong(English()), 0);
  EXPECT_EQ(empty.ToDouble(English()), 0.0);
  EXPECT_EQ(empty.ToDate(English()), Date{0});
  EXPECT_FALSE(empty.ToBoolean(English()));
  EXPECT_EQ(empty.ToText(English()), "");
}

TEST(Variant, TrueIsMinusOne) {
  EXPECT_EQ(Variant(true).ToLong(English()), -1);
  EXPECT_EQ(Variant(true).ToDouble(English()), -1.0);
  EXPECT_EQ(Variant(false).ToLong(English()), 0);
}

TEST(Variant, ANumberBecomesALongByRoundingToTheEvenNeighbour) {
  EXPECT_EQ(Variant(2.5).ToLong(English()), 2);
  EXPECT_EQ(Variant("2.5").ToLong(English()), 2);
  EXPECT_EQ(Variant("3.5").ToLong(English()), 4);
  EXPECT_EQ(Variant(Date{45000.75}).ToLong(English()), 45001);
  EXPECT_EQ(ErrorOf([] { Variant(3e9).ToLong(English()); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { Variant("3000000000").ToLong(English()); }), kOverflow);
  EXPECT_EQ(Variant(std::numeric_limits<std::int32_t>::min()).ToLong(English()),
            std::numeric_limits<std::int32_t>::min());
}

TEST(Variant, TextGoesThroughTheLocale) {
  const Locale& german = *FindLocale("de-DE");
  EXPECT_EQ(Variant("2,5").ToDouble(german), 2.5);
  EXPECT_EQ(Variant("01.02.2024").ToDate(german), MakeDate(2024, 2, 1));
  EXPECT_EQ(Variant("01/02/2024").ToDate(English()), MakeDate(2024, 1, 2));
  EXPECT_EQ(Variant(2.5).ToText(german), "2,5");
  EXPECT_EQ(Variant(MakeDate(2024, 2, 1)).ToText(german), "01.02.2024");
}

TEST(Variant, TextThatDoesNotParseRaisesATypeMismatch) {
  const Variant text("soon");
  EXPECT_EQ(ErrorOf([&] { text.ToDate(English()); }), kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { text.ToDouble(English()); }), kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { text.ToLong(English()); }), kTypeMismatch);
  EXPECT_EQ(ErrorOf([&] { text.ToBoolean(English()); }), kTypeMismatch);
  EXPECT_EQ(ErrorOf([] { Variant("").ToLong(English()); }), kTypeMismatch);
  EXPECT_EQ(ErrorOf([] { Variant("45000").ToDate(English()); }), kTypeMismatch);
}

TEST(Variant, ANumberIsADayCountInTheRangeOfDates) {
  EXPECT_EQ(Variant(45000).ToDate(English()), Date{45000});
  EXPECT_EQ(Variant(45000.5).ToDate(English()), Date{45000.5});
  EXPECT_EQ(Variant(Date{45000.5}).ToDouble(English()), 45000.5);
  EXPECT_EQ(ErrorOf([] { Variant(2958466).ToDate(English()); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { Variant(std::numeric_limits<double>::quiet_NaN()).ToDate(English()); }),
            kOverflow);
}

TEST(Variant, TextIsABooleanAsAWordOrANumber) {
  EXPECT_TRUE(Variant("True").ToBoolean(English()));
  EXPECT_FALSE(Variant("fALSE").ToBoolean(English()));
  EXPECT_TRUE(Variant("-1").ToBoolean(English()));
  EXPECT_FALSE(Variant("0").ToBoolean(English()));
  EXPECT_TRUE(Variant(0.1).ToBoolean(English()));
  EXPECT_FALSE(Variant(0).ToBoolean(English()));
}

TEST(Variant, ShowsItsValueAsText) {
  EXPECT_EQ(Variant(true).ToText(English()), "True");
  EXPECT_EQ(Variant(false).ToText(English()), "False");
  EXPECT_EQ(Variant(-7).ToText(English()), "-7");
  EXPECT_EQ(Variant("as it is ").ToText(English()), "as it is ");
}

TEST(Variant, IsEqualInTypeAndValueOnly) {
  EXPECT_EQ(Variant("a"), Variant(std::string("a")));
  EXPECT_FALSE(Variant(1) == Variant(1.0));
  EXPECT_FALSE(Variant() == Variant(0));
  EXPECT_EQ(Variant(), Variant());
}

}  // namespace
}  // namespace nimbrel::platform
