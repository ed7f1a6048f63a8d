#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "desktop/mod_tool_box.h"
#include "dialog/desktop_file_dialog.h"
#include "platform/posix/detached_process_start.h"
#include "platform/posix/folder_search.h"
#include "platform/posix/help_pages.h"
#include "platform/posix/ini_settings_store.h"
#include "platform/window_system.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_viewer.h"
#include "toolkit/desktop.h"

namespace nimbrel::desk {

/// Windows where the host is this process: all are of the one thread that shows them.
class OwnWindows final : public platform::WindowSystem {
 public:
  /// `active_window` gives the handle of the window that the user works in; empty: there is none.
  explicit OwnWindows(std::function<std::int32_t()> active_window);

  std::int32_t GetActiveWindow() override;
  /// Always 0: windows here know no program that made them.
  std::int32_t GetWindowLong(std::int32_t window, std::int32_t index) override;
  /// The thread that calls, also for window 0, which a host without one gives.
  std::int32_t GetWindowThread(std::int32_t window) override;

 private:
  std::function<std::int32_t()> active_window_;
};

/// File dialogs for folders that are named as the add-in names them, with a backslash behind the
/// host's folder. A folder that is not there is none: the dialog then starts where it likes.
class LocalFileDialog final : public platform::FileDialog {
 public:
  /// `dialog` must outlive the object.
  LocalFileDialog(platform::FileDialog& dialog, std::string host_folder);

  std::int32_t GetOpenFileName(platform::FileDialogRecord& record) override;
  std::int32_t GetSaveFileName(platform::FileDialogRecord& record) override;

 private:
  void Localise(platform::FileDialogRecord& record) const;

  platform::FileDialog& dialog_;
  std::string host_folder_;
};

/// What the add-in takes from the desktop and from workbooks, where no Windows is; wired for as
/// long as the object lives, and one at a time.
class DeskServices {
 public:
  /// `desktop` must outlive the object. `host_folder` is the folder of the programs, without a
  /// closing separator.
  DeskServices(toolkit::Desktop& desktop, const std::string& host_folder,
               std::function<std::int32_t()> active_window);
  ~DeskServices();
  DeskServices(const DeskServices&) = delete;
  DeskServices& operator=(const DeskServices&) = delete;

 private:
  platform::IniSettingsStore settings_;
  platform::DetachedProcessStart process_start_;
  OwnWindows windows_;
  dialog::DesktopFileDialog desktop_file_dialog_;
  LocalFileDialog file_dialog_;
  platform::HelpPages help_;
  platform::FolderSearch directory_search_;
  spreadsheet::DesktopViewer workbook_viewer_;
  spreadsheet::ExcelServers workbook_servers_;
};

/// What opens the weather dialog for the active plan, as the host's user would: `desktop` shows it
/// and must outlive the function.
std::function<void()> WeatherDialogOn(toolkit::Desktop& desktop);

}  // namespace nimbrel::desk
