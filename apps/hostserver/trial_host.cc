#include "hostserver/trial_host.h"

#include <algorithm>
#include <utility>

#include "engine/calendar/instant.h"
#include "engine/risk/random.h"
#include "engine/risk/sampler.h"
#include "engine/schedule/scheduler.h"
#include "platform/runtime_error.h"

namespace nimbrel::hostserver {
namespace {

using platform::RuntimeError;

constexpr const char* kStart = "2027-01-04";

[[noreturn]] void Refuse(const std::string& text) {
  throw RuntimeError(platform::kInvalidProcedureCall, text);
}

bool CarriesWeather(const engine::Task& task) {
  const std::string* role = task.FindUserValue("weather", "tasktype");
  return role != nullptr && !role->empty() && *role != "0";
}

/// Lets the host go from the run, whatever ends it.
class Run {
 public:
  Run(engine::Host& host, engine::RandomStream& stream) : host_(host) {
    host_.SetRandomStream(&stream);
  }
  ~Run() {
    if (host_.get_ActivePlan()) {
      if (host_.iteration_running()) {
        host_.EndIteration();
      }
      host_.SetRandomStream(nullptr);
    }
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

 private:
  engine::Host& host_;
};

}  // namespace

TrialHost::TrialHost()
    : host_(platform::MakeRef<engine::Host>(
          engine::HostOptions{.carries_weather = CarriesWeather, .path = {}})) {}

void TrialHost::NewPlan(std::int32_t time_unit, std::int32_t hours_per_day) {
  if ((time_unit != 1 && time_unit != 24 && time_unit != 96) || hours_per_day < 1 ||
      hours_per_day > 24) {
    Refuse("A plan counts 1, 24 or 96 units a day and works 1 to 24 hours");
  }
  plan_ = {};
  plan_.name = "Trial";
  plan_.title = "Trial plan";
  plan_.time_unit = static_cast<engine::TimeUnit>(time_unit);
  plan_.hours_per_day = hours_per_day;
  plan_.default_calendar =
      plan_.AddCalendar(engine::MakeWeekCalendar("STANDARD", 5, hours_per_day)).uid;
  plan_.start = engine::ParseIsoText(kStart);
}

void TrialHost::RequireBegun() const {
  if (plan_.calendars.empty()) {
    Refuse("There is no plan yet: NewPlan begins one");
  }
}

void TrialHost::AddHoliday(platform::Date day) {
  RequireBegun();
  plan_.calendars.at(0).exceptions[static_cast<std::int32_t>(day.serial)] = {};
}

void TrialHost::AddTask(std::string_view id, double minimum, double likely, double maximum,
                        double probability, std::string_view predecessors) {
  RequireBegun();
  engine::Task task;
  task.id = std::string(id);
  task.calendar = plan_.default_calendar;
  task.remaining_minutes = static_cast<std::int32_t>(likely * plan_.MinutesPerUnit());
  task.original_minutes = task.remaining_minutes;
  task.range = engine::ThreePoint{minimum, likely, maximum, engine::Shape::kTriangular};
  if (probability < 100.0) {
    task.risk = engine::OccurrenceRisk{probability, 0};
  }
  const engine::Uid uid = plan_.AddTask(std::move(task)).uid;
  while (!predecessors.empty()) {
    const std::string_view name = predecessors.substr(0, predecessors.find(','));
    predecessors.remove_prefix(std::min(name.size() + 1, predecessors.size()));
    const engine::Task* predecessor = plan_.FindTask(name);
    if (predecessor == nullptr) {
      Refuse("There is no task " + std::string(name));
    }
    plan_.links.push_back({.predecessor = predecessor->uid, .successor = uid});
  }
}

void TrialHost::OpenPlan() {
  host_->Open(std::exchange(plan_, {}));
}

void TrialHost::ClosePlan() {
  host_->Close();
}

void TrialHost::RunAnalysis(std::int32_t iterations, double seed) {
  if (host_->get_ActivePlan().IsNothing()) {
    platform::RaiseNothing();
  }
  constexpr double kSeeds = 0x1p64;
  if (!(seed >= 0.0 && seed < kSeeds)) {
    Refuse("A seed is a number from 0 up to 2^64");
  }
  const auto number = static_cast<std::uint64_t>(seed);
  engine::RunStream stream(number);
  const Run run(*host_, stream);
  double finishes = 0;
  try {
    host_->RaisePlanBeforeRiskAnalysis();
    engine::Sampler sampler(host_->document(), {.seed = number});
    sampler.Prepare(host_->samples());
    for (std::int32_t iteration = 1; iteration <= iterations; ++iteration) {
      sampler.Sample(iteration, host_->samples());
      stream.Begin(iteration);
      host_->BeginIteration();
      host_->RaisePlanBeforeRiskIteration(iteration);
      host_->ScheduleIteration();
      host_->RaisePlanAfterRiskIteration(iteration);
      finishes += LastFinish();
      host_->EndIteration();
    }
    mean_finish_ = {iterations > 0 ? finishes / iterations : 0.0};
    host_->RaisePlanAfterRiskAnalysis();
  } catch (const engine::SchedulingError& error) {
    throw RuntimeError(platform::kApplicationDefined, error.what());
  }
}

double TrialHost::LastFinish() {
  double last = 0;
  const auto tasks = host_->get_ActivePlan()->get_Tasks();
  for (const engine::Task& task : host_->document().tasks()) {
    if (host_->Participates(task) && task.kind == engine::TaskKind::kTask) {
      last = std::max(last, tasks->Item(task.id)->get_Dates()->get_Finish().serial);
    }
  }
  return last;
}

}  // namespace nimbrel::hostserver
