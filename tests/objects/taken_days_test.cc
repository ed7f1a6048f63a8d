// Taken days as ranges, against a set of single days.

#include "engine/objects/taken_days.h"

#include <gmock/gmock.h>

#include <random>
#include <set>

namespace nimbrel::engine {

using ::testing::ElementsAre;

namespace {

std::set<std::int32_t> DaysOf(const std::vector<DayRange>& ranges) {
  std::set<std::int32_t> days;
  for (const DayRange& range : ranges) {
    for (std::int32_t day = range.first; day <= range.last; ++day) {
      days.insert(day);
    }
  }
  return days;
}

bool InOrderAndApart(const std::vector<DayRange>& ranges) {
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    if (ranges[i].last < ranges[i].first || (i > 0 && ranges[i].first <= ranges[i - 1].last + 1)) {
      return false;
    }
  }
  return true;
}

TEST(TakenDays, RangesThatTouchBecomeOne) {
  std::vector<DayRange> taken;
  TakeRange(taken, 10, 12);
  TakeRange(taken, 15, 15);
  TakeRange(taken, 13, 14);
  EXPECT_THAT(taken, ElementsAre(DayRange{10, 15}));
}

TEST(TakenDays, GivingBackTheMiddleLeavesBothEnds) {
  std::vector<DayRange> taken = {{10, 20}};
  GiveRange(taken, 13, 14);
  EXPECT_THAT(taken, ElementsAre(DayRange{10, 12}, DayRange{15, 20}));
}

TEST(TakenDays, AReversedRangeChangesNothing) {
  std::vector<DayRange> taken = {{10, 20}};
  TakeRange(taken, 8, 7);
  GiveRange(taken, 14, 13);
  EXPECT_THAT(taken, ElementsAre(DayRange{10, 20}));
}

TEST(TakenDays, AgreeWithASetOfDaysAndWithTheJournal) {
  for (std::uint32_t seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    std::vector<DayRange> taken;
    std::vector<DayRange> written;
    TakenDaysJournal journal;
    std::set<std::int32_t> days;
    for (int step = 0; step < 60; ++step) {
      const auto first = static_cast<std::int32_t>(random() % 40);
      const auto last = first + static_cast<std::int32_t>(random() % 12) - 2;
      if (random() % 2 == 0) {
        TakeRange(taken, first, last);
        journal.Take(first, last);
        for (std::int32_t day = first; day <= last; ++day) {
          days.insert(day);
        }
      } else {
        GiveRange(taken, first, last);
        journal.Give(first, last);
        for (std::int32_t day = first; day <= last; ++day) {
          days.erase(day);
        }
      }
      ASSERT_EQ(DaysOf(taken), days);
      ASSERT_TRUE(InOrderAndApart(taken));
      if (random() % 8 == 0) {
        journal.WriteTo(written);
        ASSERT_EQ(written, taken);
      }
    }
  }
}

}  // namespace
}  // namespace nimbrel::engine
