#pragma once

#include <cstdint>
#include <string>

#include "platform/directory_search.h"
#include "platform/file_dialog.h"
#include "platform/help_window.h"
#include "platform/process_start.h"
#include "platform/window_system.h"

/// What the add-in asks of the platform, by the functions of Windows that are named after it. The
/// functions are the narrow ones: a character that the system's code page does not have gets lost.
namespace nimbrel::platform {

class WindowsProcessStart final : public ProcessStart {
 public:
  std::int32_t ShellExecute(std::int32_t owner, const std::string& verb, const std::string& file,
                            const std::string& parameters, const std::string& directory,
                            std::int32_t show) override;
};

class WindowsWindows final : public WindowSystem {
 public:
  std::int32_t GetActiveWindow() override;
  /// 0 for index -6 in 64-bit Windows, which has no such number of 32 bits.
  std::int32_t GetWindowLong(std::int32_t window, std::int32_t index) override;
  std::int32_t GetWindowThread(std::int32_t window) override;
};

class WindowsFileDialog final : public FileDialog {
 public:
  std::int32_t GetOpenFileName(FileDialogRecord& record) override;
  std::int32_t GetSaveFileName(FileDialogRecord& record) override;
};

/// The viewer of compiled help, which is asked for when it is first needed; where it is missing
/// nothing is shown.
class WindowsHelp final : public HelpWindow {
 public:
  void HtmlHelp(std::int32_t owner, const std::string& file, std::int32_t command,
                std::int32_t data) override;
};

/// Finds files without special attributes: neither folders nor hidden or system files.
class WindowsDirectorySearch final : public DirectorySearch {
 public:
  std::string FindFirst(const std::string& pattern) override;
};

}  // namespace nimbrel::platform
