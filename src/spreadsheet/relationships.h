#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/package.h"

namespace nimbrel::spreadsheet {

/// A part's link to another one.
struct Relationship {
  std::string id;
  std::string kind;    // "worksheet", "sharedStrings", ...; empty for what is no office document's
  std::string target;  // as the file has it
  bool external = false;
};

/// The relationships of a part; the empty name stands for the package itself. None if the package
/// lists none for it. Raises error 1004 as ParseXml does.
std::vector<Relationship> ReadRelationships(Package& package, std::string_view part);

/// The name of the part that a target means, seen from `part`. Raises error 1004 for a target that
/// is outside the package or not in it.
std::string ResolveTarget(const Package& package, std::string_view part,
                          const Relationship& relationship);

}  // namespace nimbrel::spreadsheet
