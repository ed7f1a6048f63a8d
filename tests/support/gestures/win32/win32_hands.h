#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <vector>

#include "tests/support/gestures/hands.h"
#include "toolkit/win32/form_window.h"
#include "toolkit/win32/screen.h"

namespace nimbrel::gestures {

/// Hands that work the face for Windows: they open its windows and make every gesture by messages
/// of the mouse and the keyboard, which they post to the window that the mouse would hit or that
/// has the focus, and then let the windows handle. A place that another window covers raises
/// std::runtime_error, and so does a form without the keyboard's focus.
class Win32Hands final : public Hands {
 public:
  /// Runs after each gesture that was made, for each window that is open.
  std::function<void(const toolkit::win32::FormWindow&)> AfterEach;

  void OnShown(toolkit::Form& form) override;
  void OnGone(toolkit::Form& form) override;

  toolkit::GestureResult Type(toolkit::EditControl& box, const std::string& text) override;
  toolkit::GestureResult Leave(toolkit::Form& form) override;
  toolkit::GestureResult PressKey(toolkit::Control& control, toolkit::Key key) override;
  toolkit::GestureResult Click(toolkit::Control& control) override;
  toolkit::GestureResult Pick(toolkit::ListBox& list, std::int32_t index) override;
  toolkit::GestureResult Pick(toolkit::ComboBox& box, std::int32_t index) override;
  toolkit::GestureResult DoubleClick(toolkit::ListBox& list, std::int32_t index) override;
  toolkit::GestureResult ClickRow(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult DoubleClickRow(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult ClickHeader(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult ToggleCheck(toolkit::ListView& list, std::int32_t index) override;
  toolkit::GestureResult PickTab(toolkit::TabStrip& tabs, std::int32_t index) override;
  toolkit::GestureResult ClickNode(toolkit::TreeView& tree, const toolkit::NodeRef& node) override;
  toolkit::GestureResult Close(toolkit::Form& form) override;

  /// The window of the form on top; null when none is open.
  toolkit::win32::FormWindow* TopWindow() const;
  /// Lets the windows handle all messages that wait.
  void Pump() const;

  // The parts of gestures, for tests of the windows themselves.

  /// A click, or two, at a place of a window, in its own pixels.
  void ClickAt(HWND window, POINT place, bool twice = false) const;
  /// A key goes to whatever has the focus, or to `window`.
  void PressKeyCode(WPARAM code, HWND window = nullptr) const;
  void TypeCharacters(const std::wstring& text) const;
  /// Holds a key such as VK_CONTROL down while `action` runs.
  static void Holding(int code, const std::function<void()>& action);
  /// Where a row is hit on its text, or on its check box; from 0.
  static POINT PlaceOnRow(HWND list, int row, bool on_check);
  /// Where a node is hit on its text, or on its sign.
  static POINT PlaceOnNode(HWND tree, const toolkit::NodeRef& node, bool on_sign);

 private:
  toolkit::GestureResult Made();
  toolkit::win32::FormWindow& Window(const toolkit::Form& form) const;
  HWND WindowOf(const toolkit::Control& control) const;
  HWND FocusWindowOf(const toolkit::Control& control) const;
  /// The window to which the keys of a form go.
  HWND Focused(const toolkit::Form& form) const;
  void ClickRowOf(const toolkit::ListView& list, std::int32_t index, bool on_check, bool twice);
  void ClickEntryOf(const toolkit::ListBox& list, std::int32_t index, bool twice);
  void ClickOnControl(const toolkit::Control& control);

  toolkit::win32::PerMonitorDpi dpi_;
  toolkit::win32::VisualStyles styles_;
  std::vector<std::unique_ptr<toolkit::win32::FormWindow>> windows_;
};

}  // namespace nimbrel::gestures
