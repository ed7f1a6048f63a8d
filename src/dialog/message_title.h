#pragma once

namespace nimbrel::dialog {

/// The title of every message box of the dialogs.
inline constexpr const char* kMessageTitle = "Weather Modeling";

}  // namespace nimbrel::dialog
