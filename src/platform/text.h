#pragma once

#include <string>
#include <string_view>

namespace nimbrel::platform {

/// `text` (UTF-8) in lower case: ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters are
/// folded one to one, all other characters stay. For comparing, not for showing.
std::string FoldCase(std::string_view text);

/// Whether two UTF-8 texts are the same without regard to case, as keys and names are compared.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

/// `text` without leading and trailing spaces, tabs and line ends.
std::string_view Trim(std::string_view text);

}  // namespace nimbrel::platform
