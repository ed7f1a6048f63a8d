// Any text of a ranges file changes a plan soundly or is refused with a CommandError.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "engine/plan/plan_fault.h"
#include "nimbrel/command_error.h"
#include "nimbrel/ranges.h"

namespace {

nimbrel::engine::Plan MakePlan() {
  nimbrel::engine::Plan plan;
  plan.start = {46447, 480};
  plan.default_calendar = plan.AddCalendar(nimbrel::engine::MakeWeekCalendar("Week", 5, 8)).uid;
  for (const char* id : {"A1", "A2", "B,1"}) {
    nimbrel::engine::Task task;
    task.id = id;
    task.remaining_minutes = 480;
    plan.AddTask(task);
  }
  return plan;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  nimbrel::engine::Plan plan = MakePlan();
  try {
    nimbrel::cli::ApplyRangesText(plan, std::string(reinterpret_cast<const char*>(data), size),
                                  "fuzzed", nimbrel::engine::Shape::kTriangular);
  } catch (const nimbrel::cli::CommandError&) {  // NOLINT(bugprone-empty-catch): a clean refusal
  }
  if (nimbrel::engine::FindFault(plan)) {
    std::abort();
  }
  return 0;
}
