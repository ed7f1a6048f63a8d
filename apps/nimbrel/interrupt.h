#pragma once

#include <csignal>
#include <utility>
#include <vector>

namespace nimbrel::cli {

/// While it lives, an interrupt (Ctrl-C) does not end the process but is remembered. One at a time.
class InterruptWatch {
 public:
  /// `signals` are those that count as an interrupt. A hangup that the user has switched off
  /// (nohup) stays off.
  explicit InterruptWatch(const std::vector<int>& signals = {SIGINT});
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

  /// Whether an interrupt has come since the watch began.
  bool Raised() const;

 private:
  std::vector<std::pair<int, struct sigaction>> before_;  // by signal
};

}  // namespace nimbrel::cli
