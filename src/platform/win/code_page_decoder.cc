#include "platform/code_page_decoder.h"

#include <array>

#include "platform/win/wide_text.h"
#include "platform/win/win_api.h"

namespace nimbrel::platform {
namespace {

constexpr wchar_t kReplacement = 0xFFFD;

class WindowsDecoder final : public CodePageDecoder {
 public:
  explicit WindowsDecoder(UINT number) : number_(number) {}

  std::string Decode(std::string_view bytes) const override {
    std::wstring text;
    while (!bytes.empty()) {
      const bool is_pair =
          bytes.size() > 1 && IsDBCSLeadByteEx(number_, static_cast<BYTE>(bytes.front())) != FALSE;
      const std::size_t length = is_pair && Append(text, bytes.substr(0, 2)) ? 2 : 1;
      if (length == 1 && !Append(text, bytes.substr(0, 1))) {
        text += kReplacement;
      }
      bytes.remove_prefix(length);
    }
    return ToUtf8(text);
  }

 private:
  /// Adds the character that the bytes are; false, with no change, if they are none.
  bool Append(std::wstring& text, std::string_view character) const {
    std::array<wchar_t, 4> wide;
    const int count = MultiByteToWideChar(number_, MB_ERR_INVALID_CHARS, character.data(),
                                          static_cast<int>(character.size()), wide.data(),
                                          static_cast<int>(wide.size()));
    // Bytes that are no character come as control characters of the same number.
    if (count == 0 || (wide[0] >= 0x80 && wide[0] < 0xA0)) {
      return false;
    }
    text.append(wide.data(), static_cast<std::size_t>(count));
    return true;
  }

  UINT number_;
};

}  // namespace

std::unique_ptr<CodePageDecoder> FindCodePage(std::uint16_t number) {
  constexpr std::uint16_t kFirstOwn = 3;  // 0, 1 and 2 are names for the system's own pages
  constexpr UINT kMostBytes = 2;
  CPINFO info = {};
  const bool is_known = number >= kFirstOwn && GetCPInfo(number, &info) != FALSE;
  return is_known && info.MaxCharSize <= kMostBytes ? std::make_unique<WindowsDecoder>(number)
                                                    : nullptr;
}

}  // namespace nimbrel::platform
