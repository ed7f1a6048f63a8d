#pragma once

#include <windows.h>

#include <exception>
#include <functional>

#include "toolkit/win32/screen.h"

namespace nimbrel::toolkit::win32 {

class ControlFace;

/// The window that faces stand in.
class FaceHost {
 public:
  /// Shows at once what a gesture has changed, and puts the keyboard's focus where the toolkit has
  /// it.
  virtual void AfterGesture() = 0;
  /// Runs `action` when the message that is being handled has been.
  virtual void Defer(std::function<void()> action) = 0;
  /// Keeps an error that cannot go through the functions of Windows for whoever runs the form.
  virtual void Keep(std::exception_ptr error) noexcept = 0;

  /// The font and the resolution of the window.
  virtual const Look& look() const = 0;
  /// What is behind controls: of the form itself, and of the pages of a tab strip.
  virtual COLORREF Ground(bool on_page) const = 0;
  virtual HBRUSH GroundBrush(bool on_page) const = 0;

  /// Shows the next page, or the one before, of the tab strip in which `inside` stands or which it
  /// is. False if there is none.
  virtual bool TurnPage(HWND inside, bool back) = 0;

 protected:
  ~FaceHost() = default;
};

/// The face that a window of it tells of, or null.
ControlFace* FaceOf(HWND window);

}  // namespace nimbrel::toolkit::win32
