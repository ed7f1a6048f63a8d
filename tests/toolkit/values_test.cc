#include <gtest/gtest.h>

#include "tests/toolkit/support.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

class ValuesTest : public ToolkitTest {
 protected:
  void SetUp() override {
    check_.Click = Heard();
    text_.Change = Heard();
    list_.Change = Heard();
    list_.Click = Heard();
    combo_.Change = Heard();
    for (const char* entry : {"North", "South", "West"}) {
      list_.AddItem(entry);
      combo_.AddItem(entry);
    }
  }

  CheckBox check_{form_, "chk"};
  TextBox text_{form_, "txt"};
  ListBox list_{form_, "lst"};
  ComboBox combo_{form_, "cb"};
};

TEST_F(ValuesTest, ANewValueRaisesItsEventInsideTheStatement) {
  bool seen_inside = false;
  check_.Click = [&] { seen_inside = check_.Value(); };
  check_.SetValue(true);
  EXPECT_TRUE(seen_inside);
}

TEST_F(ValuesTest, EachKindOfValueRaisesItsEventOnce) {
  check_.SetValue(true);
  text_.SetText("a");
  list_.SetListIndex(1);
  combo_.SetListIndex(1);
  combo_.SetText("Nowhere");
  EXPECT_EQ(log(), (Lines{"chk Click", "txt Change", "lst Change", "lst Click", "cb Change",
                          "cb Change"}));
}

TEST_F(ValuesTest, TheSameValueRaisesNothing) {
  check_.SetValue(true);
  text_.SetText("a");
  list_.SetListIndex(1);
  combo_.SetListIndex(1);
  ClearLog();
  check_.SetValue(true);
  text_.SetText("a");
  list_.SetListIndex(1);
  combo_.SetListIndex(1);
  combo_.SetText("South");
  EXPECT_EQ(log(), Lines{});
}

TEST_F(ValuesTest, AListIndexOfMinusOneRaisesChangeToo) {
  list_.SetListIndex(2);
  combo_.SetListIndex(2);
  ClearLog();
  list_.SetListIndex(-1);
  combo_.SetListIndex(-1);
  EXPECT_EQ(log(), (Lines{"lst Change", "lst Click", "cb Change"}));
  EXPECT_EQ(list_.Text(), "");
  EXPECT_EQ(combo_.Text(), "");
}

TEST_F(ValuesTest, AnErrorOfAHandlerGoesToTheStatementThatSetTheValue) {
  check_.Click = [] { Fail("no such task", 5); };
  EXPECT_EQ(ErrorOf([&] { check_.SetValue(true); }), 5);
  EXPECT_TRUE(check_.Value());
}

TEST_F(ValuesTest, EventsNestInTheStatementsThatRaiseThem) {
  check_.Click = [&] { list_.SetListIndex(0); };
  list_.Change = [&] { text_.SetText(list_.Text()); };
  check_.SetValue(true);
  EXPECT_EQ(log(), (Lines{"chk Click", "  lst Change", "    txt Change", "  lst Click"}));
}

TEST_F(ValuesTest, TheDepthIsRightAgainAfterAnError) {
  check_.Click = [&] { list_.SetListIndex(0); };
  list_.Change = [] { Fail("refused"); };
  EXPECT_EQ(ErrorOf([&] { check_.SetValue(true); }), 1004);
  ClearLog();
  text_.SetText("a");
  EXPECT_EQ(log(), Lines{"txt Change"});
}

TEST_F(ValuesTest, EmptyingAListFromItsFirstEntryRaisesOneChangeWithNothingSelected) {
  list_.SetListIndex(1);
  std::vector<std::int32_t> indexes;
  list_.Change = [&] { indexes.push_back(list_.ListIndex()); };
  while (list_.ListCount() > 0) {
    list_.RemoveItem(0);
  }
  EXPECT_EQ(indexes, std::vector<std::int32_t>{-1});
}

TEST_F(ValuesTest, TheSameEntryStaysSelectedWhenOthersComeAndGo) {
  list_.SetListIndex(1);
  ClearLog();
  list_.AddItem("Arctic", 0);
  EXPECT_EQ(list_.Text(), "South");
  list_.RemoveItem(0);
  list_.RemoveItem(0);
  list_.RemoveItem(1);
  EXPECT_EQ(list_.Text(), "South");
  EXPECT_EQ(list_.ListIndex(), 0);
  EXPECT_EQ(log(), Lines{});
}

