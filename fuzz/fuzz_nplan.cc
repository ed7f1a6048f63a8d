// Any bytes in the place of a plan file give a sound plan or a PlanFileError; everything else is a
// crash.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "engine/plan/plan_fault.h"
#include "engine/plan/plan_store.h"

namespace {

std::string ScratchFile() {
  const auto folder = std::filesystem::temp_directory_path();
  return (folder / ("fuzz-" + std::to_string(getpid()) + ".nplan")).string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string path = ScratchFile();
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr || std::fwrite(data, 1, size, file) != size || std::fclose(file) != 0) {
    std::abort();
  }
  try {
    if (nimbrel::engine::FindFault(nimbrel::engine::LoadPlan(path))) {
      std::abort();
    }
  } catch (const nimbrel::engine::PlanFileError&) {  // NOLINT(bugprone-empty-catch): a refusal
  }
  return 0;
}
