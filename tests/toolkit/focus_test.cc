#include <gtest/gtest.h>

#include "tests/toolkit/support.h"

namespace nimbrel::toolkit {
namespace {

/// A box with a rule that accepts texts other than "bad", and controls that can take the focus.
class FocusTest : public ToolkitTest {
 protected:
  void SetUp() override {
    box_.Validate = [this](bool& cancel) { cancel = box_.Text() == "bad"; };
    button_.Click = Heard();
    check_.Click = Heard();
    rows_.ColumnHeaders().Add("ID", 1000);
    rows_.ListItems().Add({}, {}, "first");
    rows_.ItemClick = [](const ListItemRef&) {};
    rows_.ColumnClick = [](const ColumnHeader&) {};
    tree_.Nodes().Add("k1", "root");
    tree_.NodeClick = [](const NodeRef&) {};
    tabs_.Click = [](std::int32_t) {};
    list_.AddItem("entry");
    list_.Change = Heard();
    other_.GotFocus = Heard();
  }

  /// Opens the form with the focus in the box and `text` in it.
  void WithInBox(const std::string& text, const std::function<void()>& hands) {
    WhileOpen([&] {
      box_.UserType(text);
      ClearLog();
      hands();
    });
  }

  TextBox box_{form_, "txtBox"};
  TextBox other_{form_, "txtOther"};
  CommandButton button_{form_, "cmd", "Do"};
  CheckBox check_{form_, "chk"};
  ListView rows_{form_, "lstRows"};
  TreeView tree_{form_, "tv"};
  TabStrip tabs_{form_, "tabs", {"One", "Two"}};
  ListBox list_{form_, "lst"};
  Label label_{form_, "Label1", "A text"};
};

TEST_F(FocusTest, TypingReplacesTheTextEvenWhenTheOtherBoxFailsOnBeingLeft) {
  other_.SetText("old");
  box_.Validate = [](bool&) { throw platform::RuntimeError(13, "Type mismatch"); };
  WhileOpen([&] {
    box_.UserFocus();
    other_.UserType("new");
  });
  EXPECT_EQ(other_.Text(), "new");
}

TEST_F(FocusTest, ValidateComesBeforeTheClickOfWhatTakesTheFocus) {
  WithInBox("good", [&] { button_.UserClick(); });
  EXPECT_EQ(log(), (Lines{"txtBox Validate", "cmd Click"}));
}

TEST_F(FocusTest, ARefusalKeepsTheFocusAndSwallowsEveryKindOfClick) {
  WithInBox("bad", [&] {
    const std::vector<std::function<GestureResult()>> clicks = {
        [&] { return button_.UserClick(); },
        [&] { return check_.UserClick(); },
        [&] { return rows_.UserClickRow(1); },
        [&] { return rows_.UserClickHeader(1); },
        [&] { return tabs_.UserPickTab(1); },
        [&] { return tree_.UserClickNode(tree_.Root()); },
        [&] { return list_.UserPick(0); },
        [&] { return other_.UserType("x"); },
        [&] { return button_.UserKey(Key::kSpace); },
        [&] { return box_.UserKey(Key::kTab); }};
    for (const auto& click : clicks) {
      ClearLog();
      EXPECT_TRUE(click().made());
      EXPECT_EQ(log(), Lines{"txtBox Validate"});
      EXPECT_EQ(form_.ActiveControl(), &box_);
    }
  });
  EXPECT_FALSE(check_.Value());
  EXPECT_EQ(tabs_.Tab(), 0);
  EXPECT_TRUE(rows_.SelectedItem().IsNothing());
  EXPECT_TRUE(tree_.SelectedItem().IsNothing());
  EXPECT_EQ(list_.ListIndex(), -1);
  EXPECT_EQ(other_.Text(), "");
}

TEST_F(FocusTest, EveryKindOfClickIsValidatedAndThenMade) {
  const std::vector<std::pair<std::function<void()>, std::string>> clicks = {
      {[&] { check_.UserClick(); }, "chk Click"},
      {[&] { rows_.UserClickRow(1); }, "lstRows ItemClick first"},
      {[&] { rows_.UserClickHeader(1); }, "lstRows ColumnClick 1"},
      {[&] { tabs_.UserPickTab(1); }, "tabs Click 0"},
      {[&] { tree_.UserClickNode(tree_.Root()); }, "tv NodeClick root"},
      {[&] { list_.UserPick(0); }, "lst Change"},
      {[&] { other_.UserClick(); }, "txtOther GotFocus"}};
  for (const auto& [click, event] : clicks) {
    WithInBox("good", click);
    EXPECT_EQ(log(), (Lines{"txtBox Validate", event}));
  }
}

TEST_F(FocusTest, AControlThatTakesNoFocusAsksNothing) {
  button_.SetTakesFocusOnClick(false);
  WithInBox("bad", [&] {
    label_.UserClick();
    button_.UserClick();
    EXPECT_EQ(form_.ActiveControl(), &box_);
  });
  EXPECT_EQ(log(), Lines{"cmd Click"});
}

TEST_F(FocusTest, AClickOnTheBoxThatHasTheFocusAsksNothing) {
  WithInBox("bad", [&] { box_.UserClick(); });
  EXPECT_EQ(log(), Lines{});
}

TEST_F(FocusTest, TheWindowsOwnCloseButtonAsksNothing) {
  form_.Form_Unload = [](bool&) {};
  WithInBox("bad", [&] {
    form_.UserClose();
    EXPECT_FALSE(form_.Visible());
  });
  EXPECT_EQ(log(), Lines{"frmTest Unload"});
}

TEST_F(FocusTest, SettingTheFocusFromCodeAsksToo) {
  WithInBox("bad", [&] {
    other_.SetFocus();
    EXPECT_EQ(form_.ActiveControl(), &box_);
    box_.SetText("good");
    other_.SetFocus();
    EXPECT_EQ(form_.ActiveControl(), &other_);
  });
}

TEST_F(FocusTest, AControlThatCantTakeTheFocusRaisesAnErrorWhenItIsGivenIt) {
  other_.SetVisible(false);
  EXPECT_EQ(ErrorOf([&] { other_.SetFocus(); }), platform::kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { label_.SetFocus(); }), platform::kInvalidProcedureCall);
}

TEST_F(FocusTest, TheFocusEventsComeInOrderOfTheMove) {
  box_.LostFocus = Heard();
  WithInBox("good", [&] { other_.UserClick(); });
  EXPECT_EQ(log(), (Lines{"txtBox Validate", "txtBox LostFocus", "txtOther GotFocus"}));
}

TEST_F(FocusTest, AClickIsDroppedIfTheValidationDisablesItsTarget) {
  box_.Validate = [&](bool&) { button_.SetEnabled(false); };
  WithInBox("good", [&] {
    button_.UserClick();
    EXPECT_EQ(form_.ActiveControl(), &box_);
  });
  EXPECT_EQ(log(), Lines{"txtBox Validate"});
}

TEST_F(FocusTest, ARowClickIsDroppedIfTheValidationTakesTheRowOut) {
  box_.Validate = [&](bool&) { rows_.ListItems().Clear(); };
  WithInBox("good", [&] { rows_.UserClickRow(1); });
  EXPECT_EQ(log(), Lines{"txtBox Validate"});
}

TEST_F(FocusTest, AnErrorInValidateSwallowsTheClickButDoesNotTrapTheFocus) {
  box_.Validate = [](bool&) { Fail("Type mismatch", 13); };
  WithInBox("good", [&] {
    button_.UserClick();
    EXPECT_EQ(form_.ActiveControl(), &button_);
    button_.UserClick();
  });
  EXPECT_EQ(log(), (Lines{"txtBox Validate", "error 13 Type mismatch", "cmd Click"}));
}

TEST_F(FocusTest, TheFocusMovesOnUnaskedFromAControlThatIsDisabledOrHidden) {
  WithInBox("bad", [&] {
    box_.SetEnabled(false);
    EXPECT_EQ(form_.ActiveControl(), &other_);
    other_.SetVisible(false);
    EXPECT_EQ(form_.ActiveControl(), &button_);
  });
  EXPECT_EQ(log(), Lines{"txtOther GotFocus"});
}

TEST_F(FocusTest, MovingTheFocusInsideValidateDoesNotAskAgain) {
  box_.Validate = [&](bool& cancel) {
    other_.SetFocus();
    cancel = true;
  };
  WithInBox("good", [&] {
    button_.UserClick();
    EXPECT_EQ(form_.ActiveControl(), &other_);
  });
  EXPECT_EQ(log(), (Lines{"txtBox Validate", "  txtOther GotFocus"}));
}

class TabOrderTest : public ToolkitTest {
 protected:
  std::vector<std::string> Walk(int steps, bool backward = false) {
    std::vector<std::string> names;
    WhileOpen([&] {
      for (int i = 0; i < steps; ++i) {
        names.push_back(form_.ActiveControl()->Name());
        form_.UserKey(Key::kTab, backward);
      }
    });
    return names;
  }

