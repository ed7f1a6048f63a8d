#pragma once

#include <windows.h>

#include <string>

namespace nimbrel::toolkit::win32 {

/// Dots per inch at which pixels are those of 100%.
constexpr UINT kUsualDpi = 96;

/// While it lives, windows that this thread makes are told of the resolution of their own screen
/// and are not stretched by the system, where Windows can do that. To be used on one thread, the
/// last one first.
class PerMonitorDpi {
 public:
  PerMonitorDpi();
  ~PerMonitorDpi();
  PerMonitorDpi(const PerMonitorDpi&) = delete;
  PerMonitorDpi& operator=(const PerMonitorDpi&) = delete;

 private:
  HANDLE before_ = nullptr;
};

/// While it lives, controls that this thread makes are drawn in the style of the desktop, if the
/// program or component has the resource for it. To be used as PerMonitorDpi.
class VisualStyles {
 public:
  VisualStyles();
  ~VisualStyles();
  VisualStyles(const VisualStyles&) = delete;
  VisualStyles& operator=(const VisualStyles&) = delete;

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
};

/// The program or component that this code is part of.
HINSTANCE OwnModule();

/// A window that has just been asked for. Raises error 1004 if the system has not made it (null).
HWND Made(HWND window);

/// The resolution of the screen that the window is on.
UINT DpiOf(HWND window);
/// The size of a window around a client area.
SIZE WindowSize(SIZE client, DWORD style, DWORD ex_style, UINT dpi);
/// A size of the system, SM_..., at a resolution.
int SystemMetric(int index, UINT dpi);

/// The desktop's font for messages at a resolution, and what it measures, in pixels.
class Look {
 public:
  explicit Look(UINT dpi);
  ~Look();
  Look(const Look&) = delete;
  Look& operator=(const Look&) = delete;

  UINT dpi() const { return dpi_; }
  HFONT font() const { return font_; }
  /// The height of a line, and the width of a usual character.
  int line() const { return line_; }
  int character() const { return character_; }
  /// The pixels that are so many at 100%.
  int Pixels(int pixels) const { return ::MulDiv(pixels, static_cast<int>(dpi_), kUsualDpi); }
  /// The width of a text on one line.
  int TextWidth(const std::wstring& text) const;
  /// The height of a text that is broken between its words.
  int TextHeight(const std::wstring& text, int width) const;

 private:
  UINT dpi_;
  HFONT font_;
  int line_ = 0;
  int character_ = 0;
};

}  // namespace nimbrel::toolkit::win32
