#pragma once

#include <string>

#include "engine/plan/plan.h"

namespace nimbrel::cli {

/// What the plan's weather is made of, on one line that begins with `path`, and the warnings that
/// go with it, each on a line of its own.
std::string WeatherSummary(const std::string& path, const engine::Plan& plan);

}  // namespace nimbrel::cli
