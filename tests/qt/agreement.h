#pragma once

#include <string>

#include "toolkit/qt/form_window.h"

namespace nimbrel::toolkit::qt {

/// What a window shows otherwise than its form has it, a line each; empty if they agree.
std::string Disagreements(const FormWindow& window);

}  // namespace nimbrel::toolkit::qt
