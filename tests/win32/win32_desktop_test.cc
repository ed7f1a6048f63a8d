// Forms and boxes as a program shows them: the loop of messages is the desktop's own, and what the
// user does comes from a timer meanwhile.
#include "toolkit/win32/win32_desktop.h"

#include <commdlg.h>
#include <dlgs.h>
#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/gestures/face_forms.h"
#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {
namespace {

/// How long a window has to come up, in milliseconds, before the next thing is done.
constexpr UINT kPause = 150;

std::deque<std::function<void()>>& Actions() {
  static std::deque<std::function<void()>> actions;
  return actions;
}

void CALLBACK DoNext(HWND /*window*/, UINT /*message*/, UINT_PTR timer, DWORD /*time*/) {
  if (Actions().empty()) {
    ::KillTimer(nullptr, timer);
    return;
  }
  const std::function<void()> action = std::move(Actions().front());
  Actions().pop_front();
  action();
}

struct Search {
  const std::wstring& text;
  HWND found;
};

/// Goes on until a window of the text is found.
BOOL CALLBACK Compare(HWND window, LPARAM search) {
  auto& wanted = *reinterpret_cast<Search*>(search);
  if (TextOf(window) == wanted.text) {
    wanted.found = window;
  }
  return wanted.found == nullptr ? TRUE : FALSE;
}

class Win32DesktopTest : public ::testing::Test {
 protected:
  Win32DesktopTest() : timer_(::SetTimer(nullptr, 0, kPause, DoNext)) {}
  ~Win32DesktopTest() override {
    ::KillTimer(nullptr, timer_);
    Actions().clear();
  }

  /// What the user does, one after the other, each when the windows have come up.
  static void Then(std::function<void()> action) { Actions().push_back(std::move(action)); }

  static HWND Top() { return ::GetActiveWindow(); }
  static std::wstring TitleOfTop() { return TextOf(Top()); }
  /// The window inside another one that has this text.
  static HWND Inside(HWND window, const std::wstring& text) {
    Search search{text, nullptr};
    ::EnumChildWindows(window, Compare, reinterpret_cast<LPARAM>(&search));
    return search.found;
  }
  static void Click(const std::wstring& caption) {
    const HWND button = Inside(Top(), caption);
    ASSERT_NE(button, nullptr);
    ::PostMessageW(button, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(4, 4));
    ::PostMessageW(button, WM_LBUTTONUP, 0, MAKELPARAM(4, 4));
  }

  Win32Desktop desktop_;

 private:
  UINT_PTR timer_;
};

TEST_F(Win32DesktopTest, AFormIsOpenUntilItIsHidden) {
  SmallForm form(desktop_);
  Then([] { EXPECT_EQ(TitleOfTop(), L"Small"); });
  Then([] { Click(L"OK"); });
  form.ShowModal();
  EXPECT_TRUE(form.confirmed);
  EXPECT_FALSE(form.Visible());
}

TEST_F(Win32DesktopTest, TheWindowsOwnButtonAsksTheForm) {
  SmallForm form(desktop_);
  int asked = 0;
  form.Form_QueryUnload = [&asked](bool& cancel, UnloadMode mode) {
    EXPECT_EQ(mode, UnloadMode::kControlMenu);
    cancel = ++asked == 1;
  };
  Then([] { ::PostMessageW(Top(), WM_SYSCOMMAND, SC_CLOSE, 0); });
  Then([&form] { EXPECT_TRUE(form.Visible()); });
  Then([] { ::PostMessageW(Top(), WM_SYSCOMMAND, SC_CLOSE, 0); });
  form.ShowModal();
  EXPECT_EQ(asked, 2);
  EXPECT_FALSE(form.Loaded());
}

TEST_F(Win32DesktopTest, AFormShownFromAHandlerIsOnTop) {
  LargeForm form(desktop_);
  HWND below = nullptr;
  Then([&below] {
    below = Top();
    Click(L"Add...");
  });
  Then([&below] {
    EXPECT_EQ(TitleOfTop(), L"Small");
    EXPECT_EQ(::GetWindow(Top(), GW_OWNER), below);
    EXPECT_EQ(::IsWindowEnabled(below), 0);
    Click(L"Cancel");
  });
  Then([&below] {
    EXPECT_EQ(Top(), below);
    EXPECT_NE(::IsWindowEnabled(below), 0);
    Click(L"Close");
  });
  form.ShowModal();
  EXPECT_EQ(::IsWindow(below), 0);
}

TEST_F(Win32DesktopTest, AFormCanBeShownAgain) {
  SmallForm form(desktop_);
  Then([] { Click(L"Cancel"); });
  form.ShowModal();
  EXPECT_FALSE(form.confirmed);
  Then([] { Click(L"OK"); });
  form.ShowModal();
  EXPECT_TRUE(form.confirmed);
}

TEST_F(Win32DesktopTest, TheHostsWindowTakesNoInputMeanwhileAndIsActiveAfterwards) {
  const HWND host = ::CreateWindowExW(0, WC_STATICW, L"Host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0,
                                      0, 300, 200, nullptr, nullptr, nullptr, nullptr);
  ::SetActiveWindow(host);
  Win32Desktop over_host(host);
  SmallForm form(over_host);
  Then([host] {
    EXPECT_EQ(::IsWindowEnabled(host), 0);
    EXPECT_EQ(::GetWindow(Top(), GW_OWNER), host);
    Click(L"Cancel");
  });
  form.ShowModal();
  EXPECT_NE(::IsWindowEnabled(host), 0);
  EXPECT_EQ(::GetActiveWindow(), host);
  ::DestroyWindow(host);
}

/// A window of the program that shows forms.
class HostWindow {
 public:
  explicit HostWindow(DWORD style)
      : window_(::CreateWindowExW(0, WC_STATICW, L"Host", style, 0, 0, 300, 200, nullptr, nullptr,
                                  nullptr, nullptr)) {}
  ~HostWindow() { ::DestroyWindow(window_); }
  HostWindow(const HostWindow&) = delete;
  HostWindow& operator=(const HostWindow&) = delete;

