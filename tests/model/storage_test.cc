// The layout of weather data in a plan: who writes it, and how it is read back.

#include <gmock/gmock.h>

#include "model/frm_weather_storage.h"
#include "platform/runtime_error.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::model {
namespace {

using platform::MakeDate;
using recording::TaskState;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RecordingControls final : public WeatherControls {
 public:
  std::vector<std::string> steps;

  void FillCalendarCombo() override { steps.emplace_back("fill cbAllCals"); }
  void ClearCalendarList(CalendarKind kind) override { Step("clear list", kind); }
  void ClearCheckList(CalendarKind kind) override { Step("clear checks", kind); }
  void ClearRows(CalendarKind kind) override { Step("clear rows", kind); }
  void AddToCalendarList(CalendarKind kind, const std::string& strName) override {
    Step("list " + strName, kind);
  }
  void AddToCheckList(CalendarKind kind, const std::string& strName) override {
    Step("check " + strName, kind);
  }
  void ClickWindowCalendars() override { steps.emplace_back("click lstWWCals"); }

 private:
  void Step(const std::string& step, CalendarKind kind) {
    steps.push_back(step + (kind == CalendarKind::kEvent ? " of events" : " of windows"));
  }
};

class StorageTest : public recording::WiredTest {
 protected:
  StorageTest() : storage_(controls_) {}

  void AddSummary() {
    plan().AddWeatherSummary();
    storage_.FindOrCreateWeatherTask();
    recorder().Clear();
  }
  void Load() {
    storage_.LoadEventCalendars();
    storage_.LoadWindowCalendars();
  }
  template <class T>
  static std::vector<std::string> CountsOf(const T& calendars) {
    std::vector<std::string> counts;
    for (const auto& calendar : calendars) {
      counts.push_back(calendar->strName + " " + std::to_string(calendar->nCount));
    }
    return counts;
  }
  std::vector<std::string> PeriodIds() const {
    std::vector<std::string> ids;
    for (const auto& period : storage_.m_colEventTasks) {
      ids.push_back(period->m_strTaskID);
    }
    return ids;
  }
  std::vector<std::string> WindowIds() const {
    std::vector<std::string> ids;
    for (const auto& window : storage_.m_colWindowTasks) {
      ids.push_back(window->m_strTaskIDStart);
    }
    return ids;
  }
  std::vector<std::string> TaskIds() {
    std::vector<std::string> ids;
    for (const auto& task : plan().tasks) {
      ids.push_back(task->id);
    }
    return ids;
  }
  static std::vector<double> Triple(const TaskState& task) {
    return {task.duration->minimum, task.duration->likely, task.duration->maximum};
  }

