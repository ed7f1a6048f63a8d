#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <limits>

namespace nimbrel::engine {

/// An error of a run as plain bytes, so that it can go from one process to another.
struct RunFailure {
  enum class Kind : std::int32_t { kNone, kScheduling, kRuntime, kSystem, kOther };

  /// Iterations that stand for what comes before the first and after the last one.
  static constexpr std::int32_t kBeforeAll = 0;
  static constexpr std::int32_t kAfterAll = std::numeric_limits<std::int32_t>::max();

  Kind kind = Kind::kNone;
  std::int32_t number = 0;  // of a RuntimeError; the system's code of a kSystem
  std::int32_t iteration = kBeforeAll;
  std::array<char, 2000> text{};  // ends with 0; a longer text is cut

  /// Describes an error that was caught.
  static RunFailure From(const std::exception_ptr& error, std::int32_t iteration);

  /// Raises it again, as what it was, with the iteration in front of its text.
  [[noreturn]] void Raise() const;
};

}  // namespace nimbrel::engine
