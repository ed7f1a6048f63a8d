// Any bytes give a sound plan or a FormatError; everything else is a crash.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "engine/formats/plan_reader.h"
#include "engine/plan/plan_fault.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using nimbrel::engine::FindFault;
  using nimbrel::engine::FormatError;
  using nimbrel::engine::ReadResult;
  try {
    const ReadResult result = nimbrel::engine::ReadMspdi(
        std::string_view(reinterpret_cast<const char*>(data), size), "fuzzed", {});
    if (FindFault(result.plan)) {
      std::abort();
    }
  } catch (const FormatError&) {  // NOLINT(bugprone-empty-catch): a clean refusal
  }
  return 0;
}