  RecordingControls controls_;
  frmWeatherStorage storage_;
};

TEST_F(StorageTest, MakesTheSummaryTaskWhenThereIsNone) {
  storage_.FindOrCreateWeatherTask();
  EXPECT_THAT(calls(),
              ElementsAre("Application.ActivePlan", "Plan.Tasks", R"(PlanTasks.Item "WEATHER")",
                          "Application.ActivePlan", "Plan.Tasks", "PlanTasks.Add",
                          R"(Task(T1).ID = "WEATHER")", "Task(WEATHER).UserFields",
                          R"(UserFields(WEATHER).SetValue 2 "weather" "tasktype" "10")",
                          "Task(WEATHER).Calendar = Nothing"));
  EXPECT_EQ(storage_.m_taskWeather->get_ID(), "WEATHER");
}

TEST_F(StorageTest, TakesTheSummaryTaskThatIsThere) {
  plan().AddWeatherSummary();
  storage_.FindOrCreateWeatherTask();
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER"));
  EXPECT_EQ(storage_.m_taskWeather->get_ID(), "WEATHER");
}

TEST_F(StorageTest, AFailingStepInMakingTheSummaryTaskDoesNotKeepTheNextAway) {
  recorder().FailOn("SetValue");
  storage_.FindOrCreateWeatherTask();
  EXPECT_EQ(plan().Task("WEATHER").calendar, nullptr);
  EXPECT_EQ(plan().Task("WEATHER").WeatherValue("tasktype"), "");
}

TEST_F(StorageTest, AnEventCalendarIsTwoObjectsOfOneName) {
  const auto calendar = storage_.AddEventCalendar("NORTH SEA");
  EXPECT_EQ(calendar->get_Name(), "NORTH SEA");
  EXPECT_EQ(plan().FindRiskCalendar("NORTH SEA")->calendar, plan().FindCalendar("NORTH SEA"));
  EXPECT_EQ(plan().FindRiskCalendar("NORTH SEA")->description, "Weather calendar");
  EXPECT_THAT(controls_.steps, ElementsAre("fill cbAllCals"));
}

TEST_F(StorageTest, MakingACalendarCallsTheHostInAFixedOrder) {
  storage_.AddEventCalendar("NORTH SEA");
  EXPECT_THAT(
      recorder().Containing({"Calendars.", "RiskCalendar("}),
      ElementsAre(R"(PlanCalendars.Item "NORTH SEA")", R"(PlanCalendars.Add "NORTH SEA")",
                  R"(PlanRiskCalendars.Item "NORTH SEA")", R"(PlanRiskCalendars.Add "NORTH SEA")",
                  "RiskCalendar(NORTH SEA).Calendar = NORTH SEA",
                  R"(RiskCalendar(NORTH SEA).Description = "Weather calendar")"));
}

TEST_F(StorageTest, AnExistingCalendarIsTakenOver) {
  storage_.AddEventCalendar("NORTH SEA");
  plan().FindRiskCalendar("NORTH SEA")->calendar = nullptr;
  storage_.AddWindowCalendar("north sea", false);
  EXPECT_EQ(plan().calendars.size(), 2U);  // STANDARD and this one
  EXPECT_EQ(plan().risk_calendars.size(), 1U);
  EXPECT_EQ(plan().FindRiskCalendar("NORTH SEA")->calendar, plan().FindCalendar("NORTH SEA"));
  EXPECT_EQ(plan().FindRiskCalendar("NORTH SEA")->description, "Weather window");
}

TEST_F(StorageTest, AWindowCalendarStartsWithOneWindowIfAsked) {
  AddSummary();
  storage_.AddWindowCalendar("RIVER", false);
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER"));
  storage_.AddWindowCalendar("RIVER", true);
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "T1", "T2"));
  EXPECT_EQ(plan().Task("T1").calendar, plan().FindCalendar("RIVER"));
  EXPECT_EQ(plan().Task("T1").WeatherValue("tasktype"), "3");
  EXPECT_EQ(plan().FindRiskCalendar("RIVER")->description, "Weather window");
}

TEST_F(StorageTest, OnlyTheLookUpsOfACalendarAreTrapped) {
  int calendars = 0;
  for (const char* operation :
       {"PlanCalendars.Add", "PlanRiskCalendars.Add", ".Calendar =", "Description"}) {
    recorder().FailOn(operation, 1, 31);
    EXPECT_EQ(
        ErrorOf([&] { storage_.AddEventCalendar("CALENDAR " + std::to_string(++calendars)); }), 31)
        << operation;
  }
}

TEST_F(StorageTest, ANewPeriodIsMadeInAFixedOrder) {
  AddSummary();
  const auto calendar = storage_.AddEventCalendar("NORTH SEA");
  recorder().Clear();
  const auto task = storage_.AddEventTask(calendar);
  EXPECT_THAT(recorder().Containing({".Add", "MoveUnder", " = ", "SetValue", "Duration -1"}),
              ElementsAre("PlanTasks.Add", R"(Task(T1).MoveUnder 0 "WEATHER")",
                          "Task(T1).Calendar = NORTH SEA",
                          R"(UserFields(T1).SetValue 2 "weather" "tasktype" "1")",
                          "Task(T1).Duration -1", "Duration(T1).Minimum = 1",
                          "Duration(T1).Likely = 2", "Duration(T1).Maximum = 3"));
  EXPECT_EQ(task->get_ID(), "T1");
  EXPECT_FALSE(plan().Task("T1").risk.has_value());
  EXPECT_EQ(plan().Task("T1").description, "");
  EXPECT_THAT(plan().Task("T1").custom, IsEmpty());
}

TEST_F(StorageTest, ANewPeriodHasItsLengthInThePlansUnits) {
  AddSummary();
  plan().time_unit = 96;
  storage_.AddEventTask(storage_.AddEventCalendar("NORTH SEA"));
  EXPECT_THAT(Triple(plan().Task("T1")), ElementsAre(32.0, 64.0, 96.0));
}

