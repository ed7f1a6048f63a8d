#include "desk/opened_file.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

namespace nimbrel::desk {
namespace {

/// FNV-1a of the file's bytes.
std::optional<std::uint64_t> ContentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::uint64_t hash = 0xcbf29ce484222325U;
  std::array<char, 65536> bytes{};
  while (file) {
    file.read(bytes.data(), bytes.size());
    for (std::streamsize i = 0; i < file.gcount(); ++i) {
      hash ^= static_cast<unsigned char>(bytes[static_cast<std::size_t>(i)]);
      hash *= 0x100000001b3U;
    }
  }
  return file.eof() ? std::optional(hash) : std::nullopt;
}

}  // namespace

OpenedFile::OpenedFile(std::string path) : path_(std::move(path)), content_(ContentOf(path_)) {}

bool OpenedFile::HasChanged() const {
  std::error_code error;
  return std::filesystem::exists(path_, error) && ContentOf(path_) != content_;
}

}  // namespace nimbrel::desk
