#include <cstring>

#include "tests/win32/window_test.h"

namespace nimbrel::toolkit::win32 {
namespace {

class EditTest : public WindowTest {
 protected:
  EditTest() {
    box_.Change = [] {};
    box_.KeyDown = [](int) {};
  }

  static void PutOnClipboard(const std::wstring& text) {
    ASSERT_NE(::OpenClipboard(nullptr), 0);
    ::EmptyClipboard();
    const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, bytes);
    std::memcpy(::GlobalLock(memory), text.c_str(), bytes);
    ::GlobalUnlock(memory);
    ::SetClipboardData(CF_UNICODETEXT, memory);
    ::CloseClipboard();
  }
  static std::wstring Clipboard() {
    std::wstring text;
    if (::OpenClipboard(nullptr) != 0) {
      if (const HANDLE memory = ::GetClipboardData(CF_UNICODETEXT); memory != nullptr) {
        text = static_cast<const wchar_t*>(::GlobalLock(memory));
        ::GlobalUnlock(memory);
      }
      ::CloseClipboard();
    }
    return text;
  }
  std::string Shown(const Control& control) const { return FromWide(TextOf(Line(control))); }

  TextBox box_{form_, "txtName", {120, 120, 3000, 375}};
  TextBox other_{form_, "txtOther", {120, 600, 3000, 375}};
  ComboBox combo_{form_, "cbCals", {120, 1200, 3000, 375}};
};

TEST_F(EditTest, WhatTheKeyboardMarksIsTheSelectionOfTheBox) {
  box_.SetText("storm");
  InWindow([this] {
    Press(VK_END);
    PressHolding(VK_SHIFT, VK_LEFT);
    PressHolding(VK_SHIFT, VK_LEFT);
    EXPECT_EQ(box_.SelText(), "rm");
    PressHolding(VK_CONTROL, 'A');
    EXPECT_EQ(box_.SelText(), "storm");
    PressHolding(VK_SHIFT, VK_HOME);
    Press(VK_RIGHT);
    EXPECT_EQ(box_.SelLength(), 0);
  });
}

TEST_F(EditTest, WhatTheMouseMarksIsTheSelectionOfTheBox) {
  box_.SetText("storm");
  InWindow([this] {
    ::PostMessageW(Line(box_), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 8));
    ::PostMessageW(Line(box_), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(150, 8));
    ::PostMessageW(Line(box_), WM_LBUTTONUP, 0, MAKELPARAM(150, 8));
    hands_.Pump();
    EXPECT_EQ(box_.SelText(), "storm");
    hands_.ClickAt(Line(box_), {8, 8}, true);
    EXPECT_EQ(box_.SelText(), "storm");
  });
}

TEST_F(EditTest, ACharacterOfTwoUnitsIsOneCharacter) {
  InWindow([this] {
    Type(L"\xD83C\xDF2A!");
    EXPECT_EQ(box_.Text(), "\xF0\x9F\x8C\xAA!");
    EXPECT_EQ(box_.SelStart(), 2);
    Press(VK_LEFT);
    Press(VK_BACK);
    EXPECT_EQ(box_.Text(), "!");
    EXPECT_EQ(Shown(box_), "!");
  });
}

TEST_F(EditTest, PastingIsOneChangeWithoutKeys) {
  InWindow([this] {
    PutOnClipboard(L"f\u00F6hn");
    Post(Line(box_), WM_PASTE);
    EXPECT_EQ(box_.Text(), "f\xC3\xB6hn");
    EXPECT_EQ(log(), Lines{"txtName Change"});
  });
}

TEST_F(EditTest, CuttingAndCopyingGoByTheClipboard) {
  box_.SetText("storm");
  InWindow([this] {
    PressHolding(VK_CONTROL, 'A');
    Post(Line(box_), WM_CHAR, 3, 1);  // Control and C
    EXPECT_EQ(Clipboard(), L"storm");
    EXPECT_EQ(box_.Text(), "storm");
    PressHolding(VK_SHIFT, VK_DELETE);
    EXPECT_EQ(box_.Text(), "");
    Post(Line(box_), WM_CHAR, 0x16, 1);  // Control and V
    EXPECT_EQ(box_.Text(), "storm");
  });
}

TEST_F(EditTest, WhatWasTypedCanBeUndone) {
  box_.SetText("storm");
  InWindow([this] {
    Press(VK_END);
    Type(L"s");
    EXPECT_EQ(box_.Text(), "storms");
    Post(Line(box_), WM_CHAR, 0x1A, 1);  // Control and Z
    EXPECT_EQ(box_.Text(), "storm");
  });
}

TEST_F(EditTest, AHandlerHasTheLastWordOnWhatIsTyped) {
  box_.Change = [this] {
    if (box_.Text() == "a") {
      box_.SetText("A!");
    }
  };
  InWindow([this] {
    Type(L"a");
    EXPECT_EQ(Shown(box_), "A!");
  });
}

