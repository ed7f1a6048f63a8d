#pragma once

#include <cstdint>

#include "platform/file_dialog.h"
#include "toolkit/desktop.h"

namespace nimbrel::dialog {

/// The platform's file dialogs, shown by the desktop that shows the forms.
class DesktopFileDialog final : public platform::FileDialog {
 public:
  /// `desktop` must outlive the object.
  explicit DesktopFileDialog(toolkit::Desktop& desktop) : desktop_(desktop) {}

  std::int32_t GetOpenFileName(platform::FileDialogRecord& record) override;
  std::int32_t GetSaveFileName(platform::FileDialogRecord& record) override;

 private:
  std::int32_t Show(platform::FileDialogRecord& record, bool save);

  toolkit::Desktop& desktop_;
};

}  // namespace nimbrel::dialog
