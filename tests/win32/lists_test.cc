#include "tests/win32/window_test.h"

namespace nimbrel::toolkit::win32 {
namespace {

constexpr int kRows = 60;
constexpr int kLongestText = 128;

class ListsTest : public WindowTest {
 protected:
  ListsTest() {
    rows_.ColumnHeaders().Add("ID", 0);
    rows_.ColumnHeaders().Add("Description", 3000);
    rows_.ColumnHeaders().Add("Start", 1500);
    for (int i = 1; i <= kRows; ++i) {
      const ListItemRef row = rows_.ListItems().Add({}, {}, "ID" + std::to_string(i));
      row->SetSubItems(1, i == 33 ? "Hurricane" : "Row " + std::to_string(i));
      entries_.AddItem(i == 33 ? "Hurricane" : "Entry " + std::to_string(i));
    }
    rows_.ItemClick = [](const ListItemRef&) {};
    images_.Add({});
    images_.Add({});
    tree_.SetImages(&images_);
    tree_.SetStyle(TreeStyle::kTreelinesPlusMinusPictureText);
    root_ = tree_.Nodes().Add("root", "Plan", 1);
    for (int i = 1; i <= kRows; ++i) {
      const std::string name = "N" + std::to_string(i);
      tree_.Nodes().Add(root_, Relationship::kChild, name, name);
    }
    tree_.NodeClick = [](const NodeRef&) {};
  }

  std::string Cell(const ListView& list, int row, int column) const {
    std::wstring text(kLongestText, L'\0');
    LVITEMW item{};
    item.iSubItem = column;
    item.pszText = text.data();
    item.cchTextMax = kLongestText;
    Ask(Drawn(list), LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    return FromWide(item.pszText);
  }
  bool IsInView(const ListView& list, int row) const {
    RECT bounds{};
    bounds.left = LVIR_BOUNDS;
    Ask(Drawn(list), LVM_GETITEMRECT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&bounds));
    RECT all{};
    ::GetClientRect(Drawn(list), &all);
    return bounds.top >= 0 && bounds.bottom <= all.bottom;
  }
  HTREEITEM RootItem() const {
    return reinterpret_cast<HTREEITEM>(Ask(Drawn(tree_), TVM_GETNEXTITEM, TVGN_ROOT));
  }
  bool IsOpen() const {
    return (Ask(Drawn(tree_), TVM_GETITEMSTATE, reinterpret_cast<WPARAM>(RootItem()),
                TVIS_EXPANDED) &
            TVIS_EXPANDED) != 0;
  }
  void ClickRoot(bool on_sign, bool twice = false) const {
    hands_.ClickAt(Drawn(tree_), gestures::Win32Hands::PlaceOnNode(Drawn(tree_), root_, on_sign),
                   twice);
  }

