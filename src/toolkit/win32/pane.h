#pragma once

#include <windows.h>

#include "toolkit/win32/face_host.h"

namespace nimbrel::toolkit::win32 {

/// The window class of panes, for as long as it lives. A component has to take its classes with it
/// when it goes. There may be several at a time.
class PaneClass {
 public:
  PaneClass();
  ~PaneClass();
  PaneClass(const PaneClass&) = delete;
  PaneClass& operator=(const PaneClass&) = delete;
};

/// A window that controls stand in. It brings what they tell to their faces and paints the ground.
class Pane {
 public:
  /// There must be a PaneClass. The window is visible and belongs to `parent`; `host` must outlive
  /// the pane.
  Pane(FaceHost& host, HWND parent, bool on_page);
  ~Pane();
  Pane(const Pane&) = delete;
  Pane& operator=(const Pane&) = delete;

  HWND Window() const { return window_; }
  /// Whether it is part of a page of a tab strip.
  bool on_page() const { return on_page_; }

 private:
  friend class PaneClass;

  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);
  LRESULT Handle(UINT message, WPARAM w, LPARAM l);
  LRESULT Color(UINT message, HDC context, HWND control);

  FaceHost& host_;
  bool on_page_;
  HWND window_;
};

}  // namespace nimbrel::toolkit::win32
