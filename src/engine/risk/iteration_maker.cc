#include "engine/risk/iteration_maker.h"

#include <stdexcept>

#include "engine/schedule/telling.h"

namespace nimbrel::engine {

IterationMaker::IterationMaker(const RunInputs& inputs)
    : inputs_(inputs),
      stream_(inputs.options.seed),
      first_constraints_(inputs.layout.no_split.size()) {}

IterationMaker::~IterationMaker() {
  attached_.reset();
}

void IterationMaker::Start() {
  host_ = MakeHost(inputs_.plan, inputs_.wiring.host);
  if (inputs_.wiring.attach) {
    attached_ = inputs_.wiring.attach(*host_);
  }
  host_->SetRandomStream(&stream_);
  stream_.Begin(0);
  host_->RaisePlanBeforeRiskAnalysis();
  // Receivers may complete the plan before the first iteration, so it is read only now.
  sampler_.emplace(host_->document(), inputs_.layout.design,
                   inputs_.layout.tied.has_value() ? &*inputs_.layout.tied : nullptr);
  sampler_->Prepare(host_->samples());
}

void IterationMaker::Make(std::int32_t number) {
  IterationSamples& samples = host_->samples();
  if (samples.units.size() != sampler_->task_count()) {
    throw std::logic_error("Tasks were added to the plan or removed from it during the run.");
  }
  sampler_->Sample(number, samples);
  stream_.Begin(number);
  host_->BeginIteration();
  host_->RaisePlanBeforeRiskIteration(number);
  host_->ScheduleIteration();
  NoteConstraints();
  host_->RaisePlanAfterRiskIteration(number);
}

void IterationMaker::NoteConstraints() {
  const std::vector<TaskIndex>& tasks = inputs_.layout.no_split;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    first_constraints_[i] = ConstraintOf(host_->scheduler(), tasks[i]);
  }
}

void IterationMaker::FindPushed(std::vector<HeldTask>& pushed) const {
  const Scheduler& scheduler = host_->scheduler();
  const std::vector<TaskIndex>& tasks = inputs_.layout.no_split;
  pushed.clear();
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    const Instant by_links = StartUnder(scheduler, tasks[i], first_constraints_[i]);
    if (by_links.Minutes() < scheduler.early_start(tasks[i]).Minutes()) {
      pushed.push_back({tasks[i], by_links});
    }
  }
}

void IterationMaker::End() {
  host_->EndIteration();
}

void IterationMaker::Finish() {
  host_->RaisePlanAfterRiskAnalysis();
}

}  // namespace nimbrel::engine
