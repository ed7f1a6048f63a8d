#include "engine/formats/text_encoding.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace nimbrel::engine {
namespace {

/// Bytes that follow a lead byte, -1 if it is none; `lowest` and `highest` bound the first of them.
int FollowersOf(unsigned char lead, unsigned char& lowest, unsigned char& highest) {
  lowest = 0x80;
  highest = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    return 1;
  }
  if (lead >= 0xE0 && lead <= 0xEF) {
    lowest = lead == 0xE0 ? 0xA0 : 0x80;
    highest = lead == 0xED ? 0x9F : 0xBF;
    return 2;
  }
  if (lead >= 0xF0 && lead <= 0xF4) {
    lowest = lead == 0xF0 ? 0x90 : 0x80;
    highest = lead == 0xF4 ? 0x8F : 0xBF;
    return 3;
  }
  return -1;
}

/// Windows-1252 from 0x80 to 0x9F; the rest of it is Latin-1.
constexpr std::array<std::uint16_t, 32> kUpperControls = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

void Append(std::string& text, std::uint16_t code) {
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | (code >> 6));
    text += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    text += static_cast<char>(0xE0 | (code >> 12));
    text += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    text += static_cast<char>(0x80 | (code & 0x3F));
  }
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
  for (std::size_t at = 0; at < bytes.size();) {
    const auto lead = static_cast<unsigned char>(bytes[at++]);
    if (lead < 0x80) {
      continue;
    }
    unsigned char lowest = 0;
    unsigned char highest = 0;
    const int followers = FollowersOf(lead, lowest, highest);
    if (followers < 0) {
      return false;
    }
    for (int i = 0; i < followers; ++i, ++at) {
      if (at >= bytes.size()) {
        return false;
      }
      const auto byte = static_cast<unsigned char>(bytes[at]);
      if (byte < lowest || byte > highest) {
        return false;
      }
      lowest = 0x80;
      highest = 0xBF;
    }
  }
  return true;
}

std::string ToUtf8(std::string_view bytes) {
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (bytes.starts_with(kByteOrderMark)) {
    bytes.remove_prefix(kByteOrderMark.size());
  }
  if (IsUtf8(bytes)) {
    return std::string(bytes);
  }
  std::string text;
  text.reserve(bytes.size() + bytes.size() / 8);
  for (const char byte : bytes) {
    const auto code = static_cast<unsigned char>(byte);
    Append(text, code >= 0x80 && code < 0xA0 ? kUpperControls[code - 0x80u] : code);
  }
  return text;
}

}  // namespace nimbrel::engine
