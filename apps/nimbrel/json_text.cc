#include "nimbrel/json_text.h"

#include <cmath>
#include <string>

namespace nimbrel::cli {

std::string DateText(engine::Instant instant) {
  return instant.IsAbsent() ? "" : engine::ToIsoText(instant.AsStart());
}

Json DateJson(engine::Instant instant) {
  return instant.IsAbsent() ? Json(nullptr) : Json(DateText(instant));
}

double Rounded(double value, int decimals) {
  const double scale = std::pow(10.0, decimals);
  const double rounded = std::round(value * scale) / scale;
  return rounded == 0 ? 0 : rounded;
}

std::string JsonText(const Json& document) {
  return document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

std::string CsvField(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) {
    return text;
  }
  std::string quoted = "\"";
  for (const char c : text) {
    quoted += c == '"' ? "\"\"" : std::string(1, c);
  }
  return quoted + "\"";
}

}  // namespace nimbrel::cli
