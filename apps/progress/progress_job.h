#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/posix/descriptor.h"
#include "platform/settings_store.h"

namespace nimbrel::progress {

/// A thread of any process of this machine, told apart from a later one of the same number.
class WatchedThread {
 public:
  /// A number that is not above 0 is of no thread.
  explicit WatchedThread(std::int32_t number);

  /// Whether it has ended. What cannot be watched is never known to have.
  bool HasEnded() const;

 private:
  bool ended_ = false;
  platform::Descriptor folder_;  // of what the system tells of it
};

/// The job that the tool shows the progress of, as the one who runs it tells of it in the user's
/// settings.
class ProgressJob {
 public:
  /// `settings` must outlive the job. Reads whose thread it is once, here.
  explicit ProgressJob(const platform::SettingsStore& settings);

  /// Whether the job runs, now: it was not ended, and the thread that runs it is there.
  bool Runs() const;
  /// The text to show, now; may be empty.
  std::string Label() const;
  /// The host's main window, 0 if it has none.
  std::int32_t Window() const;

 private:
  std::string Option(const char* key, const char* default_value) const;
  std::int32_t Number(const char* key) const;

  const platform::SettingsStore& settings_;
  WatchedThread owner_;
};

}  // namespace nimbrel::progress
