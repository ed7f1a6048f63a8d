#pragma once

#include <cstdint>
#include <string>

namespace nimbrel::bench {

/// The text of an XER file with so many activities, on three calendars, in 500 nodes, with two
/// links to each, a few of them with lags, and with the columns that real files have. Activities
/// stand in layers of 500. The same for the same number.
std::string GenerateXer(std::int32_t activities);

}  // namespace nimbrel::bench
