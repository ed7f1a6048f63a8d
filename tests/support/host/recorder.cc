#include "tests/support/host/recorder.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <utility>

#include "platform/runtime_error.h"

namespace nimbrel::recording {

std::string LogText(bool value) {
  return value ? "True" : "False";
}

std::string LogText(std::int32_t value) {
  return std::to_string(value);
}

std::string LogText(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%g", value);
  return text.data();
}

std::string LogText(platform::Date value) {
  if (value.serial == 0.0) {
    return "0";
  }
  const platform::CivilTime civil = platform::ToCivil(value);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d", civil.year, civil.month, civil.day);
  std::string result = text.data();
  if (civil.hour != 0 || civil.minute != 0 || civil.second != 0) {
    std::snprintf(text.data(), text.size(), "T%02d:%02d:%02d", civil.hour, civil.minute,
                  civil.second);
    result += text.data();
  }
  return result;
}

std::string LogText(std::string_view value) {
  return "\"" + std::string(value) + "\"";
}

std::string LogText(const std::string& value) {
  return LogText(std::string_view(value));
}

std::string LogText(const char* value) {
  return LogText(std::string_view(value));
}

std::string LogText(const platform::Variant& value) {
  if (const auto* truth = value.Get<bool>()) {
    return LogText(*truth);
  }
  if (const auto* whole = value.Get<std::int32_t>()) {
    return LogText(*whole);
  }
  if (const auto* number = value.Get<double>()) {
    return LogText(*number);
  }
  if (const auto* date = value.Get<platform::Date>()) {
    return LogText(*date);
  }
  if (const auto* text = value.Get<std::string>()) {
    return LogText(std::string_view(*text));
  }
  return "Empty";
}

std::vector<std::string> Recorder::Containing(const std::vector<std::string_view>& parts) const {
  std::vector<std::string> found;
  for (const std::string& call : calls_) {
    if (std::any_of(parts.begin(), parts.end(), [&call](std::string_view part) {
          return call.find(part) != std::string::npos;
        })) {
      found.push_back(call);
    }
  }
  return found;
}

void Recorder::FailOn(std::string_view part, int nth, std::int32_t number) {
  faults_.push_back({std::string(part), nth, false, number});
}

void Recorder::FailAlways(std::string_view part, std::int32_t number) {
  faults_.push_back({std::string(part), 1, true, number});
}

void Recorder::Add(std::string text) {
  calls_.push_back(std::move(text));
  const std::string& call = calls_.back();
  for (Fault& fault : faults_) {
    if (call.find(fault.part) == std::string::npos) {
      continue;
    }
    if (fault.always || --fault.remaining == 0) {
      throw platform::RuntimeError(fault.number, "Made to fail: " + call);
    }
  }
}

}  // namespace nimbrel::recording
