#pragma once

#include <functional>
#include <map>

#include "engine/plan/plan.h"

namespace nimbrel::test {

/// Which finished tasks stand between unfinished ones, so that where logic is retained the later of
/// these still wait for the earlier. Found by asking from task to task, for plans of a few tasks.
class Passages {
 public:
  using TakesPart = std::function<bool(engine::Uid)>;

  /// `plan` must outlive this. `takes_part` tells ordinary tasks that are scheduled.
  Passages(const engine::Plan& plan, TakesPart takes_part);

  /// Whether the task is finished and passes on what holds it.
  bool IsPassage(const engine::Task& task);
  /// Whether the link leads into or out of a passage and holds something.
  bool Holds(const engine::Link& link);

 private:
  bool IsWaiting(const engine::Task& task);
  bool LeadsOn(const engine::Task& task);
  bool Brings(const engine::Link& link);

  const engine::Plan& plan_;
  TakesPart takes_part_;
  std::map<engine::Uid, bool> is_waiting_;
  std::map<engine::Uid, bool> leads_on_;
};

}  // namespace nimbrel::test
