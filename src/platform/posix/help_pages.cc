#include "platform/posix/help_pages.h"

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace nimbrel::platform {

HelpPages::HelpPages(std::vector<std::string> folders, ProcessStart& opener)
    : folders_(std::move(folders)), opener_(opener) {}

void HelpPages::HtmlHelp(std::int32_t owner, const std::string& file, std::int32_t /*command*/,
                         std::int32_t /*data*/) {
  constexpr std::string_view kPageMark = "::/";
  const std::size_t mark = file.rfind(kPageMark);
  const std::string page =
      mark == std::string::npos ? std::string() : file.substr(mark + kPageMark.size());
  if (page.empty() || page.find('/') != std::string::npos) {
    return;
  }
  for (const std::string& folder : folders_) {
    const std::filesystem::path path = std::filesystem::path(folder) / page;
    std::error_code error;
    if (std::filesystem::is_regular_file(path, error)) {
      opener_.ShellExecute(owner, "open", path.string(), "", "", 0);
      return;
    }
  }
}

}  // namespace nimbrel::platform
