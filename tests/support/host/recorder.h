#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/corvane8.h"

namespace nimbrel::recording {

/// How a value stands in the log: texts in quotes, dates as "2027-01-03" or "2027-01-03T08:00:00"
/// and date zero as "0", truth values as "True" and "False".
std::string LogText(bool value);
std::string LogText(std::int32_t value);
std::string LogText(double value);
std::string LogText(platform::Date value);
std::string LogText(std::string_view value);
std::string LogText(const std::string& value);
std::string LogText(const char* value);
std::string LogText(const platform::Variant& value);

/// Writes down every operation of a host in its order, and makes chosen ones fail.
class Recorder {
 public:
  /// The calls so far, each as "Object(label).Operation argument...", a put as
  /// "Object(label).Operation = value".
  const std::vector<std::string>& calls() const { return calls_; }
  void Clear() { calls_.clear(); }

  /// The calls whose text contains one of `parts`, in their order.
  std::vector<std::string> Containing(const std::vector<std::string_view>& parts) const;

  /// Makes the `nth` call from now on whose text contains `part` raise error `number`. The failing
  /// call is written down and has no effect.
  void FailOn(std::string_view part, int nth = 1, std::int32_t number = 1004);

  /// Makes every later call whose text contains `part` fail.
  void FailAlways(std::string_view part, std::int32_t number = 1004);

  /// Writes a call down; raises when it is to fail.
  template <class... Args>
  void Call(const std::string& object, std::string_view operation, const Args&... args) {
    std::string text = object + "." + std::string(operation);
    ((text += " " + LogText(args)), ...);
    Add(std::move(text));
  }
  template <class Value>
  void Put(const std::string& object, std::string_view operation, const Value& value) {
    Add(object + "." + std::string(operation) + " = " + LogText(value));
  }
  /// A put or an argument of an object, written by its label without quotes.
  void PutObject(const std::string& object, std::string_view operation, std::string_view label) {
    Add(object + "." + std::string(operation) + " = " + std::string(label));
  }

 private:
  struct Fault {
    std::string part;
    int remaining = 1;
    bool always = false;
    std::int32_t number = 0;
  };
  void Add(std::string text);

  std::vector<std::string> calls_;
  std::vector<Fault> faults_;
};

}  // namespace nimbrel::recording
