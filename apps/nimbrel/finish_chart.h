#pragma once

#include <span>
#include <string>

#include "engine/calendar/instant.h"
#include "nimbrel/console.h"

namespace nimbrel::cli {

/// How the finishes of a run are spread: one line for each stretch of days, with a bar as long as
/// the share of the iterations that finish in it, and the share that has finished by its end.
/// With `without_weather` (may be empty) there are two of each, on the same days. Both hold the
/// samples in any order, none of them absent; `finishes` holds one or more.
std::string FinishChart(std::span<const engine::Instant> finishes,
                        std::span<const engine::Instant> without_weather, const Terminal& terminal);

}  // namespace nimbrel::cli
