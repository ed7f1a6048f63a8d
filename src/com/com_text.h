#pragma once

#include <string>
#include <string_view>

#include "platform/win/wide_text.h"
#include "platform/win/win_api.h"

namespace nimbrel::com {

/// The text of a BSTR as UTF-8; null is the empty text. The BSTR stays the caller's.
inline std::string TextOf(BSTR text) {
  return text == nullptr ? std::string()
                         : platform::ToUtf8({text, static_cast<std::size_t>(SysStringLen(text))});
}

/// As TextOf, and frees the BSTR.
inline std::string TakeText(BSTR text) {
  std::string taken = TextOf(text);
  SysFreeString(text);
  return taken;
}

/// A new BSTR, which is the caller's to free.
inline BSTR MakeBstr(std::string_view text) {
  const std::wstring wide = platform::ToWide(text);
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

}  // namespace nimbrel::com
