#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "engine/formats/plan_reader.h"

namespace nimbrel::engine {

/// The moment of an ISO text; absent if it is none.
inline Instant At(const std::string& text) {
  return ParseIsoText(text);
}

/// How often the reader warned with a text that has `part` in it; 0 if it did not.
inline std::int64_t CountOf(const ReadResult& result, std::string_view part) {
  std::int64_t count = 0;
  for (const ReadWarning& warning : result.warnings) {
    count += warning.text.find(part) != std::string::npos ? warning.count : 0;
  }
  return count;
}

/// What the error says that `read` raises; "no error" if it raises none.
template <class Read>
std::string ErrorOf(Read&& read) {
  try {
    read();
  } catch (const FormatError& error) {
    return error.what();
  }
  return "no error";
}

/// The task with an ID; fails the test and gives an empty task if there is none.
inline const Task& TaskOf(const Plan& plan, std::string_view id) {
  static const Task kNone;
  const Task* task = plan.FindTask(id);
  EXPECT_NE(task, nullptr) << "no task " << id;
  return task == nullptr ? kNone : *task;
}

}  // namespace nimbrel::engine
