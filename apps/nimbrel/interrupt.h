#pragma once

#include <csignal>

namespace nimbrel::cli {

/// While it lives, an interrupt (Ctrl-C) does not end the process but is remembered. One at a time.
class InterruptWatch {
 public:
  InterruptWatch();
  ~InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;

  /// Whether an interrupt has come since the watch began.
  bool Raised() const;

 private:
  struct sigaction before_ {};
};

}  // namespace nimbrel::cli
