#pragma once

#include "platform/automation.h"
#include "platform/message_box.h"

namespace nimbrel::component {

/// The programs that the add-in works with: Excel where it is installed. Where it is not, the
/// workbook object, if the component was built with the libraries of workbooks. What it makes stays
/// for as long as the DLL is loaded; the message box must, too.
platform::AutomationServers& Servers(platform::MessageBox& messages);

}  // namespace nimbrel::component
