#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <vector>

namespace nimbrel::engine {

/// Processes forked from this one that each do one piece of work and end. Workers ignore SIGINT,
/// and end with this process. No worker outlives the group.
class WorkerGroup {
 public:
  /// How a worker ended that did not finish its work.
  struct Death {
    std::int32_t worker = 0;
    int signal = 0;  // 0: it ended by itself, with `status`
    int status = 0;
  };

  /// Starts `count` workers; each calls `work` with its number from 0. What it raises ends the
  /// worker with status 1. Raises std::system_error if a process cannot be started.
  WorkerGroup(std::int32_t count, const std::function<void(std::int32_t)>& work);
  /// Kills the workers that are left.
  ~WorkerGroup();
  WorkerGroup(const WorkerGroup&) = delete;
  WorkerGroup& operator=(const WorkerGroup&) = delete;

  /// Waits until a worker has ended, or for so many milliseconds. False when none is left.
  bool Wait(int milliseconds);
  /// Workers that died so far, in the order of their ends.
  const std::vector<Death>& deaths() const { return deaths_; }

 private:
  struct Worker {
    std::int32_t number;
    pid_t process;
    int life;  // reading end of a pipe that the worker keeps open as long as it lives
  };

  void Start(std::int32_t number, const std::function<void(std::int32_t)>& work);
  void KillAll();
  void Reap(const Worker& worker);

  std::vector<Worker> workers_;  // that have not ended
  std::vector<Death> deaths_;
};

}  // namespace nimbrel::engine
