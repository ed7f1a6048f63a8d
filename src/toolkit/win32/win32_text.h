#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace nimbrel::toolkit::win32 {

/// Texts of the toolkit are UTF-8, and places in them count characters; those of Windows are
/// UTF-16, and places count code units.
std::wstring ToWide(std::string_view text);
std::string FromWide(std::wstring_view text);

/// A text of several lines, whatever ends its lines.
std::wstring LinesToWide(std::string_view text);
/// A caption for controls in which "&" would mark a shortcut: it is shown as it is.
std::wstring CaptionToWide(std::string_view caption);

/// The code units before character `position`, and the characters before code unit `units`. Both
/// are held inside the text.
int UnitsBefore(std::wstring_view text, std::int32_t position);
std::int32_t CharactersBefore(std::wstring_view text, int units);

/// What the window has as its text.
std::wstring TextOf(HWND window);

}  // namespace nimbrel::toolkit::win32
