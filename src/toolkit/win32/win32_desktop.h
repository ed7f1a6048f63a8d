#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "toolkit/desktop.h"

namespace nimbrel::toolkit::win32 {

class FormWindow;

/// Shows forms in windows of their own, message boxes and file dialogs in those of Windows. To be
/// used on one thread; while a form is open the thread's messages are handled here.
class Win32Desktop final : public Desktop {
 public:
  /// `owner` is the window over which the first one opens, and which takes no input meanwhile; null
  /// for none: then none of the thread's windows takes input meanwhile.
  explicit Win32Desktop(HWND owner = nullptr) : owner_(owner) {}

 protected:
  void RunModal(Form& form) override;
  Answer ShowMessage(const Message& message) override;
  std::string ShowFileDialog(const FileRequest& request) override;

 private:
  /// The window over which the next one opens; null for none.
  HWND TopWindow() const;

  HWND owner_;
  std::vector<FormWindow*> windows_;
};

}  // namespace nimbrel::toolkit::win32
