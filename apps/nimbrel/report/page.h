#pragma once

#include <string>

#include "nimbrel/json_text.h"

namespace nimbrel::cli {

/// The report of a run as one HTML file that needs nothing else: charts by script, and behind each
/// of them a table that needs none. `run` is RunJson's. Every figure stands in an element whose
/// data-json says where in `run` it is (a JSON pointer) and data-as how it is written (see
/// report::Form), and the data that the charts are drawn from are parts of `run`. Long tables are
/// cut, and say how much is left out.
std::string ReportPage(const Json& run);

}  // namespace nimbrel::cli