  HWND window() const { return window_; }
  bool TakesInput() const { return ::IsWindowEnabled(window_) != 0; }

 private:
  HWND window_;
};

TEST_F(Win32DesktopTest, WithoutAnOwnerNoVisibleWindowOfTheThreadTakesInputMeanwhile) {
  const HostWindow host(WS_OVERLAPPEDWINDOW | WS_VISIBLE);
  const HostWindow second(WS_OVERLAPPEDWINDOW | WS_VISIBLE);
  const HostWindow hidden(WS_OVERLAPPEDWINDOW);
  const HostWindow disabled(WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_DISABLED);
  ::SetActiveWindow(host.window());
  LargeForm form(desktop_);
  HWND below = nullptr;
  Then([&] {
    below = Top();
    EXPECT_NE(::IsWindowEnabled(below), 0);
    EXPECT_FALSE(host.TakesInput());
    EXPECT_FALSE(second.TakesInput());
    EXPECT_TRUE(hidden.TakesInput());
    Click(L"Add...");
  });
  Then([] { Click(L"Cancel"); });
  Then([&] {
    EXPECT_EQ(Top(), below);
    EXPECT_FALSE(host.TakesInput()) << "a form above another one has given nothing back";
    Click(L"Close");
  });
  form.ShowModal();
  EXPECT_TRUE(host.TakesInput());
  EXPECT_TRUE(second.TakesInput());
  EXPECT_FALSE(disabled.TakesInput()) << "what took no input before takes none afterwards";
}

TEST_F(Win32DesktopTest, WithoutAnOwnerABoxTakesTheInputFromTheThreadsWindows) {
  const HostWindow host(WS_OVERLAPPEDWINDOW | WS_VISIBLE);
  Then([&host] {
    EXPECT_FALSE(host.TakesInput());
    ::PostMessageW(Top(), WM_COMMAND, IDOK, 0);
  });
  desktop_.MsgBox("text", "Weather Modeling");
  EXPECT_TRUE(host.TakesInput());
}

/// While it lives, the system makes no window of a class on this thread.
class Refusal {
 public:
  explicit Refusal(std::wstring window_class)
      : hook_(::SetWindowsHookExW(WH_CBT, Refuse, nullptr, ::GetCurrentThreadId())) {
    Refused() = std::move(window_class);
  }
  ~Refusal() { ::UnhookWindowsHookEx(hook_); }
  Refusal(const Refusal&) = delete;
  Refusal& operator=(const Refusal&) = delete;

 private:
  static std::wstring& Refused() {
    static std::wstring refused;
    return refused;
  }
  static LRESULT CALLBACK Refuse(int code, WPARAM window, LPARAM l) {
    std::wstring name(64, L'\0');
    if (code == HCBT_CREATEWND) {
      const int length = ::GetClassNameW(reinterpret_cast<HWND>(window), name.data(), 64);
      name.resize(static_cast<std::size_t>(length));
    }
    return name == Refused() ? 1 : ::CallNextHookEx(nullptr, code, window, l);
  }

