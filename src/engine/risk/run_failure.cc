#include "engine/risk/run_failure.h"

#include <fmt/format.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

#include "engine/schedule/scheduler.h"
#include "platform/runtime_error.h"

namespace nimbrel::engine {
namespace {

void Describe(RunFailure& failure, RunFailure::Kind kind, std::int32_t number,
              std::string_view text) {
  failure.kind = kind;
  failure.number = number;
  const std::size_t length = std::min(text.size(), failure.text.size() - 1);
  std::copy_n(text.begin(), length, failure.text.begin());
  failure.text[length] = '\0';
}

}  // namespace

RunFailure RunFailure::From(const std::exception_ptr& error, std::int32_t iteration) {
  RunFailure failure;
  failure.iteration = iteration;
  try {
    std::rethrow_exception(error);
  } catch (const SchedulingError& caught) {
    Describe(failure, Kind::kScheduling, 0, caught.what());
  } catch (const platform::RuntimeError& caught) {
    Describe(failure, Kind::kRuntime, caught.number(), caught.what());
  } catch (const std::system_error& caught) {
    Describe(failure, Kind::kSystem, caught.code().value(), caught.what());
  } catch (const std::exception& caught) {
    Describe(failure, Kind::kOther, 0, caught.what());
  } catch (...) {
    Describe(failure, Kind::kOther, 0, "an error of an unknown kind");
  }
  return failure;
}

void RunFailure::Raise() const {
  std::string where = fmt::format("iteration {}: ", iteration);
  if (iteration == kBeforeAll) {
    where = "before the first iteration: ";
  } else if (iteration == kAfterAll) {
    where = "after the last iteration: ";
  }
  const std::string message = where + text.data();
  switch (kind) {
    case Kind::kScheduling:
      throw SchedulingError(message);
    case Kind::kRuntime:
      throw platform::RuntimeError(number, message);
    case Kind::kSystem:
      throw std::system_error(number, std::generic_category(), message);
    default:
      throw std::runtime_error(message);
  }
}

}  // namespace nimbrel::engine
