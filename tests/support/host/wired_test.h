#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/runtime_error.h"
#include "tests/support/host/recording_host.h"

namespace nimbrel::recording {

/// Base of tests of what runs in a host: the process's application is that of a recording host, the
/// locale English.
class WiredTest : public ::testing::Test {
 protected:
  WiredTest() { Wire(platform::DefaultLocale()); }
  ~WiredTest() override { modGlobal::Wire({}); }

  void Wire(const platform::Locale& locale) {
    modGlobal::Wire({[this] { return host_.application(); }, locale});
  }

  PlanState& plan() { return host_.plan(); }
  Recorder& recorder() { return host_.recorder(); }
  const std::vector<std::string>& calls() { return recorder().calls(); }

  /// The number of the run-time error that the statement raises, 0 if it raises none.
  static std::int32_t ErrorOf(const std::function<void()>& statement) {
    try {
      statement();
    } catch (const platform::RuntimeError& error) {
      return error.number();
    }
    return 0;
  }

  RecordingHost host_;
};

}  // namespace nimbrel::recording
