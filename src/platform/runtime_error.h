#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace nimbrel::platform {

/// Numbers of the run-time errors that the platform raises itself. A host may raise others.
enum ErrorNumber : std::int32_t {
  kInvalidProcedureCall = 5,
  kOverflow = 6,
  kSubscriptOutOfRange = 9,
  kDivisionByZero = 11,
  kTypeMismatch = 13,
  kObjectNotSet = 91,
  kObjectRequired = 424,
  kCannotCreateObject = 429,
  kMemberNotFound = 438,
  kArgumentNotOptional = 449,
  kWrongNumberOfArguments = 450,
  kDuplicateKey = 457,
  kApplicationDefined = 1004,
};

/// A failing host operation, a failed conversion, an overflow, a missing key: one type, told apart
/// by its number. The text names the object or the value that the error is about.
class RuntimeError : public std::runtime_error {
 public:
  RuntimeError(std::int32_t number, const std::string& text)
      : std::runtime_error(text), number_(number) {}

  std::int32_t number() const noexcept { return number_; }
  std::string text() const { return what(); }

 private:
  std::int32_t number_;
};

/// Raises error 91, "Object variable not set".
[[noreturn]] void RaiseNothing();

/// Runs one statement with its errors ignored: a RuntimeError that it raises is dropped, any other
/// exception goes on. Each statement gets a call of its own, so that the next one still runs.
template <class Statement>
void IgnoreErrors(Statement&& statement) {
  try {
    statement();
  } catch (const RuntimeError&) {  // NOLINT(bugprone-empty-catch): dropping it is the purpose
  }
}

}  // namespace nimbrel::platform
