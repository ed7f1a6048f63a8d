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

InterruptWatch::InterruptWatch() {
  interrupted = 0;
  struct sigaction action {};
  action.sa_handler = Remember;
  sigemptyset(&action.sa_mask);
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, &before_);
}

InterruptWatch::~InterruptWatch() {
  sigaction(SIGINT, &before_, nullptr);
}

bool InterruptWatch::Raised() const {
  return interrupted != 0;
}

}  // namespace nimbrel::cli
