#include "toolkit/list_view.h"

#include <gtest/gtest.h>

#include "tests/toolkit/support.h"
#include "toolkit/errors.h"

namespace nimbrel::toolkit {
namespace {

class ListViewTest : public ToolkitTest {
 protected:
  void SetUp() override {
    rows_.ColumnHeaders().Add("ID", 0);
    rows_.ColumnHeaders().Add("Start", 1450);
    rows_.ColumnHeaders().Add("Finish", 1450);
    rows_.ItemClick = [](const ListItemRef&) {};
    rows_.ItemCheck = [](const ListItemRef&) {};
    rows_.ColumnClick = [](const ColumnHeader&) {};
    rows_.DblClick = Heard();
  }

  ListItemRef AddRow(const std::string& id, const std::string& start) {
    ListItemRef row = rows_.ListItems().Add({}, {}, id);
    row->SetSubItems(1, start);
    return row;
  }
  std::string Order() const {
    std::string order;
    for (const ListItemRef& row : rows_.ListItems()) {
      order += row->Text();
    }
    return order;
  }

  ListView rows_{form_, "lst"};
};

TEST_F(ListViewTest, ARowIsAddedAtTheEndOrAtItsPlace) {
  AddRow("b", "");
  AddRow("c", "");
  rows_.ListItems().Add(1, {}, "a");
  EXPECT_EQ(Order(), "abc");
  EXPECT_EQ(rows_.ListItems().Item(3)->Index(), 3);
  EXPECT_EQ(ErrorOf([&] { rows_.ListItems().Add(5, {}, "x"); }), kIndexOutOfBounds);
  EXPECT_EQ(ErrorOf([&] { rows_.ListItems().Item(0); }), kIndexOutOfBounds);
}

TEST_F(ListViewTest, KeysHaveNoCaseAndAreUnique) {
  rows_.ListItems().Add({}, "NORTH SEA", "North Sea");
  EXPECT_EQ(rows_.ListItems().Item("north sea")->Text(), "North Sea");
  EXPECT_EQ(ErrorOf([&] { rows_.ListItems().Add({}, "North Sea", "x"); }), kKeyNotUnique);
  EXPECT_EQ(ErrorOf([&] { rows_.ListItems().Item("BALTIC"); }), kElementNotFound);
  EXPECT_EQ(rows_.ListItems().Count(), 1);
  rows_.ListItems().Remove("north SEA");
  EXPECT_EQ(rows_.ListItems().Count(), 0);
  rows_.ListItems().Add({}, "North Sea", "again");
}

TEST_F(ListViewTest, ACellThatIsSetMakesTheCellsBeforeIt) {
  const ListItemRef row = rows_.ListItems().Add({}, {}, "7");
  EXPECT_EQ(row->ListSubItems().Count(), 0);
  row->SetSubItems(2, "x");
  EXPECT_EQ(row->ListSubItems().Count(), 2);
  EXPECT_EQ(row->SubItems(1), "");
  EXPECT_EQ(row->ListSubItems().Item(2).Text(), "x");
  EXPECT_EQ(row->CellText(1), "7");
  EXPECT_EQ(row->CellText(3), "x");
}

TEST_F(ListViewTest, ACellNeedsItsColumn) {
  const ListItemRef row = rows_.ListItems().Add({}, {}, "7");
  EXPECT_EQ(ErrorOf([&] { row->SetSubItems(3, "x"); }), kInvalidPropertyValue);
  EXPECT_EQ(ErrorOf([&] { row->SubItems(0); }), kInvalidPropertyValue);
  EXPECT_EQ(ErrorOf([&] { row->ListSubItems().Item(1); }), kIndexOutOfBounds);
}

TEST_F(ListViewTest, SelectedItemAndCheckedFromCodeRaiseNothing) {
  rows_.SetCheckBoxes(true);
  const ListItemRef row = AddRow("a", "");
  rows_.SetSelectedItem(row);
  row->SetChecked(true);
  EXPECT_EQ(log(), Lines{});
  EXPECT_TRUE(row->Selected());
  EXPECT_TRUE(row->Checked());
  EXPECT_EQ(rows_.PropertyText("SelectedItem"), "a");
}

TEST_F(ListViewTest, NothingIsSelectedAtFirstAndUsingItRaisesAnError) {
  AddRow("a", "");
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(rows_.SelectedItem()->Text()); }),
            platform::kObjectNotSet);
}

