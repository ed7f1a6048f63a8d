#include "engine/plan/plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "engine/plan/plan_fault.h"
#include "platform/runtime_error.h"

namespace nimbrel::engine {
namespace {

using ::testing::ElementsAre;

Task MakeTask(const std::string& id, Uid parent = 0) {
  Task task;
  task.id = id;
  task.parent = parent;
  return task;
}

std::vector<std::string> Ids(const Plan& plan) {
  std::vector<std::string> ids;
  for (const Task& task : plan.tasks()) {
    ids.push_back(task.id);
  }
  return ids;
}

template <class Operation>
std::int32_t ErrorOf(const Operation& operation) {
  try {
    operation();
  } catch (const platform::RuntimeError& error) {
    return error.number();
  }
  return 0;
}

TEST(Plan, FindsATaskByItsIdInAnyCaseAndByItsNumber) {
  Plan plan;
  const Uid uid = plan.AddTask(MakeTask("Straße Ä1")).uid;
  ASSERT_NE(plan.FindTask("STRAßE ä1"), nullptr);
  EXPECT_EQ(plan.FindTask("STRAßE ä1")->uid, uid);
  EXPECT_EQ(plan.FindTask(uid)->id, "Straße Ä1");
  EXPECT_EQ(plan.FindTask("Straße"), nullptr);
  EXPECT_EQ(plan.FindTask(uid + 1), nullptr);
  EXPECT_EQ(plan.IndexOf(uid), 0);
  EXPECT_EQ(plan.IndexOf(uid + 1), -1);
}

TEST(Plan, NumbersTasksAndCalendarsFromOneSequence) {
  Plan plan;
  std::set<Uid> uids = {plan.AddTask(MakeTask("A")).uid,
                        plan.AddCalendar(MakeWeekCalendar("Week", 5, 8)).uid,
                        plan.AddTask(MakeTask("B")).uid, plan.FreshUid()};
  EXPECT_EQ(uids.size(), 4u);
  EXPECT_FALSE(uids.contains(0));
}

TEST(Plan, NeverGivesANumberThatWasReadFromAFile) {
  Plan plan;
  Task task = MakeTask("A");
  task.uid = 40;
  plan.AddTask(task);
  EXPECT_EQ(plan.FreshUid(), 41);
  plan.ReserveUids(100);
  EXPECT_EQ(plan.FreshUid(), 100);
  plan.ReserveUids(7);
  EXPECT_EQ(plan.FreshUid(), 101);
}

TEST(Plan, DoesNotGiveTheNumberOfARemovedTaskAgain) {
  Plan plan;
  const Uid uid = plan.AddTask(MakeTask("A")).uid;
  plan.RemoveTask(uid);
  EXPECT_NE(plan.AddTask(MakeTask("A")).uid, uid);
}

TEST(Plan, RefusesASecondTaskOfAnIdOrANumber) {
  Plan plan;
  const Uid uid = plan.AddTask(MakeTask("A")).uid;
  EXPECT_EQ(ErrorOf([&] { plan.AddTask(MakeTask("a")); }), 457);
  Task same_number = MakeTask("B");
  same_number.uid = uid;
  EXPECT_EQ(ErrorOf([&] { plan.AddTask(same_number); }), 457);
  EXPECT_THAT(Ids(plan), ElementsAre("A"));
  EXPECT_EQ(plan.FindTask("B"), nullptr);
}

TEST(Plan, FindsARenamedTaskByItsNewIdAlone) {
  Plan plan;
  const Uid uid = plan.AddTask(MakeTask("A")).uid;
  plan.RenameTask(uid, "B");
  EXPECT_EQ(plan.FindTask("A"), nullptr);
  ASSERT_NE(plan.FindTask("B"), nullptr);
  EXPECT_EQ(plan.FindTask("B")->uid, uid);
}

TEST(Plan, RenamesATaskInCaseOnlyButNotToTheIdOfAnother) {
  Plan plan;
  const Uid uid = plan.AddTask(MakeTask("A")).uid;
  plan.AddTask(MakeTask("B"));
  EXPECT_EQ(ErrorOf([&] { plan.RenameTask(uid, "b"); }), 457);
  plan.RenameTask(uid, "a");
  EXPECT_THAT(Ids(plan), ElementsAre("a", "B"));
}

TEST(Plan, RemovesATaskWithItsLinksAndLiftsItsChildren) {
  Plan plan;
  const Uid top = plan.AddTask(MakeTask("TOP")).uid;
  const Uid middle = plan.AddTask(MakeTask("MIDDLE", top)).uid;
  const Uid leaf = plan.AddTask(MakeTask("LEAF", middle)).uid;
  const Uid other = plan.AddTask(MakeTask("OTHER")).uid;
  plan.links = {{middle, other}, {other, middle}, {leaf, other}};
  plan.RemoveTask(middle);
  EXPECT_THAT(Ids(plan), ElementsAre("TOP", "LEAF", "OTHER"));
  EXPECT_EQ(plan.FindTask("LEAF")->parent, top);
  EXPECT_THAT(plan.links, ElementsAre(Link{leaf, other}));
  EXPECT_EQ(plan.IndexOf(other), 2);
}

TEST(Plan, RemovesSeveralTasksAsOneByOne) {
  Plan plan;
  const Uid top = plan.AddTask(MakeTask("TOP")).uid;
  const Uid middle = plan.AddTask(MakeTask("MIDDLE", top)).uid;
  const Uid inner = plan.AddTask(MakeTask("INNER", middle)).uid;
  const Uid leaf = plan.AddTask(MakeTask("LEAF", inner)).uid;
  const Uid other = plan.AddTask(MakeTask("OTHER")).uid;
  plan.links = {{middle, other}, {leaf, other}, {other, inner}};
  Plan one_by_one = plan;
  one_by_one.RemoveTask(inner);
  one_by_one.RemoveTask(middle);
  plan.RemoveTasks({middle, inner, 99});
  EXPECT_EQ(plan, one_by_one);
  EXPECT_EQ(plan.FindTask("LEAF")->parent, top);
  EXPECT_THAT(plan.links, ElementsAre(Link{leaf, other}));
}

TEST(Plan, StillFindsEveryTaskAfterEachRemovalAndRenaming) {
  Plan plan;
  for (int i = 0; i < 50; ++i) {
    plan.AddTask(MakeTask("T" + std::to_string(i)));
  }
  // 17 and 50 have no common divisor: the steps go through all places in a mixed order.
  for (int step = 0; step < 50; ++step) {
    const std::string id = "T" + std::to_string(step * 17 % 50);
    const Uid uid = plan.FindTask(id)->uid;
    if (step % 3 == 0) {
      plan.RenameTask(uid, id + "-RENAMED");
    }
    plan.RemoveTask(uid);
    EXPECT_EQ(plan.FindTask(id), nullptr);
    EXPECT_EQ(plan.FindTask(id + "-renamed"), nullptr);
    EXPECT_EQ(plan.IndexOf(uid), -1);
    for (std::size_t i = 0; i < plan.tasks().size(); ++i) {
      EXPECT_EQ(plan.FindTask(plan.tasks()[i].id), &plan.tasks()[i]);
      EXPECT_EQ(plan.IndexOf(plan.tasks()[i].uid), static_cast<std::int32_t>(i));
    }
  }
}

TEST(Plan, LeavesAPlanAloneWhenATaskThatIsNotThereIsRemovedOrMoved) {
  Plan plan;
  plan.AddTask(MakeTask("A"));
  const Plan before = plan;
  plan.RemoveTask(99);
  plan.MoveTaskToEnd(99);
  plan.RenameTask(99, "B");
  EXPECT_EQ(plan, before);
}

TEST(Plan, PutsATaskBehindAllOthersAndStillFindsThem) {
  Plan plan;
  const Uid a = plan.AddTask(MakeTask("A")).uid;
  const Uid b = plan.AddTask(MakeTask("B")).uid;
  const Uid c = plan.AddTask(MakeTask("C")).uid;
  plan.MoveTaskToEnd(a);
  EXPECT_THAT(Ids(plan), ElementsAre("B", "C", "A"));
  EXPECT_EQ(plan.IndexOf(a), 2);
  EXPECT_EQ(plan.IndexOf(b), 0);
  EXPECT_EQ(plan.IndexOf(c), 1);
}

TEST(Plan, OffersAnIdThatNoTaskHas) {
  Plan plan;
  plan.AddTask(MakeTask("n2"));  // has the number 1, so that N2 would be the next
  EXPECT_EQ(plan.FreshTaskId(), "N3");
  plan.AddTask(MakeTask(plan.FreshTaskId()));
  EXPECT_EQ(plan.FindTask(plan.FreshTaskId()), nullptr);
}

TEST(Plan, NamesATasksStreamByItsFirstId) {
  Plan plan;
  const Uid uid = plan.AddTask(MakeTask("A")).uid;
  EXPECT_EQ(plan.FindTask(uid)->stream, StreamOfId("A"));
  plan.RenameTask(uid, "B");
  EXPECT_EQ(plan.FindTask(uid)->stream, StreamOfId("A"));
}

TEST(Plan, KeepsAStreamThatATaskBringsAlong) {
  Plan plan;
  Task task = MakeTask("A");
  task.stream = 17;
  EXPECT_EQ(plan.AddTask(task).stream, 17u);
}

TEST(StreamOfId, IsTheMixedHashOfTheBytes) {
  // FNV-1a of nothing is its offset basis, of "a" 0xAF63DC4C8601EC8C (the published test vector);
  // both through the finaliser of SplitMix64, worked out by hand in integers of any length.
  EXPECT_EQ(StreamOfId(""), 0xF52A15E9A9B5E89BULL);
  EXPECT_EQ(StreamOfId("a"), 0x02C0BDBF481420F8ULL);
}

TEST(StreamOfId, DiffersForIdsThatDifferInALetterOrInCase) {
  EXPECT_NE(StreamOfId("A1010"), StreamOfId("A1011"));
  EXPECT_NE(StreamOfId("A"), StreamOfId("a"));
}

TEST(Plan, FindsCalendarsByNameInAnyCaseAndByNumber) {
  Plan plan;
  const Uid uid = plan.AddCalendar(MakeWeekCalendar("Five Days", 5, 8)).uid;
  ASSERT_NE(plan.FindCalendar("FIVE DAYS"), nullptr);
  EXPECT_EQ(plan.FindCalendar("FIVE DAYS")->uid, uid);
  EXPECT_EQ(plan.FindCalendar(uid)->name, "Five Days");
  EXPECT_EQ(plan.FindCalendar("Six"), nullptr);
  plan.risk_calendars.push_back({plan.FreshUid(), "Storm", "", uid});
  EXPECT_EQ(plan.FindRiskCalendar("STORM")->calendar, uid);
  EXPECT_EQ(plan.FindRiskCalendar(uid), nullptr);
}

TEST(Task, FindsItsTextsInAnyCase) {
  Task task;
  task.user_values = {{"weather", "nosplit", "True"}};
  ASSERT_NE(task.FindUserValue("Weather", "NOSPLIT"), nullptr);
  EXPECT_EQ(*task.FindUserValue("Weather", "NOSPLIT"), "True");
  EXPECT_EQ(task.FindUserValue("weather", "split"), nullptr);
}

struct UnitCase {
  TimeUnit unit;
  double minutes;
};

class PlanUnits : public ::testing::TestWithParam<UnitCase> {};
INSTANTIATE_TEST_SUITE_P(Units, PlanUnits,
                         ::testing::Values(UnitCase{TimeUnit::kDays, 600.0},  // of ten hours
                                           UnitCase{TimeUnit::kHours, 60.0},
                                           UnitCase{TimeUnit::kQuarters, 15.0}));

TEST_P(PlanUnits, CountDurations) {
  Plan plan;
  plan.time_unit = GetParam().unit;
  plan.hours_per_day = 10;
  EXPECT_EQ(plan.MinutesPerUnit(), GetParam().minutes);
  Task task;
  task.remaining_minutes = 900;
  EXPECT_EQ(plan.RemainingUnits(task), 900.0 / GetParam().minutes);
  EXPECT_EQ(plan.LikelyMinutes(task), 900);
  task.range = ThreePoint{1, 2, 3, Shape::kTriangular};
  EXPECT_EQ(plan.LikelyMinutes(task), static_cast<std::int32_t>(2 * GetParam().minutes));
}

TEST(Plan, IsScheduledFromTheDataDateIfItHasOne) {
  Plan plan;
  plan.start = Instant(46000, 480);
  EXPECT_EQ(plan.StatusDate(), plan.start);
  plan.data_date = Instant(46010, 480);
  EXPECT_EQ(plan.StatusDate(), plan.data_date);
}

TEST(Plan, DiffersFromACopyInWhateverIsChanged) {
  Plan plan;
  plan.AddTask(MakeTask("A"));
  Plan copy = plan;
  EXPECT_EQ(copy, plan);
  copy.FindTask("A")->percent_complete = 1;
  EXPECT_NE(copy, plan);
  copy = plan;
  copy.FreshUid();
  EXPECT_NE(copy, plan);
}

TEST(CorrelationGroups, LoseTheTasksThatAreRemoved) {
  Plan plan;
  const Uid a = plan.AddTask(MakeTask("A")).uid;
  const Uid b = plan.AddTask(MakeTask("B")).uid;
  const Uid c = plan.AddTask(MakeTask("C")).uid;
  plan.correlations = {{{a, b, c}, {}, 0.5}, {{}, {"SEA", "WIND"}, 0.8}};
  plan.RemoveTask(b);
  EXPECT_EQ(plan.correlations[0].tasks, (std::vector<Uid>{a, c}));
  plan.RemoveTask(c);  // one task alone goes with nothing
  ASSERT_EQ(plan.correlations.size(), 1U);
  EXPECT_EQ(plan.correlations[0].calendars.size(), 2U);
}

TEST(CorrelationGroups, ThatMakeNoSenseAreFaults) {
  Plan plan;
  const Uid a = plan.AddTask(MakeTask("A")).uid;
  const Uid b = plan.AddTask(MakeTask("B")).uid;
  plan.correlations = {{{a, b}, {}, -1.0}};
  EXPECT_EQ(FindFault(plan), std::nullopt);
  for (const CorrelationGroup& group : std::vector<CorrelationGroup>{{{a, b}, {}, 1.5},
                                                                     {{a}, {}, 0.5},
                                                                     {{a, a}, {}, 0.5},
                                                                     {{a, 99}, {}, 0.5},
                                                                     {{}, {}, 0.5},
                                                                     {{a, b}, {"SEA", "WIND"}, 0.5},
                                                                     {{}, {"SEA", "sea"}, 0.5},
                                                                     {{a, b}, {}, std::nan("")}}) {
    plan.correlations = {group};
    EXPECT_NE(FindFault(plan), std::nullopt);
  }
}

}  // namespace
}  // namespace nimbrel::engine
