#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "toolkit/changes.h"
#include "toolkit/control.h"
#include "toolkit/twips_bands.h"
#include "toolkit/win32/face_host.h"

namespace nimbrel::toolkit::win32 {

/// The key of the toolkit that has this code and is pressed alone or with Shift; nothing for any
/// other.
std::optional<Key> KeyOf(WPARAM code);
/// Whether a key is held down as the message that is being handled came.
bool IsHeld(int code);

/// Draws one control with a control of Windows and forwards what the user does with it. It keeps no
/// state of the control and has no rules: a click or key goes to the User... operation of the
/// control, and the window is then brought to what came of it.
///
/// Both the control and the host must outlive the face. The windows belong to the pane.
class ControlFace : public Placed {
 public:
  ~ControlFace() override;
  ControlFace(const ControlFace&) = delete;
  ControlFace& operator=(const ControlFace&) = delete;

  Control& GetControl() const { return control_; }
  /// The window that has the control's place.
  HWND Window() const { return window_; }
  /// The window that has the keyboard's focus for it.
  virtual HWND FocusWindow() const { return window_; }

  /// Brings the window to the control's state.
  void Refresh(const Changes& changes);
  /// Whether it can be seen and used depends on what it stands in, too.
  void RefreshState() const;
  /// Takes over the host's font and resolution.
  virtual void TakeLook();
  /// Takes its place in the pane, in pixels.
  virtual void TakeBounds(const RECT& bounds) const;

  const Control& PlacedControl() const override { return control_; }
  bool Stretches() const override { return false; }
  bool FillsHeight() const override { return Stretches(); }

  /// What a window of it tells its pane; an answer ends it.
  virtual void OnCommand(int /*code*/) {}
  virtual std::optional<LRESULT> OnNotify(NMHDR& /*header*/) { return std::nullopt; }

 protected:
  ControlFace(Control& control, FaceHost& host) : control_(control), host_(host) {}

  /// Makes the window that has the control's place.
  void Make(const wchar_t* window_class, DWORD style, DWORD ex_style, HWND pane);
  /// Has the messages of a window of this face go through it first.
  void Watch(HWND window);
  /// The part of Refresh that depends on the kind of control.
  virtual void Paint(const Changes& changes) = 0;

  /// Each gives what the message ends with, or nothing if the window is to have it, too.
  virtual std::optional<LRESULT> OnMessage(HWND window, UINT message, WPARAM w, LPARAM l);
  virtual bool OnKeyDown(WPARAM code, bool repeated);
  /// The window's own way with a message.
  static LRESULT Own(HWND window, UINT message, WPARAM w, LPARAM l);

  /// Makes a gesture and shows what came of it.
  template <class Gesture>
  void Do(const Gesture& gesture) {
    gesture();
    host_.AfterGesture();
  }
  FaceHost& host() const { return host_; }
  const Look& look() const { return host_.look(); }

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);
  LRESULT Handle(HWND window, UINT message, WPARAM w, LPARAM l);
  void OnFocus(HWND window);

  Control& control_;
  FaceHost& host_;
  HWND window_ = nullptr;
};

}  // namespace nimbrel::toolkit::win32
