#include "spreadsheet/sheet_name.h"

#include <algorithm>

#include "platform/text.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {

std::string_view SheetNameFault(std::string_view name) {
  constexpr std::size_t kLongest = 31;
  if (name.empty()) {
    return "is empty";
  }
  if (!IsValidUtf8(name)) {
    return "is no text";
  }
  if (Utf16Length(name) > kLongest) {
    return "is longer than 31 characters";
  }
  if (name.find_first_of(":\\/?*[]") != std::string_view::npos) {
    return "has one of the characters : \\ / ? * [ ]";
  }
  if (std::any_of(name.begin(), name.end(),
                  [](char c) { return static_cast<unsigned char>(c) < 0x20; })) {
    return "has a control character";
  }
  if (name.front() == '\'' || name.back() == '\'') {
    return "begins or ends with an apostrophe";
  }
  if (platform::EqualsIgnoreCase(name, "History")) {
    return "is reserved";
  }
  return {};
}

}  // namespace nimbrel::spreadsheet
