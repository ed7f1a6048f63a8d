#include "tests/tools/quiet_services.h"

#include <filesystem>
#include <system_error>
#include <vector>

#include "desktop/mod_tool_box.h"
#include "dialog/choose_sheet.h"
#include "exchange/mod_excel.h"
#include "exchange/mod_import_export.h"

namespace nimbrel::gestures {
namespace {

constexpr std::int32_t kStarted = 42;

std::string NameOf(std::string_view application, std::string_view section, std::string_view key) {
  std::string name(application);
  name.append("/").append(section).append("/").append(key);
  return name;
}

}  // namespace

void BriefSettings::Save(std::string_view application, std::string_view section,
                         std::string_view key, std::string_view value) {
  values_[NameOf(application, section, key)] = value;
}

std::string BriefSettings::Get(std::string_view application, std::string_view section,
                               std::string_view key, std::string_view default_value) const {
  const auto found = values_.find(NameOf(application, section, key));
  return found == values_.end() ? std::string(default_value) : found->second;
}

std::int32_t EmptyDesk::ShellExecute(std::int32_t /*owner*/, const std::string& /*verb*/,
                                     const std::string& /*file*/, const std::string& /*parameters*/,
                                     const std::string& /*directory*/, std::int32_t /*show*/) {
  return kStarted;
}

std::int32_t EmptyDesk::GetWindowLong(std::int32_t /*window*/, std::int32_t /*index*/) {
  return 0;
}

std::int32_t EmptyDesk::GetWindowThread(std::int32_t /*window*/) {
  return 0;
}

void EmptyDesk::HtmlHelp(std::int32_t /*owner*/, const std::string& /*file*/,
                         std::int32_t /*command*/, std::int32_t /*data*/) {}

std::string ExactSearch::FindFirst(const std::string& pattern) {
  const std::filesystem::path path(pattern);
  std::error_code error;
  return std::filesystem::is_regular_file(path, error) ? path.filename().string() : std::string();
}

QuietServices::QuietServices(toolkit::Desktop& desktop, platform::AutomationServers& servers)
    : file_dialog_(desktop) {
  modToolBox::Wire({.settings = &settings_,
                    .process_start = &desk_,
                    .windows = &desk_,
                    .file_dialog = &file_dialog_,
                    .help = &desk_,
                    .directory_search = &search_,
                    .message_box = &desktop});
  modExcel::Wire({.servers = &servers, .message_box = &desktop, .support_address = {}});
  modImportExport::Wire(
      {.message_box = &desktop,
       .choose_sheet = [&desktop](const std::vector<modImportExport::ListedSheet>& sheets,
                                  const std::string& DataType) {
         return dialog::ChooseSheet(desktop, sheets, DataType);
       }});
}

QuietServices::~QuietServices() {
  modImportExport::Wire({});
  modExcel::Wire({});
  modToolBox::Wire({});
}

}  // namespace nimbrel::gestures
