#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/gestures/hands.h"

namespace nimbrel::gestures {

/// A face of the dialog: what draws it and takes the input.
struct Face {
  std::string name;
  /// Makes the hands that work it; empty for a face that this program was built without.
  std::unique_ptr<Hands> (*make_hands)() = nullptr;
};

/// All faces that there may be, the default first.
const std::vector<Face>& Faces();

}  // namespace nimbrel::gestures
