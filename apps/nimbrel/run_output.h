#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "nimbrel/console.h"
#include "nimbrel/run_report.h"

namespace nimbrel::cli {

/// The report for people. Without `chart` nothing is drawn. `asked` are the tasks to list.
std::string RunText(const engine::Plan& plan, const RunReport& report,
                    const std::vector<engine::Uid>& asked, bool chart, const Terminal& terminal);

}  // namespace nimbrel::cli
