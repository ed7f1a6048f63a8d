// Collections, tasks and the values that they carry.

#include <gmock/gmock.h>

#include <algorithm>

#include "platform/runtime_error.h"
#include "tests/conformance/host_suite.h"

namespace nimbrel::conformance {

using Corvane8::Ref;
using ::testing::ElementsAre;

namespace {

std::vector<std::string> IdsOf(const std::vector<Ref<Corvane8::Task>>& tasks) {
  std::vector<std::string> ids;
  ids.reserve(tasks.size());
  for (const auto& task : tasks) {
    ids.push_back(task->get_ID());
  }
  return ids;
}

}  // namespace

TEST_P(HostSuite, TellsThePlansProperties) {
  Open({.time_unit = 96, .hours_per_day = 10});
  EXPECT_EQ(plan()->get_Properties()->get_AnchorDate(), January(4));
  EXPECT_EQ(plan()->get_Properties()->get_ReferenceDate(), January(4));
  EXPECT_EQ(plan()->get_Properties()->get_TimeUnit(), 96);
  EXPECT_EQ(plan()->get_Display()->get_HoursPerDay(), 10);
}

TEST_P(HostSuite, FindsTasksByIdWithoutRegardToCase) {
  Open({.tasks = {Certain("Alpha", 1)}});
  EXPECT_EQ(Task("ALPHA")->get_ID(), "Alpha");
}

TEST_P(HostSuite, FailsOnItemsThatAreNotThere) {
  Open({});
  EXPECT_TRUE(Fails([&] { plan()->get_Tasks()->Item("NONE"); }));
  EXPECT_TRUE(Fails([&] { plan()->get_Calendars()->Item("NONE"); }));
  EXPECT_TRUE(Fails([&] { plan()->get_RiskCalendars()->Item("NONE"); }));
  EXPECT_TRUE(Fails([&] { plan()->get_Tasks()->Remove("NONE"); }));
  EXPECT_TRUE(Fails([&] { plan()->get_Calendars()->Remove("NONE"); }));
  EXPECT_TRUE(Fails([&] { plan()->get_RiskCalendars()->Remove("NONE"); }));
}

TEST_P(HostSuite, GivesAddedTasksFreshIds) {
  Open({.tasks = {Certain("A", 1)}});
  const std::string first = plan()->get_Tasks()->Add()->get_ID();
  const std::string second = plan()->get_Tasks()->Add()->get_ID();
  EXPECT_NE(first, "");
  EXPECT_NE(first, "A");
  EXPECT_NE(first, second);
  EXPECT_EQ(Task(second)->get_ID(), second);
}

TEST_P(HostSuite, FindsATaskUnderItsNewIdOnly) {
  Open({.tasks = {Certain("A", 1)}});
  Task("A")->put_ID("WEATHER");
  EXPECT_EQ(Task("weather")->get_ID(), "WEATHER");
  EXPECT_TRUE(Fails([&] { Task("A"); }));
}

TEST_P(HostSuite, KeepsIdsUnique) {
  Open({.tasks = {Certain("A", 1), Certain("B", 1)}});
  Task("B")->put_ID("B");
  EXPECT_TRUE(Fails([&] { Task("B")->put_ID("A"); }));
  EXPECT_EQ(Task("B")->get_ID(), "B");
}

TEST_P(HostSuite, ReferencesAreLive) {
  Open({.tasks = {Certain("A", 1)}});
  const auto held = Task("A");
  Task("A")->put_Description("changed");
  EXPECT_EQ(held->get_Description(), "changed");
  held->put_Description("again");
  EXPECT_EQ(Task("A")->get_Description(), "again");
}

TEST_P(HostSuite, ListsTasksInThePlansOrder) {
  Open({.tasks = {Certain("B", 1), Certain("A", 1)}});
  const std::string added = plan()->get_Tasks()->Add()->get_ID();
  EXPECT_THAT(IdsOf(plan()->get_Tasks()->Elements()), ElementsAre("B", "A", added));
}

TEST_P(HostSuite, PlacesTasksUnderASummaryInTheOrderOfPlacing) {
  Open({});
  const auto summary = plan()->get_Tasks()->Add();
  summary->put_ID("WEATHER");
  summary->put_Calendar(nullptr);
  const auto first = plan()->get_Tasks()->Add();
  const auto second = plan()->get_Tasks()->Add();
  EXPECT_TRUE(second->Parent(0).IsNothing());
  second->MoveUnder(0, summary);
  first->MoveUnder(0, summary);
  EXPECT_THAT(IdsOf(summary->get_Children()), ElementsAre(second->get_ID(), first->get_ID()));
  EXPECT_EQ(first->Parent(0)->get_ID(), "WEATHER");
  EXPECT_TRUE(summary->Parent(0).IsNothing());
  EXPECT_TRUE(summary->get_Calendar().IsNothing());
}

TEST_P(HostSuite, TakesARemovedTaskOutOfThePlan) {
  Open({.tasks = {Certain("A", 1), Certain("B", 1)}});
  const auto summary = plan()->get_Tasks()->Add();
  const auto child = plan()->get_Tasks()->Add();
  child->MoveUnder(0, summary);
  Task("A")->get_Links()->get_Successors()->Add(child->get_ID(), 2, 0, 0, 0);
  const std::string id = child->get_ID();
  plan()->get_Tasks()->Remove(id);
  EXPECT_TRUE(Fails([&] { Task(id); }));
  EXPECT_TRUE(summary->get_Children().empty());
  EXPECT_TRUE(Fails([&] { Task("A")->get_Links()->get_Successors()->Item(1); }));
  plan()->Recalculate();
  EXPECT_EQ(plan()->get_Tasks()->Elements().size(), 3U);
}

TEST_P(HostSuite, CountsLinksFromOne) {
  Open({.tasks = {Certain("A", 1), Certain("B", 1), Certain("C", 1)}});
  const auto successors = Task("A")->get_Links()->get_Successors();
  EXPECT_TRUE(Fails([&] { successors->Item(1); }));
  EXPECT_EQ(successors->Add("C", 2, 0, 0, 0)->get_Task()->get_ID(), "C");
  successors->Add("B", 2, 0, 0, 0);
  EXPECT_EQ(successors->Item(1)->get_Task()->get_ID(), "C");
  EXPECT_EQ(successors->Item(2)->get_Task()->get_ID(), "B");
  EXPECT_TRUE(Fails([&] { successors->Item(0); }));
  EXPECT_TRUE(Fails([&] { successors->Item(3); }));
  EXPECT_TRUE(Fails([&] { successors->Add("NONE", 2, 0, 0, 0); }));
}

TEST_P(HostSuite, StoresTextsOnATaskBySectionAndKey) {
  Open({.tasks = {Certain("A", 1), Certain("B", 1)}});
  const auto fields = Task("A")->get_UserFields();
  EXPECT_EQ(fields->GetValue(2, "weather", "tasktype", "0"), "0");
  fields->SetValue(2, "weather", "tasktype", "3");
  fields->SetValue(2, "weather", "startdate", "");
  EXPECT_EQ(Task("A")->get_UserFields()->GetValue(2, "weather", "tasktype", "0"), "3");
  EXPECT_EQ(fields->GetValue(2, "weather", "startdate", "default"), "");
  EXPECT_EQ(fields->GetValue(2, "other", "tasktype", "0"), "0");
  EXPECT_EQ(Task("B")->get_UserFields()->GetValue(2, "weather", "tasktype", "0"), "0");
}

TEST_P(HostSuite, KeepsDatesInCustomFieldsWhichAreEmptyAtFirst) {
  Open({.tasks = {Certain("A", 1)}});
  plan()->get_CustomFields()->Add("Weather-start", 2);
  plan()->get_CustomFields()->Add("Weather-end", 3);
  const auto fields = Task("A")->get_UserFields();
  EXPECT_TRUE(fields->GetCustom("Weather-start").IsEmpty());
  const platform::Date late = January(9) + 22.0 / 24.0;
  fields->SetCustom("Weather-start", January(4));
  fields->SetCustom("Weather-end", late);
  EXPECT_EQ(Task("A")->get_UserFields()->GetCustom("Weather-start"), platform::Variant(January(4)));
  EXPECT_EQ(fields->GetCustom("Weather-end"), platform::Variant(late));
}

TEST_P(HostSuite, RefusesACustomFieldThatIsThere) {
  Open({});
  plan()->get_CustomFields()->Add("Weather-start", 2);
  EXPECT_TRUE(Fails([&] { plan()->get_CustomFields()->Add("Weather-start", 2); }));
}

TEST_P(HostSuite, GivesTheDefaultOfAnOptionThatWasNeverSet) {
  Open({});
  EXPECT_EQ(plan()->GetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "default"), "default");
  plan()->SetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "TRUE");
  EXPECT_EQ(plan()->GetOption("NIMBRELMOD", "Options", "IsWeatherPlan", ""), "TRUE");
  plan()->SetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "FALSE");
  EXPECT_EQ(plan()->GetOption("NIMBRELMOD", "Options", "IsWeatherPlan", ""), "FALSE");
  EXPECT_EQ(plan()->GetOption("NIMBRELMOD", "Other", "IsWeatherPlan", ""), "");
}

