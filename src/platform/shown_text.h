#pragma once

#include <string>
#include <string_view>

namespace nimbrel::platform {

/// A text (UTF-8) of a user's or a file's, of whatever length, as it can stand in a message: cut
/// behind its sixtieth character, with "..." for the rest, and with a replacement character for
/// each control character and each end of a line. Bytes that are no UTF-8 stay.
std::string ShownText(std::string_view text);

}  // namespace nimbrel::platform
