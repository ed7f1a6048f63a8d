// Any bytes give a sound plan or a FormatError, and any sound plan dates or a SchedulingError;
// everything else is a crash.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "engine/formats/plan_reader.h"
#include "engine/plan/plan_fault.h"
#include "engine/schedule/scheduler.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using nimbrel::engine::FormatError;
  using nimbrel::engine::ReadResult;
  using nimbrel::engine::SchedulingError;
  try {
    const ReadResult result = nimbrel::engine::ReadMspdi(
        std::string_view(reinterpret_cast<const char*>(data), size), "fuzzed", {});
    if (nimbrel::engine::FindFault(result.plan)) {
      std::abort();
    }
    nimbrel::engine::Scheduler scheduler(result.plan, [](const auto&) { return true; });
    scheduler.ScheduleForward();
    scheduler.ScheduleBackward();
  } catch (const FormatError&) {      // NOLINT(bugprone-empty-catch): a clean refusal
  } catch (const SchedulingError&) {  // NOLINT(bugprone-empty-catch): a clean refusal
  }
  return 0;
}
