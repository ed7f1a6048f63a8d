#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "engine/objects/host.h"
#include "engine/risk/random.h"
#include "engine/risk/run.h"
#include "engine/risk/run_layout.h"
#include "engine/risk/sampler.h"
#include "engine/schedule/telling.h"

namespace nimbrel::engine {

/// What is the same for all who make iterations of a run; nothing of it is kept beyond the run.
struct RunInputs {
  const Plan& plan;
  const RunOptions& options;
  const RunWiring& wiring;
  const RunLayout& layout;
};

/// Makes single iterations of a run, in any order, with a host and a plan of its own. An iteration
/// is the same whoever makes it, and whatever was made before it.
class IterationMaker {
 public:
  explicit IterationMaker(const RunInputs& inputs);
  /// Whoever is attached is let go before the host.
  ~IterationMaker();
  IterationMaker(const IterationMaker&) = delete;
  IterationMaker& operator=(const IterationMaker&) = delete;

  /// Everything up to PlanBeforeRiskAnalysis.
  void Start();
  /// An iteration up to PlanAfterRiskIteration; `number` counts from 1. Its schedule stands until
  /// End.
  void Make(std::int32_t number);
  void End();
  /// PlanAfterRiskAnalysis.
  void Finish();

  Host& host() { return *host_; }
  /// The constraints that the tasks that must not be split had when they were first scheduled in
  /// the iteration, before any was pushed. In the layout's order.
  std::span<const Constraint> first_constraints() const { return first_constraints_; }
  /// Of these tasks, those that stand later now than their links hold them, since they were pushed.
  void FindPushed(std::vector<HeldTask>& pushed) const;

 private:
  void NoteConstraints();

  const RunInputs& inputs_;
  platform::Ref<Host> host_;
  std::shared_ptr<void> attached_;
  RunStream stream_;
  std::optional<Sampler> sampler_;
  std::vector<Constraint> first_constraints_;
};

}  // namespace nimbrel::engine
