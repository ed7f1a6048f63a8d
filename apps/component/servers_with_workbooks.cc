#include <cstdint>
#include <optional>
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

/// The user's desktop from the first workbook on: to make the viewer sweeps up a folder, which is
/// nothing for a host to wait for while it makes an object of the component.
class LateViewer final : public spreadsheet::WorkbookViewer {
 public:
  explicit LateViewer(platform::MessageBox& messages) : messages_(messages) {}

  void Show(const spreadsheet::Workbook& workbook, const std::string& path) override {
    if (!viewer_) {
      viewer_.emplace(Start, messages_, "", std::vector<std::string>());
    }
    viewer_->Show(workbook, path);
  }

 private:
  platform::MessageBox& messages_;
  std::optional<spreadsheet::DesktopViewer> viewer_;
};

struct AllServers {
  explicit AllServers(platform::MessageBox& messages) : viewer(messages) {}

  com::ComServers installed;
  LateViewer viewer;
  spreadsheet::ExcelServers workbooks{viewer};
  com::StandInServers servers{installed, workbooks};
};

}  // namespace

platform::AutomationServers& Servers(platform::MessageBox& messages) {
  static AllServers servers(messages);
  return servers.servers;
}

}  // namespace nimbrel::component
