// The small dialogs: what they offer, what they refuse and why, and what the caller reads from the
// hidden form. Each is worked by hand on a recording host.

#include <gmock/gmock.h>

#include "dialog/frm_convert_cal.h"
#include "dialog/frm_import.h"
#include "dialog/frm_new_cal.h"
#include "dialog/frm_new_weather1.h"
#include "dialog/frm_new_window_cal.h"
#include "tests/support/host/wired_test.h"
#include "tests/toolkit/support.h"

namespace nimbrel::dialog {
namespace {

using platform::MakeDate;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using toolkit::Key;

constexpr const char* kBadDates = "Please make sure the dates are valid.";
constexpr const char* kWrongOrder = "Start date must be before the finish date";
constexpr const char* kNoName = "Please enter a name of the calendar.";
constexpr const char* kNameTaken = "This calendar already exists. Please enter a new name.";

class SmallDialogTest : public recording::WiredTest {
 protected:
  SmallDialogTest() { desktop_.SetEventLog(&events_); }

  /// Shows a form and works it while it is open; what it read on opening is left out of the record.
  void WhileOpen(toolkit::Form& form, const std::function<void()>& hands) {
    desktop_.OnNextForm([this, hands](toolkit::Form&) {
      recorder().Clear();
      events_.lines.clear();
      hands();
    });
    form.ShowModal();
  }

  /// The texts of the message boxes so far; each has OK alone and the same title.
  std::vector<std::string> Messages() const {
    std::vector<std::string> texts;
    for (const toolkit::Message& message : desktop_.messages) {
      EXPECT_EQ(message.title, "Weather Modeling");
      EXPECT_EQ(message.buttons, toolkit::Buttons::kOk);
      EXPECT_FALSE(message.reports_error);
      texts.push_back(message.text);
    }
    return texts;
  }

  static bool IsTrue(const platform::Variant& value) {
    return value.ToBoolean(platform::DefaultLocale());
  }

  /// A control must be inside its form, and no two of them in the same place.
  static void ExpectCleanLayout(const toolkit::Form& form) {
    const auto& controls = form.AllControls();
    for (const toolkit::Control* a : controls) {
      EXPECT_GE(a->Left(), 0) << a->Name();
      EXPECT_GE(a->Top(), 0) << a->Name();
      EXPECT_LE(a->Left() + a->Width(), form.Width()) << a->Name();
      EXPECT_LE(a->Top() + a->Height(), form.Height()) << a->Name();
      for (const toolkit::Control* b : controls) {
        const bool apart = a->Left() + a->Width() <= b->Left() ||
                           b->Left() + b->Width() <= a->Left() ||
                           a->Top() + a->Height() <= b->Top() || b->Top() + b->Height() <= a->Top();
        EXPECT_TRUE(a == b || apart) << a->Name() << " over " << b->Name();
      }
    }
  }
  static std::vector<std::string> TabNames(const toolkit::Form& form) {
    std::vector<std::string> names;
    for (const toolkit::Control* control : form.TabOrder()) {
      names.push_back(control->Name());
    }
    return names;
  }

