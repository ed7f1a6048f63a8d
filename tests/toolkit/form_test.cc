#include <gtest/gtest.h>

#include "tests/toolkit/support.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

class FormTest : public ToolkitTest {
 protected:
  void HearLifeCycle() {
    form_.Form_Load = Heard();
    form_.Form_QueryUnload = [](bool&, UnloadMode) {};
    form_.Form_Unload = [](bool&) {};
  }

  CommandButton ok_{form_, "cmdOK", "OK"};
  CommandButton cancel_{form_, "cmdCancel", "Cancel"};
  TextBox box_{form_, "txtBox"};
};

TEST_F(FormTest, AFormIsLoadedWhenItIsFirstShownAndStaysLoadedWhileHidden) {
  HearLifeCycle();
  form_.ShowModal();
  form_.ShowModal();
  EXPECT_EQ(log(), Lines{"frmTest Load"});
  EXPECT_TRUE(form_.Loaded());
  EXPECT_FALSE(form_.Visible());
}

TEST_F(FormTest, AnErrorInLoadGoesToTheCallerOfShowAndTheFormStaysClosed) {
  form_.Form_Load = [] { Fail("the host is gone"); };
  EXPECT_EQ(ErrorOf([&] { form_.ShowModal(); }), 1004);
  EXPECT_FALSE(form_.Loaded());
  EXPECT_FALSE(form_.Visible());
  EXPECT_TRUE(desktop_.messages.empty());
}