TEST_F(ValuesTest, ClearingAListRaisesChangeOnlyIfAnEntryWasSelected) {
  list_.Clear();
  EXPECT_EQ(log(), Lines{});
  list_.AddItem("North");
  list_.SetListIndex(0);
  ClearLog();
  list_.Clear();
  EXPECT_EQ(log(), Lines{"lst Change"});
}

TEST_F(ValuesTest, EntriesOutsideTheListRaiseErrors) {
  EXPECT_EQ(ErrorOf([&] { list_.List(-1); }), kInvalidPropertyIndex);
  EXPECT_EQ(ErrorOf([&] { list_.List(3); }), kInvalidPropertyIndex);
  EXPECT_EQ(ErrorOf([&] { list_.SetListIndex(3); }), kInvalidPropertyValue);
  EXPECT_EQ(ErrorOf([&] { list_.SetListIndex(-2); }), kInvalidPropertyValue);
  EXPECT_EQ(ErrorOf([&] { list_.RemoveItem(3); }), platform::kInvalidProcedureCall);
  EXPECT_EQ(ErrorOf([&] { combo_.List(3); }), kInvalidPropertyIndex);
  EXPECT_EQ(ErrorOf([&] { combo_.SetListIndex(3); }), kInvalidPropertyValue);
  EXPECT_EQ(ErrorOf([&] { combo_.AddItem("x", 4); }), platform::kInvalidProcedureCall);
}

TEST_F(ValuesTest, ATextCountsAsAnEntryWhenItIsTheSameWithoutRegardToCase) {
  combo_.SetText("south");
  EXPECT_EQ(combo_.ListIndex(), 1);
  combo_.SetText("sout");
  EXPECT_EQ(combo_.ListIndex(), -1);
  EXPECT_EQ(combo_.Text(), "sout");
}

TEST_F(ValuesTest, TheExactEntryGoesBeforeOneOfOtherCase) {
  combo_.AddItem("SOUTH");
  combo_.SetText("SOUTH");
  EXPECT_EQ(combo_.ListIndex(), 3);
}

TEST_F(ValuesTest, TextPutIntoTheEmptiedEditPartSelectsItsEntryWithOneChange) {
  combo_.SetText("typed");
  combo_.SetListIndex(-1);
  ClearLog();
  combo_.SetSelText("West");
  EXPECT_EQ(combo_.ListIndex(), 2);
  EXPECT_EQ(log(), Lines{"cb Change"});
}

TEST_F(ValuesTest, AComboBoxKeepsItsTextWhenItsEntriesAreFilledAnew) {
  combo_.SetListIndex(1);
  ClearLog();
  while (combo_.ListCount() > 0) {
    combo_.RemoveItem(0);
  }
  combo_.AddItem("South");
  EXPECT_EQ(combo_.Text(), "South");
  EXPECT_EQ(combo_.ListIndex(), -1);
  EXPECT_EQ(log(), Lines{"cb Change"});
}

TEST_F(ValuesTest, TheSelectionIsReplacedByCharacters) {
  text_.SetText("für März");
  text_.SetSelStart(4);
  text_.SetSelLength(99);
  EXPECT_EQ(text_.SelText(), "März");
  EXPECT_EQ(text_.SelLength(), 4);
  text_.SetSelText("Mai");
  EXPECT_EQ(text_.Text(), "für Mai");
  EXPECT_EQ(text_.SelStart(), 7);
  EXPECT_EQ(ErrorOf([&] { text_.SetSelStart(-1); }), kInvalidPropertyValue);
}

TEST_F(ValuesTest, PropertiesAreGivenAsText) {
  check_.SetValue(true);
  list_.SetListIndex(1);
  text_.SetText("a");
  text_.SetEnabled(false);
  EXPECT_EQ(check_.PropertyText("Value"), "True");
  EXPECT_EQ(list_.PropertyText("Text"), "South");
  EXPECT_EQ(list_.PropertyText("ListIndex"), "1");
  EXPECT_EQ(combo_.PropertyText("ListIndex"), "-1");
  EXPECT_EQ(text_.PropertyText("Value"), "a");
  EXPECT_EQ(text_.PropertyText("Enabled"), "False");
  EXPECT_EQ(text_.PropertyText("ListIndex"), std::nullopt);
}

}  // namespace
}  // namespace nimbrel::toolkit
