#pragma once

#include "engine/results/run_result.h"
#include "engine/risk/run_worker.h"

namespace nimbrel::engine {

/// Makes the result of a run whose workers have all ended, as far as they got. Single tasks and
/// calendars are left out if the run kept no dates. Raises std::system_error if the dates cannot be
/// read back.
RunResult Collect(const RunContext& context);

}  // namespace nimbrel::engine
