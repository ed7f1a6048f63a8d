// The edit boxes under the two lists: what typing shows, what leaving a box checks and writes, how
// whole lists are written, and how lists are sorted.

#include <gmock/gmock.h>

#include "tests/dialog/weather_dialog_test.h"

namespace nimbrel::dialog {
namespace {

using platform::Date;
using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* kNoNumber = "Please enter a valid number";
constexpr const char* kNoPercentage = "Please enter a value between 0% and 100%.";

class RowEditing : public WeatherDialogTest {
 protected:
  RowEditing() {
    MakeWeatherPlan();
    AddPeriod("P1", "GALES", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31)).risk = {0, 40.0};
    AddPeriod("P2", "GALES", MakeDate(2027, 2, 1), MakeDate(2027, 2, 28));
    AddWindow("W1", "ICE", "12/1/2026", "2/20/2027");
    AddWindow("W2", "ICE", "12/1/2027", "2/20/2028");
  }
  void OnEvents(const std::function<void(frmWeather&)>& hands) {
    Open([this, &hands](frmWeather& form) {
      recorder().Clear();
      hands(form);
    });
  }
  void OnWindows(const std::function<void(frmWeather&)>& hands) {
    Open([this, &hands](frmWeather& form) {
      form.tabs.UserPickTab(1);
      recorder().Clear();
      events_.lines.clear();
      hands(form);
    });
  }
  /// Cell n of the selected row.
  static std::string Cell(const toolkit::ListView& list, std::int32_t n) {
    return list.SelectedItem()->SubItems(n);
  }
  recording::TaskState& Period() { return plan().Task("P1"); }
  recording::TaskState& Window() { return plan().Task("W1"); }
  recording::TaskState& WindowEnd() { return plan().Task("W1-END"); }
};

// Typing.

TEST_F(RowEditing, TypingShowsInTheRowAtEachKey) {
  OnEvents([this](frmWeather& form) {
    form.txtStart.UserType("3");
    EXPECT_EQ(Cell(form.lstWeather, 2), "3");
    form.txtStart.UserType("31 no");
    EXPECT_EQ(Cell(form.lstWeather, 2), "31 no");
    form.txtStart.UserType("");
    EXPECT_EQ(Cell(form.lstWeather, 2), "");
    EXPECT_THAT(calls(), IsEmpty());
  });
}

TEST_F(RowEditing, EachEventBoxMirrorsIntoItsOwnCell) {
  OnEvents([](frmWeather& form) {
    std::int32_t cell = 0;
    for (toolkit::TextBox* const box : EventBoxes(form)) {
      box->SetText("1" + std::to_string(++cell));
      EXPECT_EQ(Cell(form.lstWeather, cell), "1" + std::to_string(cell)) << box->Name();
    }
  });
}

TEST_F(RowEditing, TheStartsOfAWindowRunAlongInTheListAndItsFinishesDoNot) {
  OnWindows([](frmWeather& form) {
    const Lines before = RowsOf(form.lstWW);
    for (toolkit::TextBox* const box :
         {&form.txtEarlyEndWW, &form.txtLikelyEndWW, &form.txtLateEndWW}) {
      box->SetText("1 Mar 2027");
      EXPECT_EQ(Cell(form.lstWW, 5), "") << box->Name();
      EXPECT_EQ(Cell(form.lstWW, 8), "22/Feb/2027") << box->Name();
    }
    // Each copies the box before it: the hidden one, the earliest and the likely finish.
    EXPECT_EQ(Cell(form.lstWW, 6), "1 Mar 2027");
    EXPECT_EQ(Cell(form.lstWW, 7), "1 Mar 2027");
    form.txtEarlyStartWW.SetText("x");
    EXPECT_EQ(Cell(form.lstWW, 2), "x");
    form.txtLikelyStartWW.SetText("y");
    EXPECT_EQ(Cell(form.lstWW, 3), "y");
    form.txtLateStartWW.SetText("z");
    EXPECT_EQ(Cell(form.lstWW, 4), "z");
    form.txtDescrWW.SetText("d");
    EXPECT_EQ(Cell(form.lstWW, 1), "d");
    EXPECT_EQ(before.size(), 2u);
  });
}

TEST_F(RowEditing, AFinishShowsInTheListWhenItsBoxIsLeft) {
  OnWindows([this](frmWeather& form) {
    form.txtEarlyEndWW.UserType("19 Feb 2027");
    EXPECT_EQ(Cell(form.lstWW, 6), "20/Feb/2027");
    form.txtEarlyEndWW.UserKey(Key::kTab);
    EXPECT_EQ(Cell(form.lstWW, 6), "19/Feb/2027");
    EXPECT_EQ(WindowEnd().WeatherValue("startdate"), "2/19/2027");
    form.txtLikelyEndWW.UserType("28 Feb 2027");
    EXPECT_EQ(Cell(form.lstWW, 7), "21/Feb/2027");
    form.txtLikelyEndWW.UserKey(Key::kTab);
    EXPECT_EQ(Cell(form.lstWW, 7), "28/Feb/2027");
    EXPECT_EQ(WindowEnd().duration->likely, 9.0);
    form.txtLateEndWW.UserType("1 Mar 2027");
    EXPECT_EQ(Cell(form.lstWW, 8), "22/Feb/2027");
    form.txtLateEndWW.UserKey(Key::kTab);
    EXPECT_EQ(Cell(form.lstWW, 8), "01/Mar/2027");
    EXPECT_EQ(form.txtLateEndWW.Text(), "01/Mar/2027");
    EXPECT_EQ(WindowEnd().duration->maximum, 10.0);
  });
}

// Dates.

TEST_F(RowEditing, ADateIsPutIntoTheFormOfTheListAndIntoThePlan) {
  OnEvents([this](frmWeather& form) {
    Enter(form.txtStart, "2027-01-05");
    EXPECT_EQ(form.txtStart.Text(), "05/Jan/2027");
    EXPECT_EQ(Cell(form.lstWeather, 2), "05/Jan/2027");
    EXPECT_TRUE(form.txtEnd.HasFocus());
    Enter(form.txtEnd, "february 14, 2027");
    EXPECT_EQ(form.txtEnd.Text(), "14/Feb/2027");
  });
  EXPECT_EQ(Period().custom["Weather-start"], platform::Variant(MakeDate(2027, 1, 5)));
  EXPECT_EQ(Period().custom["Weather-end"], platform::Variant(MakeDate(2027, 2, 14)));
}

TEST_F(RowEditing, TextThatIsNoDateKeepsTheFocusAndChangesNothing) {
  OnEvents([this](frmWeather& form) {
    for (toolkit::TextBox* const box : {&form.txtStart, &form.txtEnd}) {
      const std::string before = box->Text();
      Enter(*box, "30 Feb 2027");
      EXPECT_TRUE(box->HasFocus());
      EXPECT_EQ(box->Text(), "30 Feb 2027");
      EXPECT_EQ(Messages().back(), "30 Feb 2027 is not a valid date!");
      EXPECT_EQ(desktop_.messages.back().buttons, toolkit::Buttons::kOk);
      EXPECT_THAT(calls(), IsEmpty());
      Enter(*box, before);
      recorder().Clear();
    }
    form.txtStart.UserType("soon");
    EXPECT_EQ(Cell(form.lstWeather, 2), "soon");
  });
}

TEST_F(RowEditing, AnEmptyDateIsRefused) {
  OnEvents([this](frmWeather& form) {
    Enter(form.txtStart, "");
    EXPECT_THAT(Messages(), ElementsAre(" is not a valid date!"));
    EXPECT_TRUE(form.txtStart.HasFocus());
  });
}

TEST_F(RowEditing, ABoxWithABadTextBlocksEveryOtherClick) {
  OnEvents([this](frmWeather& form) {
    form.txtStart.UserType("soon");
    form.cmdClose.UserClick();
    EXPECT_TRUE(form.Visible());
    form.lstWeather.UserClickRow(2);
    EXPECT_EQ(Selected(form.lstWeather), "P1");
    form.cmdDelEventPeriod.UserClick();
    form.tabs.UserPickTab(1);
    EXPECT_EQ(form.tabs.Tab(), 0);
    EXPECT_TRUE(form.txtStart.HasFocus());
    EXPECT_EQ(Messages().size(), 4u);
    EXPECT_THAT(calls(), IsEmpty());
  });
}

TEST_F(RowEditing, TheDatesOfAWindowAreCheckedButForItsLatestFinish) {
  OnWindows([this](frmWeather& form) {
    for (toolkit::TextBox* const box : WindowBoxes(form)) {
      if (box == &form.txtDescrWW || box == &form.txtLateEndWW) {
        continue;
      }
      const std::string before = box->Text();
      Enter(*box, "soon");
      EXPECT_TRUE(box->HasFocus()) << box->Name();
      EXPECT_EQ(Messages().back(), "soon is not a valid date!");
      Enter(*box, before);
    }
    EXPECT_EQ(Messages().size(), 5u);
  });
}

TEST_F(RowEditing, ALatestFinishThatIsNoDateRaisesTheConversionsError) {
  OnWindows([this](frmWeather& form) {
    Enter(form.txtLateEndWW, "soon");
    EXPECT_THAT(Errors(), ElementsAre(platform::kTypeMismatch));
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(form.txtLateEndWW.Text(), "soon");
    EXPECT_EQ(Cell(form.lstWW, 8), "22/Feb/2027");
    EXPECT_EQ(form.m_oStorage.m_colWindowTasks.Item("W1")->m_dtEndEnd, MakeDate(2027, 2, 22));
    EXPECT_THAT(calls(), IsEmpty());
  });
}

TEST_F(RowEditing, AStartMovedBehindTheLatestStartMovesItAlong) {
  OnWindows([this](frmWeather& form) {
    Enter(form.txtLateStartWW, "1 Nov 2026");
    EXPECT_EQ(form.txtLateStartWW.Text(), "01/Dec/2026");
    EXPECT_EQ(Cell(form.lstWW, 4), "01/Dec/2026");
    EXPECT_EQ(Window().duration->maximum, 0.0);
    Enter(form.txtEarlyStartWW, "25 Dec 2026");
    EXPECT_THAT(TextsOf(WindowBoxes(form)),
                ElementsAre("Window W1", "25/Dec/2026", "25/Dec/2026", "25/Dec/2026", "20/Feb/2027",
                            "21/Feb/2027", "22/Feb/2027"));
  });
}

// Percentages.

class Percentages : public RowEditing,
                    public ::testing::WithParamInterface<std::pair<const char*, const char*>> {};

TEST_P(Percentages, BecomeAWholeNumberOfPercent) {
  const auto& [typed, shown] = GetParam();
  OnEvents([&](frmWeather& form) {
    Enter(form.txtFrequency, typed);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(form.txtFrequency.Text(), shown);
    EXPECT_EQ(Cell(form.lstWeather, 4), shown);
    EXPECT_EQ(form.m_oStorage.m_colEventTasks.Item("P1")->m_dOccur, std::stod(shown) / 100.0);
  });
  if (std::string(shown) == "100%") {
    EXPECT_THAT(recorder().Containing({"Task(P1).Risk"}), ElementsAre("Task(P1).Risk 1"));
  } else {
    EXPECT_DOUBLE_EQ(Period().risk->probability, std::stod(shown));
  }
}

INSTANTIATE_TEST_SUITE_P(Typed, Percentages,
                         ::testing::Values(std::pair{"50", "50%"}, std::pair{"50%", "50%"},
                                           std::pair{"50%abc", "50%"}, std::pair{"0", "0%"},
                                           std::pair{"100", "100%"}, std::pair{"", "0%"},
                                           std::pair{"%", "0%"}, std::pair{"12.4", "12%"},
                                           std::pair{"12.6", "13%"}, std::pair{" 7 ", "7%"},
                                           std::pair{"99.6%", "100%"}));

TEST_F(RowEditing, PercentagesOutsideTheirRangeAreRefused) {
  OnEvents([this](frmWeather& form) {
    for (const char* const typed : {"100.5", "-1", "101%"}) {
      Enter(form.txtFrequency, typed);
      EXPECT_EQ(Messages().back(), kNoPercentage) << typed;
      EXPECT_TRUE(form.txtFrequency.HasFocus()) << typed;
    }
    Enter(form.txtFrequency, "half");
    EXPECT_EQ(Messages().back(), kNoNumber);
    Enter(form.txtFrequency, " %");  // a blank is no empty text
    EXPECT_EQ(Messages().back(), kNoNumber);
    EXPECT_EQ(form.txtFrequency.Text(), " ");
    EXPECT_EQ(Messages().size(), 5u);
    EXPECT_THAT(calls(), IsEmpty());
  });
  EXPECT_EQ(Period().risk->probability, 40.0);
}

// Numbers.

TEST_F(RowEditing, LengthsMustBeNumbers) {
  OnEvents([this](frmWeather& form) {
    for (toolkit::TextBox* const box : {&form.txtMin, &form.txtML, &form.txtMax}) {
      Enter(*box, "two");
      EXPECT_TRUE(box->HasFocus()) << box->Name();
      Enter(*box, "");
      EXPECT_TRUE(box->HasFocus()) << box->Name();
      Enter(*box, "2");
    }
    EXPECT_EQ(Messages(), Lines(6, kNoNumber));
  });
}

TEST_F(RowEditing, AFractionOfADayKeepsItsTextAndIsRoundedInTheObject) {
  OnEvents([this](frmWeather& form) {
    Enter(form.txtMin, "2.5");
    EXPECT_EQ(form.txtMin.Text(), "2.5");
    EXPECT_EQ(Cell(form.lstWeather, 5), "2.5");
    EXPECT_EQ(form.m_oStorage.m_colEventTasks.Item("P1")->m_nMin, 2);  // a tie to the even one
  });
  EXPECT_EQ(Period().duration->minimum, 2.0);
}

TEST_F(RowEditing, AMinimumAboveTheMaximumAndANegativeLengthPass) {
  OnEvents([this](frmWeather& form) {
    Enter(form.txtMin, "9");
    Enter(form.txtMax, "-3");
    EXPECT_THAT(Messages(), IsEmpty());
  });
  EXPECT_EQ(Period().duration->minimum, 9.0);
  EXPECT_EQ(Period().duration->maximum, -3.0);
}

// What leaving a box writes.

TEST_F(RowEditing, LeavingABoxUnchangedStillWritesTheTask) {
  OnEvents([this](frmWeather& form) {
    form.txtDescription.UserKey(Key::kTab);
    EXPECT_EQ(recorder().Containing({"Task(P1).ID ="}).size(), 1u);
    EXPECT_THAT(recorder().Containing({"AutoRecalculate", "(P2)"}), IsEmpty());
  });
  OnWindows([this](frmWeather& form) {
    form.txtDescrWW.UserKey(Key::kTab);
    EXPECT_EQ(recorder().Containing({".ID ="}).size(), 2u);  // both edges
  });
}

TEST_F(RowEditing, ADescriptionMayBeAnyText) {
  OnEvents([](frmWeather& form) { Enter(form.txtDescription, "100% \"rain\""); });
  OnWindows([](frmWeather& form) { Enter(form.txtDescrWW, ""); });
  EXPECT_EQ(Period().description, "100% \"rain\"");
  EXPECT_EQ(Window().description, "");
  EXPECT_EQ(WindowEnd().description, "");
}

TEST_F(RowEditing, ABoxThatIsBeingFilledIsNotChecked) {
  OnEvents([this](frmWeather& form) {
    form.m_bFilling = true;
    Enter(form.txtStart, "soon");
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Cell(form.lstWeather, 2), "01/Jan/2027");
    EXPECT_THAT(calls(), IsEmpty());
    EXPECT_TRUE(form.m_bFilling);
  });
}

