#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "engine/calendar/instant.h"

namespace nimbrel::cli {

/// Keys stand in the order in which they are put in, so that the bytes are always the same.
using Json = nlohmann::ordered_json;

/// "YYYY-MM-DDTHH:MM"; a midnight is 00:00 of the day that begins, which every reader of dates
/// takes. "" for an absent moment.
std::string DateText(engine::Instant instant);

/// DateText, or null for an absent moment.
Json DateJson(engine::Instant instant);

/// The number rounded to so many decimals, never "-0".
double Rounded(double value, int decimals);

/// The text of a document, indented, with a line break at its end. Bytes that are no UTF-8 are
/// replaced.
std::string JsonText(const Json& document);

/// The text as one field of a CSV line, quoted where it has to be.
std::string CsvField(const std::string& text);

}  // namespace nimbrel::cli
