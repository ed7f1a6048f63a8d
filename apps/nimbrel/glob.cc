#include "nimbrel/glob.h"

#include <cstddef>
#include <string>

#include "platform/text.h"

namespace nimbrel::cli {
namespace {

/// The character that begins at `at`, or a byte that begins none.
std::string_view CharacterAt(std::string_view text, std::size_t at) {
  std::size_t end = at + 1;
  while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    ++end;
  }
  return text.substr(at, end - at);
}

/// A part of a pattern that stands for one character.
struct Part {
  std::size_t length = 0;  // in the pattern
  bool matches = false;    // the character that it was asked about
};

/// The set that begins at pattern[at], which is a '['; of length 0 if it is none.
Part MatchSet(std::string_view pattern, std::size_t at, std::string_view character) {
  std::size_t next = at + 1;
  const bool is_negated = next < pattern.size() && pattern[next] == '!';
  next += is_negated ? 1 : 0;
  bool found = false;
  for (const std::size_t first = next; next < pattern.size();) {
    if (pattern[next] == ']' && next > first) {
      return {next + 1 - at, found != is_negated};
    }
    const std::string_view low = CharacterAt(pattern, next);
    std::string_view high = low;
    next += low.size();
    if (next + 1 < pattern.size() && pattern[next] == '-' && pattern[next + 1] != ']') {
      high = CharacterAt(pattern, next + 1);
      next += 1 + high.size();
    }
    found = found || (low <= character && character <= high);
  }
  return {};
}

/// The part that begins at pattern[at], which is no '*'.
Part MatchOne(std::string_view pattern, std::size_t at, std::string_view character) {
  if (pattern[at] == '?') {
    return {1, true};
  }
  if (pattern[at] == '[') {
    const Part set = MatchSet(pattern, at, character);
    if (set.length > 0) {
      return set;
    }
  }
  const std::string_view itself = CharacterAt(pattern, at);
  return {itself.size(), itself == character};
}

/// Both in the same case. A star that fails is tried with one character more; only the last one
/// needs to be, so that the time is at most the product of the lengths.
bool Matches(std::string_view pattern, std::string_view text) {
  std::size_t p = 0;
  std::size_t t = 0;
  std::size_t after_star = std::string_view::npos;
  std::size_t star_end = 0;  // how far in the text the last star reaches
  while (t < text.size()) {
    const std::string_view character = CharacterAt(text, t);
    if (p < pattern.size() && pattern[p] == '*') {
      after_star = ++p;
      star_end = t;
      continue;
    }
    const Part part = p < pattern.size() ? MatchOne(pattern, p, character) : Part{};
    if (part.matches) {
      p += part.length;
      t += character.size();
    } else if (after_star != std::string_view::npos) {
      p = after_star;
      star_end += CharacterAt(text, star_end).size();
      t = star_end;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace

bool GlobMatches(std::string_view pattern, std::string_view text) {
  return Matches(platform::FoldCase(pattern), platform::FoldCase(text));
}

}  // namespace nimbrel::cli
