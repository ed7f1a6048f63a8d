#include <gtest/gtest.h>

#include "tests/toolkit/support.h"

namespace nimbrel::toolkit {
namespace {

class GesturesTest : public ToolkitTest {
 protected:
  TextBox box_{form_, "txtBox"};
  CheckBox check_{form_, "chk", "Weather"};
  ListBox list_{form_, "lst"};
  ComboBox combo_{form_, "cb"};
  TabStrip tabs_{form_, "tabs", {"One", "Two"}};
  TextBox on_two_{tabs_.Page(1), "txtTwo"};
};

TEST_F(GesturesTest, TypingReplacesTheTextKeyByKey) {
  box_.SetText("before");
  box_.KeyDown = [](int) {};
  std::vector<std::string> texts;
  box_.Change = [&] { texts.push_back(box_.Text()); };
  WhileOpen([&] { box_.UserType("1 mä"); });
  EXPECT_EQ(texts, (Lines{"1", "1 ", "1 m", "1 mä"}));
  EXPECT_EQ(log(),
            (Lines{"txtBox KeyDown 49", "txtBox Change", "txtBox KeyDown 32", "txtBox Change",
                   "txtBox KeyDown 77", "txtBox Change", "txtBox KeyDown 229", "txtBox Change"}));
  EXPECT_EQ(form_.ActiveControl(), &box_);
}

TEST_F(GesturesTest, TypingNothingEmptiesTheBoxWithOneKey) {
  box_.SetText("before");
  box_.KeyDown = [](int) {};
  box_.Change = Heard();
  WhileOpen([&] {
    box_.UserType("");
    box_.UserType("");
  });
  EXPECT_EQ(log(), (Lines{"txtBox KeyDown 46", "txtBox Change"}));
  EXPECT_EQ(box_.Text(), "");
}

TEST_F(GesturesTest, TypingEndsWhenAHandlerDisablesTheBox) {
  box_.Change = [&] { box_.SetEnabled(false); };
  WhileOpen([&] { box_.UserType("abc"); });
  EXPECT_EQ(box_.Text(), "a");
}

TEST_F(GesturesTest, CharactersThatNoKeyTypesIntoALineAreLeftOut) {
  WhileOpen([&] { box_.UserType("a\nb\r\t\x7F\u0085c"); });
  EXPECT_EQ(box_.Text(), "abc");
}

TEST_F(GesturesTest, ReplacingTheTextRaisesOneChangeAndNoKey) {
  box_.KeyDown = [](int) {};
  box_.Change = Heard();
  WhileOpen([&] { box_.UserReplaceText("pasted", 3); });
  EXPECT_EQ(log(), Lines{"txtBox Change"});
  EXPECT_EQ(box_.SelStart(), 3);
}

TEST_F(GesturesTest, TheEditingKeysWorkOnTheSelectionOrTheCharacterBesideTheCaret) {
  box_.SetText("März");
  WhileOpen([&] {
    box_.UserSelect(1, 1);
    box_.UserKey(Key::kDelete);
    EXPECT_EQ(box_.Text(), "Mrz");
    box_.UserKey(Key::kBackspace);
    EXPECT_EQ(box_.Text(), "rz");
    box_.UserKey(Key::kBackspace);
    EXPECT_EQ(box_.Text(), "rz");
    box_.UserKey(Key::kRight);
    box_.UserKey(Key::kDelete);
    EXPECT_EQ(box_.Text(), "r");
    box_.UserKey(Key::kDelete);
    EXPECT_EQ(box_.Text(), "r");
    box_.UserKey(Key::kHome);
    box_.UserTypeCharacter("E");
    EXPECT_EQ(box_.Text(), "Er");
  });
}

TEST_F(GesturesTest, AClickOrSpaceTurnsACheckBoxOver) {
  check_.Click = Heard();
  WhileOpen([&] {
    check_.UserClick();
    EXPECT_TRUE(check_.Value());
    check_.UserKey(Key::kSpace);
    EXPECT_FALSE(check_.Value());
  });
  EXPECT_EQ(log(), (Lines{"chk Click", "chk Click"}));
}

TEST_F(GesturesTest, APickRaisesTheEventsOfANewListIndexAndNothingForTheSame) {
  list_.AddItem("North");
  list_.AddItem("South");
  list_.Change = Heard();
  WhileOpen([&] {
    list_.UserPick(1);
    list_.UserPick(1);
  });
  EXPECT_EQ(log(), Lines{"lst Change"});
  EXPECT_EQ(list_.Text(), "South");
}

TEST_F(GesturesTest, TheArrowKeysGoThroughAListAndStopAtItsEnds) {
  list_.AddItem("North");
  list_.AddItem("South");
  combo_.AddItem("East");
  WhileOpen([&] {
    list_.UserKey(Key::kDown);
    EXPECT_EQ(list_.ListIndex(), 0);
    list_.UserKey(Key::kDown);
    list_.UserKey(Key::kDown);
    EXPECT_EQ(list_.ListIndex(), 1);
    list_.UserKey(Key::kUp);
    list_.UserKey(Key::kUp);
    EXPECT_EQ(list_.ListIndex(), 0);
    combo_.UserKey(Key::kDown);
    EXPECT_EQ(combo_.Text(), "East");
  });
}

TEST_F(GesturesTest, TheArrowKeysDoNothingInAnEmptyList) {
  WhileOpen([&] {
    EXPECT_TRUE(list_.UserKey(Key::kDown).made());
    EXPECT_TRUE(combo_.UserKey(Key::kUp).made());
  });
  EXPECT_EQ(list_.ListIndex(), -1);
}

TEST_F(GesturesTest, TwoClicksOnAnEntryPickItFirst) {
  list_.AddItem("North");
  list_.Change = Heard();
  list_.DblClick = Heard();
  WhileOpen([&] { list_.UserDoubleClick(0); });
  EXPECT_EQ(log(), (Lines{"lst Change", "lst DblClick"}));
}

TEST_F(GesturesTest, ASecondClickCountsWhereTheFirstWasMade) {
  list_.AddItem("North");
  list_.AddItem("South");
  list_.DblClick = Heard();
  WhileOpen([&] {
    list_.UserClickAgain(0);
    list_.UserPick(0);
    list_.UserClickAgain(1);
    EXPECT_EQ(log(), Lines{});
    list_.UserClickAgain(0);
  });
  EXPECT_EQ(log(), Lines{"lst DblClick"});
}

TEST_F(GesturesTest, ATypedTextPicksItsEntryWhenItIsWhole) {
  combo_.AddItem("Standard");
  std::vector<std::int32_t> indexes;
  combo_.Change = [&] { indexes.push_back(combo_.ListIndex()); };
  combo_.AddItem("St");
  WhileOpen([&] { combo_.UserType("stand"); });
  EXPECT_EQ(indexes, (std::vector<std::int32_t>{-1, 1, -1, -1, -1}));
}

TEST_F(GesturesTest, PickingAnEntryTakesItsTextIntoTheBox) {
  combo_.AddItem("Standard");
  combo_.SetText("Stand");
  combo_.Change = Heard();
  WhileOpen([&] { combo_.UserPick(0); });
  EXPECT_EQ(combo_.Text(), "Standard");
  EXPECT_EQ(log(), Lines{"cb Change"});
}

TEST_F(GesturesTest, TabsArePickedByClickAndByArrowKeys) {
  tabs_.Click = [](std::int32_t) {};
  WhileOpen([&] {
    tabs_.UserPickTab(1);
    tabs_.UserPickTab(1);
    tabs_.UserKey(Key::kRight);
    tabs_.UserKey(Key::kLeft);
  });
  EXPECT_EQ(log(), (Lines{"tabs Click 0", "tabs Click 1"}));
}

TEST_F(GesturesTest, AGestureThatAHandCannotMakeSaysWhyAndChangesNothing) {
  check_.SetEnabled(false);
  list_.SetVisible(false);
  WhileOpen([&] {
    EXPECT_EQ(check_.UserClick().reason(), "chk is disabled");
    EXPECT_EQ(list_.UserKey(Key::kDown).reason(), "lst is not on show");
    EXPECT_EQ(on_two_.UserType("x").reason(), "txtTwo is not on show");
    EXPECT_EQ(combo_.UserPick(0).reason(), "cb has no entry 1");
    EXPECT_EQ(tabs_.UserPickTab(2).reason(), "tabs has no tab 2");
    tabs_.SetTab(1);
    tabs_.SetEnabled(false);
    EXPECT_EQ(on_two_.UserType("x").reason(), "txtTwo is disabled");
  });
  EXPECT_EQ(box_.UserClick().reason(), "frmTest is not open");
  EXPECT_FALSE(check_.Value());
  EXPECT_EQ(on_two_.Text(), "");
}

TEST_F(GesturesTest, ALabelTakesClicksButNoKeys) {
  Label label(form_, "Label1", "A text");
  WhileOpen([&] {
    EXPECT_TRUE(label.UserClick().made());
    EXPECT_EQ(label.UserKey(Key::kSpace).reason(), "Label1 takes no focus");
  });
}

}  // namespace
}  // namespace nimbrel::toolkit
