#include "platform/number.h"

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "tests/platform/support.h"

namespace nimbrel::platform {
namespace {

constexpr std::int32_t kLongMax = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLongMin = std::numeric_limits<std::int32_t>::min();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(RoundHalfEven, ATieGoesToTheEvenNeighbour) {
  EXPECT_EQ(RoundHalfEven(0.5), 0.0);
  EXPECT_EQ(RoundHalfEven(1.5), 2.0);
  EXPECT_EQ(RoundHalfEven(2.5), 2.0);
  EXPECT_EQ(RoundHalfEven(-0.5), 0.0);
  EXPECT_EQ(RoundHalfEven(-1.5), -2.0);
  EXPECT_EQ(RoundHalfEven(-2.5), -2.0);
}

TEST(RoundHalfEven, NearATieGoesToTheNearest) {
  EXPECT_EQ(RoundHalfEven(std::nextafter(0.5, 0.0)), 0.0);
  EXPECT_EQ(RoundHalfEven(std::nextafter(0.5, 1.0)), 1.0);
  EXPECT_EQ(RoundHalfEven(std::nextafter(2.5, 3.0)), 3.0);
  EXPECT_EQ(RoundHalfEven(std::nextafter(-0.5, -1.0)), -1.0);
}

TEST(RoundHalfEven, LeavesWhatHasNoFraction) {
  EXPECT_EQ(RoundHalfEven(9007199254740993.0), 9007199254740993.0);
  EXPECT_EQ(RoundHalfEven(-1e300), -1e300);
  EXPECT_EQ(RoundHalfEven(kInfinity), kInfinity);
  EXPECT_EQ(RoundHalfEven(-kInfinity), -kInfinity);
  EXPECT_TRUE(std::isnan(RoundHalfEven(kNan)));
}

RC_GTEST_PROP(RoundHalfEvenProperty, AgreesWithTheProcessorsRounding, ()) {
  const double value = *Evenly(kLongMin, kLongMax - 1) / 4.0;
  RC_ASSERT(std::fegetround() == FE_TONEAREST);
  RC_ASSERT(RoundHalfEven(value) == std::nearbyint(value));
}

TEST(ToLong, RoundsToTheEvenNeighbour) {
  EXPECT_EQ(ToLong(12.0 / 8), 2);
  EXPECT_EQ(ToLong(20.0 / 8), 2);
  EXPECT_EQ(ToLong(-3.5), -4);
}

TEST(ToLong, RaisesOutsideTheRangeOfALong) {
  EXPECT_EQ(ToLong(2147483647.49), kLongMax);
  EXPECT_EQ(ErrorOf([] { ToLong(2147483647.5); }), kOverflow);
  EXPECT_EQ(ToLong(-2147483648.5), kLongMin);  // a tie: the even neighbour is in the range
  EXPECT_EQ(ErrorOf([] { ToLong(-2147483648.51); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { ToLong(kInfinity); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { ToLong(-kInfinity); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { ToLong(kNan); }), kOverflow);
}

TEST(LongArithmetic, RaisesOnOverflow) {
  EXPECT_EQ(MultiplyLong(46340, 46340), 2147395600);
  EXPECT_EQ(ErrorOf([] { MultiplyLong(46341, 46341); }), kOverflow);
  EXPECT_EQ(MultiplyLong(kLongMin, 1), kLongMin);
  EXPECT_EQ(ErrorOf([] { MultiplyLong(kLongMin, -1); }), kOverflow);
  EXPECT_EQ(AddLong(kLongMax, kLongMin), -1);
  EXPECT_EQ(ErrorOf([] { AddLong(kLongMax, 1); }), kOverflow);
  EXPECT_EQ(SubtractLong(kLongMin, kLongMin), 0);
  EXPECT_EQ(ErrorOf([] { SubtractLong(kLongMin, 1); }), kOverflow);
  EXPECT_EQ(ErrorOf([] { SubtractLong(0, kLongMin); }), kOverflow);
}

TEST(Divide, RaisesForADivisorOfZero) {
  EXPECT_EQ(Divide(3.0, 4.0), 0.75);
  EXPECT_EQ(ErrorOf([] { Divide(1.0, 0.0); }), kDivisionByZero);
  EXPECT_EQ(ErrorOf([] { Divide(0.0, -0.0); }), kDivisionByZero);
}

TEST(Divide, RaisesWhenTheQuotientIsTooLarge) {
  EXPECT_EQ(ErrorOf([] { Divide(1e300, 1e-300); }), kOverflow);
}

}  // namespace
}  // namespace nimbrel::platform