  toolkit::TestDesktop desktop_;
  toolkit::Events events_;
};

/// Types a span into a form's boxes and presses OK.
template <class Form>
void EnterSpan(Form& form, const std::string& start, const std::string& end) {
  form.txtStart.UserType(start);
  form.txtEnd.UserType(end);
  form.cmdOK.UserClick();
}

class NewCalendar : public SmallDialogTest {
 protected:
  /// Gives a name to the open dialog and presses OK.
  void Enter(const std::string& name) {
    form_.txtCalName.UserType(name);
    form_.cmdOK.UserClick();
  }
  frmNewCal form_{desktop_};
};

TEST_F(NewCalendar, OffersTheYearFromTheFirstOfTheReferenceMonth) {
  plan().reference = MakeDate({2027, 3, 17, 9, 30, 0});
  WhileOpen(form_, [&] {
    EXPECT_EQ(form_.Caption(), "Add New Weather Event Calendar");
    EXPECT_EQ(form_.txtCalName.Text(), "");
    EXPECT_EQ(form_.txtStart.Text(), "01/Mar/2027");
    // 365 days later; 2028 has a 29 February on the way, so it is the day before.
    EXPECT_EQ(form_.txtEnd.Text(), "29/Feb/2028");
  });
}

TEST_F(NewCalendar, WritesDatesInTheUsersLanguage) {
  Wire(*platform::FindLocale("de-DE"));
  plan().reference = MakeDate(2027, 5, 31);
  WhileOpen(form_, [&] {
    EXPECT_EQ(form_.txtStart.Text(), platform::FormatDate(MakeDate(2027, 5, 1), "dd/mmm/yyyy",
                                                          *platform::FindLocale("de-DE")));
    Enter("sturm");
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
}

TEST_F(NewCalendar, KeepsNameAndDatesForTheCallerAfterOk) {
  WhileOpen(form_, [&] {
    form_.txtCalName.UserType("north sea");
    EnterSpan(form_, "01/Feb/2027", "30/Apr/2027");
  });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
  EXPECT_TRUE(form_.Loaded());
  EXPECT_EQ(form_.txtCalName.Text(), "NORTH SEA");
  EXPECT_EQ(form_.txtStart.Text(), "01/Feb/2027");
  EXPECT_EQ(form_.txtEnd.Text(), "30/Apr/2027");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(NewCalendar, CutsTheNameToItsFirst15LettersInUpperCase) {
  WhileOpen(form_, [&] { Enter("abcdefghijklmnopqrst"); });
  EXPECT_EQ(form_.txtCalName.Text(), "ABCDEFGHIJKLMNO");
  EXPECT_TRUE(IsTrue(form_.m_bOk));
}

TEST_F(NewCalendar, CountsLettersAndNotBytes) {
  WhileOpen(form_, [&] { Enter("äöüäöüäöüäöüäöüxyz"); });
  EXPECT_EQ(form_.txtCalName.Text(), "ÄÖÜÄÖÜÄÖÜÄÖÜÄÖÜ");
}

TEST_F(NewCalendar, TakesANameOfSpaces) {
  WhileOpen(form_, [&] { Enter("   "); });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
  EXPECT_EQ(form_.txtCalName.Text(), "   ");
}

TEST_F(NewCalendar, AsksForANameAndStaysOpen) {
  WhileOpen(form_, [&] {
    form_.cmdOK.UserClick();
    EXPECT_TRUE(form_.Visible());
    EXPECT_FALSE(IsTrue(form_.m_bOk));
  });
  EXPECT_THAT(Messages(), ElementsAre(kNoName));
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(NewCalendar, RefusesTheNameOfAnyCalendarOnceItIsInUpperCase) {
  WhileOpen(form_, [&] {
    Enter("Standard");
    EXPECT_TRUE(form_.Visible());
    EXPECT_EQ(form_.txtCalName.Text(), "STANDARD");
    EXPECT_FALSE(IsTrue(form_.m_bOk));
    Enter("Standard 2");
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_THAT(Messages(), ElementsAre(kNameTaken));
  EXPECT_EQ(form_.txtCalName.Text(), "STANDARD 2");
}

TEST_F(NewCalendar, DoesNotClashWithACalendarOfMixedCase) {
  plan().AddCalendar("North Sea");
  WhileOpen(form_, [&] { Enter("north sea"); });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
}

TEST_F(NewCalendar, RefusesALongNameThatIsTakenAfterTheCut) {
  plan().AddCalendar("ABCDEFGHIJKLMNO");
  WhileOpen(form_, [&] { Enter("abcdefghijklmnoP"); });
  EXPECT_THAT(Messages(), ElementsAre(kNameTaken));
  EXPECT_FALSE(IsTrue(form_.m_bOk));
}

TEST_F(NewCalendar, ChecksTheDatesBeforeTheName) {
  WhileOpen(form_, [&] {
    form_.txtCalName.UserType("standard");
    EnterSpan(form_, "soon", "later");
    EXPECT_EQ(form_.txtCalName.Text(), "standard");
  });
  EXPECT_THAT(Messages(), ElementsAre(kBadDates));
}

TEST_F(NewCalendar, TakesYearsFrom1900To2100Alone) {
  WhileOpen(form_, [&] {
    EnterSpan(form_, "31/12/2100", "01/01/2101");
    EnterSpan(form_, "31/12/1899", "01/01/1900");
    EXPECT_THAT(Messages(), ElementsAre(kBadDates, kBadDates));
    EnterSpan(form_, "01/01/1900", "31/12/2100");  // now the name is what is missing
  });
  EXPECT_THAT(Messages(), ElementsAre(kBadDates, kBadDates, kNoName));
}

TEST_F(NewCalendar, RefusesAYearOutOfRangeBeforeTheOrder) {
  WhileOpen(form_, [&] { EnterSpan(form_, "01/01/2101", "01/01/2027"); });
  EXPECT_THAT(Messages(), ElementsAre(kBadDates));
}

TEST_F(NewCalendar, TakesEqualDatesAndNoReversedOnes) {
  WhileOpen(form_, [&] {
    form_.txtCalName.UserType("a");
    EnterSpan(form_, "02/Jan/2027", "01/Jan/2027");
    EXPECT_TRUE(form_.Visible());
    EnterSpan(form_, "02/Jan/2027", "02/Jan/2027");
  });
  EXPECT_THAT(Messages(), ElementsAre(kWrongOrder));
  EXPECT_TRUE(IsTrue(form_.m_bOk));
}

TEST_F(NewCalendar, CancelHidesAndKeepsQuiet) {
  WhileOpen(form_, [&] {
    form_.txtStart.UserType("nonsense");
    form_.cmdCancel.UserClick();
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_FALSE(IsTrue(form_.m_bOk));
  EXPECT_THAT(Messages(), IsEmpty());
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(NewCalendar, EnterIsOkAndEscapeIsCancel) {
  WhileOpen(form_, [&] {
    form_.txtCalName.UserType("storm");
    form_.UserKey(Key::kEnter);
  });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
  frmNewCal again(desktop_);
  WhileOpen(again, [&] {
    again.txtCalName.UserType("storm");
    again.UserKey(Key::kEscape);
    EXPECT_FALSE(again.Visible());
  });
  EXPECT_FALSE(IsTrue(again.m_bOk));
}

TEST_F(NewCalendar, TheWindowsOwnButtonIsNoOk) {
  WhileOpen(form_, [&] {
    form_.txtCalName.UserType("storm");
    form_.UserClose();
  });
  EXPECT_FALSE(IsTrue(form_.m_bOk));
}

TEST_F(NewCalendar, ReadsThePlanAndChangesNothing) {
  plan().AddCalendar("OTHER");
  recorder().Clear();
  form_.Load();
  EXPECT_THAT(calls(), ElementsAre("Application.ActivePlan", "Plan.Properties",
                                   "PlanProperties.ReferenceDate"));
  WhileOpen(form_, [&] { Enter("storm"); });
  EXPECT_THAT(calls(),
              ElementsAre("Application.ActivePlan", "Plan.Calendars", "PlanCalendars.Elements",
                          "Calendar(STANDARD).Name", "Calendar(OTHER).Name"));
}

TEST_F(NewCalendar, AFailingHostReachesTheCallerOfOpening) {
  recorder().FailOn("ReferenceDate");
  EXPECT_EQ(ErrorOf([&] { form_.ShowModal(); }), 1004);
  EXPECT_FALSE(form_.Visible());
  host_.ClosePlan();
  EXPECT_EQ(ErrorOf([&] { form_.ShowModal(); }), platform::kObjectNotSet);
}

TEST_F(NewCalendar, AFailingHostInTheSearchReachesTheDefaultHandling) {
  WhileOpen(form_, [&] {
    recorder().FailOn("Calendar(STANDARD).Name");
    Enter("storm");
    EXPECT_TRUE(form_.Visible());
  });
  ASSERT_EQ(desktop_.messages.size(), 1u);
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_FALSE(IsTrue(form_.m_bOk));
}

class NewPeriods : public SmallDialogTest {
 protected:
  frmNewWeather1 form_{desktop_};
};

TEST_F(NewPeriods, OffersTheYearFromTheReferenceDateItself) {
  plan().reference = MakeDate(2027, 3, 17);
  WhileOpen(form_, [&] {
    EXPECT_EQ(form_.Caption(), "New weather periods");
    EXPECT_EQ(form_.txtStart.Text(), "17/Mar/2027");
    EXPECT_EQ(form_.txtEnd.Text(), "16/Mar/2028");
  });
}

TEST_F(NewPeriods, TakesAnyYear) {
  WhileOpen(form_, [&] { EnterSpan(form_, "31/12/2100", "01/01/2101"); });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
  EXPECT_FALSE(form_.Visible());
  EXPECT_EQ(form_.txtEnd.Text(), "01/01/2101");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(NewPeriods, TakesEqualDatesAndRefusesTheRest) {
  WhileOpen(form_, [&] {
    EnterSpan(form_, "02/Jan/2027", "01/Jan/2027");
    EnterSpan(form_, "02/Jan/2027", "");
    EnterSpan(form_, "30/Feb/2027", "01/Mar/2027");
    EXPECT_TRUE(form_.Visible());
    EXPECT_FALSE(IsTrue(form_.m_bOk));
    EnterSpan(form_, "02/Jan/2027", "02/Jan/2027");
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_THAT(Messages(), ElementsAre(kWrongOrder, kBadDates, kBadDates));
  EXPECT_TRUE(IsTrue(form_.m_bOk));
}

TEST_F(NewPeriods, CancelGivesFalse) {
  WhileOpen(form_, [&] { form_.cmdCancel.UserClick(); });
  EXPECT_FALSE(IsTrue(form_.m_bOk));
  EXPECT_TRUE(form_.m_bOk.Is<bool>());
}

TEST_F(NewPeriods, AFailingHostReachesTheCallerOfOpening) {
  recorder().FailOn("Properties");
  EXPECT_EQ(ErrorOf([&] { form_.ShowModal(); }), 1004);
}

class NewWindowCalendar : public SmallDialogTest {
 protected:
  void Enter(const std::string& name) {
    form_.txtCalName.UserType(name);
    form_.cmdOK.UserClick();
  }
  frmNewWindowCal form_{desktop_};
};

TEST_F(NewWindowCalendar, AsksTheHostForNothingOnOpening) {
  form_.Load();
  EXPECT_THAT(calls(), IsEmpty());
  EXPECT_EQ(form_.Caption(), "Weather Modeling");
  EXPECT_FALSE(form_.m_bOk);
}

TEST_F(NewWindowCalendar, TakesANameAsTheEventDialogDoes) {
  WhileOpen(form_, [&] { Enter("frozen canal of 2027"); });
  EXPECT_TRUE(form_.m_bOk);
  EXPECT_EQ(form_.txtCalName.Text(), "FROZEN CANAL OF");
}

TEST_F(NewWindowCalendar, RefusesNoNameAndATakenOne) {
  WhileOpen(form_, [&] {
    Enter("");
    Enter("standard");
    EXPECT_TRUE(form_.Visible());
    EXPECT_FALSE(form_.m_bOk);
    Enter(" ");
  });
  EXPECT_THAT(Messages(), ElementsAre(kNoName, kNameTaken));
  EXPECT_TRUE(form_.m_bOk);
}

TEST_F(NewWindowCalendar, CancelHidesUnloadsAndGivesFalse) {
  WhileOpen(form_, [&] {
    form_.txtCalName.UserType("ice");
    form_.cmdCancel.UserClick();
  });
  EXPECT_FALSE(form_.m_bOk);
  EXPECT_FALSE(form_.Visible());
  EXPECT_FALSE(form_.Loaded());
}

TEST_F(NewWindowCalendar, AFailingHostInTheSearchReachesTheDefaultHandling) {
  recorder().FailOn("Calendars");
  desktop_.OnNextForm([&](toolkit::Form&) { Enter("ice"); });
  form_.ShowModal();
  ASSERT_EQ(desktop_.messages.size(), 1u);
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_FALSE(form_.m_bOk);
}

class ImportSheet : public SmallDialogTest {
 protected:
  ImportSheet() {
    AddSheet("STORMS", "WEATHER-EVENTS");
    AddSheet("ICE", "Weather-Windows");
  }
  void AddSheet(const std::string& name, const std::string& kind) {
    form_.lstCals.ListItems().Add({}, {}, name)->SetSubItems(1, kind);
  }
  frmImport form_{desktop_};
};

TEST_F(ImportSheet, GivesTheSheetOfTheWantedKindInAnyCase) {
  form_.m_strDataType = "Weather-Events";
  WhileOpen(form_, [&] {
    EXPECT_EQ(form_.Caption(), "Import Calendars From Excel");
    form_.lstCals.UserClickRow(1);
    form_.cmdOK.UserClick();
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_TRUE(form_.m_bOk);
  EXPECT_EQ(form_.m_strSelCal, "STORMS");
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(ImportSheet, ADoubleClickIsOk) {
  form_.m_strDataType = "Weather-windows";
  WhileOpen(form_, [&] {
    form_.lstCals.UserDoubleClickRow(2);
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_TRUE(form_.m_bOk);
  EXPECT_EQ(form_.m_strSelCal, "ICE");
}

TEST_F(ImportSheet, EnterInTheListIsOk) {
  form_.m_strDataType = "Weather-windows";
  WhileOpen(form_, [&] {
    form_.lstCals.UserClickRow(2);
    form_.UserKey(Key::kEnter);
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_EQ(form_.m_strSelCal, "ICE");
}

TEST_F(ImportSheet, PeriodsDoNotGoIntoAWindowCalendar) {
  form_.m_strDataType = "Weather-windows";
  WhileOpen(form_, [&] {
    form_.lstCals.UserDoubleClickRow(1);
    EXPECT_TRUE(form_.Visible());
    EXPECT_TRUE(form_.m_bOk);  // OK was pressed, and the dialog waits for another choice
    EXPECT_EQ(form_.m_strSelCal, "STORMS");
    form_.cmdCancel.UserClick();
  });
  EXPECT_THAT(Messages(),
              ElementsAre("You can't import weather-period data into a weather window calendar!"));
  EXPECT_FALSE(form_.m_bOk);
  EXPECT_FALSE(form_.Loaded());
}

TEST_F(ImportSheet, WindowsDoNotGoIntoAnEventCalendar) {
  form_.m_strDataType = "Weather-Events";
  WhileOpen(form_, [&] {
    form_.lstCals.UserDoubleClickRow(2);
    EXPECT_TRUE(form_.Visible());
    form_.lstCals.UserDoubleClickRow(1);
  });
  EXPECT_THAT(Messages(),
              ElementsAre("You can't import weather-windows data into a weather period calendar!"));
  EXPECT_TRUE(form_.m_bOk);
  EXPECT_EQ(form_.m_strSelCal, "STORMS");
}

TEST_F(ImportSheet, TheMessageGoesByTheWantedKindAsItIsWritten) {
  form_.m_strDataType = "WEATHER-WINDOWS";
  WhileOpen(form_, [&] { form_.lstCals.UserDoubleClickRow(1); });
  EXPECT_THAT(Messages(),
              ElementsAre("You can't import weather-windows data into a weather period calendar!"));
}

TEST_F(ImportSheet, OkWithoutARowFailsInTheList) {
  WhileOpen(form_, [&] {
    form_.cmdOK.UserClick();
    EXPECT_TRUE(form_.Visible());
    EXPECT_TRUE(form_.m_bOk);
    EXPECT_EQ(form_.m_strSelCal, "");
    EXPECT_EQ(ErrorOf([&] { form_.cmdOK.Click(); }), platform::kObjectNotSet);
    form_.cmdCancel.UserClick();
  });
  EXPECT_FALSE(form_.m_bOk);
  ASSERT_EQ(desktop_.messages.size(), 1u);
  EXPECT_TRUE(desktop_.messages[0].reports_error);
  EXPECT_THAT(events_.lines,
              ElementsAre("cmdOK Click", StartsWith("error 91 "), "cmdCancel Click"));
}

class ConvertCalendar : public SmallDialogTest {
 protected:
  frmConvertCal form_{desktop_};
};

TEST_F(ConvertCalendar, OffersAllCalendarsAndTheYearFromTheReferenceDate) {
  plan().AddCalendar("Night shift");
  plan().AddPeriod("P1", "NORTH SEA", MakeDate(2027, 1, 1), MakeDate(2027, 1, 31));
  plan().reference = MakeDate(2027, 3, 17);
  WhileOpen(form_, [&] {
    EXPECT_EQ(form_.Caption(), "Convert a calendar");
    EXPECT_THAT(form_.lstCals.Entries(), ElementsAre("STANDARD", "Night shift", "NORTH SEA"));
    EXPECT_EQ(form_.lstCals.ListIndex(), 0);
    EXPECT_EQ(form_.txtStart.Text(), "17/Mar/2027");
    EXPECT_EQ(form_.txtEnd.Text(), "16/Mar/2028");
    form_.lstCals.UserPick(1);
    form_.cmdOK.UserClick();
  });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
  EXPECT_EQ(form_.lstCals.Text(), "Night shift");
}

TEST_F(ConvertCalendar, OkDoesNotLookAtTheDates) {
  WhileOpen(form_, [&] { EnterSpan(form_, "soon", "later"); });
  EXPECT_TRUE(IsTrue(form_.m_bOk));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(ConvertCalendar, OkWithoutACalendarDoesNothing) {
  plan().calendars.clear();
  WhileOpen(form_, [&] {
    form_.cmdOK.UserClick();
    EXPECT_TRUE(form_.Visible());
    EXPECT_FALSE(IsTrue(form_.m_bOk));
    form_.cmdCancel.UserClick();
  });
  EXPECT_FALSE(IsTrue(form_.m_bOk));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(ConvertCalendar, CancelGivesFalse) {
  WhileOpen(form_, [&] { form_.cmdCancel.UserClick(); });
  EXPECT_FALSE(IsTrue(form_.m_bOk));
}

TEST_F(ConvertCalendar, ChecksDatesForWhoConvertsTheCalendar) {
  WhileOpen(form_, [&] {
    form_.txtStart.UserType("31/12/2100");
    form_.txtEnd.UserType("01/01/2101");
    EXPECT_TRUE(form_.ValidateDates());
    form_.txtEnd.UserType("31/12/2100");
    EXPECT_TRUE(form_.ValidateDates());
    EXPECT_THAT(Messages(), IsEmpty());
    form_.txtEnd.UserType("30/12/2100");
    EXPECT_FALSE(form_.ValidateDates());
    form_.txtStart.UserType("soon");
    EXPECT_FALSE(form_.ValidateDates());
  });
  EXPECT_THAT(Messages(), ElementsAre(kWrongOrder, kBadDates));
}

TEST_F(ConvertCalendar, AFailingHostReachesTheCallerOfOpening) {
  recorder().FailOn("Calendars");
  EXPECT_EQ(ErrorOf([&] { form_.ShowModal(); }), 1004);
}

using Layout = SmallDialogTest;

TEST_F(Layout, KeepsControlsApartAndInside) {
  ExpectCleanLayout(frmNewCal(desktop_));
  ExpectCleanLayout(frmNewWeather1(desktop_));
  ExpectCleanLayout(frmNewWindowCal(desktop_));
  ExpectCleanLayout(frmImport(desktop_));
  ExpectCleanLayout(frmConvertCal(desktop_));
}

TEST_F(Layout, TabGoesThroughTheBoxesToTheButtons) {
  EXPECT_THAT(TabNames(frmNewCal(desktop_)),
              ElementsAre("txtCalName", "txtStart", "txtEnd", "cmdOK", "cmdCancel"));
  EXPECT_THAT(TabNames(frmNewWeather1(desktop_)),
              ElementsAre("txtStart", "txtEnd", "cmdOK", "cmdCancel"));
  EXPECT_THAT(TabNames(frmNewWindowCal(desktop_)), ElementsAre("txtCalName", "cmdOK", "cmdCancel"));
  EXPECT_THAT(TabNames(frmImport(desktop_)), ElementsAre("lstCals", "cmdOK", "cmdCancel"));
  EXPECT_THAT(TabNames(frmConvertCal(desktop_)),
              ElementsAre("lstCals", "txtStart", "txtEnd", "cmdOK", "cmdCancel"));
}

TEST_F(Layout, WhatStandsUnderALabelHasANameOfItsOwnForReaders) {
  const frmNewCal form(desktop_);
  EXPECT_EQ(form.Label1[0].Caption(), "Enter the name of the new calendar");
  EXPECT_EQ(form.Label1[1].Caption(), "Add monthly weather events from:");
  EXPECT_EQ(form.Label2.Caption(), "to");
  for (const toolkit::Control* control : form.TabOrder()) {
    const bool has_caption = control->Kind() == toolkit::ControlKind::kCommandButton;
    EXPECT_NE(control->AccessibleName().empty(), !has_caption) << control->Name();
  }
}

}  // namespace
}  // namespace nimbrel::dialog
