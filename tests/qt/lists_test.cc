#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTabWidget>

#include "tests/qt/window_test.h"
#include "toolkit/qt/item_models.h"
#include "toolkit/qt/picture_icon.h"

namespace nimbrel::toolkit::qt {
namespace {

class ListsTest : public WindowTest {
 protected:
  void SetUp() override {
    rows_.ColumnHeaders().Add("ID", 0);
    rows_.ColumnHeaders().Add("Name", 1500);
    rows_.ColumnHeaders().Add("Start", 1000);
    for (int i = 1; i <= 100; ++i) {
      rows_.ListItems().Add({}, {}, std::to_string(i))->SetSubItems(1, "Row " + std::to_string(i));
      list_.AddItem("Entry " + std::to_string(i));
    }
    rows_.ItemClick = [](const ListItemRef&) {};
    const NodeRef root = tree_.Nodes().Add("root", "root");
    for (int i = 1; i <= 50; ++i) {
      const NodeRef group =
          tree_.Nodes().Add(root, Relationship::kChild, "g" + std::to_string(i), "group");
      tree_.Nodes().Add(group, Relationship::kChild, {}, "leaf");
    }
    tree_.SetStyle(TreeStyle::kTreelinesPlusMinusPictureText);
    tree_.NodeClick = [](const NodeRef&) {};
    checks_.SetCheckBoxes(true);
    checks_.ListItems().Add({}, {}, "check");
    box_.Validate = [this](bool& cancel) { cancel = box_.Text() == "bad"; };
  }

  ItemView& view(const Control& control) const { return Drawn<ItemView>(control); }
  /// The place of a node, in the tree's viewport.
  QRect NodeRect(const NodeRef& node) const { return view(tree_).visualRect(NodeIndex(node)); }
  QModelIndex NodeIndex(const NodeRef& node) const {
    return dynamic_cast<const NodeModel&>(*view(tree_).model()).IndexOf(node);
  }

