#include "tests/win32/window_test.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// A key's message of a key that was down before.
constexpr LPARAM kHeldDown = (LPARAM{1} << 30) | 1;

class KeyboardTest : public WindowTest {
 protected:
  KeyboardTest() {
    ok_.SetDefault(true);
    ok_.Click = [] {};
    cancel_.SetCancel(true);
    cancel_.Click = [] {};
  }

  TextBox box_{form_, "txtName", {120, 120, 3000, 375}};
  CheckBox check_{form_, "chkOn", "On", {120, 600, 3000, 375}};
  CommandButton ok_{form_, "cmdOK", "OK", {120, 1200, 1455, 495}};
  CommandButton cancel_{form_, "cmdCancel", "Cancel", {1800, 1200, 1455, 495}};
};

TEST_F(KeyboardTest, TabGoesThroughTheFormAndBackWithShift) {
  InWindow([this] {
    for (const Control* const next :
         {static_cast<Control*>(&check_), static_cast<Control*>(&ok_),
          static_cast<Control*>(&cancel_), static_cast<Control*>(&box_)}) {
      Press(VK_TAB);
      EXPECT_TRUE(next->HasFocus());
      EXPECT_EQ(::GetFocus(), Line(*next));
    }
    PressHolding(VK_SHIFT, VK_TAB);
    EXPECT_EQ(::GetFocus(), Line(cancel_));
  });
}

TEST_F(KeyboardTest, EnterAndEscapePressTheFormsButtons) {
  InWindow([this] {
    Press(VK_RETURN);
    Press(VK_ESCAPE);
    EXPECT_EQ(log(), (Lines{"cmdOK Click", "cmdCancel Click"}));
    EXPECT_EQ(::GetFocus(), Line(box_));
  });
}

TEST_F(KeyboardTest, SpaceTurnsACheckBoxAndPressesAButton) {
  InWindow([this] {
    Press(VK_TAB);
    Press(VK_SPACE);
    EXPECT_TRUE(check_.Value());
    EXPECT_EQ(Ask(Drawn(check_), BM_GETCHECK), BST_CHECKED);
    Press(VK_TAB);
    Press(VK_SPACE);
    EXPECT_EQ(log(), Lines{"cmdOK Click"});
  });
}

TEST_F(KeyboardTest, AKeyThatIsHeldDownPressesAButtonOnce) {
  InWindow([this] {
    Press(VK_TAB);
    Press(VK_TAB);
    for (const WPARAM key : {VK_SPACE, VK_RETURN}) {
      Post(Line(ok_), WM_KEYDOWN, key, 1);
      Post(Line(ok_), WM_KEYDOWN, key, kHeldDown);
      Post(Line(ok_), WM_KEYUP, key, kHeldDown);
    }
    EXPECT_EQ(log(), (Lines{"cmdOK Click", "cmdOK Click"}));
  });
}

TEST_F(KeyboardTest, TheFormsButtonIsDrawnAsTheOneThatEnterPresses) {
  InWindow([this] {
    const auto style = [](HWND button) { return ::GetWindowLongPtrW(button, GWL_STYLE) & 0xF; };
    EXPECT_EQ(style(Drawn(ok_)), BS_DEFPUSHBUTTON);
    EXPECT_EQ(style(Drawn(cancel_)), BS_PUSHBUTTON);
  });
}

TEST_F(KeyboardTest, ALoopThatHandlesKeysOfDialogsLeavesThemToTheForm) {
  InWindow([this] {
    // The loop of a host, which takes the window for a dialog.
    MSG message{};
    message.hwnd = Line(box_);
    message.message = WM_KEYDOWN;
    message.wParam = VK_TAB;
    message.lParam = 1;
    EXPECT_NE(::IsDialogMessageW(window().Window(), &message), 0);
    EXPECT_TRUE(check_.HasFocus());
    message.hwnd = Line(check_);
    message.wParam = VK_RETURN;
    ::IsDialogMessageW(window().Window(), &message);
    EXPECT_EQ(log(), Lines{"cmdOK Click"});
  });
}

