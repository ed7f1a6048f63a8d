#pragma once

#include <string>
#include <string_view>

namespace nimbrel::engine {

/// Whether the bytes are well-formed UTF-8 (no overlong forms, no surrogates).
bool IsUtf8(std::string_view bytes);

/// The bytes as UTF-8: without a byte order mark; taken as Windows-1252 if they are no UTF-8. The
/// five bytes that Windows-1252 leaves open become U+FFFD.
std::string ToUtf8(std::string_view bytes);

}  // namespace nimbrel::engine
