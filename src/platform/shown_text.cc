#include "platform/shown_text.h"

#include <array>
#include <cstddef>

#include "platform/text.h"

namespace nimbrel::platform {
namespace {

constexpr std::size_t kMostCharacters = 60;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// How many bytes the character takes that the front of `text` must not show; 0 if it may.
std::size_t ControlLength(std::string_view text) {
  const auto byte = [&](std::size_t i) {
    return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
  };
  if (byte(0) < 0x20 || byte(0) == 0x7F) {
    return 1;
  }
  if (byte(0) == 0xC2 && byte(1) >= 0x80 && byte(1) < 0xA0) {
    return 2;
  }
  static constexpr std::array<std::string_view, 2> kLineEnds = {"\xE2\x80\xA8", "\xE2\x80\xA9"};
  for (const std::string_view end : kLineEnds) {
    if (text.starts_with(end)) {
      return end.size();
    }
  }
  return 0;
}

}  // namespace

std::string ShownText(std::string_view text) {
  const std::string_view front = FirstCharacters(text, kMostCharacters);
  std::string shown;
  for (std::size_t i = 0; i < front.size();) {
    const std::size_t control = ControlLength(front.substr(i));
    if (control > 0) {
      shown += kReplacement;
      i += control;
    } else {
      shown += front[i++];
    }
  }
  return front.size() < text.size() ? shown + "..." : shown;
}

}  // namespace nimbrel::platform