  TabStrip tabs_{form_, "tabs", {"One", "Two"}};
  TextBox first_{tabs_.Page(0), "first"};
  Frame frame_{tabs_.Page(0), "frame"};
  TextBox in_frame_{frame_, "inFrame"};
  TextBox on_two_{tabs_.Page(1), "onTwo"};
  Label label_{form_, "label"};
  TextBox last_{form_, "last"};
};

TEST_F(TabOrderTest, TheFirstControlInTabOrderHasTheFocusWhenTheFormOpens) {
  last_.SetTabIndex(-1);
  last_.GotFocus = Heard();
  desktop_.OnNextForm([&](Form& form) { EXPECT_EQ(form.ActiveControl(), &last_); });
  form_.ShowModal();
  EXPECT_EQ(log(), Lines{"last GotFocus"});
}

TEST_F(TabOrderTest, TabGoesByTabIndexAndRoundAndSkipsWhatIsNotOnShow) {
  EXPECT_EQ(Walk(5), (Lines{"tabs", "first", "inFrame", "last", "tabs"}));
}

TEST_F(TabOrderTest, ShiftTabGoesBackward) {
  EXPECT_EQ(Walk(3, true), (Lines{"tabs", "last", "inFrame"}));
}

TEST_F(TabOrderTest, TabSkipsDisabledControlsAndThoseInDisabledContainers) {
  frame_.SetEnabled(false);
  first_.SetEnabled(false);
  EXPECT_EQ(Walk(3), (Lines{"tabs", "last", "tabs"}));
}

TEST_F(TabOrderTest, TheIndexAloneGivesTheOrder) {
  last_.SetTabIndex(0);
  tabs_.SetTabIndex(10);
  EXPECT_EQ(Walk(4), (Lines{"last", "first", "inFrame", "tabs"}));
}

TEST_F(TabOrderTest, AnotherPageTakesTheFocusFromTheControlsOfThePageBefore) {
  WhileOpen([&] {
    first_.UserClick();
    tabs_.SetTab(1);
    EXPECT_EQ(form_.ActiveControl(), &on_two_);
  });
}

TEST_F(TabOrderTest, TheOnlyControlKeepsTheFocus) {
  tabs_.SetVisible(false);
  EXPECT_EQ(Walk(2), (Lines{"last", "last"}));
}

}  // namespace
}  // namespace nimbrel::toolkit