  TextBox box_{form_, "txt", {120, 3500, 2000, 375}};
  ListView rows_{form_, "rows", {120, 120, 2600, 3000}};
  ListBox list_{form_, "list", {2800, 120, 1500, 3000}};
  TreeView tree_{form_, "tree", {4400, 120, 1500, 3000}};
  ListView checks_{form_, "checks", {2800, 3200, 3000, 700}, ListViewStyle::kList};
};

TEST_F(ListsTest, PagesAndEndsAreReachedByKeys) {
  InWindow([&] {
    rows_.SetFocus();
    QCoreApplication::processEvents();
    Press(Qt::Key_End);
    EXPECT_EQ(rows_.SelectedItem()->Text(), "100");
    Press(Qt::Key_PageUp);
    EXPECT_LT(rows_.SelectedItem()->Index(), 100);
    Press(Qt::Key_Home);
    EXPECT_EQ(rows_.SelectedItem()->Text(), "1");
    list_.SetFocus();
    QCoreApplication::processEvents();
    Press(Qt::Key_End);
    EXPECT_EQ(list_.ListIndex(), 99);
  });
}

TEST_F(ListsTest, ARowIsFoundByItsFirstLetters) {
  rows_.ListItems().Item(50)->SetSubItems(1, "North");
  InWindow([&] {
    rows_.SetFocus();
    QCoreApplication::processEvents();
    QTest::keyClicks(&view(rows_), "nor");
    EXPECT_EQ(rows_.SelectedItem()->Text(), "50");
  });
}

TEST_F(ListsTest, TheSelectedRowIsInView) {
  InWindow([&] {
    rows_.SetFocus();
    QCoreApplication::processEvents();
    for (int i = 0; i < 60; ++i) {
      Press(Qt::Key_Down);
    }
    const QModelIndex current = view(rows_).currentIndex();
    EXPECT_EQ(current.row(), 59);
    EXPECT_TRUE(view(rows_).viewport()->rect().contains(view(rows_).visualRect(current)));
  });
}

TEST_F(ListsTest, ARowThatIsAskedForIsBroughtIntoView) {
  InWindow([&] {
    rows_.ListItems().Item(80)->EnsureVisible();
    QCoreApplication::processEvents();
    const QModelIndex row = view(rows_).model()->index(79, 1);
    EXPECT_TRUE(view(rows_).viewport()->rect().contains(view(rows_).visualRect(row)));
    EXPECT_TRUE(rows_.SelectedItem().IsNothing());
  });
}

TEST_F(ListsTest, AChangeOfACellLeavesThePlaceThatTheListIsScrolledTo) {
  InWindow([&] {
    view(rows_).verticalScrollBar()->setValue(30);
    rows_.ListItems().Item(1)->SetSubItems(2, "new");
    rows_.ListItems().Add({}, {}, "101");
    QCoreApplication::processEvents();
    EXPECT_EQ(view(rows_).verticalScrollBar()->value(), 30);
    EXPECT_EQ(view(rows_).model()->rowCount(), 101);
  });
}

TEST_F(ListsTest, ManyChangesAreTakenUpAtOnce) {
  InWindow([&] {
    const QSignalSpy resets(view(tree_).model(), &QAbstractItemModel::modelReset);
    for (int i = 0; i < 1000; ++i) {
      tree_.Nodes().Add({}, "node");
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(resets.count(), 1);
    EXPECT_EQ(view(tree_).model()->rowCount(), 1001);
  });
}

TEST_F(ListsTest, NewTextsAndPicturesRebuildNothing) {
  ImageList images(16, 16);
  images.Add({});
  InWindow([&] {
    tree_.SetImages(&images);
    QCoreApplication::processEvents();
    const QSignalSpy resets(view(tree_).model(), &QAbstractItemModel::modelReset);
    tree_.Root()->SetText("other");
    tree_.Root()->SetImage(1);
    QCoreApplication::processEvents();
    EXPECT_EQ(resets.count(), 0);
    const QModelIndex root = view(tree_).model()->index(0, 0);
    EXPECT_EQ(root.data().toString(), "other");
    EXPECT_FALSE(root.data(Qt::DecorationRole).isNull());
  });
}

TEST_F(ListsTest, WhatHasGoneButIsStillOnTheScreenCanBePainted) {
  InWindow([&] {
    tree_.Nodes().Clear();
    rows_.ListItems().Clear();
    list_.Clear();
    window().grab();
    EXPECT_EQ(view(rows_).model()->rowCount(), 100);
    QCoreApplication::processEvents();
    EXPECT_EQ(view(rows_).model()->rowCount(), 0);
    EXPECT_EQ(view(tree_).model()->rowCount(), 0);
    EXPECT_EQ(view(list_).model()->rowCount(), 0);
  });
}

TEST_F(ListsTest, ANodeIsOpenedAndClosedByItsSignAndByTwoClicks) {
  InWindow([&] {
    const NodeRef root = tree_.Root();
    tree_.SetFocus();
    ClearLog();
    ClickOn(*view(tree_).viewport(), view(tree_).SignRect(NodeIndex(root)).center());
    EXPECT_TRUE(root->Expanded());
    EXPECT_EQ(log(), Lines{});
    ClickOn(*view(tree_).viewport(), NodeRect(root).center(), true);
    EXPECT_FALSE(root->Expanded());
    EXPECT_FALSE(view(tree_).isExpanded(NodeIndex(root)));
  });
  EXPECT_EQ(log(), Lines{"tree NodeClick root"});
}

TEST_F(ListsTest, TheArrowKeysOpenAndCloseNodes) {
  InWindow([&] {
    tree_.SetFocus();
    QCoreApplication::processEvents();
    Press(Qt::Key_Down);
    Press(Qt::Key_Right);
    EXPECT_TRUE(view(tree_).isExpanded(NodeIndex(tree_.Root())));
    Press(Qt::Key_Left);
    EXPECT_FALSE(view(tree_).isExpanded(NodeIndex(tree_.Root())));
  });
}

TEST_F(ListsTest, SelectingANodeInAClosedOneOpensNothing) {
  InWindow([&] {
    tree_.SetSelectedItem(tree_.Nodes().Item("g7"));
    QCoreApplication::processEvents();
    EXPECT_FALSE(view(tree_).isExpanded(NodeIndex(tree_.Root())));
  });
}

TEST_F(ListsTest, TheFirstOfTwoRefusedClicksAsksAlone) {
  rows_.DblClick = Heard();
  InWindow([&] {
    Type("bad");
    ClearLog();
    const QModelIndex row = view(rows_).model()->index(2, 1);
    ClickOn(*view(rows_).viewport(), view(rows_).visualRect(row).center(), true);
    EXPECT_EQ(form_.ActiveControl(), &box_);
  });
  EXPECT_EQ(log(), Lines{"txt Validate"});
}

TEST_F(ListsTest, ColumnsShareTheWidthByTheirTwipsAndHiddenOnesHaveNone) {
  InWindow([&] {
    EXPECT_TRUE(view(rows_).isColumnHidden(0));
    // 2600 twips of the list, 1500 of the column; whole pixels.
    const int width = view(rows_).viewport()->width();
    EXPECT_NEAR(view(rows_).columnWidth(1), width * 1500.0 / 2600.0, 1.0);
  });
}

TEST_F(ListsTest, AListWithTheFocusAndNoRowSelectedShowsIt) {
  rows_.ListItems().Clear();
  InWindow([&] {
    const QImage without = view(rows_).grab().toImage();
    rows_.SetFocus();
    QCoreApplication::processEvents();
    EXPECT_NE(view(rows_).grab().toImage(), without);
  });
}

TEST_F(ListsTest, AnEmptyCheckBoxIsSeenOnDarkGround) {
  InWindow([&] {
    QPalette dark(QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(25, 25, 25));
    dark.setColor(QPalette::Text, Qt::white);
    view(checks_).setPalette(dark);
    const QRect box = view(checks_).CheckRect(view(checks_).model()->index(0, 0));
    const QImage image = view(checks_).viewport()->grab().toImage();
    const int edge = image.pixelColor(box.left(), box.center().y()).lightness();
    EXPECT_GT(edge, image.pixelColor(box.center()).lightness() + 80);
  });
}

TEST_F(ListsTest, AMovedControlIsShownAtItsNewPlace) {
  InWindow([&] {
    const int before = window().WidgetOf(box_)->x();
    box_.Move(2400, 3500, 2000, 375);
    QTest::qWait(1);
    EXPECT_GT(window().WidgetOf(box_)->x(), before);
  });
}

TEST_F(ListsTest, PicturesAreDrawnAtEveryScaleFromTheirShapes) {
  Picture picture;
  picture.shapes.push_back(
      {{{4, 4}, {12, 4}, {12, 12}, {4, 12}}, true, Shape::Fill::kSolid, {200, 0, 0}, 0.0});
  const QIcon icon = PictureIcon(picture, 16, 16);
  for (const int scale : {1, 2, 3}) {
    const QImage image = icon.pixmap(QSize(16, 16) * scale).toImage();
    ASSERT_EQ(image.width(), 16 * scale);
    EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::white));
    // The square's edges fall on whole pixels, so none of them is blurred.
    EXPECT_EQ(image.pixelColor(4 * scale, 4 * scale), QColor(200, 0, 0));
    EXPECT_EQ(image.pixelColor(4 * scale - 1, 8 * scale), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(12 * scale - 1, 8 * scale), QColor(200, 0, 0));
  }
}

class PagesTest : public WindowTest {
 protected:
  TabStrip tabs_{form_, "tabs", {"One", "Two", "Three"}, {120, 120, 5000, 3000}};
  TextBox box_{tabs_.Page(0), "box", {120, 600, 2000, 375}};
};

TEST_F(PagesTest, ControlWithTabTurnsThePages) {
  InWindow([&] {
    ClickOn(box_);
    Press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(tabs_.Tab(), 1);
    EXPECT_EQ(Drawn<QTabWidget>(tabs_).currentIndex(), 1);
    Press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    Press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(tabs_.Tab(), 2);
  });
}

}  // namespace
}  // namespace nimbrel::toolkit::qt
