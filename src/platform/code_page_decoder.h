#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace nimbrel::platform {

/// Reads text of the time before Unicode, whose characters are of one byte or two.
class CodePageDecoder {
 public:
  virtual ~CodePageDecoder() = default;

  /// The text of bytes in UTF-8. What is no character of the page becomes U+FFFD.
  virtual std::string Decode(std::string_view bytes) const = 0;
};

/// The decoder of a code page by its number in Windows. Null if the system does not have it.
std::unique_ptr<CodePageDecoder> FindCodePage(std::uint16_t number);

}  // namespace nimbrel::platform
