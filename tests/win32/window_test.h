#pragma once

#include <windows.h>

#include <functional>

#include "tests/support/gestures/win32/win32_hands.h"
#include "tests/toolkit/support.h"
#include "toolkit/win32/common_controls.h"
#include "toolkit/win32/win32_text.h"

namespace nimbrel::toolkit::win32 {

/// A form that a test fills with controls and works in its window.
class WindowTest : public ToolkitTest {
 protected:
  /// Opens the form's window; what happened before is left out of the log.
  void InWindow(const std::function<void()>& work) { InWindow(form_, work); }
  void InWindow(Form& form, const std::function<void()>& work) {
    WhileOpen(form, [&] {
      hands_.OnShown(form);
      ClearLog();
      work();
      hands_.OnGone(form);
    });
  }

  FormWindow& window() const { return *hands_.TopWindow(); }
  HWND Drawn(const Control& control) const { return window().WindowOf(control); }
  HWND Line(const Control& control) const { return window().FocusWindowOf(control); }

  static LRESULT Ask(HWND window, UINT message, WPARAM w = 0, LPARAM l = 0) {
    return ::SendMessageW(window, message, w, l);
  }
  /// Posts a message and lets the windows handle it.
  void Post(HWND window, UINT message, WPARAM w = 0, LPARAM l = 0) const {
    ::PostMessageW(window, message, w, l);
    hands_.Pump();
  }
  void Press(WPARAM code) const { hands_.PressKeyCode(code); }
  void PressHolding(int held, WPARAM code) const {
    gestures::Win32Hands::Holding(held, [&] { Press(code); });
  }
  void Type(const std::wstring& text) const { hands_.TypeCharacters(text); }

  static RECT BoundsOf(HWND window) {
    RECT bounds{};
    ::GetWindowRect(window, &bounds);
    return bounds;
  }
  static int WidthOf(const RECT& rect) { return rect.right - rect.left; }
  static int HeightOf(const RECT& rect) { return rect.bottom - rect.top; }

  /// Tells the window of a screen of another resolution, as Windows does.
  void MoveToScreenOf(UINT dpi) const {
    const RECT bounds = BoundsOf(window().Window());
    const auto scaled = [&](int size) {
      return ::MulDiv(size, static_cast<int>(dpi), static_cast<int>(window().look().dpi()));
    };
    RECT wanted{0, 0, scaled(WidthOf(bounds)), scaled(HeightOf(bounds))};
    Ask(window().Window(), WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&wanted));
    hands_.Pump();
  }

  gestures::Win32Hands hands_;
};

}  // namespace nimbrel::toolkit::win32
