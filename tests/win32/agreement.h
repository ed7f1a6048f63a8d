#pragma once

#include <string>

#include "toolkit/win32/form_window.h"

namespace nimbrel::toolkit::win32 {

/// What a window shows otherwise than its form has it, a line each; empty if they agree.
std::string Disagreements(const FormWindow& window);

}  // namespace nimbrel::toolkit::win32
