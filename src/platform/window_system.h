#pragma once

#include <cstdint>

namespace nimbrel::platform {

/// What the add-in asks of the window system about windows. A handle of 0 is no window.
class WindowSystem {
 public:
  virtual ~WindowSystem() = default;

  /// The window of this thread that the user works in, 0 if there is none.
  virtual std::int32_t GetActiveWindow() = 0;
  /// A number that a window was made with; index -6 is the instance of the program that made it. 0
  /// for what is no window.
  virtual std::int32_t GetWindowLong(std::int32_t window, std::int32_t index) = 0;
  /// The thread that owns a window, as a number of the platform; 0 for what is no window.
  virtual std::int32_t GetWindowThread(std::int32_t window) = 0;
};

}  // namespace nimbrel::platform
