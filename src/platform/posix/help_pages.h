#pragma once

#include <string>
#include <vector>

#include "platform/help_window.h"
#include "platform/process_start.h"

namespace nimbrel::platform {

/// Shows help as pages of their own, in the program that the system opens such pages with.
class HelpPages final : public HelpWindow {
 public:
  /// The pages lie in the first of `folders` that has the one asked for. `opener` must outlive
  /// this.
  HelpPages(std::vector<std::string> folders, ProcessStart& opener);

  /// Only the page counts, whose name must be one of a file without a folder; the help file's own
  /// name means nothing here.
  void HtmlHelp(std::int32_t owner, const std::string& file, std::int32_t command,
                std::int32_t data) override;

 private:
  std::vector<std::string> folders_;
  ProcessStart& opener_;
};

}  // namespace nimbrel::platform
