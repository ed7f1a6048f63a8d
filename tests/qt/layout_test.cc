#include <QCheckBox>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QTabBar>
#include <QTabWidget>

#include "tests/qt/window_test.h"
#include "tests/support/gestures/face_forms.h"
#include "toolkit/qt/item_view.h"

namespace nimbrel::toolkit::qt {
namespace {

/// The room that a button's caption has.
int CaptionRoom(const QPushButton& button) {
  QStyleOptionButton option;
  option.initFrom(&button);
  return button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button).width();
}

int TextWidth(const QWidget& widget, const QString& text) {
  return widget.fontMetrics().size(Qt::TextShowMnemonic, text).width();
}

/// Whether a widget shows its captions whole.
bool ShowsCaptions(const QWidget& widget) {
  if (const auto* button = dynamic_cast<const QPushButton*>(&widget); button != nullptr) {
    return CaptionRoom(*button) >= TextWidth(*button, button->text()) &&
           button->height() >= button->fontMetrics().height();
  }
  if (const auto* label = dynamic_cast<const QLabel*>(&widget); label != nullptr) {
    int widest = 0;
    for (const QString& word : label->text().split(' ')) {
      widest = std::max(widest, label->fontMetrics().horizontalAdvance(word));
    }
    return label->width() >= widest && label->height() >= label->heightForWidth(label->width());
  }
  if (const auto* strip = dynamic_cast<const QTabWidget*>(&widget); strip != nullptr) {
    return strip->width() >= strip->tabBar()->sizeHint().width();
  }
  if (const auto* view = dynamic_cast<const ItemView*>(&widget); view != nullptr) {
    bool whole = true;
    const QHeaderView& header = *view->header();
    for (int i = 0; !header.isHidden() && i < header.count(); ++i) {
      const bool empty = view->model()->headerData(i, Qt::Horizontal).toString().isEmpty();
      whole = whole && (empty || header.sectionSize(i) >= header.sectionSizeHint(i));
    }
    return whole;
  }
  const QSize needed = widget.minimumSizeHint();
  return widget.width() >= needed.width() && widget.height() >= needed.height();
}

class LayoutTest : public WindowTest {
 protected:
  ~LayoutTest() override { QApplication::setFont(font_); }

  /// Every control that is on show is whole, inside what it stands in, and beside the others.
  void ExpectTidy(const Form& form, const std::string& when) {
    for (const Control* const control : form.AllControls()) {
      if (!control->IsOnShow()) {
        continue;
      }
      const QWidget& widget = *window().WidgetOf(*control);
      EXPECT_TRUE(ShowsCaptions(widget)) << control->Name() << ", " << when;
      EXPECT_TRUE(widget.parentWidget()->contentsRect().contains(widget.geometry()))
          << control->Name() << " in its place, " << when;
      for (const Control* const other : control->Parent().Controls()) {
        const bool apart = other == control || !other->IsOnShow() ||
                           !window().WidgetOf(*other)->geometry().intersects(widget.geometry());
        EXPECT_TRUE(apart) << control->Name() << " and " << other->Name() << ", " << when;
      }
    }
  }

  LargeForm large_{desktop_};

