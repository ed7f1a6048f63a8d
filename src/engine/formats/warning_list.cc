#include "engine/formats/warning_list.h"

#include <algorithm>

namespace nimbrel::engine {

void WarningList::Add(std::string_view text, std::int64_t count) {
  if (count <= 0) {
    return;
  }
  const auto found =
      std::find_if(warnings_.begin(), warnings_.end(),
                   [text](const ReadWarning& warning) { return warning.text == text; });
  if (found != warnings_.end()) {
    found->count += count;
  } else {
    warnings_.push_back({std::string(text), count});
  }
}

}  // namespace nimbrel::engine
