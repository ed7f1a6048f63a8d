// Any text of a weather file is refused with a CommandError or is weather that reads the same
// again.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "nimbrel/command_error.h"
#include "nimbrel/json_text.h"
#include "nimbrel/weather_json.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using nimbrel::cli::ParseWeatherJson;
  using nimbrel::cli::Weather;
  try {
    const Weather weather =
        ParseWeatherJson(std::string(reinterpret_cast<const char*>(data), size), "fuzzed");
    if (ParseWeatherJson(nimbrel::cli::JsonText(nimbrel::cli::WeatherJson(weather)), "again") !=
        weather) {
      std::abort();
    }
  } catch (const nimbrel::cli::CommandError&) {  // NOLINT(bugprone-empty-catch): a clean refusal
  }
  return 0;
}