 private:
  QFont font_ = QApplication::font();
};

class FontSizes : public LayoutTest, public ::testing::WithParamInterface<int> {};

TEST_P(FontSizes, NoCaptionIsCutAndNothingOverlaps) {
  QFont font = QApplication::font();
  font.setPointSize(GetParam());
  QApplication::setFont(font);
  InWindow(large_, [&] {
    for (const std::int32_t page : {0, 1}) {
      large_.tabs.SetTab(page);
      const std::string on_page = "page " + std::to_string(page);
      // As small as it gets, whatever the screen; then larger.
      QWidget& pane = *window().WidgetOf(large_.tabs)->parentWidget();
      window().setMinimumSize(pane.minimumSizeHint());
      window().resize(pane.minimumSizeHint());
      QTest::qWait(1);
      ExpectTidy(large_, on_page + " at its smallest");
      window().resize(pane.sizeHint());
      QTest::qWait(1);
      ExpectTidy(large_, on_page + " as it opens");
      window().resize(pane.sizeHint() * 1.7);
      QTest::qWait(1);
      ExpectTidy(large_, on_page + " enlarged");
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Points, FontSizes, ::testing::Values(7, 9, 11, 14, 20, 30));

TEST_F(LayoutTest, AFontThatChangesWhileTheWindowIsOpenIsFollowed) {
  InWindow(large_, [&] {
    QFont font = QApplication::font();
    font.setPointSize(18);
    QApplication::setFont(font);
    QTest::qWait(1);
    QWidget& pane = *window().WidgetOf(large_.tabs)->parentWidget();
    window().setMinimumSize(pane.minimumSizeHint());
    QTest::qWait(1);
    ExpectTidy(large_, "in the new font");
  });
}

TEST_F(LayoutTest, ListsTakeTheHeightThatThereIsMoreAndBoxesKeepTheirs) {
  InWindow(large_, [&] {
    QWidget& pane = *window().WidgetOf(large_.tabs)->parentWidget();
    window().resize(pane.sizeHint());
    QTest::qWait(1);
    const auto height = [&](const Control& control) {
      return window().WidgetOf(control)->height();
    };
    const int list = height(large_.lstRows);
    const int box = height(large_.txtDescr);
    const int button = height(large_.cmdAdd);
    window().resize(window().width(), window().height() + 400);
    QTest::qWait(1);
    // Edges are rounded to whole pixels.
    EXPECT_NEAR(height(large_.txtDescr), box, 1);
    EXPECT_NEAR(height(large_.cmdAdd), button, 1);
    EXPECT_GT(height(large_.lstRows), list + 350);
  });
}

TEST_F(LayoutTest, BoxesStayUnderTheirColumnsWhateverTheWidth) {
  InWindow(large_, [&] {
    for (const double wider : {1.0, 1.5, 2.5}) {
      QWidget& pane = *window().WidgetOf(large_.tabs)->parentWidget();
      window().resize(static_cast<int>(pane.sizeHint().width() * wider), window().height());
      QTest::qWait(1);
      const auto& view = Drawn<ItemView>(large_.lstRows);
      const int column = view.viewport()->mapTo(&window(), QPoint(0, 0)).x() +
                         view.header()->sectionViewportPosition(2);
      const QWidget& box = *window().WidgetOf(large_.txtDate);
      const int left = box.mapTo(&window(), QPoint(0, 0)).x();
      // The form has the box 80 twips, or half a percent of its width, right of the column.
      EXPECT_GE(left, column);
      EXPECT_LT(left - column, window().width() * 3 / 100);
    }
  });
}

TEST_F(LayoutTest, AFormThatIsTooLargeForTheScreenScrolls) {
  Form huge(desktop_, "frmHuge", "Huge", 60000, 60000);
  TextBox near(huge, "near", {120, 120, 3000, 375});
  TextBox far(huge, "far", {56000, 59000, 3000, 375});
  InWindow(huge, [&] {
    EXPECT_LE(window().width(), window().screen()->availableGeometry().width());
    EXPECT_LE(window().height(), window().screen()->availableGeometry().height());
    Press(Qt::Key_Tab);
    const QWidget& box = *window().WidgetOf(far);
    EXPECT_TRUE(window().rect().contains(QRect(box.mapTo(&window(), QPoint(0, 0)), box.size())));
  });
}

TEST_F(LayoutTest, WhatHasNoCaptionIsNamedByTheLabelNextToItOrItsFrame) {
  large_.lstRows.SetAccessibleName("Periods");
  InWindow(large_, [&] {
    const auto name = [&](const Control& control) {
      return window().FocusWidgetOf(control)->accessibleName();
    };
    EXPECT_EQ(name(large_.txtDescr), "Description");
    EXPECT_EQ(name(large_.txtDate), "Start");
    EXPECT_EQ(name(large_.lstCals), "Existing calendars");
    EXPECT_EQ(name(large_.lstRows), "Periods");
    EXPECT_EQ(name(large_.tvTasks), "Tasks");
    EXPECT_EQ(name(large_.cbCals), "Task Calendar");
    EXPECT_EQ(name(large_.lstChecks), "Checks");
  });
}

TEST_F(LayoutTest, ASignInACaptionIsShownAndMakesNoShortcut) {
  InWindow(large_, [&] {
    EXPECT_EQ(Drawn<QPushButton>(large_.cmdFail).text(), "Fail &&&& go");
    EXPECT_TRUE(Drawn<QPushButton>(large_.cmdFail).shortcut().isEmpty());
  });
}

}  // namespace
}  // namespace nimbrel::toolkit::qt
