#include "engine/formats/unique_names.h"

namespace nimbrel::engine {

bool UniqueNames::Take(std::string_view name) {
  return names_.emplace(name, 1).second;
}

std::string UniqueNames::TakeFree(std::string_view name) {
  if (Take(name)) {
    return std::string(name);
  }
  for (int number = names_.find(name)->second + 1;; ++number) {
    std::string numbered = std::string(name) + " (" + std::to_string(number) + ")";
    if (Take(numbered)) {
      names_.find(name)->second = number;
      return numbered;
    }
  }
}

}  // namespace nimbrel::engine
