#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formats/plan_reader.h"

namespace nimbrel::engine {

/// Collects warnings: one entry a text, with the number of times it came up.
class WarningList {
 public:
  void Add(std::string_view text, std::int64_t count = 1);
  std::vector<ReadWarning> Take() { return std::move(warnings_); }

 private:
  std::vector<ReadWarning> warnings_;  // few: the texts are fixed, or name a table
};

}  // namespace nimbrel::engine
