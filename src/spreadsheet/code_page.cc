#include "spreadsheet/code_page.h"

#include <utility>

#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::uint16_t kWestern = 1252;

/// The number that Windows has for the page that a file gives.
std::uint16_t NumberInWindows(std::uint16_t number) {
  switch (number) {
    case 0x8000:
      return 10'000;  // of the Macintosh
    case 0x8001:      // an older way to say 1252
    case 367:         // ASCII
      return kWestern;
    default:
      return number;
  }
}

}  // namespace

CodePage::CodePage() : decoder_(platform::FindCodePage(kWestern)) {}

bool CodePage::Select(std::uint16_t number) {
  auto decoder = platform::FindCodePage(NumberInWindows(number));
  if (!decoder) {
    return false;
  }
  decoder_ = std::move(decoder);
  return true;
}

std::string CodePage::Decode(std::string_view bytes) const {
  // A system without its conversion tables: 1252 is Latin-1 but for a few signs.
  return decoder_ ? decoder_->Decode(bytes) : FromLatin1(bytes);
}

}  // namespace nimbrel::spreadsheet