  ImageList images_{16, 16};
  ListView rows_{form_, "lstRows", {120, 120, 5000, 1500}};
  ListBox entries_{form_, "lstCals", {120, 1700, 2500, 1000}};
  TreeView tree_{form_, "tvTasks", {120, 2800, 2500, 1000}};
  CommandButton button_{form_, "cmdOK", "OK", {3000, 2800, 1455, 495}};
  NodeRef root_;
};

TEST_F(ListsTest, PagesAndEndsAreReachedByKeys) {
  InWindow([this] {
    Press(VK_END);
    EXPECT_EQ(rows_.SelectedItem()->Index(), kRows);
    EXPECT_TRUE(IsInView(rows_, kRows - 1));
    Press(VK_HOME);
    EXPECT_EQ(rows_.SelectedItem()->Index(), 1);
    Press(VK_NEXT);
    EXPECT_GT(rows_.SelectedItem()->Index(), 2);
    Press(VK_TAB);
    Press(VK_DOWN);
    Press(VK_END);
    EXPECT_EQ(entries_.ListIndex(), kRows - 1);
    Press(VK_PRIOR);
    EXPECT_LT(entries_.ListIndex(), kRows - 2);
  });
}

TEST_F(ListsTest, ARowIsFoundByItsFirstLetters) {
  InWindow([this] {
    Type(L"hu");
    EXPECT_EQ(rows_.SelectedItem()->Index(), 33);
    Press(VK_TAB);
    Type(L"h");
    EXPECT_EQ(entries_.ListIndex(), 32);
  });
}

TEST_F(ListsTest, TheSelectedRowIsInView) {
  InWindow([this] {
    rows_.SetSelectedItem(rows_.ListItems().Item(50));
    hands_.Pump();
    EXPECT_TRUE(IsInView(rows_, 49));
    EXPECT_EQ(Ask(Drawn(rows_), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED), 49);
  });
}

TEST_F(ListsTest, ARowThatIsAskedForIsBroughtIntoView) {
  InWindow([this] {
    EXPECT_FALSE(IsInView(rows_, 54));
    rows_.ListItems().Item(55)->EnsureVisible();
    hands_.Pump();
    EXPECT_TRUE(IsInView(rows_, 54));
  });
}

TEST_F(ListsTest, AChangeOfACellLeavesThePlaceThatTheListIsScrolledTo) {
  rows_.SetSelectedItem(rows_.ListItems().Item(1));
  InWindow([this] {
    Ask(Drawn(rows_), LVM_ENSUREVISIBLE, 40, FALSE);
    const LRESULT top = Ask(Drawn(rows_), LVM_GETTOPINDEX);
    rows_.ListItems().Item(41)->SetSubItems(1, "Changed");
    hands_.Pump();
    EXPECT_EQ(Ask(Drawn(rows_), LVM_GETTOPINDEX), top);
    EXPECT_EQ(Cell(rows_, 40, 1), "Changed");
  });
}

TEST_F(ListsTest, WhatHasGoneButIsStillOnTheScreenCanBePainted) {
  InWindow([this] {
    rows_.ListItems().Clear();
    entries_.Clear();
    tree_.Nodes().Clear();
    // Before the changes are taken up.
    EXPECT_EQ(Cell(rows_, 0, 1), "Row 1");
    ::RedrawWindow(window().Window(), nullptr, nullptr,
                   RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    hands_.Pump();
    EXPECT_EQ(Ask(Drawn(rows_), LVM_GETITEMCOUNT), 0);
    EXPECT_EQ(Ask(Drawn(entries_), LB_GETCOUNT), 0);
    EXPECT_EQ(Ask(Drawn(tree_), TVM_GETCOUNT), 0);
  });
}

TEST_F(ListsTest, ColumnsShareTheWidthByTheirTwipsAndHiddenOnesHaveNone) {
  InWindow([this] {
    const auto width = [this](WPARAM column) {
      return static_cast<double>(Ask(Drawn(rows_), LVM_GETCOLUMNWIDTH, column));
    };
    RECT all{};
    ::GetClientRect(Drawn(rows_), &all);
    EXPECT_EQ(width(0), 0);
    EXPECT_NEAR(width(1), all.right * 3000.0 / 5000.0, 1.0);  // the list is 5000 wide
    EXPECT_EQ(width(1) + width(2), all.right);                // the last takes what is left
  });
}

TEST_F(ListsTest, AHiddenColumnIsNotPulledOut) {
  InWindow([this] {
    NMHEADERW tells{};
    tells.hdr.hwndFrom = reinterpret_cast<HWND>(Ask(Drawn(rows_), LVM_GETHEADER));
    tells.hdr.code = HDN_BEGINTRACKW;
    EXPECT_EQ(Ask(Drawn(rows_), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&tells)), TRUE);
    tells.iItem = 1;
    EXPECT_EQ(Ask(Drawn(rows_), WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&tells)), FALSE);
  });
}

TEST_F(ListsTest, ANodeIsOpenedAndClosedByItsSignAndByTwoClicks) {
  InWindow([this] {
    ClickRoot(true);
    EXPECT_TRUE(root_->Expanded());
    EXPECT_TRUE(IsOpen());
    ClickRoot(true);
    EXPECT_FALSE(IsOpen());
    ClickRoot(false, true);
    EXPECT_TRUE(root_->Expanded());
    EXPECT_TRUE(IsOpen());
    EXPECT_EQ(log(), Lines{"tvTasks NodeClick Plan"});
  });
}

TEST_F(ListsTest, TheArrowKeysOpenAndCloseNodes) {
  InWindow([this] {
    ClickRoot(false);
    Press(VK_RIGHT);
    EXPECT_TRUE(IsOpen());
    Press(VK_LEFT);
    EXPECT_FALSE(IsOpen());
    Press(VK_MULTIPLY);  // would open all in Windows' own trees
    EXPECT_FALSE(root_->Expanded() != IsOpen());
  });
}

TEST_F(ListsTest, WhoAsksWindowsToOpenANodeAsksTheToolkit) {
  InWindow([this] {
    Ask(Drawn(tree_), TVM_EXPAND, TVE_EXPAND, reinterpret_cast<LPARAM>(RootItem()));
    hands_.Pump();
    EXPECT_TRUE(root_->Expanded());
    EXPECT_TRUE(IsOpen());
  });
}

TEST_F(ListsTest, TheSameRequestTwiceIsOne) {
  InWindow([this] {
    const auto ask = [this](WPARAM request) {
      Ask(Drawn(tree_), TVM_EXPAND, request, reinterpret_cast<LPARAM>(RootItem()));
    };
    ask(TVE_EXPAND);
    ask(TVE_EXPAND);
    hands_.Pump();
    EXPECT_TRUE(root_->Expanded());
    EXPECT_TRUE(IsOpen());
    ask(TVE_COLLAPSE);
    ask(TVE_COLLAPSE);
    hands_.Pump();
    EXPECT_FALSE(root_->Expanded());
    EXPECT_FALSE(IsOpen());
  });
}

TEST_F(ListsTest, SelectingANodeInAClosedOneOpensNothing) {
  InWindow([this] {
    tree_.SetSelectedItem(tree_.Nodes().Item("N30"));
    hands_.Pump();
    EXPECT_FALSE(IsOpen());
    root_->SetExpanded(true);
    hands_.Pump();
    const LRESULT marked = Ask(Drawn(tree_), TVM_GETNEXTITEM, TVGN_CARET);
    EXPECT_NE(marked, 0);
  });
}

TEST_F(ListsTest, NewTextsAndPicturesRebuildNothing) {
  InWindow([this] {
    const HTREEITEM before = RootItem();
    root_->SetText("New plan");
    root_->SetImage(2);
    hands_.Pump();
    EXPECT_EQ(RootItem(), before);
    std::wstring text(kLongestText, L'\0');
    TVITEMW item{};
    item.mask = TVIF_TEXT | TVIF_IMAGE;
    item.hItem = before;
    item.pszText = text.data();
    item.cchTextMax = kLongestText;
    Ask(Drawn(tree_), TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    EXPECT_EQ(FromWide(item.pszText), "New plan");
    EXPECT_EQ(item.iImage, 2);
  });
}

TEST_F(ListsTest, TheFirstOfTwoRefusedClicksAsksAlone) {
  entries_.Validate = [](bool& cancel) { cancel = true; };
  rows_.DblClick = [] {};
  InWindow([this] {
    hands_.ClickAt(Drawn(entries_), {8, 4});
    ClearLog();
    hands_.ClickAt(Drawn(rows_), gestures::Win32Hands::PlaceOnRow(Drawn(rows_), 1, false), true);
    EXPECT_EQ(log(), Lines{"lstCals Validate"});
    EXPECT_TRUE(rows_.SelectedItem().IsNothing());
    EXPECT_EQ(::GetFocus(), Drawn(entries_));
  });
}

TEST_F(ListsTest, ARightClickOrAClickOnTheEdgeGivesTheFocusAlone) {
  InWindow([this] {
    ::PostMessageW(Drawn(entries_), WM_RBUTTONDOWN, MK_RBUTTON, MAKELPARAM(8, 4));
    ::PostMessageW(Drawn(entries_), WM_RBUTTONUP, 0, MAKELPARAM(8, 4));
    hands_.Pump();
    EXPECT_TRUE(entries_.HasFocus());
    EXPECT_EQ(entries_.ListIndex(), -1);
    Post(Drawn(tree_), WM_NCLBUTTONDOWN, HTBORDER, 0);
    EXPECT_TRUE(tree_.HasFocus());
    EXPECT_TRUE(tree_.SelectedItem().IsNothing());
  });
}

TEST_F(ListsTest, AMovedControlIsShownAtItsNewPlace) {
  InWindow([this] {
    const RECT before = BoundsOf(Drawn(button_));
    button_.Move(3000, 3300, 1455, 495);
    hands_.Pump();
    EXPECT_GT(BoundsOf(Drawn(button_)).top, before.top);
    EXPECT_EQ(BoundsOf(Drawn(button_)).left, before.left);
  });
}

}  // namespace
}  // namespace nimbrel::toolkit::win32
