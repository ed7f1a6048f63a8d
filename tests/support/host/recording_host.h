#pragma once

#include <cstdint>
#include <memory>

#include "host/corvane8.h"
#include "tests/support/host/plan_state.h"
#include "tests/support/host/recorder.h"

namespace nimbrel::recording {

/// A small host in memory for tests: every operation of the object library works on a plan of plain
/// data, is written down in its order, and can be made to fail.
///
/// Objects are labelled in the log by their ID or name: "Task(A).ID", "TaskDates(A).Start",
/// "Calendar(NORTH SEA).SetDays 0 2027-01-03 0". The objects stay valid after the host has ended.
class RecordingHost {
 public:
  RecordingHost();

  Corvane8::Ref<Corvane8::Application> application() const { return application_; }
  Recorder& recorder() const { return *recorder_; }

  /// The active plan's data; a host starts with a plan of MakePlanState.
  PlanState& plan() const { return *plan_; }
  /// The active plan's object, without a call in the log.
  Corvane8::Ref<Corvane8::Plan> plan_object() const;
  /// Closes the active plan; there is none until OpenPlan.
  void ClosePlan();
  /// Makes `plan` the active one.
  void OpenPlan(std::shared_ptr<PlanState> plan);

  /// Objects for what the state holds, without a call in the log.
  Corvane8::Ref<Corvane8::Task> TaskObject(std::string_view id) const;
  Corvane8::Ref<Corvane8::Calendar> CalendarObject(std::string_view name) const;

  /// Runs an analysis of the active plan with its events. An error of a receiver or of a call ends
  /// the run and goes on to the caller.
  void RunAnalysis(std::int32_t iterations, std::uint64_t seed = 1);

 private:
  class ApplicationFace;

  std::shared_ptr<Recorder> recorder_;
  std::shared_ptr<PlanState> plan_;
  ApplicationFace* face_;  // what application_ refers to
  Corvane8::Ref<Corvane8::Application> application_;
};

}  // namespace nimbrel::recording
