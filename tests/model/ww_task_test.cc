// One weather window in memory, read from and written to its two tasks.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "model/cls_ww_task.h"
#include "platform/runtime_error.h"
#include "tests/support/host/wired_test.h"

namespace nimbrel::model {
namespace {

using Lines = std::vector<std::string>;
using platform::Date;
using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class WWTaskTest : public recording::WiredTest {
 protected:
  WWTaskTest() {
    plan().AddWeatherSummary();
    auto& start = *plan().AddWindow("W", "RIVER", "12/1/2026", "2/20/2027");
    start.description = "Frozen";
    start.duration = {0.0, 9.0, 35.0};
    end().description = "Weather window";
    end().duration = {0.0, 13.0, 33.0};
  }

  recording::TaskState& start() { return plan().Task("W"); }
  recording::TaskState& end() { return plan().Task("W-END"); }
  void Init() { window_->InitFromTask(host_.TaskObject("W")); }
  void Set(std::string text, std::int32_t column) { window_->UpdateFromText(text, column); }

  platform::Ref<clsWWTask> window_ = platform::MakeRef<clsWWTask>();
};

TEST_F(WWTaskTest, ReadsBothEdges) {
  Init();
  EXPECT_EQ(window_->m_strCalName, "RIVER");
  EXPECT_EQ(window_->m_strTaskIDStart, "W");
  EXPECT_EQ(window_->m_strTaskDescStart, "Frozen");
  EXPECT_EQ(window_->m_dtStartStart, MakeDate(2026, 12, 1));
  EXPECT_EQ(window_->m_dtLikelyStart, MakeDate(2026, 12, 10));
  EXPECT_EQ(window_->m_dtEndStart, MakeDate(2027, 1, 5));
  EXPECT_EQ(window_->m_strTaskIDEnd, "W-END");
  EXPECT_EQ(window_->m_strTaskDescEnd, platform::Variant("Weather window"));
  EXPECT_EQ(window_->m_dtStartEnd, MakeDate(2027, 2, 20));
  EXPECT_EQ(window_->m_dtLikelyEnd, MakeDate(2027, 3, 5));
  EXPECT_EQ(window_->m_dtEndEnd, MakeDate(2027, 3, 25));
}

TEST_F(WWTaskTest, ReadsInAFixedOrder) {
  Init();
  EXPECT_THAT(
      recorder().Containing({"(W", "(RIVER)", "Reference"}),
      ElementsAre("Task(W).Calendar", "Calendar(RIVER).Name", "PlanProperties.ReferenceDate",
                  "Task(W).ID", "Task(W).Description", "Task(W).UserFields",
                  R"(UserFields(W).GetValue 2 "weather" "startdate" "1/4/2027")",
                  "Task(W).Duration 0", "Duration(W).Likely", "Duration(W).Maximum",
                  "Task(W).Links", "TaskLinks(W).Successors", "LinkList(W).Item 1",
                  "TaskLink(W).Task", "Task(W-END).ID", "Task(W-END).Description",
                  "Task(W-END).UserFields",
                  R"(UserFields(W-END).GetValue 2 "weather" "startdate" "1/4/2027")",
                  "Task(W-END).Duration 0", "Duration(W-END).Likely", "Duration(W-END).Maximum"));
}

TEST_F(WWTaskTest, AnEdgeWithoutADateTakesThePlansReferenceDate) {
  end().values.clear();
  Init();
  EXPECT_EQ(window_->m_dtStartEnd, MakeDate(2027, 1, 4));
  EXPECT_EQ(window_->m_dtLikelyEnd, MakeDate(2027, 1, 17));
}

TEST_F(WWTaskTest, WithoutALinkTheEndStaysEmptyAndCannotBeWritten) {
  start().successors.clear();
  Init();
  EXPECT_EQ(window_->m_dtEndStart, MakeDate(2027, 1, 5));
  EXPECT_EQ(window_->m_strTaskIDEnd, "");
  EXPECT_TRUE(window_->m_strTaskDescEnd.IsEmpty());
  EXPECT_EQ(window_->m_dtStartEnd, Date{0.0});
  EXPECT_EQ(window_->m_dtLikelyEnd, Date{0.0});
  EXPECT_EQ(window_->m_dtEndEnd, Date{0.0});
  EXPECT_EQ(ErrorOf([&] { Set("Ice", 1); }), platform::kObjectNotSet);
  EXPECT_EQ(start().description, "Ice") << "the start edge is written already";
}

TEST_F(WWTaskTest, AReadThatFailsLeavesItsFieldAlone) {
  recorder().FailOn("Task(W).ID");
  recorder().FailOn("Duration(W).Likely");
  recorder().FailOn("Task(W-END).Description");
  Init();
  EXPECT_EQ(window_->m_strTaskIDStart, "");
  EXPECT_EQ(window_->m_dtLikelyStart, Date{0.0});
  EXPECT_EQ(window_->m_dtEndStart, MakeDate(2027, 1, 5));
  EXPECT_TRUE(window_->m_strTaskDescEnd.IsEmpty());
  EXPECT_EQ(window_->m_strTaskIDEnd, "W-END");
}

TEST_F(WWTaskTest, WritesTheStartEdgeAndThenTheEndEdge) {
  Init();
  recorder().Clear();
  window_->UpdateTask();
  EXPECT_THAT(
      recorder().Containing({"(W"}),
      ElementsAre(
          R"(Task(W).ID = "W")", R"(Task(W).Description = "Frozen")", "Task(W).UserFields",
          R"(UserFields(W).SetValue 2 "weather" "startdate" "12/1/2026")", "Task(W).Duration 0",
          "Duration(W).Likely = 9", "Duration(W).Maximum = 35", R"(Task(W-END).ID = "W-END")",
          R"(Task(W-END).Description = "Weather window")", "Task(W-END).UserFields",
          R"(UserFields(W-END).SetValue 2 "weather" "startdate" "2/20/2027")",
          "Task(W-END).Duration 0", "Duration(W-END).Likely = 13", "Duration(W-END).Maximum = 33"));
}

TEST_F(WWTaskTest, SetsTheFieldOfItsColumn) {
  Init();
  Set("Ice", 1);
  Set("12/2/2026", 2);
  Set("12/3/2026", 3);
  Set("12/4/2026", 4);
  Set("3/2/2027", 6);
  Set("3/3/2027", 7);
  Set("3/4/2027", 8);
  EXPECT_EQ(start().WeatherValue("startdate"), "12/2/2026");
  EXPECT_EQ(start().duration->likely, 1.0);
  EXPECT_EQ(start().duration->maximum, 2.0);
  EXPECT_EQ(end().WeatherValue("startdate"), "3/2/2027");
  EXPECT_EQ(end().duration->likely, 1.0);
  EXPECT_EQ(end().duration->maximum, 2.0);
  Set("OTHER", 0);
  EXPECT_EQ(plan().Task("OTHER").description, "Ice");
}

TEST_F(WWTaskTest, ADescriptionReachesTheStartEdgeOnly) {
  Init();
  Set("Ice", 1);
  EXPECT_EQ(start().description, "Ice");
  EXPECT_EQ(end().description, "Weather window");
}

TEST_F(WWTaskTest, AnEarliestStartBehindTheOthersMovesThemUpToIt) {
  Init();
  Set("2/1/2027", 2);
  EXPECT_EQ(window_->m_dtLikelyStart, MakeDate(2027, 2, 1));
  EXPECT_EQ(window_->m_dtEndStart, MakeDate(2027, 2, 1));
  EXPECT_EQ(start().duration->likely, 0.0);
  EXPECT_EQ(start().duration->maximum, 0.0);
}

TEST_F(WWTaskTest, AnEarliestFinishBehindTheOthersMovesThemUpToIt) {
  Init();
  Set("4/1/2027", 6);
  EXPECT_EQ(window_->m_dtLikelyEnd, MakeDate(2027, 4, 1));
  EXPECT_EQ(window_->m_dtEndEnd, MakeDate(2027, 4, 1));
}

TEST_F(WWTaskTest, ALikelyStartBehindTheLatestStays) {
  Init();
  Set("1/20/2027", 3);
  EXPECT_EQ(window_->m_dtLikelyStart, MakeDate(2027, 1, 20));
  EXPECT_EQ(window_->m_dtEndStart, MakeDate(2027, 1, 5));
  EXPECT_GT(start().duration->likely, start().duration->maximum);
}

TEST_F(WWTaskTest, AnEarliestFinishBeforeTheEarliestStartIsAccepted) {
  Init();
  Set("11/1/2026", 6);
  EXPECT_EQ(end().WeatherValue("startdate"), "11/1/2026");
}

TEST_F(WWTaskTest, TheBlankColumnChangesNothingButStillCorrectsAndWrites) {
  Init();
  window_->m_dtLikelyStart = MakeDate(2026, 11, 1);
  recorder().Clear();
  Set("text", 5);
  EXPECT_EQ(window_->m_dtLikelyStart, MakeDate(2026, 12, 1));
  EXPECT_EQ(recorder().Containing({" = ", "SetValue"}).size(), 10U);
}

TEST_F(WWTaskTest, DurationsCountCalendarDatesWhateverTheTimesOfDay) {
  Init();
  window_->m_dtLikelyStart = MakeDate({2026, 12, 4, 23, 0, 0});
  window_->m_dtStartStart = MakeDate({2026, 12, 1, 23, 30, 0});
  window_->UpdateTask();
  EXPECT_EQ(start().duration->likely, 3.0);
}

TEST_F(WWTaskTest, QuartersAreWrittenByTheWorkingDayAndReadBackInDays) {
  plan().time_unit = 96;
  Init();
  window_->m_dtLikelyStart = MakeDate(2026, 12, 4);
  window_->UpdateTask();
  EXPECT_EQ(start().duration->likely, 96.0);
  Init();
  EXPECT_EQ(window_->m_dtLikelyStart, MakeDate(2026, 12, 4));
}

TEST_F(WWTaskTest, TextThatIsNoDateChangesNothing) {
  Init();
  recorder().Clear();
  window_->m_dtLikelyStart = MakeDate(2026, 11, 1);
  for (const std::int32_t column : {2, 3, 4, 6, 7, 8}) {
    EXPECT_EQ(ErrorOf([&] { Set("none", column); }), platform::kTypeMismatch) << column;
  }
  EXPECT_EQ(window_->m_dtLikelyStart, MakeDate(2026, 11, 1)) << "not even corrected";
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(WWTaskTest, AnEdgeWithoutADurationCannotBeWritten) {
  Init();
  start().duration.reset();
  EXPECT_EQ(ErrorOf([&] { window_->UpdateTask(); }), platform::kObjectNotSet);
}

class WWTaskRowTest : public WWTaskTest {
 protected:
  Lines Cells() const {
    Lines cells;
    for (std::int32_t n = 1; n <= row_->ListSubItems().Count(); ++n) {
      cells.push_back(row_->ListSubItems().Item(n).Text());
    }
    return cells;
  }

  toolkit::ListItemRef row_ = platform::MakeRef<toolkit::ListItem>("", "");
};

TEST_F(WWTaskRowTest, ARowHasTheDatesOfBothEdgesWithABlankCellBetween) {
  Init();
  window_->PopulateListItem(row_);
  EXPECT_EQ(row_->Text(), "W");
  EXPECT_THAT(Cells(), ElementsAre("Frozen", "01/Dec/2026", "10/Dec/2026", "05/Jan/2027", "",
                                   "20/Feb/2027", "05/Mar/2027", "25/Mar/2027"));
}

TEST_F(WWTaskRowTest, ARowIsWrittenAnewButForItsBlankCell) {
  Init();
  window_->PopulateListItem(row_);
  row_->SetSubItems(5, "kept");
  Set("2 Jan 2027", 2);
  window_->PopulateListItem(row_);
  EXPECT_THAT(Cells(), ElementsAre("Frozen", "02/Jan/2027", "02/Jan/2027", "05/Jan/2027", "kept",
                                   "20/Feb/2027", "05/Mar/2027", "25/Mar/2027"));
}

TEST_F(WWTaskRowTest, MonthsAreNamedInTheUsersLanguage) {
  Init();
  Wire(*platform::FindLocale("de-DE"));
  window_->PopulateListItem(row_);
  EXPECT_EQ(row_->SubItems(2), "01.Dez.2026");
}

TEST_F(WWTaskRowTest, AnEdgeThatWasNeverReadShowsDateZero) {
  start().successors.clear();
  Init();
  window_->PopulateListItem(row_);
  EXPECT_EQ(row_->SubItems(8), "30/Dec/1899");
}

TEST_F(WWTaskRowTest, ADateThatCannotBeWrittenRaisesWithTheCellsBeforeItDone) {
  Init();
  window_->m_dtEndStart = Date{-1e9};
  EXPECT_EQ(ErrorOf([this] { window_->PopulateListItem(row_); }), platform::kOverflow);
  EXPECT_THAT(Cells(), ElementsAre("Frozen", "01/Dec/2026", "10/Dec/2026"));
}

}  // namespace
}  // namespace nimbrel::model
