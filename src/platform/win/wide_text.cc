#include "platform/win/wide_text.h"

#include "platform/win/win_api.h"

namespace nimbrel::platform {
namespace {

std::wstring Widen(std::string_view text, UINT code_page) {
  const int length = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(code_page, 0, text.data(), length, nullptr, 0);
  std::wstring wide(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(code_page, 0, text.data(), length, wide.data(), needed);
  return wide;
}

std::string Narrow(std::wstring_view text, UINT code_page) {
  const int length = static_cast<int>(text.size());
  const int needed =
      WideCharToMultiByte(code_page, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(code_page, 0, text.data(), length, narrow.data(), needed, nullptr, nullptr);
  return narrow;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
  return Narrow(text, CP_UTF8);
}

std::wstring ToWide(std::string_view text) {
  return Widen(text, CP_UTF8);
}

std::string FromNarrow(std::string_view text) {
  return ToUtf8(Widen(text, CP_ACP));
}

std::string ToNarrow(std::string_view text) {
  return Narrow(ToWide(text), CP_ACP);
}

}  // namespace nimbrel::platform
