#include "platform/text.h"

namespace nimbrel::platform {
namespace {

/// The lower-case partner of a character below U+0800, or the character itself.
unsigned FoldCharacter(unsigned c) {
  const bool latin1 = c >= 0xC0 && c <= 0xDE && c != 0xD7;
  const bool greek = c >= 0x391 && c <= 0x3A9 && c != 0x3A2;
  const bool cyrillic = c >= 0x410 && c <= 0x42F;
  if (latin1 || greek || cyrillic) {
    return c + 0x20;
  }
  if (c >= 0x400 && c <= 0x40F) {
    return c + 0x50;
  }
  if (c == 0x178) {
    return 0xFF;
  }
  // Latin Extended-A comes in pairs of upper and lower case; which of the two is even changes
  // twice, and the dotted and dotless i and the kra have no partner here.
  const bool even_upper = (c >= 0x100 && c <= 0x12F) || (c >= 0x132 && c <= 0x137) ||
                          (c >= 0x14A && c <= 0x177);
  const bool odd_upper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
  if ((even_upper && c % 2 == 0) || (odd_upper && c % 2 == 1)) {
    return c + 1;
  }
  return c;
}

}  // namespace

std::string FoldCase(std::string_view text) {
  std::string folded;
  folded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x80) {
      folded.push_back(byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte + 0x20) : text[i]);
      continue;
    }
    const bool two_bytes = (byte & 0xE0) == 0xC0 && i + 1 < text.size() &&
                           (static_cast<unsigned char>(text[i + 1]) & 0xC0) == 0x80;
    if (!two_bytes) {
      folded.push_back(text[i]);
      continue;
    }
    const unsigned character =
        ((byte & 0x1Fu) << 6) | (static_cast<unsigned char>(text[++i]) & 0x3Fu);
    const unsigned lower = FoldCharacter(character);
    folded.push_back(static_cast<char>(0xC0u | (lower >> 6)));
    folded.push_back(static_cast<char>(0x80u | (lower & 0x3Fu)));
  }
  return folded;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  return a == b || FoldCase(a) == FoldCase(b);
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const auto first = text.find_first_not_of(kBlank);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(kBlank) - first + 1);
}

}  // namespace nimbrel::platform
