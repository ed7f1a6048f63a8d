#pragma once

#include <string>

#include "platform/directory_search.h"

namespace nimbrel::platform {

/// Looks for files by the folders of the file system. A file that has just the name asked for is
/// found first, also where that has "*" or "?" in it. Of several the first by name is given. Names
/// are told apart by case; files whose names begin with a dot are found only by a pattern that does
/// so too. What cannot be looked into has no files.
class FolderSearch final : public DirectorySearch {
 public:
  std::string FindFirst(const std::string& pattern) override;
};

}  // namespace nimbrel::platform
