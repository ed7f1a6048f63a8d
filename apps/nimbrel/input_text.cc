#include "nimbrel/input_text.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "engine/formats/format_error.h"
#include "nimbrel/command_error.h"

namespace nimbrel::cli {
namespace {

constexpr std::uintmax_t kMostBytes = std::uintmax_t{64} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

}  // namespace

std::string ReadTextFile(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_directory(path, error)) {
    throw FileTrouble(path + ": cannot be read: expected a file, found a folder");
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  std::string text;
  std::string block(1 << 16, '\0');
  while (file.read(block.data(), static_cast<std::streamsize>(block.size())), file.gcount() > 0) {
    text.append(block, 0, static_cast<std::size_t>(file.gcount()));
    if (text.size() > kMostBytes) {
      throw FileTrouble(path + ": cannot be read: expected at most 64 MiB, found more");
    }
  }
  if (!file.eof()) {
    throw FileTrouble(path + ": cannot be read" +
                      (errno != 0 ? std::string(": ") + std::strerror(errno) : std::string()));
  }
  if (text.starts_with(kByteOrderMark)) {
    text.erase(0, kByteOrderMark.size());
  }
  return text;
}

std::string QuotedText(std::string_view text) {
  return engine::Quoted(text);
}

}  // namespace nimbrel::cli