TEST_F(StorageTest, ANewWindowIsMadeInAFixedOrder) {
  AddSummary();
  plan().reference = MakeDate(2026, 12, 31);
  const auto calendar = storage_.AddEventCalendar("RIVER");
  recorder().Clear();
  EXPECT_EQ(storage_.AddWindowTasks(calendar), "T1");
  EXPECT_THAT(
      recorder().Containing({"Reference", ".Add", "MoveUnder", " = ", "SetValue", "Duration -1"}),
      ElementsAre("PlanProperties.ReferenceDate", "PlanTasks.Add", "PlanTasks.Add",
                  R"(Task(T1).Description = "Weather window")",
                  R"(Task(T2).Description = "Weather window")", "Task(T1).Calendar = RIVER",
                  "Task(T2).Calendar = RIVER", "Task(T1).Duration -1", "Task(T2).Duration -1",
                  R"(Task(T1).MoveUnder 0 "WEATHER")", R"(Task(T2).MoveUnder 0 "WEATHER")",
                  R"(LinkList(T1).Add "T2" 2 0 0 0)",
                  R"(UserFields(T1).SetValue 2 "weather" "tasktype" "3")",
                  R"(UserFields(T2).SetValue 2 "weather" "tasktype" "4")",
                  R"(UserFields(T1).SetValue 2 "weather" "startdate" "12/31/2026")",
                  // Two months on there is no 31st.
                  R"(UserFields(T2).SetValue 2 "weather" "startdate" "2/28/2027")",
                  "Duration(T1).Minimum = 0", "Duration(T1).Likely = 1", "Duration(T1).Maximum = 2",
                  "Duration(T2).Minimum = 0", "Duration(T2).Likely = 1",
                  "Duration(T2).Maximum = 2"));
}

TEST_F(StorageTest, ANewWindowInHoursReadsBackInDays) {
  AddSummary();
  plan().time_unit = 24;
  storage_.AddWindowCalendar("RIVER", true);
  EXPECT_THAT(Triple(plan().Task("T1")), ElementsAre(0.0, 8.0, 16.0));
  EXPECT_THAT(Triple(plan().Task("T2")), ElementsAre(0.0, 8.0, 16.0));
  Load();
  const auto window = storage_.m_colWindowTasks.Item("T1");
  EXPECT_EQ(window->m_dtStartStart, MakeDate(2027, 1, 4));
  EXPECT_EQ(window->m_dtLikelyStart, MakeDate(2027, 1, 5));
  EXPECT_EQ(window->m_dtEndStart, MakeDate(2027, 1, 6));
  EXPECT_EQ(window->m_dtStartEnd, MakeDate(2027, 3, 4));
  EXPECT_EQ(window->m_dtLikelyEnd, MakeDate(2027, 3, 5));
  EXPECT_EQ(window->m_dtEndEnd, MakeDate(2027, 3, 6));
}

TEST_F(StorageTest, AnErrorInMakingAPeriodLeavesWhatWasDone) {
  AddSummary();
  const auto calendar = storage_.AddEventCalendar("NORTH SEA");
  recorder().FailOn("Likely", 1, 12);
  EXPECT_EQ(ErrorOf([&] { storage_.AddEventTask(calendar); }), 12);
  EXPECT_EQ(plan().Task("T1").WeatherValue("tasktype"), "1");
  EXPECT_THAT(Triple(plan().Task("T1")), ElementsAre(1.0, 0.0, 0.0));
}

TEST_F(StorageTest, TheSummaryTaskIsNotAskedForInMakingAPeriod) {
  const auto calendar = storage_.AddEventCalendar("NORTH SEA");
  EXPECT_EQ(ErrorOf([&] { storage_.AddEventTask(calendar); }), platform::kObjectNotSet);
  EXPECT_THAT(recorder().Containing({"MoveUnder"}),
              ElementsAre(R"(Task(T1).MoveUnder 0 "Nothing")"));
}

TEST_F(StorageTest, APlanWithoutTheSummaryLoadsEmptyListsAndNoError) {
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  Load();
  EXPECT_EQ(storage_.m_colEventTasks.Count(), 0);
  EXPECT_EQ(storage_.m_colEventCals.Count(), 0);
  EXPECT_EQ(storage_.m_colWindowTasks.Count(), 0);
  EXPECT_EQ(storage_.m_colWindowCals.Count(), 0);
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_THAT(controls_.steps,
              ElementsAre("clear list of events", "clear checks of events", "clear list of windows",
                          "clear checks of windows", "click lstWWCals"));
}

