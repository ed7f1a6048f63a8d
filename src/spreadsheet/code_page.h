#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace nimbrel::spreadsheet {

/// The characters that texts of old .xls files are made of.
class CodePage {
 public:
  CodePage();  // Western European, 1252
  CodePage(const CodePage&) = delete;
  CodePage& operator=(const CodePage&) = delete;
  ~CodePage();

  /// Takes the number that a file gives. False, with no change, if the page is not known.
  bool Select(std::uint16_t number);

  /// The text of bytes in UTF-8. What is no character of the page becomes U+FFFD.
  std::string Decode(std::string_view bytes) const;

 private:
  void* converter_;
};

}  // namespace nimbrel::spreadsheet
