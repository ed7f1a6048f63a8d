#pragma once

#include <cstddef>

namespace nimbrel::engine {

/// How often this program has asked for memory with new.
std::size_t AllocationCount();

}  // namespace nimbrel::engine
