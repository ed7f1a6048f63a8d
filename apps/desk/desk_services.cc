#include "desk/desk_services.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <system_error>
#include <utility>
#include <vector>

#include "dialog/choose_sheet.h"
#include "dialog/frm_weather.h"
#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"
#include "host/cls_nimbrel.h"
#include "platform/ref.h"

namespace nimbrel::desk {
namespace {

bool StartViewer(const std::vector<std::string>& command) {
  constexpr std::int32_t kLastFailure = 32;
  return platform::StartDetached(command) > kLastFailure;
}

}  // namespace

OwnWindows::OwnWindows(std::function<std::int32_t()> active_window)
    : active_window_(std::move(active_window)) {}

std::int32_t OwnWindows::GetActiveWindow() {
  return active_window_ ? active_window_() : 0;
}

std::int32_t OwnWindows::GetWindowLong(std::int32_t /*window*/, std::int32_t /*index*/) {
  return 0;
}

std::int32_t OwnWindows::GetWindowThread(std::int32_t /*window*/) {
  return ::gettid();
}

LocalFileDialog::LocalFileDialog(platform::FileDialog& dialog, std::string host_folder)
    : dialog_(dialog), host_folder_(std::move(host_folder)) {}

std::int32_t LocalFileDialog::GetOpenFileName(platform::FileDialogRecord& record) {
  Localise(record);
  return dialog_.GetOpenFileName(record);
}

std::int32_t LocalFileDialog::GetSaveFileName(platform::FileDialogRecord& record) {
  Localise(record);
  return dialog_.GetSaveFileName(record);
}

void LocalFileDialog::Localise(platform::FileDialogRecord& record) const {
  std::string& folder = record.lpstrInitialDir;
  if (folder.starts_with(host_folder_ + "\\")) {
    std::replace(folder.begin() + static_cast<std::ptrdiff_t>(host_folder_.size()), folder.end(),
                 '\\', '/');
  }
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) {
    folder.clear();
  }
}

DeskServices::DeskServices(toolkit::Desktop& desktop, const std::string& host_folder,
                           std::function<std::int32_t()> active_window)
    : settings_(platform::UserSettingsFile([](const char* name) { return std::getenv(name); })),
      process_start_(std::map<std::string, std::string>{
          {host_folder + "\\Progress.exe", host_folder + "/nimbrel-progress"}}),
      windows_(std::move(active_window)),
      desktop_file_dialog_(desktop),
      file_dialog_(desktop_file_dialog_, host_folder),
      help_({host_folder + "/help", host_folder + "/../share/nimbrel/help"}, process_start_),
      workbook_viewer_(StartViewer, desktop),
      workbook_servers_(workbook_viewer_) {
  modToolBox::Wire({&settings_, &process_start_, &windows_, &file_dialog_, &help_,
                    &directory_search_, &desktop});
  modExcel::Wire({&workbook_servers_, &desktop});
  modImportExport::Wire(
      {&desktop, [&desktop](const std::vector<modImportExport::ListedSheet>& sheets,
                            const std::string& DataType) {
         return dialog::ChooseSheet(desktop, sheets, DataType);
       }});
}

DeskServices::~DeskServices() {
  modImportExport::Wire({});
  modExcel::Wire({});
  modToolBox::Wire({});
}

std::function<void()> WeatherDialogOn(toolkit::Desktop& desktop) {
  host::Seams seams;
  seams.message_box = &desktop;
  seams.ShowWeatherDialog = [&desktop] { dialog::ShowWeatherDialog(desktop); };
  return [entry = platform::MakeRef<host::clsNimbrel>(std::move(seams))] { entry->Main(); };
}

}  // namespace nimbrel::desk