TEST_F(RowEditing, AClickOnARowLowersTheFlagThatWasUp) {
  OnEvents([](frmWeather& form) {
    form.m_bFilling = true;
    form.lstWeather.UserClickRow(2);
    EXPECT_FALSE(form.m_bFilling);
    form.m_bFilling = true;
    form.tabs.UserPickTab(1);
    form.lstWW.UserClickRow(2);
    EXPECT_FALSE(form.m_bFilling);
  });
}

TEST_F(RowEditing, WithoutARowAValidEntryFailsAtTheLookup) {
  plan().tasks.clear();
  plan().AddWeatherSummary();
  OnEvents([this](frmWeather& form) {
    Enter(form.txtStart, "5 Jan 2027");
    EXPECT_EQ(form.txtStart.Text(), "05/Jan/2027");
    EXPECT_THAT(Errors(), ElementsAre(platform::kObjectNotSet));
    // The focus was let go into the next box, which is empty and so can't be left.
    EXPECT_TRUE(form.txtEnd.HasFocus());
    form.cmdClose.UserClick();
    EXPECT_THAT(Messages(), ElementsAre(" is not a valid date!"));
    EXPECT_TRUE(form.Visible());
  });
  OnWindows([this](frmWeather& form) {
    Enter(form.txtDescrWW, "Ice");
    EXPECT_THAT(Errors(), ElementsAre(platform::kObjectNotSet));
  });
}

