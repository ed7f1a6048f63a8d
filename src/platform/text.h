#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nimbrel::platform {

/// `text` (UTF-8) in lower case: ASCII, Latin-1, Latin Extended-A, Greek and Cyrillic letters are
/// folded one to one, all other characters stay, and so do bytes that are no UTF-8. The length in
/// bytes stays the same. For comparing, not for showing.
std::string FoldCase(std::string_view text);

/// `text` (UTF-8) in upper case, in the letters that FoldCase folds: each becomes the character
/// that folds to it, so that FoldCase of the result is that of `text`. The length in bytes stays
/// the same; what has no partner of its own, as the sharp s, stays.
std::string UpperCase(std::string_view text);

/// The first `count` characters of a UTF-8 text, or all of it if it has fewer. A part of `text`.
std::string_view FirstCharacters(std::string_view text, std::size_t count);

/// Whether two UTF-8 texts are the same without regard to case, as keys and names are compared:
/// whether FoldCase gives the same for both. Allocates nothing.
bool EqualsIgnoreCase(std::string_view a, std::string_view b);

/// A hash that is the same for texts that EqualsIgnoreCase holds equal. Allocates nothing.
std::size_t HashIgnoreCase(std::string_view text);

/// `text` without leading and trailing spaces, tabs and line ends.
std::string_view Trim(std::string_view text);

/// Hash and equality of unordered containers whose text keys have no case. Lookups take a
/// string_view as it is.
struct IgnoreCaseHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const { return HashIgnoreCase(text); }
};
struct IgnoreCaseEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const { return EqualsIgnoreCase(a, b); }
};

}  // namespace nimbrel::platform
