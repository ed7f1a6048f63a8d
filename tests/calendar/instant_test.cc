#include "engine/calendar/instant.h"

#include <gtest/gtest.h>

namespace nimbrel::engine {
namespace {

TEST(ParseIsoText, ReadsDaysAndMoments) {
  EXPECT_EQ(ParseIsoText("1899-12-31"), Instant(1, 0));
  EXPECT_EQ(ParseIsoText("1900-01-01 08:30"), Instant(2, 510));
  EXPECT_EQ(ParseIsoText("1900-01-01T24:00"), Instant(2, 1440));
  EXPECT_EQ(ParseIsoText("1900-01-01T08:29:30"), Instant(2, 510));
  EXPECT_TRUE(ParseIsoText("2027-02-29").IsAbsent());
  EXPECT_TRUE(ParseIsoText("2027-02-28X08:00").IsAbsent());
}

TEST(ParseIsoText, ADayBeyondWhatAnInstantHoldsIsNoMoment) {
  // 2^20 - 1 days after 30 December 1899 is 24 November 4770.
  EXPECT_EQ(ParseIsoText("4770-11-24"), Instant(1048575, 0));
  EXPECT_EQ(ToIsoText(ParseIsoText("4770-11-24")), "4770-11-24T00:00");
  EXPECT_TRUE(ParseIsoText("4770-11-25").IsAbsent());
  EXPECT_TRUE(ParseIsoText("5834-06-01").IsAbsent());
  EXPECT_TRUE(ParseIsoText("9999-12-31T08:00").IsAbsent());
}

}  // namespace
}  // namespace nimbrel::engine