TEST_F(RowEditing, AHostThatFailsWhileABoxIsLeftIsShown) {
  OnEvents([this](frmWeather& form) {
    recorder().FailOn("Weather-end");
    Enter(form.txtDescription, "New");
    EXPECT_THAT(Errors(), ElementsAre(1004));
  });
  EXPECT_EQ(Period().description, "New");  // what came before the failure stays
}

// Writing whole lists.

TEST_F(RowEditing, WritingTheEventsWritesEachCellAndThenTheTask) {
  OnEvents([this](frmWeather& form) {
    form.SaveEventRows();
    const Lines frame = recorder().Containing({"AutoRecalculate", "Enabled", "(P1).ID", "(P2).ID"});
    ASSERT_EQ(frame.size(), 20u);
    EXPECT_EQ(Lines(frame.begin(), frame.begin() + 3),
              (Lines{"Plan.AutoRecalculate = False", "ChangeMonitor.Enabled = False",
                     "Task(P1).ID = \"P1\""}));
    EXPECT_EQ(frame[9], "Task(P1).ID = \"P1\"");  // seven cells and once more
    EXPECT_EQ(frame[10], "Task(P2).ID = \"P2\"");
    EXPECT_EQ(frame[18], "ChangeMonitor.Enabled = True");
    EXPECT_EQ(frame[19], "Plan.AutoRecalculate = True");
  });
}

