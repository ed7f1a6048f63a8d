#include "engine/formats/calendar_algebra.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/formats/reading.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// 1 March 2027 is a Monday.
const std::int32_t kMonday = At("2027-03-01").day();

CalendarDefinition Days() {
  return MakeWeekCalendar("Days", 5, 8);
}
CalendarDefinition Nights() {
  CalendarDefinition nights;
  nights.name = "Nights";
  nights.week.fill({{0, 360}, {1320, 1440}});
  nights.exceptions[kMonday] = {};
  return nights;
}

TEST(CalendarAlgebra, AUnionWorksWhenOneOfTheTwoDoes) {
  const CalendarDefinition both = Union(Days(), Nights());
  EXPECT_THAT(PatternOn(both, kMonday), ElementsAre(Shift{480, 720}, Shift{780, 1020}));
  EXPECT_THAT(PatternOn(both, kMonday + 1),
              ElementsAre(Shift{0, 360}, Shift{480, 720}, Shift{780, 1020}, Shift{1320, 1440}));
  EXPECT_THAT(PatternOn(both, kMonday + 5), ElementsAre(Shift{0, 360}, Shift{1320, 1440}));
}

TEST(CalendarAlgebra, AnIntersectionWorksWhenBothDo) {
  CalendarDefinition late = MakeWeekCalendar("Late", 6, 10);  // 08:00 to 18:00
  late.exceptions[kMonday] = {{600, 800}};
  const CalendarDefinition both = Intersection(Days(), late);
  EXPECT_THAT(PatternOn(both, kMonday), ElementsAre(Shift{600, 720}, Shift{780, 800}));
  EXPECT_THAT(PatternOn(both, kMonday + 1), ElementsAre(Shift{480, 720}, Shift{780, 1020}));
  EXPECT_THAT(PatternOn(both, kMonday + 5), IsEmpty());
}

TEST(CalendarAlgebra, WorkIsCountedByTheMinute) {
  // Monday from 10:00 has 2 + 4 hours, Tuesday 8, Wednesday to 09:00 one and from 16:00 on one.
  EXPECT_EQ(WorkWithin(Days(), {{At("2027-03-01 10:00"), At("2027-03-03 09:00")},
                                {At("2027-03-03 16:00"), At("2027-03-03 24:00")}}),
            (6 + 8 + 1 + 1) * 60);
  EXPECT_EQ(WorkWithin(Days(), {}), 0);
}

TEST(CalendarAlgebra, TheKeyTellsWorkApartAndNothingElse) {
  CalendarDefinition other = Days();
  other.name = "Other";
  other.exceptions[kMonday] = other.week[0];  // says nothing new
  EXPECT_EQ(WorkKey(Days()), WorkKey(other));
  other.exceptions[kMonday] = {};
  EXPECT_NE(WorkKey(Days()), WorkKey(other));
  CalendarDefinition shifted = Days();
  std::swap(shifted.week[0], shifted.week[6]);
  EXPECT_NE(WorkKey(Days()), WorkKey(shifted));
}

}  // namespace
}  // namespace nimbrel::engine
