#pragma once

#include "toolkit/edit.h"

namespace nimbrel::dialog {

/// Puts the text of the box in upper case and cuts it to 15 characters, then tells whether a
/// calendar of the active plan can be given that name: it is not empty and no calendar has it, case
/// included. If not, a message box tells the user why. Raises what the host raises.
bool TakeNewCalendarName(toolkit::TextBox& txtCalName);

}  // namespace nimbrel::dialog
