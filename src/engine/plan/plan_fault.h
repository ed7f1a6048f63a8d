#pragma once

#include <optional>
#include <string>

#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// The first thing in a plan that a plan cannot have, as "WHERE: what was expected, what was
/// found"; nothing for a plan that is sound.
///
/// Looked at are identities and names (unique), references (to what is there), codes, dates (years
/// 100 to 9999), numbers (finite), the shifts of days and the days taken. Not looked at is what the
/// plan may hold for a time or for good because somebody set it so: the order of three points, a
/// probability above 100%, a constraint without a date.
std::optional<std::string> FindFault(const Plan& plan);

}  // namespace nimbrel::engine
