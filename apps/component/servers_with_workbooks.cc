#include <cstdint>
#include <string>
#include <vector>

#include "com/dispatch_object.h"
#include "com/stand_in_servers.h"
#include "platform/win/windows_services.h"
#include "servers.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_viewer.h"

namespace nimbrel::component {
namespace {

/// Starts a program, or opens a file in the program that it belongs to. The arguments have no
/// quotation marks: they are options and paths.
bool Start(const std::vector<std::string>& command) {
  constexpr std::int32_t kLastFailure = 32;
  constexpr std::int32_t kShowNormal = 1;
  std::string arguments;
  for (std::size_t i = 1; i < command.size(); ++i) {
    arguments += (i == 1 ? "\"" : " \"") + command[i] + "\"";
  }
  return platform::WindowsProcessStart().ShellExecute(0, "open", command.front(), arguments, "",
                                                      kShowNormal) > kLastFailure;
}

struct AllServers {
  explicit AllServers(platform::MessageBox& messages) : viewer(Start, messages, {}, {}) {}

  com::ComServers installed;
  spreadsheet::DesktopViewer viewer;
  spreadsheet::ExcelServers workbooks{viewer};
  com::StandInServers servers{installed, workbooks};
};

}  // namespace

platform::AutomationServers& Servers(platform::MessageBox& messages) {
  static AllServers servers(messages);
  return servers.servers;
}

}  // namespace nimbrel::component