TEST_P(HostSuite, CreatesADurationOnDemandAndSharesIt) {
  Open({});
  const auto task = plan()->get_Tasks()->Add();
  const auto created = task->Duration(-1);
  created->put_Minimum(1.0);
  created->put_Likely(2.5);
  created->put_Maximum(4.0);
  const auto existing = task->Duration(0);
  EXPECT_EQ(existing->get_Minimum(), 1.0);
  EXPECT_EQ(existing->get_Likely(), 2.5);
  EXPECT_EQ(existing->get_Maximum(), 4.0);
  task->Duration(-1);
  EXPECT_EQ(task->Duration(0)->get_Likely(), 2.5);
}

TEST_P(HostSuite, CreatesARiskOnDemandAndForgetsItWhenTheTaskIsCertain) {
  Open({});
  const auto task = plan()->get_Tasks()->Add();
  EXPECT_TRUE(task->Risk(0).IsNothing());
  task->Risk(-1)->put_Probability(30.0);
  ASSERT_FALSE(task->Risk(0).IsNothing());
  EXPECT_EQ(task->Risk(0)->get_Probability(), 30.0);
  task->Risk(0)->put_Mode(1);
  EXPECT_EQ(task->Risk(-1)->get_Probability(), 30.0);
  task->Risk(1);
  const auto certain = task->Risk(0);
  EXPECT_TRUE(certain.IsNothing() || certain->get_Probability() == 100.0);
}

