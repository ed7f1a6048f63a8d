#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/code_page_decoder.h"

namespace nimbrel::spreadsheet {

/// The characters that texts of old .xls files are made of.
class CodePage {
 public:
  CodePage();  // Western European, 1252

  /// Takes the number that a file gives. False, with no change, if the page is not known.
  bool Select(std::uint16_t number);

  /// The text of bytes in UTF-8. What is no character of the page becomes U+FFFD.
  std::string Decode(std::string_view bytes) const;

 private:
  std::unique_ptr<platform::CodePageDecoder> decoder_;
};

}  // namespace nimbrel::spreadsheet