TEST_F(FormTest, UnloadingAsksFirstAndThenHides) {
  HearLifeCycle();
  WhileOpen([&] {
    form_.Unload();
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_EQ(log(), (Lines{"frmTest QueryUnload", "frmTest Unload"}));
  EXPECT_FALSE(form_.Loaded());
}

TEST_F(FormTest, AHiddenFormCanBeUnloaded) {
  HearLifeCycle();
  WhileOpen([&] {
    form_.Hide();
    form_.Unload();
    form_.Unload();
  });
  EXPECT_EQ(log(), (Lines{"frmTest QueryUnload", "frmTest Unload"}));
}

TEST_F(FormTest, EitherQuestionCanRefuseTheUnload) {
  HearLifeCycle();
  form_.Form_Unload = [](bool& cancel) { cancel = true; };
  WhileOpen([&] {
    form_.UserClose();
    EXPECT_TRUE(form_.Visible());
    form_.Form_QueryUnload = [](bool& cancel, UnloadMode) { cancel = true; };
    ClearLog();
    form_.UserClose();
    EXPECT_TRUE(form_.Visible());
    EXPECT_EQ(log(), Lines{"frmTest QueryUnload"});
  });
}

TEST_F(FormTest, TheQuestionSaysWhetherTheWindowsButtonAsks) {
  std::vector<UnloadMode> modes;
  form_.Form_QueryUnload = [&](bool&, UnloadMode mode) { modes.push_back(mode); };
  WhileOpen([&] { form_.UserClose(); });
  WhileOpen([&] { form_.Unload(); });
  EXPECT_EQ(modes, (std::vector<UnloadMode>{UnloadMode::kControlMenu, UnloadMode::kCode}));
}

TEST_F(FormTest, AVisibleFormCannotBeShownAgain) {
  WhileOpen([&] { EXPECT_EQ(ErrorOf([&] { form_.ShowModal(); }), kFormAlreadyShown); });
}

TEST_F(FormTest, AHiddenFormStillAnswersForItsControls) {
  WhileOpen([&] { box_.UserType("NORTH SEA"); });
  EXPECT_EQ(box_.Text(), "NORTH SEA");
  EXPECT_EQ(form_.Find("TXTBOX"), &box_);
  EXPECT_EQ(form_.Find("txtNone"), nullptr);
}

TEST_F(FormTest, AFormThatIsShownFromAHandlerRunsWithinIt) {
  Form inner(desktop_, "frmInner", "Inner", 1000, 1000);
  CommandButton inner_ok(inner, "cmdInner", "OK");
  inner_ok.Click = [&] { inner.Hide(); };
  ok_.Click = [&] {
    inner.ShowModal();
    box_.SetText("after");
  };
  box_.Change = Heard();
  WhileOpen([&] {
    desktop_.OnNextForm([&](Form&) {
      EXPECT_EQ(desktop_.Top(), &inner);
      EXPECT_EQ(box_.UserType("x").reason(), "frmTest is behind another form");
      inner_ok.UserClick();
    });
    ok_.UserClick();
    EXPECT_EQ(desktop_.Top(), &form_);
  });
  EXPECT_EQ(log(), (Lines{"cmdOK Click", "  cmdInner Click", "  txtBox Change"}));
  EXPECT_EQ(desktop_.Top(), nullptr);
}

TEST_F(FormTest, EnterPressesTheDefaultButtonAndEscapeTheCancelButton) {
  ok_.SetDefault(true);
  cancel_.SetCancel(true);
  ok_.Click = Heard();
  cancel_.Click = Heard();
  WhileOpen([&] {
    box_.UserKey(Key::kEnter);
    box_.UserKey(Key::kEscape);
    EXPECT_EQ(form_.ActiveControl(), &box_);
  });
  EXPECT_EQ(log(), (Lines{"cmdOK Click", "cmdCancel Click"}));
}

TEST_F(FormTest, TheDefaultButtonWaitsForTheValidationOfTheBox) {
  ok_.SetDefault(true);
  ok_.Click = Heard();
  bool refuse = true;
  box_.Validate = [&](bool& cancel) { cancel = refuse; };
  WhileOpen([&] {
    box_.UserKey(Key::kEnter);
    refuse = false;
    box_.UserKey(Key::kEnter);
  });
  EXPECT_EQ(log(), (Lines{"txtBox Validate", "txtBox Validate", "cmdOK Click"}));
}

TEST_F(FormTest, ADisabledDefaultButtonIsNotPressed) {
  ok_.SetDefault(true);
  ok_.SetEnabled(false);
  ok_.Click = Heard();
  WhileOpen([&] { box_.UserKey(Key::kEnter); });
  EXPECT_EQ(log(), Lines{});
}

TEST_F(FormTest, AButtonWithTheFocusIsPressedByEnterAndSpace) {
  ok_.SetDefault(true);
  ok_.Click = Heard();
  cancel_.Click = Heard();
  WhileOpen([&] {
    cancel_.UserKey(Key::kEnter);
    cancel_.UserKey(Key::kSpace);
  });
  EXPECT_EQ(log(), (Lines{"cmdCancel Click", "cmdCancel Click"}));
}

TEST_F(FormTest, WithoutSuchButtonsTheKeysDoNothing) {
  WhileOpen([&] {
    EXPECT_TRUE(box_.UserKey(Key::kEnter).made());
    EXPECT_TRUE(box_.UserKey(Key::kEscape).made());
    EXPECT_TRUE(form_.Visible());
  });
}

TEST_F(FormTest, KeyDownComesBeforeWhatTheKeyDoes) {
  ok_.SetDefault(true);
  ok_.Click = Heard();
  box_.KeyDown = [](int) {};
  WhileOpen([&] { box_.UserKey(Key::kEnter); });
  EXPECT_EQ(log(), (Lines{"txtBox KeyDown 13", "cmdOK Click"}));
}

TEST_F(FormTest, TheObserverHearsWhatChanges) {
  struct Recorder final : FormObserver {
    void OnControlChanged(Control& control, Property property) override {
      changes.emplace_back(control.Name(), property);
    }
    void OnFormChanged() override { ++form_changes; }
    std::vector<std::pair<std::string, Property>> changes;
    int form_changes = 0;
  } recorder;
  form_.SetObserver(&recorder);
  box_.SetText("a");
  box_.SetEnabled(false);
  box_.SetEnabled(false);
  ok_.SetCaption("Go");
  ok_.Move(120, 120, 1455, 495);
  form_.SetCaption("New");
  const std::vector<std::pair<std::string, Property>> expected = {{"txtBox", Property::kText},
                                                                  {"txtBox", Property::kEnabled},
                                                                  {"cmdOK", Property::kCaption},
                                                                  {"cmdOK", Property::kPlace}};
  EXPECT_EQ(recorder.changes, expected);
  EXPECT_EQ(recorder.form_changes, 1);
  form_.SetObserver(nullptr);
}

TEST_F(FormTest, ThePlaceOfAControlIsInTwipsOfItsContainer) {
  Frame frame(form_, "Frame1", "Tasks", {240, 480, 6000, 9135});
  TextBox inner(frame, "txtFind", {240, 360, 4335, 375});
  EXPECT_EQ(inner.Left(), 240);
  EXPECT_EQ(inner.Top(), 360);
  EXPECT_EQ(inner.Width(), 4335);
  EXPECT_EQ(inner.Height(), 375);
  EXPECT_EQ(frame.Controls(), std::vector<Control*>{&inner});
}

class ErrorTest : public FormTest {};

TEST_F(ErrorTest, AnErrorOfAHandlerIsShownWithItsTextAndTheDialogIsUsableAfterIt) {
  ok_.Click = [] { Fail("no such calendar", 5); };
  cancel_.Click = Heard();
  WhileOpen([&] {
    EXPECT_TRUE(ok_.UserClick().made());
    cancel_.UserClick();
  });
  EXPECT_EQ(log(), (Lines{"cmdOK Click", "error 5 no such calendar", "cmdCancel Click"}));
  ASSERT_EQ(desktop_.messages.size(), 1u);
  EXPECT_EQ(desktop_.messages[0].text, "no such calendar");
  EXPECT_EQ(desktop_.messages[0].title, "Test");
  EXPECT_EQ(desktop_.messages[0].buttons, Buttons::kOk);
  EXPECT_TRUE(desktop_.messages[0].reports_error);
}

TEST_F(ErrorTest, AnErrorOfANestedEventIsTheOuterHandlersToCatch) {
  box_.Change = [] { Fail("refused", 13); };
  ok_.Click = [&] {
    platform::IgnoreErrors([&] { box_.SetText("a"); });
    box_.SetEnabled(false);
  };
  WhileOpen([&] { ok_.UserClick(); });
  EXPECT_FALSE(box_.Enabled());
  EXPECT_TRUE(desktop_.messages.empty());
}

TEST_F(ErrorTest, AnErrorOfANestedEventEndsTheOuterHandlerIfNothingCatchesIt) {
  box_.Change = [] { Fail("refused", 13); };
  ok_.Click = [&] {
    box_.SetText("a");
    box_.SetEnabled(false);
  };
  WhileOpen([&] { ok_.UserClick(); });
  EXPECT_TRUE(box_.Enabled());
  EXPECT_EQ(log(), (Lines{"cmdOK Click", "  txtBox Change", "error 13 refused"}));
}

TEST_F(ErrorTest, AFailureThatIsNoRunTimeErrorIsShownToo) {
  ok_.Click = [] { throw std::logic_error("broken"); };
  WhileOpen([&] { ok_.UserClick(); });
  EXPECT_EQ(log(), (Lines{"cmdOK Click", "error 51 broken"}));
}

TEST_F(ErrorTest, AnErrorOnAFormOnTopIsHandledThereAndNotByTheHandlerThatShowedIt) {
  Form inner(desktop_, "frmInner", "Inner", 1000, 1000);
  CommandButton bad(inner, "cmdBad", "Bad");
  bad.Click = [] { Fail("inner"); };
  ok_.Click = [&] {
    inner.ShowModal();
    box_.SetText("went on");
  };
  WhileOpen([&] {
    desktop_.OnNextForm([&](Form&) {
      bad.UserClick();
      EXPECT_TRUE(inner.Visible());
    });
    ok_.UserClick();
  });
  EXPECT_EQ(box_.Text(), "went on");
  ASSERT_EQ(desktop_.messages.size(), 1u);
  EXPECT_EQ(desktop_.messages[0].title, "Inner");
}

TEST_F(ErrorTest, EachKeyOfATypedTextIsAGestureOfItsOwn) {
  box_.Change = [&] {
    if (box_.Text() == "a") {
      Fail("no a");
    }
  };
  WhileOpen([&] { box_.UserType("ab"); });
  EXPECT_EQ(box_.Text(), "ab");
  EXPECT_EQ(desktop_.messages.size(), 1u);
}

class BoxTest : public FormTest {};

TEST_F(BoxTest, AMessageBoxGivesItsAnswerAndNoFormTakesGesturesMeanwhile) {
  std::string why_not;
  desktop_.while_box_is_open = [&] { why_not = box_.UserClick().reason(); };
  desktop_.answers = {Answer::kYes};
  WhileOpen([&] {
    EXPECT_EQ(desktop_.MsgBox("Go on?", "Weather Modeling", Buttons::kYesNo), Answer::kYes);
    EXPECT_FALSE(desktop_.BoxIsOpen());
  });
  EXPECT_EQ(why_not, "frmTest is behind a message box");
  EXPECT_EQ(desktop_.messages[0].buttons, Buttons::kYesNo);
}

TEST_F(BoxTest, TheFileDialogGivesThePathOrNothing) {
  desktop_.file = "/tmp/a.xlsx";
  EXPECT_EQ(desktop_.PickFile({.title = "Import", .pattern = "*.xlsx"}), "/tmp/a.xlsx");
  desktop_.file.clear();
  EXPECT_EQ(desktop_.PickFile({.title = "Import"}), "");
  EXPECT_EQ(desktop_.files_asked[0].pattern, "*.xlsx");
}

}  // namespace
}  // namespace nimbrel::toolkit
