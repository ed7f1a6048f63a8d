#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/text.h"

namespace nimbrel::engine {

/// Gives out names of which no two are the same without regard to case.
class UniqueNames {
 public:
  /// Takes the name; false if it is taken already.
  bool Take(std::string_view name);
  /// Takes the name, or the name with the first free of " (2)", " (3)", ... behind it.
  std::string TakeFree(std::string_view name);

 private:
  /// Names taken, with the last number that was put behind each.
  std::unordered_map<std::string, int, platform::IgnoreCaseHash, platform::IgnoreCaseEqual> names_;
};

}  // namespace nimbrel::engine
