#pragma once

#include <rapidcheck.h>

#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// A sound plan that uses everything that a plan can hold: every kind of value, absent and empty
/// texts, numbers of odd bits, names beyond ASCII, removed and moved tasks.
rc::Gen<Plan> AnyPlan();

}  // namespace nimbrel::engine