TEST_F(StorageTest, LoadsPeriodsAndWindowsInThePlansOrder) {
  AddSummary();
  plan().AddPeriod("P2", "RAIN", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddWindow("W1", "RIVER", "1/1/2027", "2/1/2027");
  plan().AddPeriod("P1", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddPeriod("P3", "RAIN", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  Load();
  EXPECT_THAT(PeriodIds(), ElementsAre("P2", "P1", "P3"));
  EXPECT_THAT(WindowIds(), ElementsAre("W1"));
  EXPECT_THAT(CountsOf(storage_.m_colEventCals), ElementsAre("RAIN 2", "NORTH SEA 1"));
  EXPECT_THAT(CountsOf(storage_.m_colWindowCals), ElementsAre("RIVER 1"));
}

TEST_F(StorageTest, ShowsCalendarsInTheOrderOfTheirFirstTasks) {
  AddSummary();
  plan().AddPeriod("P1", "RAIN", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddPeriod("P2", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddWindow("W", "RIVER", "1/1/2027", "2/1/2027");
  Load();
  EXPECT_THAT(
      controls_.steps,
      ElementsAre("clear list of events", "clear checks of events", "list RAIN of events",
                  "check RAIN of events", "list NORTH SEA of events", "check NORTH SEA of events",
                  "clear list of windows", "clear checks of windows", "list RIVER of windows",
                  "check RIVER of windows", "click lstWWCals"));
}

TEST_F(StorageTest, AChildWithoutATypeIsAPeriod) {
  AddSummary();
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31))->values.clear();
  Load();
  EXPECT_THAT(PeriodIds(), ElementsAre("P"));
  EXPECT_THAT(WindowIds(), IsEmpty());
  EXPECT_EQ(recorder().Containing({R"(GetValue 2 "weather" "tasktype" "1")"}).size(), 2U);
}

TEST_F(StorageTest, AnEndEdgeWithoutItsStartEdgeIsIgnored) {
  AddSummary();
  plan().AddWindow("W", "RIVER", "1/1/2027", "2/1/2027");
  std::erase(plan().tasks, plan().FindTask("W"));
  Load();
  EXPECT_THAT(PeriodIds(), IsEmpty());
  EXPECT_THAT(WindowIds(), IsEmpty());
  EXPECT_EQ(storage_.m_colWindowCals.Count(), 0);
}

TEST_F(StorageTest, ANameThatDiffersByCaseAloneIsOneCalendar) {
  AddSummary();
  plan().AddPeriod("P1", "North Sea", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  const auto other = std::make_shared<recording::CalendarState>();
  other->name = "NORTH SEA";
  plan().AddPeriod("P2", "North Sea", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31))->calendar =
      other;
  Load();
  EXPECT_THAT(CountsOf(storage_.m_colEventCals), ElementsAre("North Sea 2"));
  EXPECT_EQ(storage_.m_colEventCals.Item("north sea")->nCount, 2);
}

TEST_F(StorageTest, ACalendarOfBothKindsOfTasksIsOnBothPages) {
  AddSummary();
  plan().AddPeriod("P", "RIVER", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddWindow("W", "RIVER", "1/1/2027", "2/1/2027");
  Load();
  EXPECT_THAT(CountsOf(storage_.m_colEventCals), ElementsAre("RIVER 1"));
  EXPECT_THAT(CountsOf(storage_.m_colWindowCals), ElementsAre("RIVER 1"));
}

TEST_F(StorageTest, ACalendarWithoutTasksIsNotListedButStaysInThePlan) {
  AddSummary();
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  Load();
  plan().tasks.pop_back();
  Load();
  EXPECT_EQ(storage_.m_colEventCals.Count(), 0);
  EXPECT_NE(plan().FindCalendar("NORTH SEA"), nullptr);
}

TEST_F(StorageTest, LoadingAgainStartsAnew) {
  AddSummary();
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddWindow("W", "RIVER", "1/1/2027", "2/1/2027");
  Load();
  Load();
  EXPECT_THAT(CountsOf(storage_.m_colEventCals), ElementsAre("NORTH SEA 1"));
  EXPECT_THAT(WindowIds(), ElementsAre("W"));
}

TEST_F(StorageTest, ATaskThatCannotBeReadInFullLeavesAHalfFilledObject) {
  AddSummary();
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddWindow("W", "RIVER", "1/1/2027", "2/1/2027");
  recorder().FailOn(R"(UserFields(P).GetCustom "Weather-start")");
  recorder().FailOn("Task(W).Description");
  Load();
  EXPECT_EQ(storage_.m_colEventTasks.Item("P")->m_dtStart, platform::Date{0.0});
  EXPECT_EQ(storage_.m_colEventTasks.Item("P")->m_dtEnd, MakeDate(2027, 1, 31));
  EXPECT_EQ(storage_.m_colWindowTasks.Item("W")->m_strTaskDescStart, "");
  EXPECT_EQ(storage_.m_colWindowTasks.Item("W")->m_dtStartStart, MakeDate(2027, 1, 1));
}

TEST_F(StorageTest, ATaskWhoseTypeCannotBeReadIsPassedOver) {
  AddSummary();
  plan().AddPeriod("P1", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddPeriod("P2", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  recorder().FailOn("UserFields(P1).GetValue");
  storage_.LoadEventCalendars();
  EXPECT_THAT(PeriodIds(), ElementsAre("P2"));
}

TEST_F(StorageTest, ChildrenThatCannotBeReadLoadAsNone) {
  AddSummary();
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  recorder().FailAlways("Children");
  Load();
  EXPECT_THAT(PeriodIds(), IsEmpty());
}

TEST_F(StorageTest, ASecondTaskOfAnIdIsDroppedThoughItIsCounted) {
  AddSummary();
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddPeriod("p", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  Load();
  EXPECT_THAT(PeriodIds(), ElementsAre("P"));
  EXPECT_THAT(CountsOf(storage_.m_colEventCals), ElementsAre("NORTH SEA 2"));
}

TEST_F(StorageTest, RemovingAllTakesTasksThenCalendarsAndLeavesTheSummary) {
  AddSummary();
  storage_.AddEventTask(storage_.AddEventCalendar("NORTH SEA"));
  storage_.AddWindowCalendar("RIVER", true);
  plan().AddTask("A", 1.0);
  plan().options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
  Load();
  recorder().Clear();
  controls_.steps.clear();
  storage_.RemoveAllWeatherData();
  EXPECT_THAT(
      recorder().Containing({"Remove"}),
      ElementsAre(R"(PlanTasks.Remove "T1")", R"(PlanTasks.Remove "T2")",
                  R"(PlanTasks.Remove "T3")", R"(PlanRiskCalendars.Remove "NORTH SEA")",
                  R"(PlanCalendars.Remove "NORTH SEA")", R"(PlanRiskCalendars.Remove "RIVER")",
                  R"(PlanCalendars.Remove "RIVER")"));
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "A"));
  EXPECT_THAT(plan().risk_calendars, IsEmpty());
  EXPECT_EQ(plan().options.size(), 1U);
  EXPECT_EQ(storage_.m_colEventTasks.Count() + storage_.m_colEventCals.Count() +
                storage_.m_colWindowTasks.Count() + storage_.m_colWindowCals.Count(),
            0);
  EXPECT_THAT(controls_.steps, ElementsAre("clear rows of events", "clear rows of windows",
                                           "clear list of events", "clear list of windows",
                                           "clear checks of events", "clear checks of windows"));
}

TEST_F(StorageTest, RemovingAllPassesOverObjectsWithoutAnIdOrAName) {
  AddSummary();
  plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  recorder().FailOn("Task(P).ID");
  recorder().FailOn("Task(P).Calendar");
  storage_.LoadEventCalendars();
  storage_.RemoveAllWeatherData();
  EXPECT_THAT(recorder().Containing({"Remove"}), IsEmpty());
  EXPECT_EQ(storage_.m_colEventTasks.Count(), 0);
}

TEST_F(StorageTest, AFailingRemovalIsNotCaught) {
  AddSummary();
  plan().AddPeriod("P1", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().AddPeriod("P2", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  Load();
  recorder().FailOn(R"(PlanTasks.Remove "P2")", 1, 44);
  EXPECT_EQ(ErrorOf([&] { storage_.RemoveAllWeatherData(); }), 44);
  EXPECT_THAT(TaskIds(), ElementsAre("WEATHER", "P2"));
  EXPECT_EQ(storage_.m_colEventTasks.Count(), 2);
}

TEST_F(StorageTest, StartDatesSurviveTheRoundTripInEveryTestedLocale) {
  for (const char* name : {"en-US", "en-GB", "de-DE", "fr-FR", "es-ES"}) {
    Wire(*platform::FindLocale(name));
    host_.OpenPlan(recording::MakePlanState());
    AddSummary();
    storage_.AddWindowCalendar("RIVER", true);
    storage_.LoadWindowCalendars();
    EXPECT_EQ(storage_.m_colWindowTasks.Item(1)->m_dtStartStart, MakeDate(2027, 1, 4)) << name;
    EXPECT_EQ(storage_.m_colWindowTasks.Item(1)->m_dtStartEnd, MakeDate(2027, 3, 4)) << name;
  }
}

}  // namespace
}  // namespace nimbrel::model