TEST_F(RowEditing, WritingTheWindowsWritesEachCellAndTurnsTheSwitchesInTheOtherOrder) {
  OnWindows([this](frmWeather& form) {
    form.SaveWindowRows();
    const Lines frame = recorder().Containing({"AutoRecalculate", "Enabled", "(W1).ID", "(W2).ID"});
    ASSERT_EQ(frame.size(), 20u);  // eight cells of each of two rows
    EXPECT_EQ(frame[0], "Plan.AutoRecalculate = False");
    EXPECT_EQ(frame[1], "ChangeMonitor.Enabled = False");
    EXPECT_EQ(frame[9], "Task(W1).ID = \"W1\"");
    EXPECT_EQ(frame[10], "Task(W2).ID = \"W2\"");
    EXPECT_EQ(frame[18], "Plan.AutoRecalculate = True");
    EXPECT_EQ(frame[19], "ChangeMonitor.Enabled = True");
  });
}

TEST_F(RowEditing, AWindowRowWithoutAnIdIsSkippedAnEventRowIsNot) {
  OnWindows([this](frmWeather& form) {
    form.lstWW.ListItems().Item(1)->SetText("");
    form.SaveWindowRows();
    EXPECT_THAT(recorder().Containing({"(W1)"}), IsEmpty());
    EXPECT_EQ(recorder().Containing({"(W2).ID ="}).size(), 8u);
    form.lstWeather.ListItems().Item(1)->SetText("");
    EXPECT_EQ(ErrorOf([&form] { form.SaveEventRows(); }), platform::kInvalidProcedureCall);
  });
}

