#include "engine/risk/worker_group.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <system_error>

namespace nimbrel::engine {
namespace {

/// Holds SIGINT back while it lives, so that none comes between the fork and the worker's wish to
/// ignore it.
class InterruptHeldBack {
 public:
  InterruptHeldBack() {
    sigset_t interrupt;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    sigprocmask(SIG_BLOCK, &interrupt, &before_);
  }
  ~InterruptHeldBack() { sigprocmask(SIG_SETMASK, &before_, nullptr); }
  InterruptHeldBack(const InterruptHeldBack&) = delete;
  InterruptHeldBack& operator=(const InterruptHeldBack&) = delete;

 private:
  sigset_t before_{};
};

/// The life of a worker: no handler, buffer or destructor of the parent's runs at its end.
[[noreturn]] void Live(std::int32_t number, pid_t parent,
                       const std::function<void(std::int32_t)>& work) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) {
    _exit(1);  // the parent died before it could be heard of
  }
  try {
    work(number);
  } catch (...) {
    _exit(1);
  }
  _exit(0);
}

}  // namespace

WorkerGroup::WorkerGroup(std::int32_t count, const std::function<void(std::int32_t)>& work) {
  try {
    for (std::int32_t number = 0; number < count; ++number) {
      Start(number, work);
    }
  } catch (...) {
    KillAll();
    throw;
  }
}

WorkerGroup::~WorkerGroup() {
  KillAll();
}

void WorkerGroup::KillAll() {
  for (const Worker& worker : workers_) {
    kill(worker.process, SIGKILL);
  }
  for (const Worker& worker : workers_) {
    Reap(worker);
  }
  workers_.clear();
}

void WorkerGroup::Start(std::int32_t number, const std::function<void(std::int32_t)>& work) {
  std::array<int, 2> life{};
  if (pipe2(life.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "No pipe for a worker");
  }
  const pid_t parent = getpid();
  pid_t process = 0;
  int error = 0;
  {
    const InterruptHeldBack held_back;
    process = fork();
    error = errno;
    if (process == 0) {
      // Who interrupts the program interrupts all of its processes; the parent decides.
      signal(SIGINT, SIG_IGN);
    }
  }
  if (process == 0) {
    close(life[0]);
    for (const Worker& other : workers_) {
      close(other.life);
    }
    Live(number, parent, work);
  }
  close(life[1]);
  if (process < 0) {
    close(life[0]);
    throw std::system_error(error, std::generic_category(), "Cannot start a worker");
  }
  workers_.push_back({number, process, life[0]});
}

bool WorkerGroup::Wait(int milliseconds) {
  std::vector<pollfd> lives;
  for (const Worker& worker : workers_) {
    lives.push_back({.fd = worker.life, .events = POLLIN, .revents = 0});
  }
  if (!lives.empty() && poll(lives.data(), lives.size(), milliseconds) > 0) {
    std::vector<Worker> alive;
    for (std::size_t i = 0; i < lives.size(); ++i) {
      if (lives[i].revents != 0) {
        Reap(workers_[i]);
      } else {
        alive.push_back(workers_[i]);
      }
    }
    workers_ = std::move(alive);
  }
  return !workers_.empty();
}

void WorkerGroup::Reap(const Worker& worker) {
  close(worker.life);
  int status = 0;
  while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFSIGNALED(status)) {
    deaths_.push_back({.worker = worker.number, .signal = WTERMSIG(status)});
  } else if (WEXITSTATUS(status) != 0) {
    deaths_.push_back({.worker = worker.number, .status = WEXITSTATUS(status)});
  }
}

}  // namespace nimbrel::engine
