#include "spreadsheet/text_coding.h"

#include <array>
#include <optional>

#include "platform/shown_text.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;

struct Decoded {
  std::uint32_t character;  // kReplacement for what is no UTF-8
  std::size_t length;       // bytes taken, at least 1
};

Decoded DecodeUtf8(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::uint32_t lead = byte(0);
  if (lead < 0x80) {
    return {lead, 1};
  }
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4) {
    return {kReplacement, 1};
  }
  std::uint32_t character = lead & (0xFFU >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if (i >= text.size() || (byte(i) & 0xC0U) != 0x80) {
      return {kReplacement, i};
    }
    character = (character << 6) | (byte(i) & 0x3FU);
  }
  constexpr std::array<std::uint32_t, 5> kLeast = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
  if (character < kLeast[length] || character > 0x10FFFF || surrogate) {
    return {kReplacement, length};
  }
  return {character, length};
}

bool IsNoXmlCharacter(std::uint32_t character) {
  return character == 0xFFFE || character == 0xFFFF;
}

std::optional<std::uint32_t> HexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return static_cast<std::uint32_t>(c - '0');
  }
  const char lower = static_cast<char>(c | 0x20);
  if (lower >= 'a' && lower <= 'f') {
    return static_cast<std::uint32_t>(lower - 'a' + 10);
  }
  return std::nullopt;
}

constexpr std::size_t kEscapeLength = 7;  // _xHHHH_

/// The UTF-16 unit of a form _xHHHH_ at the front of `text`.
std::optional<std::uint32_t> EscapeAt(std::string_view text) {
  if (text.size() < kEscapeLength || text[0] != '_' || text[1] != 'x' || text[6] != '_') {
    return std::nullopt;
  }
  std::uint32_t unit = 0;
  for (std::size_t i = 2; i < 6; ++i) {
    const auto digit = HexDigit(text[i]);
    if (!digit) {
      return std::nullopt;
    }
    unit = unit * 16 + *digit;
  }
  return unit;
}

/// Whether a character is written as a form _xHHHH_.
bool NeedsEscape(char c) {
  return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n';
}

/// Whether the written text would have a form _xHHHH_ at the front of `text` that is not meant as
/// one. The "_" of a control character's own form can complete it.
bool ReadsAsEscape(std::string_view text) {
  std::string front(text.substr(0, kEscapeLength));
  if (front.size() == kEscapeLength && NeedsEscape(front.back())) {
    front.back() = '_';
  }
  return EscapeAt(front).has_value();
}

bool IsHighSurrogate(std::uint32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(std::uint32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}
std::uint32_t JoinSurrogates(std::uint32_t high, std::uint32_t low) {
  return 0x10000 + ((high - 0xD800) << 10) + (low - 0xDC00);
}

}  // namespace

void AppendUtf8(std::string& text, std::uint32_t character) {
  if (character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) {
    character = kReplacement;
  }
  const auto put = [&](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    put(character);
    return;
  }
  if (character < 0x800) {
    put(0xC0 | (character >> 6));
  } else {
    if (character < 0x10000) {
      put(0xE0 | (character >> 12));
    } else {
      put(0xF0 | (character >> 18));
      put(0x80 | ((character >> 12) & 0x3F));
    }
    put(0x80 | ((character >> 6) & 0x3F));
  }
  put(0x80 | (character & 0x3F));
}

std::string ValidUtf8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  while (!bytes.empty()) {
    const Decoded decoded = DecodeUtf8(bytes);
    AppendUtf8(text, IsNoXmlCharacter(decoded.character) ? kReplacement : decoded.character);
    bytes.remove_prefix(decoded.length);
  }
  return text;
}

bool IsValidUtf8(std::string_view bytes) {
  return ValidUtf8(bytes) == bytes;
}

std::size_t Utf16Length(std::string_view text) {
  std::size_t length = 0;
  while (!text.empty()) {
    const Decoded decoded = DecodeUtf8(text);
    length += decoded.character > 0xFFFF ? 2 : 1;
    text.remove_prefix(decoded.length);
  }
  return length;
}

std::string FromUtf16(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  const auto unit = [&](std::size_t i) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8;
  };
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const std::uint32_t first = unit(i);
    if (IsHighSurrogate(first) && i + 3 < bytes.size() && IsLowSurrogate(unit(i + 2))) {
      AppendUtf8(text, JoinSurrogates(first, unit(i + 2)));
      i += 2;
    } else {
      AppendUtf8(text, first);
    }
  }
  return text;
}

std::string FromLatin1(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (const char c : bytes) {
    AppendUtf8(text, static_cast<unsigned char>(c));
  }
  return text;
}

std::string EscapeXlsxText(std::string_view text) {
  static constexpr std::string_view kHex = "0123456789ABCDEF";
  const std::string valid = ValidUtf8(text);
  std::string escaped;
  escaped.reserve(valid.size());
  for (std::size_t i = 0; i < valid.size(); ++i) {
    const char c = valid[i];
    const auto byte = static_cast<unsigned char>(c);
    if (NeedsEscape(c)) {
      escaped += "_x00";
      escaped += kHex[byte >> 4];
      escaped += kHex[byte & 0xF];
      escaped += '_';
    } else if (c == '_' && ReadsAsEscape(std::string_view(valid).substr(i))) {
      escaped += "_x005F_";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

std::string UnescapeXlsxText(std::string_view text) {
  if (text.find('_') == std::string_view::npos) {
    return std::string(text);
  }
  std::string plain;
  plain.reserve(text.size());
  while (!text.empty()) {
    const auto unit = text.front() == '_' ? EscapeAt(text) : std::nullopt;
    if (!unit) {
      plain += text.front();
      text.remove_prefix(1);
      continue;
    }
    text.remove_prefix(kEscapeLength);
    const auto next = IsHighSurrogate(*unit) ? EscapeAt(text) : std::nullopt;
    if (next && IsLowSurrogate(*next)) {
      AppendUtf8(plain, JoinSurrogates(*unit, *next));
      text.remove_prefix(kEscapeLength);
    } else {
      AppendUtf8(plain, *unit);
    }
  }
  return plain;
}

std::string Quoted(std::string_view text) {
  constexpr std::size_t kMoreThanIsShown = 400;  // so that the check of all of it takes no time
  return "'" + platform::ShownText(ValidUtf8(text.substr(0, kMoreThanIsShown))) + "'";
}

}  // namespace nimbrel::spreadsheet
