#include "spreadsheet/code_page.h"

#include <iconv.h>

#include <array>

#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);

constexpr std::uint16_t kMacRoman = 0x8000;
constexpr std::uint16_t kWestern = 0x8001;  // an older way to say 1252
constexpr std::uint16_t kAscii = 367;

std::string ConverterName(std::uint16_t number) {
  switch (number) {
    case kMacRoman:
    case 10'000:
      return "MACINTOSH";
    case kWestern:
    case kAscii:
      return "CP1252";
    default:
      return "CP" + std::to_string(number);
  }
}

}  // namespace

CodePage::CodePage() : converter_(iconv_open("UTF-8", "CP1252")) {}

CodePage::~CodePage() {
  if (converter_ != kNoConverter) {
    iconv_close(converter_);
  }
}

bool CodePage::Select(std::uint16_t number) {
  const iconv_t converter = iconv_open("UTF-8", ConverterName(number).c_str());
  if (converter == kNoConverter) {
    return false;
  }
  if (converter_ != kNoConverter) {
    iconv_close(converter_);
  }
  converter_ = converter;
  return true;
}

std::string CodePage::Decode(std::string_view bytes) const {
  if (converter_ == kNoConverter) {
    // A system without its conversion tables: 1252 is Latin-1 but for a few signs.
    return FromLatin1(bytes);
  }
  iconv(converter_, nullptr, nullptr, nullptr, nullptr);
  std::string text;
  std::string source(bytes);
  char* in = source.data();
  std::size_t in_left = source.size();
  while (in_left > 0) {
    std::array<char, 256> buffer;
    char* out = buffer.data();
    std::size_t out_left = buffer.size();
    const std::size_t before = in_left;
    const auto result = iconv(converter_, &in, &in_left, &out, &out_left);
    text.append(buffer.data(), buffer.size() - out_left);
    if (result == static_cast<std::size_t>(-1) && in_left == before) {
      AppendUtf8(text, 0xFFFD);
      ++in;
      --in_left;
    }
  }
  return text;
}

}  // namespace nimbrel::spreadsheet