TEST_F(ListViewTest, ARowThatWasTakenOutLivesOnForItsHolderAndIsSeenNowhere) {
  const ListItemRef row = AddRow("a", "old");
  rows_.SetSelectedItem(row);
  rows_.ListItems().Clear();
  row->SetSubItems(1, "new");
  EXPECT_EQ(row->Text(), "a");
  EXPECT_EQ(row->SubItems(1), "new");
  EXPECT_TRUE(rows_.SelectedItem().IsNothing());
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(row->Index()); }), kElementNotFound);
  EXPECT_EQ(ErrorOf([&] { rows_.SetSelectedItem(row); }), kElementNotFound);
}

TEST_F(ListViewTest, RemovingTheSelectedRowLeavesNoSelection) {
  AddRow("a", "");
  rows_.SetSelectedItem(AddRow("b", ""));
  rows_.ListItems().Remove(1);
  EXPECT_EQ(rows_.SelectedItem()->Text(), "b");
  rows_.ListItems().Remove(1);
  EXPECT_TRUE(rows_.SelectedItem().IsNothing());
}

TEST_F(ListViewTest, TheRowToBringIntoViewIsForgottenWithTheRow) {
  AddRow("a", "");
  const ListItemRef row = AddRow("b", "");
  row->EnsureVisible();
  EXPECT_EQ(rows_.ScrollTarget(), row);
  rows_.ListItems().Remove(2);
  EXPECT_TRUE(rows_.ScrollTarget().IsNothing());
}

TEST_F(ListViewTest, ARowMayOutliveItsList) {
  ListItemRef row;
  {
    ListView shortlived(form_, "lstShort");
    row = shortlived.ListItems().Add({}, {}, "a");
  }
  row->SetText("b");
  EXPECT_EQ(row->Text(), "b");
}

TEST_F(ListViewTest, SortingIsByTextWithoutRegardToCaseAndStable) {
  AddRow("1", "b");
  AddRow("2", "10");
  AddRow("3", "B");
  AddRow("4", "9");
  AddRow("5", "a");
  rows_.SetSortKey(1);
  EXPECT_EQ(Order(), "12345");
  rows_.SetSorted(true);
  EXPECT_EQ(Order(), "24513");
  rows_.SetSortOrder(SortOrder::kDescending);
  EXPECT_EQ(Order(), "13542");
}

TEST_F(ListViewTest, ASortedListSortsAgainByANewKeyAndNotByNewTexts) {
  AddRow("a", "2");
  AddRow("b", "1");
  rows_.SetSorted(true);
  rows_.SetSortKey(1);
  EXPECT_EQ(Order(), "ba");
  rows_.ListItems().Item(1)->SetSubItems(1, "3");
  AddRow("c", "0");
  EXPECT_EQ(Order(), "bac");
  rows_.SetSorted(true);
  EXPECT_EQ(Order(), "cab");
}

TEST_F(ListViewTest, SortingKeepsTheSelectedRow) {
  rows_.SetSelectedItem(AddRow("b", ""));
  AddRow("a", "");
  rows_.SetSorted(true);
  EXPECT_EQ(rows_.SelectedItem()->Index(), 2);
  EXPECT_EQ(ErrorOf([&] { rows_.SetSortKey(3); }), kInvalidPropertyValue);
}

