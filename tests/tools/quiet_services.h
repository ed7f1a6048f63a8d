#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "dialog/desktop_file_dialog.h"
#include "platform/automation.h"
#include "platform/directory_search.h"
#include "platform/help_window.h"
#include "platform/process_start.h"
#include "platform/settings_store.h"
#include "platform/window_system.h"
#include "toolkit/desktop.h"

namespace nimbrel::gestures {

/// Settings that are forgotten with the object.
class BriefSettings final : public platform::SettingsStore {
 public:
  void Save(std::string_view application, std::string_view section, std::string_view key,
            std::string_view value) override;
  std::string Get(std::string_view application, std::string_view section, std::string_view key,
                  std::string_view default_value) const override;

 private:
  std::map<std::string, std::string> values_;
};

/// A desktop on which nothing is started and nothing stands but the dialogs.
class EmptyDesk final : public platform::ProcessStart,
                        public platform::WindowSystem,
                        public platform::HelpWindow {
 public:
  std::int32_t ShellExecute(std::int32_t owner, const std::string& verb, const std::string& file,
                            const std::string& parameters, const std::string& directory,
                            std::int32_t show) override;
  std::int32_t GetActiveWindow() override { return 0; }
  std::int32_t GetWindowLong(std::int32_t window, std::int32_t index) override;
  std::int32_t GetWindowThread(std::int32_t window) override;
  void HtmlHelp(std::int32_t owner, const std::string& file, std::int32_t command,
                std::int32_t data) override;
};

/// Finds files by their exact path.
class ExactSearch final : public platform::DirectorySearch {
 public:
  std::string FindFirst(const std::string& pattern) override;
};

/// What the add-in takes from the desktop, with nothing of the user's: wired for as long as the
/// object lives, one at a time. Message boxes and file dialogs are those of `desktop`, and Excel is
/// what `servers` makes of its name.
class QuietServices {
 public:
  /// Both must outlive the object.
  QuietServices(toolkit::Desktop& desktop, platform::AutomationServers& servers);
  ~QuietServices();
  QuietServices(const QuietServices&) = delete;
  QuietServices& operator=(const QuietServices&) = delete;

 private:
  BriefSettings settings_;
  EmptyDesk desk_;
  ExactSearch search_;
  dialog::DesktopFileDialog file_dialog_;
};

}  // namespace nimbrel::gestures
