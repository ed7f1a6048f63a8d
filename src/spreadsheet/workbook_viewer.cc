#include "spreadsheet/workbook_viewer.h"

#include <stdlib.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/runtime_error.h"
#include "spreadsheet/xlsx_writer.h"

namespace nimbrel::spreadsheet {

void WorkbookSaver::Show(const Workbook& workbook, const std::string&) {
  WriteXlsx(workbook, path_);
}

DesktopViewer::DesktopViewer(StartProcess start, platform::MessageBox& messages, std::string folder)
    : start_(std::move(start)), messages_(messages), folder_(std::move(folder)) {}

void DesktopViewer::Show(const Workbook& workbook, const std::string& path) {
  // A file that the user has opened is shown as itself, what is new as an unsaved document.
  const bool is_new = path.empty();
  const std::string file = is_new ? WriteTemporary(workbook) : path;
  const std::vector<std::string> office = is_new ? std::vector<std::string>{"soffice", "-n", file}
                                                 : std::vector<std::string>{"soffice", file};
  if (!start_(office) && !start_({"xdg-open", file})) {
    messages_.Show("There is no program to open the workbook with. It is in this file:\r\n" + file,
                   "Weather Modeling");
  }
}

std::string DesktopViewer::WriteTemporary(const Workbook& workbook) const {
  std::error_code error;
  const std::filesystem::path parent = folder_.empty() ? std::filesystem::temp_directory_path(error)
                                                       : std::filesystem::path(folder_);
  std::string folder = (parent / "nimbrel-XXXXXX").string();
  if (error || mkdtemp(folder.data()) == nullptr) {
    const auto reason = error ? error : std::error_code(errno, std::generic_category());
    throw platform::RuntimeError(
        platform::kApplicationDefined,
        "No folder for the workbook can be made: " + folder + ": " + reason.message());
  }
  const std::string file = (std::filesystem::path(folder) / "Weather.xlsx").string();
  try {
    WriteXlsx(workbook, file);
  } catch (...) {
    std::filesystem::remove(folder, error);
    throw;
  }
  return file;
}

}  // namespace nimbrel::spreadsheet