TEST_F(KeyboardTest, KeysReachAFormOfWhichNoControlHasTheFocus) {
  for (Control* const control : form_.AllControls()) {
    control->SetEnabled(control == &cancel_);
  }
  cancel_.SetVisible(false);
  InWindow([this] {
    EXPECT_EQ(::GetFocus(), window().Window());
    cancel_.SetVisible(true);
    hands_.Pump();
    Press(VK_ESCAPE);
    EXPECT_EQ(log(), Lines{"cmdCancel Click"});
  });
}

TEST_F(KeyboardTest, AButtonIsPressedWhereTheMouseIsLetGoOnIt) {
  InWindow([this] {
    ::PostMessageW(Drawn(ok_), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
    ::PostMessageW(Drawn(ok_), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(5, 500));
    ::PostMessageW(Drawn(ok_), WM_LBUTTONUP, 0, MAKELPARAM(5, 500));
    hands_.Pump();
    EXPECT_EQ(log(), Lines{});
    hands_.ClickAt(Drawn(ok_), {5, 5});
    EXPECT_EQ(log(), Lines{"cmdOK Click"});
    EXPECT_EQ(::GetCapture(), nullptr);
  });
}

TEST_F(KeyboardTest, AScreenReadersPressIsAClick) {
  InWindow([this] {
    Post(Drawn(ok_), BM_CLICK);
    Post(Drawn(check_), BM_CLICK);
    EXPECT_EQ(log(), Lines{"cmdOK Click"});
    EXPECT_TRUE(check_.Value());
  });
}

TEST_F(KeyboardTest, ASignInACaptionIsShownAndMakesNoShortcut) {
  ok_.SetCaption("Wind & waves");
  InWindow([this] {
    EXPECT_EQ(TextOf(Drawn(ok_)), L"Wind && waves");
    Post(Line(box_), WM_SYSCHAR, 'W', LPARAM{1} << 29);
    EXPECT_EQ(log(), Lines{});
  });
}

class PagesTest : public WindowTest {
 protected:
  TabStrip tabs_{form_, "tabs", {"One", "Two", "Three"}, {0, 0, 6000, 4000}};
  TextBox first_{tabs_.Page(0), "txtFirst", {120, 600, 3000, 375}};
  TextBox second_{tabs_.Page(1), "txtSecond", {120, 600, 3000, 375}};
};

TEST_F(PagesTest, ControlWithTabTurnsThePages) {
  InWindow([this] {
    Press(VK_TAB);
    EXPECT_TRUE(first_.HasFocus());
    PressHolding(VK_CONTROL, VK_TAB);
    EXPECT_EQ(tabs_.Tab(), 1);
    EXPECT_NE(::IsWindowVisible(Drawn(second_)), 0);
    EXPECT_EQ(::IsWindowVisible(Drawn(first_)), 0);
    gestures::Win32Hands::Holding(VK_SHIFT, [this] { PressHolding(VK_CONTROL, VK_TAB); });
    gestures::Win32Hands::Holding(VK_SHIFT, [this] { PressHolding(VK_CONTROL, VK_TAB); });
    EXPECT_EQ(tabs_.Tab(), 2);
  });
}

TEST_F(PagesTest, ArrowsOnTheTabsTurnThePages) {
  InWindow([this] {
    EXPECT_EQ(::GetFocus(), Drawn(tabs_));
    Press(VK_RIGHT);
    Press(VK_RIGHT);
    Press(VK_RIGHT);
    Press(VK_LEFT);
    EXPECT_EQ(tabs_.Tab(), 1);
    EXPECT_EQ(Ask(Drawn(tabs_), TCM_GETCURSEL), 1);
  });
}

}  // namespace
}  // namespace nimbrel::toolkit::win32
