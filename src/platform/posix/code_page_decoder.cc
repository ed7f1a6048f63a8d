#include "platform/code_page_decoder.h"

#include <iconv.h>

#include <array>

namespace nimbrel::platform {
namespace {

const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);
constexpr std::uint16_t kMacRoman = 10'000;
constexpr const char* kReplacement = "\xEF\xBF\xBD";

class IconvDecoder final : public CodePageDecoder {
 public:
  explicit IconvDecoder(iconv_t converter) : converter_(converter) {}
  IconvDecoder(const IconvDecoder&) = delete;
  IconvDecoder& operator=(const IconvDecoder&) = delete;
  ~IconvDecoder() override { iconv_close(converter_); }

  std::string Decode(std::string_view bytes) const override {
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
        text += kReplacement;
        ++in;
        --in_left;
      }
    }
    return text;
  }

 private:
  iconv_t converter_;
};

}  // namespace

std::unique_ptr<CodePageDecoder> FindCodePage(std::uint16_t number) {
  const std::string name = number == kMacRoman ? "MACINTOSH" : "CP" + std::to_string(number);
  const iconv_t converter = iconv_open("UTF-8", name.c_str());
  return converter == kNoConverter ? nullptr : std::make_unique<IconvDecoder>(converter);
}

}  // namespace nimbrel::platform
