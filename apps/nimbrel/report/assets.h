#pragma once

#include <string_view>

namespace nimbrel::cli::report {

/// Files that the build puts into the program, byte by byte.

/// Chart.js 3, with its licence in its first lines.
std::string_view ChartScript();
/// report.js: draws the charts from the page's data.
std::string_view PageScript();
/// report.css.
std::string_view PageStyle();

}  // namespace nimbrel::cli::report