TEST_F(ListViewTest, TagsStayWithTheirCell) {
  const ListItemRef row = AddRow("a", "01/Feb/2026");
  row->ListSubItems().Item(1).SetTag(row->SubItems(1));
  row->ListSubItems().Item(1).SetText("20260201");
  row->SetTag("x");
  EXPECT_EQ(row->ListSubItems().Item(1).Tag(), "01/Feb/2026");
  EXPECT_EQ(row->Tag(), "x");
}

TEST_F(ListViewTest, ARowClickSelectsTheRowAndRaisesItemClickEachTime) {
  AddRow("a", "");
  AddRow("b", "");
  WhileOpen([&] {
    rows_.UserClickRow(2);
    rows_.UserClickRow(2);
  });
  EXPECT_EQ(log(), (Lines{"lst ItemClick b", "lst ItemClick b"}));
  EXPECT_EQ(rows_.SelectedItem()->Text(), "b");
}

TEST_F(ListViewTest, ADoubleClickComesAfterTheClickOfTheRow) {
  AddRow("a", "");
  WhileOpen([&] { rows_.UserDoubleClickRow(1); });
  EXPECT_EQ(log(), (Lines{"lst ItemClick a", "lst DblClick"}));
}

TEST_F(ListViewTest, ASecondClickCountsWhereTheFirstWasMade) {
  AddRow("a", "");
  AddRow("b", "");
  WhileOpen([&] {
    rows_.UserClickRowAgain(1);
    rows_.UserClickRow(1);
    rows_.UserClickRowAgain(2);
    rows_.UserClickRowAgain(1);
  });
  EXPECT_EQ(log(), (Lines{"lst ItemClick a", "lst DblClick"}));
}

TEST_F(ListViewTest, TheArrowKeysSelectRowsAndStopAtTheEnds) {
  AddRow("a", "");
  AddRow("b", "");
  WhileOpen([&] {
    for (const Key key : {Key::kDown, Key::kDown, Key::kDown, Key::kUp, Key::kUp}) {
      rows_.UserKey(key);
    }
  });
  EXPECT_EQ(log(), (Lines{"lst ItemClick a", "lst ItemClick b", "lst ItemClick a"}));
}

TEST_F(ListViewTest, TheHandlerOfAKeyMayEmptyTheList) {
  AddRow("a", "");
  std::string seen;
  rows_.ItemClick = [&](const ListItemRef& item) {
    rows_.ListItems().Clear();
    seen = item->Text();
  };
  WhileOpen([&] { rows_.UserKey(Key::kDown); });
  EXPECT_EQ(seen, "a");
}

TEST_F(ListViewTest, AUsersCheckRaisesItemCheckWithTheNewValue) {
  rows_.SetCheckBoxes(true);
  AddRow("a", "");
  bool seen = false;
  rows_.ItemCheck = [&](const ListItemRef& item) { seen = item->Checked(); };
  WhileOpen([&] {
    rows_.UserToggleCheck(1);
    EXPECT_TRUE(seen);
    rows_.SetSelectedItem(rows_.ListItems().Item(1));
    rows_.UserKey(Key::kSpace);
    EXPECT_FALSE(seen);
  });
  EXPECT_EQ(log(), (Lines{"lst ItemCheck a", "lst ItemCheck a"}));
}

TEST_F(ListViewTest, GesturesOnWhatIsNotThereSayWhy) {
  AddRow("a", "");
  WhileOpen([&] {
    EXPECT_EQ(rows_.UserClickRow(2).reason(), "lst has no row 2");
    EXPECT_EQ(rows_.UserToggleCheck(1).reason(), "lst has no check boxes");
    EXPECT_EQ(rows_.UserClickHeader(1).reason(), "column 1 of lst is hidden");
    EXPECT_EQ(rows_.UserClickHeader(4).reason(), "lst has no column 4");
    EXPECT_TRUE(rows_.UserClickHeader(2).made());
  });
  EXPECT_EQ(log(), Lines{"lst ColumnClick 2"});
}

}  // namespace
}  // namespace nimbrel::toolkit
