// What the page of assignments leaves in a real plan, on the embedded host.

#include "tests/dialog/assign_page_fixture.h"

namespace nimbrel::dialog {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A plan of the tasks A, B and C, where A and B stand under the summary S, with the event calendar
/// GALES and the window calendar ICE.
class AssignPageOnHost : public WeatherOnHostTest {
 protected:
  AssignPageOnHost() {
    const auto summary = AddTask("S", "Structure");
    AddTask("B", "Beams");
    AddTask("C", "Cleaning");
    for (const char* const id : {"A", "B"}) {
      host_plan().get_Tasks()->Item(id)->MoveUnder(0, summary);
    }
    OpenTicked([this](frmWeather& form) {
      OnNewCal("gales", "1 Jan 2027", "2 Jan 2027");
      form.cmdAddWeatherCal.UserClick();
      form.tabs.UserPickTab(1);
      OnNewWindowCal("ice");
      form.cmdAddWWCal.UserClick();
      form.cmdClose.UserClick();
    });
  }

  Corvane8::Ref<Corvane8::Task> AddTask(const std::string& id, const std::string& description) {
    auto task = host_plan().get_Tasks()->Add();
    task->put_ID(id);
    task->put_Description(description);
    return task;
  }
  void OnPage(const std::function<void(frmWeather&)>& hands) {
    Open([&](frmWeather& form) {
      form.tabs.UserPickTab(2);
      hands(form);
    });
    EXPECT_THAT(Errors(), IsEmpty());
  }
  static void Click(frmWeather& form, const std::string& id) {
    form.tvTasks.UserClickNode(form.tvTasks.Nodes().Item("k" + id));
  }
  std::vector<std::string> AssignedTo(const std::string& id) {
    std::vector<std::string> names;
    for (const engine::RiskAssignment& entry : Stored(id).risk_calendars) {
      for (const auto& calendar : document().risk_calendars) {
        if (calendar.uid == entry.risk_calendar) {
          names.push_back(calendar.name);
        }
      }
    }
    return names;
  }
};

TEST_F(AssignPageOnHost, TheTreeFollowsThePlansStructure) {
  OnPage([](frmWeather& form) {
    EXPECT_THAT(AllNodes(form.tvTasks),
                ElementsAre("The new pier", "  C - Cleaning", "  S - Structure", "    A - ",
                            "    B - Beams"));
    EXPECT_EQ(form.tvTasks.Nodes().Item("kS")->Image(), 8);  // as critical as A under it
    EXPECT_EQ(form.tvTasks.Nodes().Item("kA")->Image(), 2);
  });
}

TEST_F(AssignPageOnHost, AssignmentsAndMarksComeBackAtTheNextOpening) {
  OnPage([](frmWeather& form) {
    Click(form, "A");
    form.lstWCals1.UserToggleCheck(1);
    form.lstWCals3.UserToggleCheck(1);
    form.chkSplit.UserClick();
    Click(form, "C");
    form.lstWCals3.UserToggleCheck(1);
    form.UserClose();  // there is nothing to save on this page
  });
  EXPECT_THAT(AssignedTo("A"), ElementsAre("GALES", "ICE"));
  EXPECT_THAT(AssignedTo("B"), IsEmpty());
  EXPECT_THAT(AssignedTo("C"), ElementsAre("ICE"));
  OnPage([](frmWeather& form) {
    Click(form, "A");
    EXPECT_THAT(Checked(form.lstWCals1), ElementsAre("GALES"));
    EXPECT_THAT(Checked(form.lstWCals3), ElementsAre("ICE"));
    EXPECT_TRUE(form.chkSplit.Value());
    Click(form, "C");
    EXPECT_THAT(Checked(form.lstWCals1), IsEmpty());
    EXPECT_FALSE(form.chkSplit.Value());
    form.lstWCals3.UserToggleCheck(1);
  });
  EXPECT_THAT(AssignedTo("C"), IsEmpty());
}

TEST_F(AssignPageOnHost, ASummaryIsAssignedToAloneAndKeepsHavingNoCalendar) {
  OnPage([](frmWeather& form) {
    Click(form, "A");
    Click(form, "S");
    EXPECT_EQ(form.cbAllCals.Text(), "");
    form.lstWCals1.UserToggleCheck(1);
  });
  EXPECT_THAT(AssignedTo("S"), ElementsAre("GALES"));
  EXPECT_THAT(AssignedTo("A"), IsEmpty());
  EXPECT_EQ(Stored("S").calendar, 0);
}

TEST_F(AssignPageOnHost, ACalendarOfTheWeatherCanBeATasksOwn) {
  OnPage([](frmWeather& form) {
    Click(form, "C");
    EXPECT_EQ(form.cbAllCals.Text(), "STANDARD");
    EXPECT_THAT(form.cbAllCals.Entries(), ElementsAre("STANDARD", "GALES", "ICE"));
    form.cbAllCals.UserPick(2);
  });
  EXPECT_EQ(Stored("C").calendar, document().FindCalendar("ICE")->uid);
}

TEST_F(AssignPageOnHost, CalendarsOfMixedCaseAreAssignedByTheirNamesInUpperCase) {
  // A calendar of the plan becomes one of the weather when the new one has its name in upper case.
  host_plan().get_Calendars()->Add("Überflutung");
  host_plan().get_RiskCalendars()->Add("Überflutung");
  OnPage([this](frmWeather& form) {
    form.tabs.UserPickTab(1);
    OnNewWindowCal("überflutung");
    form.cmdAddWWCal.UserClick();
    form.tabs.UserPickTab(2);
    Click(form, "B");
    EXPECT_EQ(form.lstWCals3.ListItems().Item(1)->Key(), "ÜBERFLUTUNG");
    form.lstWCals3.UserToggleCheck(1);
    EXPECT_THAT(AssignedTo("B"), ElementsAre("Überflutung"));
    Click(form, "A");
    Click(form, "B");
    EXPECT_THAT(Checked(form.lstWCals3), ElementsAre("Überflutung"));
    form.lstWCals3.UserToggleCheck(1);
  });
  EXPECT_THAT(AssignedTo("B"), IsEmpty());
}

}  // namespace
}  // namespace nimbrel::dialog
