#include "platform/text.h"

#include <cstdint>
#include <utility>

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
  const bool even_upper =
      (c >= 0x100 && c <= 0x12F) || (c >= 0x132 && c <= 0x137) || (c >= 0x14A && c <= 0x177);
  const bool odd_upper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
  if ((even_upper && c % 2 == 0) || (odd_upper && c % 2 == 1)) {
    return c + 1;
  }
  return c;
}

/// The character that folds to `c`, or `c` itself.
unsigned UpperCharacter(unsigned c) {
  for (const unsigned upper : {c - 0x20, c - 0x50, c - 1, 0x178u}) {
    if (upper != c && FoldCharacter(upper) == c) {
      return upper;
    }
  }
  return c;
}

bool ContinuesCharacter(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Gives the bytes of a text in lower case, one after the other and as many as the text has.
class FoldedBytes {
 public:
  explicit FoldedBytes(std::string_view text) : text_(text) {}

  /// The next byte. There must be one.
  char Next() {
    const auto byte = static_cast<unsigned char>(text_[position_]);
    if (byte < 0x80) {
      ++position_;
      return static_cast<char>(byte >= 'A' && byte <= 'Z' ? byte + 0x20 : byte);
    }
    return NextOfLong(byte);
  }

 private:
  bool IsContinuation(std::size_t position) const {
    return position < text_.size() && ContinuesCharacter(text_[position]);
  }

  char NextOfLong(unsigned char byte) {
    if (pending_ != 0) {
      ++position_;
      return static_cast<char>(std::exchange(pending_, 0u));
    }
    if ((byte & 0xE0) == 0xC0 && IsContinuation(position_ + 1)) {
      const auto second = static_cast<unsigned char>(text_[position_ + 1]);
      const unsigned lower = FoldCharacter(((byte & 0x1Fu) << 6) | (second & 0x3Fu));
      pending_ = 0x80u | (lower & 0x3Fu);
      byte = static_cast<unsigned char>(0xC0u | (lower >> 6));
    }
    ++position_;
    return static_cast<char>(byte);
  }

  std::string_view text_;
  std::size_t position_ = 0;
  unsigned pending_ = 0;  // second byte of a folded character, or 0
};

}  // namespace

std::string FoldCase(std::string_view text) {
  std::string folded(text.size(), '\0');
  FoldedBytes bytes(text);
  for (char& byte : folded) {
    byte = bytes.Next();
  }
  return folded;
}

std::string UpperCase(std::string_view text) {
  std::string upper(text);
  for (std::size_t i = 0; i < upper.size(); ++i) {
    const auto byte = static_cast<unsigned char>(upper[i]);
    if (byte >= 'a' && byte <= 'z') {
      upper[i] = static_cast<char>(byte - 0x20);
    } else if ((byte & 0xE0) == 0xC0 && i + 1 < upper.size() && ContinuesCharacter(upper[i + 1])) {
      const auto second = static_cast<unsigned char>(upper[i + 1]);
      const unsigned c = UpperCharacter(((byte & 0x1Fu) << 6) | (second & 0x3Fu));
      upper[i] = static_cast<char>(0xC0u | (c >> 6));
      upper[++i] = static_cast<char>(0x80u | (c & 0x3Fu));
    }
  }
  return upper;
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
  std::size_t seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!ContinuesCharacter(text[i]) && ++seen > count) {
      return text.substr(0, i);
    }
  }
  return text;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) {
    return false;
  }
  FoldedBytes bytes_a(a);
  FoldedBytes bytes_b(b);
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (bytes_a.Next() != bytes_b.Next()) {
      return false;
    }
  }
  return true;
}

std::size_t HashIgnoreCase(std::string_view text) {
  // FNV-1a of the folded bytes.
  std::uint64_t hash = 0xCBF29CE484222325u;
  FoldedBytes bytes(text);
  for (std::size_t i = 0; i < text.size(); ++i) {
    hash = (hash ^ static_cast<unsigned char>(bytes.Next())) * 0x100000001B3u;
  }
  return static_cast<std::size_t>(hash);
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
