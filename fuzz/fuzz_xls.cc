// Any bytes give a workbook or an error with its line; everything else is a crash.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/runtime_error.h"
#include "spreadsheet/xls_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using nimbrel::platform::RuntimeError;
  try {
    nimbrel::spreadsheet::ReadXls(std::string_view(reinterpret_cast<const char*>(data), size),
                                  "fuzzed");
  } catch (const RuntimeError& error) {
    if (error.text().find('\n') != std::string::npos) {
      std::abort();
    }
  }
  return 0;
}
