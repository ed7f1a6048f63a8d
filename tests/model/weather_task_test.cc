// One event period in memory, read from and written to its task.

#include <gmock/gmock.h>

#include "model/cls_weather_task.h"
#include "platform/runtime_error.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::model {
namespace {

using platform::Date;
using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WeatherTaskTest : public recording::WiredTest {
 protected:
  WeatherTaskTest() {
    plan().AddWeatherSummary();
    auto& task = *plan().AddPeriod("P", "NORTH SEA", MakeDate(2027, 1, 5), MakeDate(2027, 1, 31));
    task.description = "January";
    task.duration = {2.0, 4.0, 9.0};
  }

  recording::TaskState& task() { return plan().Task("P"); }
  void Init() { period_->InitFromTask(host_.TaskObject("P")); }
  void Set(std::string text, std::int32_t column) { period_->UpdateFromText(text, column); }
  std::vector<std::string> Writes() {
    return recorder().Containing({" = ", "SetCustom", "SetValue", "Risk -1", "Risk 1"});
  }
  void CountIn(std::int32_t time_unit) { plan().time_unit = time_unit; }
  Date StoredEnd() { return task().custom.at("Weather-end").ToDate(platform::DefaultLocale()); }

  platform::Ref<clsWeatherTask> period_ = platform::MakeRef<clsWeatherTask>();
};

TEST_F(WeatherTaskTest, ANewObjectIsEmptyAndNotEvenCertain) {
  EXPECT_EQ(period_->m_dOccur, 0.0);
  EXPECT_EQ(period_->m_nMax, 0);
  EXPECT_EQ(period_->m_strTaskID, "");
  EXPECT_TRUE(period_->m_strTaskDesc.IsEmpty());
}

TEST_F(WeatherTaskTest, ReadsItsTask) {
  task().risk = {0, 35.0};
  Init();
  EXPECT_EQ(period_->m_strTaskID, "P");
  EXPECT_EQ(period_->m_strTaskDesc, platform::Variant("January"));
  EXPECT_EQ(period_->m_dtStart, MakeDate(2027, 1, 5));
  EXPECT_EQ(period_->m_dtEnd, MakeDate(2027, 1, 31));
  EXPECT_DOUBLE_EQ(period_->m_dOccur, 0.35);
  EXPECT_EQ(period_->m_strCalName, "NORTH SEA");
  EXPECT_EQ(period_->m_nMin, 2);
  EXPECT_EQ(period_->m_nLikely, 4);
  EXPECT_EQ(period_->m_nMax, 9);
}

TEST_F(WeatherTaskTest, ReadsInAFixedOrder) {
  Init();
  EXPECT_THAT(recorder().Containing({"(P)", "(NORTH SEA)"}),
              ElementsAre("Task(P).ID", "Task(P).Description", "Task(P).UserFields",
                          R"(UserFields(P).GetCustom "Weather-start")", "Task(P).UserFields",
                          R"(UserFields(P).GetCustom "Weather-end")", "Task(P).Risk 0",
                          "Task(P).Calendar", "Calendar(NORTH SEA).Name", "Task(P).Duration 0",
                          "Duration(P).Minimum", "Duration(P).Likely", "Duration(P).Maximum"));
}

TEST_F(WeatherTaskTest, IsCertainWithOrWithoutARiskOfOneHundredPercent) {
  Init();
  EXPECT_EQ(period_->m_dOccur, 1.0);
  task().risk = {0, 100.0};
  Init();
  EXPECT_EQ(period_->m_dOccur, 1.0);
}

TEST_F(WeatherTaskTest, EachReadThatFailsLeavesItsFieldAlone) {
  task().risk = {0, 35.0};
  for (const char* operation :
       {"Task(P).ID", "Description", "Weather-start", "Weather-end", "Risk 0", "Probability",
        "Calendar", "Minimum", "Likely", "Maximum"}) {
    period_ = platform::MakeRef<clsWeatherTask>();
    recorder().FailOn(operation);
    Init();
    const std::string failed = operation;
    EXPECT_EQ(period_->m_strTaskID, failed == "Task(P).ID" ? "" : "P") << failed;
    EXPECT_EQ(period_->m_strTaskDesc.IsEmpty(), failed == "Description") << failed;
    EXPECT_EQ(period_->m_dtStart == Date{0.0}, failed == "Weather-start") << failed;
    EXPECT_EQ(period_->m_dtEnd == Date{0.0}, failed == "Weather-end") << failed;
    EXPECT_EQ(period_->m_dOccur == 1.0, failed == "Risk 0" || failed == "Probability") << failed;
    EXPECT_EQ(period_->m_strCalName, failed == "Calendar" ? "" : "NORTH SEA") << failed;
    EXPECT_EQ(period_->m_nMin, failed == "Minimum" ? 0 : 2) << failed;
    EXPECT_EQ(period_->m_nLikely, failed == "Likely" ? 0 : 4) << failed;
    EXPECT_EQ(period_->m_nMax, failed == "Maximum" ? 0 : 9) << failed;
  }
}

TEST_F(WeatherTaskTest, ATaskWithoutDatesAndDurationsReadsAsZeros) {
  task().custom.clear();
  task().duration.reset();
  Init();
  EXPECT_EQ(period_->m_dtStart, Date{0.0});
  EXPECT_EQ(period_->m_nMax, 0);
}

TEST_F(WeatherTaskTest, WritesInAFixedOrder) {
  Init();
  period_->m_dOccur = 0.5;
  recorder().Clear();
  period_->UpdateTask();
  EXPECT_THAT(
      recorder().Containing({"(P)", "TimeUnit", "DateFormat"}),
      ElementsAre(R"(Task(P).ID = "P")", R"(Task(P).Description = "January")", "Task(P).UserFields",
                  "PlanDisplay.DateFormat", R"(UserFields(P).SetCustom "Weather-start" 2027-01-05)",
                  "PlanProperties.TimeUnit", "PlanDisplay.DateFormat", "Task(P).UserFields",
                  R"(UserFields(P).SetCustom "Weather-end" 2027-01-31)", "Task(P).Risk -1",
                  "TaskRisk(P).Probability = 50", "Task(P).Duration -1", "PlanProperties.TimeUnit",
                  "Duration(P).Minimum = 2", "PlanProperties.TimeUnit", "Duration(P).Likely = 4",
                  "PlanProperties.TimeUnit", "Duration(P).Maximum = 9"));
}

TEST_F(WeatherTaskTest, SetsTheFieldOfItsColumnAndWritesTheTask) {
  Init();
  Set("Squalls", 1);
  Set("1/7/2027", 2);
  Set("1/20/2027", 3);
  Set("40%", 4);
  Set("1", 5);
  Set("2", 6);
  Set("3", 7);
  EXPECT_EQ(task().description, "Squalls");
  EXPECT_EQ(task().custom.at("Weather-start"), platform::Variant(MakeDate(2027, 1, 7)));
  EXPECT_EQ(StoredEnd(), MakeDate(2027, 1, 20));
  EXPECT_DOUBLE_EQ(task().risk->probability, 40.0);
  EXPECT_EQ(task().duration->minimum, 1.0);
  EXPECT_EQ(task().duration->likely, 2.0);
  EXPECT_EQ(task().duration->maximum, 3.0);
  Set("OTHER", 0);
  EXPECT_EQ(plan().Task("OTHER").description, "Squalls");
}

TEST_F(WeatherTaskTest, EveryPercentSignGoesFromAProbabilityAndFromTheCallersText) {
  Init();
  for (const char* text : {"50%", "50", "5%0", "%50%"}) {
    std::string str = text;
    period_->UpdateFromText(str, 4);
    EXPECT_EQ(period_->m_dOccur, 0.5) << text;
    EXPECT_EQ(str, "50");
  }
}

TEST_F(WeatherTaskTest, ACertainPeriodIsWrittenWithoutMakingARisk) {
  Init();
  recorder().Clear();
  period_->UpdateTask();
  EXPECT_THAT(recorder().Containing({"Risk"}), ElementsAre("Task(P).Risk 1"));
  EXPECT_FALSE(task().risk.has_value());
}

TEST_F(WeatherTaskTest, APeriodThatBecomesCertainReadsAsCertain) {
  task().risk = {0, 35.0};
  Init();
  Set("100%", 4);
  Init();
  EXPECT_EQ(period_->m_dOccur, 1.0);
}

TEST_F(WeatherTaskTest, OnlyExactlyOneHundredPercentIsCertain) {
  Init();
  Set("99.999%", 4);
  EXPECT_NEAR(task().risk->probability, 99.999, 1e-9);
}

TEST_F(WeatherTaskTest, APeriodEndsAtMidnightInDaysAndAtTwentyTwoOtherwise) {
  for (const std::int32_t time_unit : {1, 24, 96, 60}) {
    CountIn(time_unit);
    Init();
    period_->UpdateTask();
    const Date expected =
        time_unit == 1 ? MakeDate(2027, 1, 31) : MakeDate({2027, 1, 31, 22, 0, 0});
    EXPECT_EQ(platform::ToCivil(StoredEnd()), platform::ToCivil(expected)) << time_unit;
  }
}

TEST_F(WeatherTaskTest, APeriodWithoutAnEndIsWrittenInHoursToo) {
  CountIn(24);
  task().custom.erase("Weather-end");
  Init();
  period_->UpdateTask();
  EXPECT_EQ(platform::ToCivil(StoredEnd()), (platform::CivilTime{1899, 12, 30, 22, 0, 0}));
}

TEST_F(WeatherTaskTest, TheEndDoesNotDriftOverManyRoundTrips) {
  CountIn(24);
  for (int i = 0; i < 5; ++i) {
    Init();
    period_->UpdateTask();
  }
  EXPECT_EQ(platform::ToCivil(StoredEnd()), (platform::CivilTime{2027, 1, 31, 22, 0, 0}));
}

TEST_F(WeatherTaskTest, LengthsInHoursAreReadRoundedAndWrittenBackWhole) {
  CountIn(24);
  task().duration = {12.0, 20.0, 36.0};
  Init();
  EXPECT_EQ(period_->m_nMin, 2);
  EXPECT_EQ(period_->m_nLikely, 2);
  EXPECT_EQ(period_->m_nMax, 4);
  period_->UpdateTask();
  EXPECT_EQ(task().duration->minimum, 16.0);
  EXPECT_EQ(task().duration->maximum, 32.0);
}

TEST_F(WeatherTaskTest, ALengthWithAFractionRoundsToTheEvenNeighbour) {
  Init();
  Set("2.5", 7);
  EXPECT_EQ(period_->m_nMax, 2);
  Set("3.5", 7);
  EXPECT_EQ(period_->m_nMax, 4);
}

TEST_F(WeatherTaskTest, NothingThatParsesIsRefused) {
  Init();
  Set("12/1/2026", 3);
  Set("150%", 4);
  Set("20", 5);
  EXPECT_LT(StoredEnd(), task().custom.at("Weather-start").ToDate(platform::DefaultLocale()));
  EXPECT_DOUBLE_EQ(task().risk->probability, 150.0);
  EXPECT_GT(task().duration->minimum, task().duration->maximum);
}

TEST_F(WeatherTaskTest, AnyOtherColumnChangesNoFieldAndWritesTheTask) {
  Init();
  recorder().Clear();
  Set("text", 8);
  EXPECT_EQ(Writes().size(), 8U);
  EXPECT_EQ(period_->m_strTaskDesc, platform::Variant("January"));
}

TEST_F(WeatherTaskTest, TextThatDoesNotParseChangesNothing) {
  Init();
  recorder().Clear();
  for (const std::int32_t column : {2, 3, 4, 5, 6, 7}) {
    EXPECT_EQ(ErrorOf([&] { Set("none", column); }), platform::kTypeMismatch) << column;
  }
  EXPECT_EQ(period_->m_dtStart, MakeDate(2027, 1, 5));
  EXPECT_EQ(period_->m_dOccur, 1.0);
  EXPECT_EQ(period_->m_nMin, 2);
  EXPECT_THAT(Writes(), IsEmpty());
}

TEST_F(WeatherTaskTest, AFailingWriteLeavesTheStepsDoneSoFar) {
  Init();
  recorder().FailOn("Weather-end", 1, 23);
  EXPECT_EQ(ErrorOf([&] { Set("Squalls", 1); }), 23);
  EXPECT_EQ(task().description, "Squalls");
}

TEST_F(WeatherTaskTest, WritingBeforeReadingFails) {
  EXPECT_EQ(ErrorOf([&] { period_->UpdateTask(); }), platform::kObjectNotSet);
}

}  // namespace
}  // namespace nimbrel::model