TEST_P(HostSuite, KeepsAssignedRiskCalendarsByName) {
  Open({.tasks = {Certain("A", 1)}});
  AddWeatherCalendar("NORTH SEA");
  AddWeatherCalendar("RIVER");
  Assign("A", "RIVER");
  Assign("A", "NORTH SEA");
  const auto assigned = Task("A")->get_RiskCalendars()->Elements();
  ASSERT_EQ(assigned.size(), 2U);
  std::vector<std::string> names = {assigned[0]->get_RiskCalendar()->get_Name(),
                                    assigned[1]->get_RiskCalendar()->get_Name()};
  std::sort(names.begin(), names.end());
  EXPECT_THAT(names, ElementsAre("NORTH SEA", "RIVER"));
  Task("A")->get_RiskCalendars()->Remove("north sea");
  ASSERT_EQ(Task("A")->get_RiskCalendars()->Elements().size(), 1U);
  EXPECT_EQ(Task("A")->get_RiskCalendars()->Elements()[0]->get_RiskCalendar()->get_Name(), "RIVER");
  EXPECT_TRUE(Fails([&] { Task("A")->get_RiskCalendars()->Remove("NORTH SEA"); }));
  EXPECT_TRUE(Fails([&] { Task("A")->get_RiskCalendars()->Add("NONE"); }));
}

TEST_P(HostSuite, RemovingARiskCalendarTakesItOffItsTasks) {
  Open({.tasks = {Certain("A", 1)}});
  const auto calendar = AddWeatherCalendar("NORTH SEA");
  Assign("A", "NORTH SEA");
  calendar->SetDays(0, January(4), January(8));
  plan()->get_RiskCalendars()->Remove("NORTH SEA");
  plan()->get_Calendars()->Remove("NORTH SEA");
  EXPECT_TRUE(Task("A")->get_RiskCalendars()->Elements().empty());
  plan()->Recalculate();
  EXPECT_EQ(StartDay("A"), January(4));
}

}  // namespace nimbrel::conformance
