#pragma once

#include <string_view>

namespace nimbrel::cli {

/// Whether the whole of `text` matches a pattern, without regard to case. In the pattern '*' stands
/// for any characters or none, '?' for one, "[abx-z]" for one of those and "[!abx-z]" for any
/// other; all else, a '[' without its ']' included, stands for itself. Characters are those of
/// UTF-8.
bool GlobMatches(std::string_view pattern, std::string_view text);

}  // namespace nimbrel::cli
