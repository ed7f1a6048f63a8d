#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace nimbrel::spreadsheet {

/// Adds a character in UTF-8. What is no character (a surrogate, past U+10FFFF) becomes U+FFFD.
void AppendUtf8(std::string& text, std::uint32_t character);

/// `bytes` with everything that is no UTF-8, and the two code points that XML cannot hold, replaced
/// by U+FFFD.
std::string ValidUtf8(std::string_view bytes);

/// Whether ValidUtf8 leaves the bytes as they are.
bool IsValidUtf8(std::string_view bytes);

/// How many UTF-16 units the text takes: how Excel counts characters.
std::size_t Utf16Length(std::string_view text);

/// The UTF-8 of UTF-16, little endian, as .xls files have it; lone surrogates become U+FFFD. An odd
/// byte at the end is left out.
std::string FromUtf16(std::string_view bytes);

/// The UTF-8 of single bytes that stand for the first 256 characters of Unicode.
std::string FromLatin1(std::string_view bytes);

/// Text as it can stand in an .xlsx: valid UTF-8, control characters as _xHHHH_ (which XML cannot
/// hold as they are), and what looks like such a form already with its "_" escaped.
std::string EscapeXlsxText(std::string_view text);

/// The inverse of EscapeXlsxText.
std::string UnescapeXlsxText(std::string_view text);

/// `text` as it can stand in a message of one line: in single quotes, as platform::ShownText has
/// it, and as valid UTF-8.
std::string Quoted(std::string_view text);

}  // namespace nimbrel::spreadsheet
