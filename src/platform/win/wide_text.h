#pragma once

#include <string>
#include <string_view>

namespace nimbrel::platform {

/// Text of Windows as UTF-8, and back. What is no valid text becomes the replacement character.
std::string ToUtf8(std::wstring_view text);
std::wstring ToWide(std::string_view text);

/// Text in the code page of the system's narrow functions as UTF-8, and back; a character that the
/// code page does not have becomes one that looks like it, or "?".
std::string FromNarrow(std::string_view text);
std::string ToNarrow(std::string_view text);

}  // namespace nimbrel::platform
