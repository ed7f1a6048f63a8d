#pragma once

#include <string>

#include "toolkit/control.h"

namespace nimbrel::toolkit {

/// What a screen reader is to call a control: the name that it was given, the label next to it, or
/// the frame that it stands in. Empty for one that shows its own caption.
std::string AccessibleNameOf(const Control& control);

}  // namespace nimbrel::toolkit