  HHOOK hook_;
};

BOOL CALLBACK CountOne(HWND /*window*/, LPARAM count) {
  ++*reinterpret_cast<int*>(count);
  return TRUE;
}

/// The thread's windows that stand in no other one.
int WindowsOfThread() {
  int count = 0;
  ::EnumThreadWindows(::GetCurrentThreadId(), CountOne, reinterpret_cast<LPARAM>(&count));
  return count;
}

TEST_F(Win32DesktopTest, AFormThatGetsNotAllItsWindowsFailsAndLeavesNothing) {
  const HostWindow host(WS_OVERLAPPEDWINDOW | WS_VISIBLE);
  const int windows = WindowsOfThread();
  LargeForm form(desktop_);
  for (const wchar_t* const refused : {L"NimbrelForm", L"NimbrelPane", WC_BUTTONW, WC_TREEVIEWW}) {
    const Refusal refusal(refused);
    EXPECT_THROW(form.ShowModal(), platform::RuntimeError) << FromWide(refused);
    EXPECT_TRUE(host.TakesInput());
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(WindowsOfThread(), windows) << FromWide(refused);
  }
  Then([] { Click(L"Close"); });
  form.ShowModal();
}

TEST_F(Win32DesktopTest, AMessageBoxHasItsTextTitleAndOneButton) {
  Then([] {
    EXPECT_EQ(TitleOfTop(), L"Weather Modeling");
    EXPECT_NE(Inside(Top(), L"one\r\ntwo & three"), nullptr);
    EXPECT_NE(::GetDlgItem(Top(), IDCANCEL) != nullptr, ::GetDlgItem(Top(), IDOK) != nullptr);
    ::PostMessageW(Top(), WM_COMMAND, IDOK, 0);
  });
  EXPECT_EQ(desktop_.MsgBox("one\ntwo & three", "Weather Modeling"), Answer::kOk);
}

TEST_F(Win32DesktopTest, AQuestionIsAnsweredByItsButtons) {
  Then([] { ::PostMessageW(Top(), WM_COMMAND, IDYES, 0); });
  EXPECT_EQ(desktop_.MsgBox("Go on?", "Test", Buttons::kYesNo), Answer::kYes);
  Then([] { ::PostMessageW(Top(), WM_COMMAND, IDNO, 0); });
  EXPECT_EQ(desktop_.MsgBox("Go on?", "Test", Buttons::kYesNo), Answer::kNo);
}

TEST_F(Win32DesktopTest, WhileABoxIsOpenTheFormTakesNoInputAndKeepsItsFocusForLater) {
  LargeForm form(desktop_);
  HWND below = nullptr;
  Then([&below] {
    below = Top();
    Click(L"Ask");
  });
  Then([&] {
    EXPECT_EQ(::IsWindowEnabled(below), 0);
    form.txtDescr.SetText("changed meanwhile");
  });
  Then([&below] {
    EXPECT_NE(Top(), below);
    ::PostMessageW(Top(), WM_COMMAND, IDYES, 0);
  });
  Then([&] {
    EXPECT_EQ(Top(), below);
    EXPECT_EQ(TextOf(::GetFocus()), L"Ask");
    Click(L"Close");
  });
  form.ShowModal();
}

TEST_F(Win32DesktopTest, TheEndOfTheProgramEndsTheFormAndIsPassedOn) {
  SmallForm form(desktop_);
  Then([] { ::PostQuitMessage(7); });
  form.ShowModal();
  EXPECT_FALSE(form.Visible());
  MSG message{};
  ASSERT_NE(::PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), 0);
  EXPECT_EQ(message.wParam, 7U);
}

TEST_F(Win32DesktopTest, WhatNoFormHandlesGoesThroughTheWindowsToTheCaller) {
  SmallForm form(desktop_);
  form.cmdOK.Click = [] { throw 42; };
  Then([] { Click(L"OK"); });
  EXPECT_THROW(form.ShowModal(), int);
  EXPECT_FALSE(form.Visible());
}

TEST_F(Win32DesktopTest, AFileDialogThatIsCancelledGivesNothing) {
  Then([] {
    EXPECT_EQ(TitleOfTop(), L"Import");
    ::PostMessageW(Top(), WM_COMMAND, IDCANCEL, 0);
  });
  EXPECT_EQ(desktop_.PickFile({.title = "Import"}), "");
}

TEST_F(Win32DesktopTest, AFileThatIsChosenComesBackAsItsPath) {
  const std::filesystem::path file =
      std::filesystem::temp_directory_path() / "nimbrel weather.xlsx";
  std::ofstream(file) << "x";
  Then([&file] {
    const HWND combo = ::GetDlgItem(Top(), cmb13);
    ::SetWindowTextW(combo != nullptr ? combo : ::GetDlgItem(Top(), edt1), file.c_str());
    ::PostMessageW(Top(), WM_COMMAND, IDOK, 0);
  });
  EXPECT_EQ(
      desktop_.PickFile(
          {.title = "Import", .filter_name = "xls (*.xls;*.xlsx)", .pattern = "*.xls;*.xlsx"}),
      FromWide(file.native()));
  std::filesystem::remove(file);
}

}  // namespace
}  // namespace nimbrel::toolkit::win32
