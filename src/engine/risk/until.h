#pragma once

#include <cstdint>
#include <span>

#include "engine/calendar/instant.h"

namespace nimbrel::engine {

/// Tiles of the least number of iterations after which a run with `until_days` may end: at least
/// 200 of them.
inline constexpr std::int32_t kFirstCheckTiles = 4;

/// The number of tiles after which to look next: an eighth more, at least one, at most `all`.
std::int32_t NextCheck(std::int32_t tiles, std::int32_t all);

/// Width in calendar days of the 95% interval of the finishes' P80; 0 for none.
double WidthOfP80(std::span<const Instant> finishes);

}  // namespace nimbrel::engine