TEST_F(RowEditing, AFailureInTheMiddleLeavesTheSwitchesOff) {
  OnEvents([this](frmWeather& form) {
    recorder().FailOn("Weather-start", 3);
    EXPECT_EQ(ErrorOf([&form] { form.SaveEventRows(); }), 1004);
    EXPECT_FALSE(plan().auto_recalculate);
    EXPECT_FALSE(plan().monitor_enabled);
    plan().auto_recalculate = plan().monitor_enabled = true;
    recorder().FailOn("startdate", 3);
    EXPECT_EQ(ErrorOf([&form] { form.SaveWindowRows(); }), 1004);
    EXPECT_FALSE(plan().auto_recalculate);
    EXPECT_FALSE(plan().monitor_enabled);
  });
}

TEST_F(RowEditing, ACellThatDoesNotParseStopsTheWritingOfTheList) {
  OnEvents([this](frmWeather& form) {
    form.lstWeather.ListItems().Item(1)->SetSubItems(2, "soon");
    EXPECT_EQ(ErrorOf([&form] { form.SaveEventRows(); }), platform::kTypeMismatch);
    EXPECT_THAT(recorder().Containing({"(P2)"}), IsEmpty());
  });
}

// Sorting.

class Sorting : public WeatherDialogTest {
 protected:
  Sorting() {
    MakeWeatherPlan();
    AddPeriod("A", "GALES", MakeDate(2026, 12, 30), MakeDate(2027, 1, 9)).risk = {0, 10.0};
    AddPeriod("B", "GALES", MakeDate(2027, 1, 2), MakeDate(2027, 1, 8)).risk = {0, 9.0};
    AddPeriod("C", "GALES", MakeDate(2026, 3, 31), MakeDate(2027, 1, 7));
    plan().Task("A").duration = {100.0, 2.0, 3.0};
    plan().Task("B").duration = {20.0, 2.0, 3.0};
    plan().Task("C").duration = {3.0, 2.0, 3.0};
  }
  /// The order of the rows after a click on a header.
  static std::string After(frmWeather& form, std::int32_t header) {
    form.lstWeather.UserClickHeader(header);
    std::string ids;
    for (const std::string& id : ColumnOf(form.lstWeather, 1)) {
      ids += id;
    }
    return ids;
  }
};

