#pragma once

#include <string>
#include <vector>

#include "toolkit/desktop.h"

namespace nimbrel::toolkit::qt {

class FormWindow;

/// Shows forms in windows of Qt, message boxes and file dialogs in the platform's own.
///
/// There must be a QApplication for as long as the desktop is used; its event loop need not run.
class QtDesktop final : public Desktop {
 protected:
  void RunModal(Form& form) override;
  Answer ShowMessage(const Message& message) override;
  std::string ShowFileDialog(const FileRequest& request) override;

 private:
  /// The window over which the next one opens; null for none.
  FormWindow* TopWindow() const { return windows_.empty() ? nullptr : windows_.back(); }

  std::vector<FormWindow*> windows_;
};

}  // namespace nimbrel::toolkit::qt
