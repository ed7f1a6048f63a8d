#include "toolkit/win32/win32_text.h"

#include <algorithm>

namespace nimbrel::toolkit::win32 {

std::wstring ToWide(std::string_view text) {
  const int length = static_cast<int>(text.size());
  const int units = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(units), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), units);
  return wide;
}

std::string FromWide(std::wstring_view text) {
  const int units = static_cast<int>(text.size());
  const int length =
      ::WideCharToMultiByte(CP_UTF8, 0, text.data(), units, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(length), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), units, narrow.data(), length, nullptr, nullptr);
  return narrow;
}

std::wstring LinesToWide(std::string_view text) {
  std::wstring lines;
  for (const wchar_t unit : ToWide(text)) {
    if (unit == L'\n' && (lines.empty() || lines.back() != L'\r')) {
      lines += L'\r';
    }
    lines += unit;
  }
  return lines;
}

std::wstring CaptionToWide(std::string_view caption) {
  std::wstring shown;
  for (const wchar_t unit : ToWide(caption)) {
    shown.append(unit == L'&' ? 2 : 1, unit);
  }
  return shown;
}

int UnitsBefore(std::wstring_view text, std::int32_t position) {
  const int size = static_cast<int>(text.size());
  int units = 0;
  for (std::int32_t seen = 0; seen < position && units < size; ++seen) {
    const wchar_t unit = text[static_cast<std::size_t>(units)];
    units += IS_HIGH_SURROGATE(unit) && units + 1 < size ? 2 : 1;
  }
  return units;
}

std::int32_t CharactersBefore(std::wstring_view text, int units) {
  const auto inside = text.substr(0, static_cast<std::size_t>(std::max(units, 0)));
  return static_cast<std::int32_t>(std::count_if(
      inside.begin(), inside.end(), [](wchar_t unit) { return !IS_LOW_SURROGATE(unit); }));
}

std::wstring TextOf(HWND window) {
  const int length = ::GetWindowTextLengthW(window);
  std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
  text.resize(static_cast<std::size_t>(::GetWindowTextW(window, text.data(), length + 1)));
  return text;
}

}  // namespace nimbrel::toolkit::win32
