#include "platform/posix/folder_search.h"

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace nimbrel::platform {
namespace {

namespace fs = std::filesystem;

/// Bytes of the character that a UTF-8 text begins with.
std::size_t CharacterLength(std::string_view text) {
  std::size_t length = 1;
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
    ++length;
  }
  return length;
}

bool Matches(std::string_view name, std::string_view pattern) {
  // After a star: where the pattern and the name go on if the star takes one character more.
  std::string_view pattern_again;
  std::string_view name_again;
  bool has_star = false;
  while (!name.empty()) {
    if (pattern.starts_with('*')) {
      pattern.remove_prefix(1);
      pattern_again = pattern;
      name_again = name;
      has_star = true;
    } else if (pattern.starts_with('?')) {
      pattern.remove_prefix(1);
      name.remove_prefix(CharacterLength(name));
    } else if (!pattern.empty() && pattern.front() == name.front()) {
      pattern.remove_prefix(1);
      name.remove_prefix(1);
    } else if (has_star) {
      name_again.remove_prefix(CharacterLength(name_again));
      name = name_again;
      pattern = pattern_again;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*') == std::string_view::npos;
}

bool IsFile(const fs::path& path) {
  std::error_code error;
  return fs::is_regular_file(path, error);
}

}  // namespace

std::string FolderSearch::FindFirst(const std::string& pattern) {
  const fs::path path(pattern);
  const std::string wanted = path.filename().string();
  if (IsFile(path)) {
    return wanted;
  }
  if (wanted.find_first_of("*?") == std::string::npos) {
    return "";
  }
  const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
  std::string first;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    const bool hidden = name.starts_with('.') && !wanted.starts_with('.');
    if (!hidden && (first.empty() || name < first) && Matches(name, wanted) &&
        IsFile(entry->path())) {
      first = name;
    }
  }
  return first;
}

}  // namespace nimbrel::platform
