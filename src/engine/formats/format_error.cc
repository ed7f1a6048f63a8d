#include "engine/formats/format_error.h"

#include <fmt/format.h>

namespace nimbrel::engine {

FormatError::FormatError(std::string_view file, std::int64_t row, std::string_view message)
    : std::runtime_error(fmt::format("{}:{}: {}", file, row, message)), file_(file), row_(row) {}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kLongest = 60;
  std::size_t length = text.size();
  if (length > kLongest) {
    length = kLongest;
    while (length > 0 && (static_cast<unsigned char>(text[length]) & 0xC0u) == 0x80u) {
      --length;
    }
  }
  std::string quoted = "\"";
  for (const char letter : text.substr(0, length)) {
    const auto code = static_cast<unsigned char>(letter);
    quoted += code < 0x20 || code == 0x7F ? ' ' : letter;
  }
  quoted += length < text.size() ? "...\"" : "\"";
  return quoted;
}

}  // namespace nimbrel::engine
