#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace nimbrel::desk {

/// A file as it is at one moment, to be compared with what it is later.
class OpenedFile {
 public:
  /// Reads the file now. A file that cannot be read has no content to compare with.
  explicit OpenedFile(std::string path);

  const std::string& path() const { return path_; }
  /// Whether the file has other bytes now, or can no longer be read. A file that is gone has not
  /// changed: there is nothing of another's in it to be overwritten.
  bool HasChanged() const;

 private:
  std::string path_;
  std::optional<std::uint64_t> content_;  // a hash of the bytes
};

}  // namespace nimbrel::desk
