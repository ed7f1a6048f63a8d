#pragma once

#include <string>

namespace nimbrel::cli {

/// Becomes the desktop program in `folder` with the plan as its argument, and with that ends as it
/// ends. Raises CommandError if it cannot be run.
[[noreturn]] void BecomeDesk(const std::string& folder, const std::string& plan);

}  // namespace nimbrel::cli