TEST_F(EditTest, KeysWithControlTypeNothing) {
  InWindow([this] {
    PressHolding(VK_CONTROL, 'B');
    PressHolding(VK_CONTROL, VK_BACK);
    EXPECT_EQ(box_.Text(), "");
  });
}

TEST_F(EditTest, FocusThatAScreenReaderGivesIsAskedForAsAClickIs) {
  bool refuses = true;
  box_.Validate = [&refuses](bool& cancel) { cancel = refuses; };
  InWindow([&] {
    ::SetFocus(Line(other_));
    hands_.Pump();
    EXPECT_EQ(::GetFocus(), Line(box_));
    EXPECT_TRUE(box_.HasFocus());
    refuses = false;
    ::SetFocus(Line(other_));
    hands_.Pump();
    EXPECT_EQ(::GetFocus(), Line(other_));
    EXPECT_TRUE(other_.HasFocus());
  });
}

TEST_F(EditTest, ADragThatBeganWithARefusedClickMarksNothing) {
  box_.Validate = [](bool& cancel) { cancel = true; };
  other_.SetText("storm");
  InWindow([this] {
    ::PostMessageW(Line(other_), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(1, 8));
    ::PostMessageW(Line(other_), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(150, 8));
    ::PostMessageW(Line(other_), WM_LBUTTONUP, 0, MAKELPARAM(150, 8));
    hands_.Pump();
    EXPECT_TRUE(box_.HasFocus());
    EXPECT_EQ(Ask(Line(other_), EM_GETSEL), 0);
  });
}

TEST_F(EditTest, LeavingAComboBoxPicksNothing) {
  combo_.AddItem("Standard");
  combo_.Change = [] {};
  InWindow([this] {
    hands_.ClickAt(Line(combo_), {8, 8});
    Type(L"St");
    ClearLog();
    Press(VK_TAB);
    EXPECT_EQ(combo_.Text(), "St");
    EXPECT_EQ(Shown(combo_), "St");
    EXPECT_EQ(log(), Lines{});
  });
}

TEST_F(EditTest, AListThatDropsDownAndIsClosedAgainChangesNothing) {
  combo_.AddItem("Standard");
  combo_.SetText("St");
  combo_.Change = [] {};
  InWindow([this] {
    hands_.ClickAt(Line(combo_), {8, 8});
    Ask(Drawn(combo_), CB_SHOWDROPDOWN, TRUE);
    Press(VK_DOWN);
    Press(VK_ESCAPE);
    EXPECT_EQ(Ask(Drawn(combo_), CB_GETDROPPEDSTATE), 0);
    EXPECT_EQ(combo_.Text(), "St");
    EXPECT_EQ(Shown(combo_), "St");
    EXPECT_EQ(log(), Lines{});
  });
}

TEST_F(EditTest, AnEntryOfADroppedListIsPickedByTheKeyboard) {
  combo_.AddItem("Standard");
  combo_.AddItem("Night shift");
  InWindow([this] {
    hands_.ClickAt(Line(combo_), {8, 8});
    Ask(Drawn(combo_), CB_SHOWDROPDOWN, TRUE);
    Press(VK_DOWN);
    Press(VK_DOWN);
    EXPECT_EQ(combo_.ListIndex(), -1);
    Press(VK_RETURN);
    EXPECT_EQ(combo_.Text(), "Night shift");
    EXPECT_EQ(Shown(combo_), "Night shift");
  });
}

TEST_F(EditTest, TheWheelAndThePageKeysPickNothing) {
  combo_.AddItem("Standard");
  combo_.AddItem("Night shift");
  combo_.SetListIndex(0);
  InWindow([this] {
    hands_.ClickAt(Line(combo_), {8, 8});
    Press(VK_NEXT);
    const auto down = static_cast<WORD>(-WHEEL_DELTA);
    Post(Line(combo_), WM_MOUSEWHEEL, MAKEWPARAM(0, down));
    Post(Drawn(combo_), WM_MOUSEWHEEL, MAKEWPARAM(0, down));
    EXPECT_EQ(combo_.ListIndex(), 0);
    EXPECT_EQ(Shown(combo_), "Standard");
  });
}

TEST_F(EditTest, EntriesThatComeLaterLeaveTheTypedTextAlone) {
  InWindow([this] {
    hands_.ClickAt(Line(combo_), {8, 8});
    Type(L"Sta");
    combo_.AddItem("Standard");
    hands_.Pump();
    EXPECT_EQ(combo_.Text(), "Sta");
    EXPECT_EQ(Shown(combo_), "Sta");
    Type(L"r");
    EXPECT_EQ(combo_.Text(), "Star");
  });
}

}  // namespace
}  // namespace nimbrel::toolkit::win32
