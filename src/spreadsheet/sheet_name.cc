#include "spreadsheet/sheet_name.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

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

void CheckSheetNames(const ReadPlace& place, const std::vector<std::string>& names) {
  std::unordered_map<std::string, std::size_t> seen;  // by the folded name
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    if (const auto fault = SheetNameFault(names[i]); !fault.empty()) {
      RaiseReadError(place, "the name of sheet " + number + ", " + Quoted(names[i]) + ", " +
                                std::string(fault));
    }
    const auto [first, is_new] = seen.try_emplace(platform::FoldCase(names[i]), i);
    if (!is_new) {
      RaiseReadError(place, "sheets " + std::to_string(first->second + 1) + " and " + number +
                                " have one name in whatever case, " + Quoted(names[i]));
    }
  }
}

}  // namespace nimbrel::spreadsheet
