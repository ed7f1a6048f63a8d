#include "nimbrel/interrupt.h"

#include <csignal>

namespace nimbrel::cli {
namespace {

// A signal handler can reach nothing else.
volatile std::sig_atomic_t interrupted = 0;

void Remember(int /*signal*/) {
  interrupted = 1;
}

}  // namespace

InterruptWatch::InterruptWatch(const std::vector<int>& signals) {
  interrupted = 0;
  struct sigaction action {};
  action.sa_handler = Remember;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  for (const int signal : signals) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (signal == SIGHUP && before.sa_handler == SIG_IGN) {
      continue;
    }
    sigaction(signal, &action, nullptr);
    before_.emplace_back(signal, before);
  }
}

InterruptWatch::~InterruptWatch() {
  for (const auto& [signal, before] : before_) {
    sigaction(signal, &before, nullptr);
  }
}

bool InterruptWatch::Raised() const {
  return interrupted != 0;
}

}  // namespace nimbrel::cli
