#pragma once

#include <cstdint>
#include <string>

namespace nimbrel::platform {

/// The window in which help is read. It stands by itself and is never closed from here.
class HelpWindow {
 public:
  virtual ~HelpWindow() = default;

  /// Shows a page of a help file: `file` is the file's path, "::/" and the page's name. Command 0
  /// shows the page. What cannot be shown goes unnoticed.
  virtual void HtmlHelp(std::int32_t owner, const std::string& file, std::int32_t command,
                        std::int32_t data) = 0;
};

}  // namespace nimbrel::platform
