#pragma once

#include <vector>

#include "engine/schedule/network.h"

namespace nimbrel::engine {

/// Schedules all unfinished tasks. Raises SchedulingError.
void RunForward(Network& network);
/// Schedules the unfinished tasks that are dirty and those that changes of their dates reach. The
/// same dates as RunForward. Raises SchedulingError.
void RunChanged(Network& network);

/// Latest early finish; the status date if there are no tasks.
Instant FinishOfPlan(Network& network);

/// Whether the link alone holds its successor where it starts.
bool IsDriving(Network& network, Slot slot, const InLink& link);

/// Whether the link alone would hold its successor at a start that it has, or once had.
bool IsDrivingTo(Network& network, Slot slot, const InLink& link, Instant start);

/// The moment of a task without work that may not come before `moment`. A start milestone stands
/// at the start of work. Any other stands at the end of work, unless it would come too early there.
Instant MomentWithoutWork(WorkTable& table, Instant moment, TaskKind kind);

}  // namespace nimbrel::engine
