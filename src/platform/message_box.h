#pragma once

#include <string>

namespace nimbrel::platform {

/// The platform's message box, so that code that tells the user something runs without a window
/// system. Handed in by whoever wires the parts together.
class MessageBox {
 public:
  virtual ~MessageBox() = default;

  /// Shows `text` under `title` with an OK button alone and no icon, and returns when the user has
  /// closed it. Both are UTF-8.
  virtual void Show(const std::string& text, const std::string& title) = 0;
};

}  // namespace nimbrel::platform