TEST_F(Sorting, TheFirstClickOnAFreshListEndsInDescendingOrder) {
  Open([](frmWeather& form) {
    EXPECT_EQ(After(form, 3), "BAC");
    EXPECT_EQ(form.lstWeather.SortOrder(), toolkit::SortOrder::kDescending);
    EXPECT_TRUE(form.lstWeather.Sorted());
  });
}

TEST_F(Sorting, TheOrderTurnsAtEachClickWhicheverHeaderItIs) {
  Open([](frmWeather& form) {
    EXPECT_EQ(After(form, 2), "CBA");  // descriptions, descending
    EXPECT_EQ(After(form, 3), "CAB");  // starts, ascending
    EXPECT_EQ(After(form, 4), "ABC");  // finishes, descending
  });
}

TEST_F(Sorting, PercentagesAndNumbersGoByTheirValue) {
  Open([](frmWeather& form) {
    EXPECT_EQ(After(form, 5), "CAB");
    EXPECT_EQ(After(form, 5), "BAC");  // 9%, 10%, 100%
    EXPECT_EQ(After(form, 6), "ABC");  // 100, 20, 3
    EXPECT_EQ(ColumnOf(form.lstWeather, 6), (Lines{"100", "20", "3"}));
    EXPECT_EQ(ColumnOf(form.lstWeather, 5), (Lines{"10%", "9%", "100%"}));
  });
}

TEST_F(Sorting, TheSelectionAndTheBoxesStay) {
  Open([](frmWeather& form) {
    form.lstWeather.UserClickRow(2);
    After(form, 3);
    EXPECT_EQ(Selected(form.lstWeather), "B");
    EXPECT_EQ(form.txtDescription.Text(), "Period B");
  });
}

TEST_F(Sorting, ANumberOfMoreThanTenPlacesCannotBeSorted) {
  Open([this](frmWeather& form) {
    form.lstWeather.ListItems().Item(2)->SetSubItems(6, "10000000");  // "10000000.00" has eleven
    form.lstWeather.UserClickHeader(7);
    EXPECT_THAT(Errors(), ElementsAre(platform::kInvalidProcedureCall));
    EXPECT_FALSE(form.lstWeather.Sorted());
    // The cells before it are left with their keys.
    EXPECT_EQ(ColumnOf(form.lstWeather, 7), (Lines{"0000002.00", "10000000", "2"}));
  });
}

TEST_F(Sorting, TenPlacesAreNotTooMany) {
  Open([this](frmWeather& form) {
    form.lstWeather.ListItems().Item(2)->SetSubItems(6, "1000000");
    EXPECT_EQ(After(form, 7), "BAC");
    EXPECT_THAT(Errors(), IsEmpty());
  });
}

TEST_F(Sorting, ACellThatIsNoDateCannotBeSorted) {
  Open([this](frmWeather& form) {
    form.lstWeather.ListItems().Item(3)->SetSubItems(2, "soon");
    form.lstWeather.UserClickHeader(3);
    EXPECT_THAT(Errors(), ElementsAre(platform::kTypeMismatch));
  });
}

}  // namespace
}  // namespace nimbrel::dialog
