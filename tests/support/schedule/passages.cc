#include "tests/support/schedule/passages.h"

#include <algorithm>
#include <utility>

namespace nimbrel::test {

using engine::Link;
using engine::LinkType;
using engine::Task;

Passages::Passages(const engine::Plan& plan, TakesPart takes_part)
    : plan_(plan), takes_part_(std::move(takes_part)) {}

bool Passages::IsPassage(const Task& task) {
  return plan_.schedule.progress == engine::ProgressRule::kRetainedLogic &&
         plan_.schedule.remaining_from_data_date && task.IsFinished() && IsWaiting(task) &&
         LeadsOn(task);
}

bool Passages::Holds(const Link& link) {
  if (!takes_part_(link.predecessor) || !takes_part_(link.successor)) {
    return false;
  }
  const Task& from = *plan_.FindTask(link.predecessor);
  const Task& to = *plan_.FindTask(link.successor);
  return (IsPassage(to) && Brings(link)) || (IsPassage(from) && !to.IsFinished());
}

/// Whether the link makes its successor, a finished task, wait for anything unfinished. The start
/// of a task that has started is behind it.
bool Passages::Brings(const Link& link) {
  if (!takes_part_(link.predecessor)) {
    return false;
  }
  const Task& from = *plan_.FindTask(link.predecessor);
  const bool from_start =
      link.type == LinkType::kStartToStart || link.type == LinkType::kStartToFinish;
  return from.IsFinished() ? IsWaiting(from) && LeadsOn(from) : !(from_start && from.IsStarted());
}

bool Passages::IsWaiting(const Task& task) {
  const auto known = is_waiting_.find(task.uid);
  if (known != is_waiting_.end()) {
    return known->second;
  }
  const bool waits = std::any_of(plan_.links.begin(), plan_.links.end(), [&](const Link& link) {
    return link.successor == task.uid && takes_part_(link.predecessor) && Brings(link);
  });
  return is_waiting_[task.uid] = waits;
}

bool Passages::LeadsOn(const Task& task) {
  const auto known = leads_on_.find(task.uid);
  if (known != leads_on_.end()) {
    return known->second;
  }
  const bool leads = std::any_of(plan_.links.begin(), plan_.links.end(), [&](const Link& link) {
    if (link.predecessor != task.uid || !takes_part_(link.successor)) {
      return false;
    }
    const Task& to = *plan_.FindTask(link.successor);
    return !to.IsFinished() || LeadsOn(to);
  });
  return leads_on_[task.uid] = leads;
}

}  // namespace nimbrel::test
