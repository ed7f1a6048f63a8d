#pragma once

#include <string>

namespace nimbrel::platform {

/// Looks for names in folders.
class DirectorySearch {
 public:
  virtual ~DirectorySearch() = default;

  /// The name of the first ordinary file that `pattern` finds, without its folder; empty if there
  /// is none. The last part of the path may have "*" for any text and "?" for any character.
  virtual std::string FindFirst(const std::string& pattern) = 0;
};

}  // namespace nimbrel::platform
