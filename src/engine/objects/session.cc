#include "engine/objects/session.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/objects/calendar_object.h"
#include "engine/objects/plan_object.h"
#include "engine/objects/task_object.h"

namespace nimbrel::engine {
namespace {

/// Half to even, inline: it is done for every task in every iteration. Adding and taking away a
/// number whose last binary place is 1 rounds by the processor's own rule.
std::int32_t RoundToMinutes(double minutes) {
  constexpr double kWholeNumbers = 6755399441055744.0;  // 1.5 * 2^52
  if (!(minutes > 0)) {
    return 0;
  }
  if (minutes >= std::numeric_limits<std::int32_t>::max()) {
    return std::numeric_limits<std::int32_t>::max();
  }
  return static_cast<std::int32_t>((minutes + kWholeNumbers) - kWholeNumbers);
}

/// The object at a position, made if it is missing.
template <class Object, class... Args>
Object& ObjectAt(std::vector<std::unique_ptr<Object>>& objects, std::int32_t position,
                 PlanSession& session, Uid uid) {
  auto& object = objects[static_cast<std::size_t>(position)];
  if (object == nullptr) {
    object = std::make_unique<Object>(session, uid);
  }
  return *object;
}

/// Takes the object at a position out of the plan's objects; it is kept for those who hold it.
template <class Object>
void Retire(std::vector<std::unique_ptr<Object>>& objects,
            std::vector<std::unique_ptr<Object>>& removed, std::int32_t position) {
  auto& object = objects[static_cast<std::size_t>(position)];
  if (object != nullptr) {
    object->Detach();
    removed.push_back(std::move(object));
  }
  objects.erase(objects.begin() + position);
}

template <class Items>
std::int32_t PositionOfUid(const Items& items, Uid uid) {
  const auto found =
      std::find_if(items.begin(), items.end(), [uid](const auto& item) { return item.uid == uid; });
  return found == items.end() ? -1 : static_cast<std::int32_t>(found - items.begin());
}

}  // namespace

double DefaultRandomStream::Next() {
  std::uint64_t bits = ++counter_ * 0x9E3779B97F4A7C15U;
  bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9U;
  bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBU;
  bits ^= bits >> 31;
  return static_cast<double>(bits >> 11) * 0x1.0p-53;
}

PlanSession::PlanSession(Plan plan, Scheduler::Participates participates)
    : plan_(std::move(plan)),
      participates_(std::move(participates)),
      plan_object_(std::make_unique<PlanObject>(*this)),
      tasks_(plan_.tasks().size()),
      calendars_(plan_.calendars.size()),
      risk_calendars_(plan_.risk_calendars.size()) {}

PlanSession::~PlanSession() = default;

const Plan& PlanSession::Document() {
  for (const auto& calendar : calendars_) {
    if (calendar != nullptr) {
      calendar->WriteTakenDays();
    }
  }
  return plan_;
}

// What was changed.

void PlanSession::StructureChanged() {
  compiled_ = false;
  changed_ = true;
}

void PlanSession::LikelyChanged(const Task& task, std::int32_t position) {
  changed_ = true;
  if (compiled_ && !sampled_ && IndexAt(position) >= 0) {
    scheduler_->SetRemaining(IndexAt(position), LikelyMinutes(task));
  }
}

void PlanSession::ConstraintChanged(const Task& task, std::int32_t position) {
  changed_ = true;
  if (compiled_ && IndexAt(position) >= 0) {
    scheduler_->SetConstraint(IndexAt(position), task.constraint);
  }
}

void PlanSession::DaysTaken(CalendarIndex calendar, std::int32_t first, std::int32_t last) {
  changed_ = true;
  if (compiled_) {
    scheduler_->TakeDays(calendar, first, last);
  }
}

void PlanSession::DaysGiven(CalendarIndex calendar, std::int32_t first, std::int32_t last) {
  changed_ = true;
  if (compiled_) {
    scheduler_->GiveDays(calendar, first, last);
  }
}

TaskObject& PlanSession::AddTask() {
  Task task;
  task.id = plan_.FreshTaskId();
  plan_.AddTask(std::move(task));
  tasks_.emplace_back();
  ++generation_;
  StructureChanged();
  return TaskAt(static_cast<std::int32_t>(tasks_.size()) - 1);
}

void PlanSession::RemoveTask(std::int32_t position) {
  Retire(tasks_, removed_tasks_, position);
  if (samples_.units.size() == plan_.tasks().size()) {
    samples_.units.erase(samples_.units.begin() + position);
    samples_.skipped.erase(samples_.skipped.begin() + position);
  }
  plan_.RemoveTask(plan_.tasks()[static_cast<std::size_t>(position)].uid);
  ++generation_;
  StructureChanged();
}

void PlanSession::MoveToEnd(std::int32_t position) {
  const auto rotate = [position](auto& items) {
    std::rotate(items.begin() + position, items.begin() + position + 1, items.end());
  };
  plan_.MoveTaskToEnd(plan_.tasks()[static_cast<std::size_t>(position)].uid);
  rotate(tasks_);
  if (samples_.units.size() == plan_.tasks().size()) {
    rotate(samples_.units);
    rotate(samples_.skipped);
  }
  ++generation_;
  StructureChanged();
}

CalendarObject& PlanSession::AddCalendar(CalendarDefinition definition) {
  plan_.AddCalendar(std::move(definition));
  calendars_.emplace_back();
  ++generation_;
  StructureChanged();
  return CalendarAt(static_cast<std::int32_t>(calendars_.size()) - 1);
}

void PlanSession::RemoveCalendar(std::int32_t position) {
  const Uid uid = plan_.calendars[static_cast<std::size_t>(position)].uid;
  Retire(calendars_, removed_calendars_, position);
  plan_.calendars.erase(plan_.calendars.begin() + position);
  for (std::size_t i = 0; i < tasks_.size(); ++i) {
    Task& task = *plan_.FindTask(plan_.tasks()[i].uid);
    if (task.calendar == uid) {
      task.calendar = 0;
    }
  }
  for (RiskCalendarDefinition& calendar : plan_.risk_calendars) {
    if (calendar.calendar == uid) {
      calendar.calendar = 0;
    }
  }
  ++generation_;
  StructureChanged();
}

RiskCalendarObject& PlanSession::AddRiskCalendar(RiskCalendarDefinition definition) {
  definition.uid = plan_.FreshUid();
  plan_.risk_calendars.push_back(std::move(definition));
  risk_calendars_.emplace_back();
  return RiskCalendarAt(static_cast<std::int32_t>(risk_calendars_.size()) - 1);
}

void PlanSession::RemoveRiskCalendar(std::int32_t position) {
  const Uid uid = plan_.risk_calendars[static_cast<std::size_t>(position)].uid;
  Retire(risk_calendars_, removed_risk_calendars_, position);
  plan_.risk_calendars.erase(plan_.risk_calendars.begin() + position);
  for (std::size_t i = 0; i < tasks_.size(); ++i) {
    Task& task = *plan_.FindTask(plan_.tasks()[i].uid);
    std::erase_if(task.risk_calendars,
                  [uid](const RiskAssignment& assigned) { return assigned.risk_calendar == uid; });
  }
  StructureChanged();
}

// Objects.

TaskObject& PlanSession::TaskAt(std::int32_t position) {
  return ObjectAt(tasks_, position, *this, plan_.tasks()[static_cast<std::size_t>(position)].uid);
}

CalendarObject& PlanSession::CalendarAt(std::int32_t position) {
  return ObjectAt(calendars_, position, *this,
                  plan_.calendars[static_cast<std::size_t>(position)].uid);
}

RiskCalendarObject& PlanSession::RiskCalendarAt(std::int32_t position) {
  return ObjectAt(risk_calendars_, position, *this,
                  plan_.risk_calendars[static_cast<std::size_t>(position)].uid);
}

CalendarObject* PlanSession::FindCalendar(Uid uid) {
  const std::int32_t position = CalendarPosition(uid);
  return position < 0 ? nullptr : &CalendarAt(position);
}

RiskCalendarObject* PlanSession::FindRiskCalendar(Uid uid) {
  const std::int32_t position = PositionOfUid(plan_.risk_calendars, uid);
  return position < 0 ? nullptr : &RiskCalendarAt(position);
}

std::int32_t PlanSession::CalendarPosition(Uid uid) const {
  return PositionOfUid(plan_.calendars, uid);
}

// Scheduling.

void PlanSession::Compile() {
  scheduler_ = Scheduler(Document(), participates_);
  index_of_position_.clear();
  for (const Task& task : plan_.tasks()) {
    index_of_position_.push_back(scheduler_->IndexOf(task.uid));
  }
  compiled_ = true;
  scheduled_ = false;
  late_current_ = false;
  sampled_ = false;
  if (in_iteration_) {
    ApplySamples();
  }
}

void PlanSession::Schedule(bool only_changed) {
  Scheduler& scheduler = Compiled();
  if (!in_iteration_ && sampled_) {
    RestoreLikely();
  }
  const bool again = scheduled_ && only_changed;
  late_current_ = false;
  scheduled_ = false;  // stays so if the pass fails
  if (again) {
    scheduler.ScheduleChanged();
  } else {
    scheduler.ScheduleForward();
  }
  scheduled_ = true;
  changed_ = false;
}

void PlanSession::Recalculate() {
  Schedule(in_iteration_);
}

void PlanSession::RecalculateFinish() {
  if (!compiled_ || !scheduled_) {
    Schedule(false);
  }
  scheduler_->ScheduleBackward();
  late_current_ = true;
}

Scheduler& PlanSession::WithDates() {
  const bool by_itself = changed_ && auto_recalculate_ && !in_iteration_;
  if (!scheduled_ || by_itself) {
    Schedule(true);
  }
  return *scheduler_;
}

Scheduler& PlanSession::WithLateDates() {
  Scheduler& scheduler = WithDates();
  if (!late_current_) {
    scheduler.ScheduleBackward();
    late_current_ = true;
  }
  return scheduler;
}

std::int32_t PlanSession::LikelyMinutes(const Task& task) const {
  return std::max(0, plan_.LikelyMinutes(task));
}

void PlanSession::RestoreLikely() {
  for (std::size_t i = 0; i < index_of_position_.size(); ++i) {
    if (index_of_position_[i] >= 0) {
      scheduler_->SetRemaining(index_of_position_[i], LikelyMinutes(plan_.tasks()[i]));
    }
  }
  sampled_ = false;
}

// A risk run.

IterationSamples& PlanSession::samples() {
  if (samples_.units.size() != plan_.tasks().size()) {
    samples_.units.resize(plan_.tasks().size());
    samples_.skipped.resize(plan_.tasks().size());
  }
  return samples_;
}

void PlanSession::BeginIteration() {
  samples();
  Compiled();
  in_iteration_ = true;
}

void PlanSession::EndIteration() {
  in_iteration_ = false;
  changed_ = changed_ || sampled_;
}

void PlanSession::ApplySamples() {
  Scheduler& scheduler = Compiled();
  const IterationSamples& sampled = samples();
  const double minutes = plan_.MinutesPerUnit();
  for (std::size_t i = 0; i < index_of_position_.size(); ++i) {
    if (index_of_position_[i] >= 0) {
      scheduler.SetRemaining(
          index_of_position_[i],
          sampled.skipped[i] != 0 ? 0 : RoundToMinutes(sampled.units[i] * minutes));
    }
  }
  sampled_ = true;
  changed_ = true;
}

void PlanSession::ScheduleIteration() {
  ApplySamples();
  Schedule(false);
}

void PlanSession::SetConstraint(Uid task, const Constraint& constraint) {
  const std::int32_t position = plan_.IndexOf(task);
  Task& data = *plan_.FindTask(task);
  data.constraint = constraint;
  ConstraintChanged(data, position);
}

void PlanSession::SetRandomStream(RandomStream* stream) {
  random_ = stream;
  if (stream == nullptr) {
    default_random_ = DefaultRandomStream();
  }
}

double PlanSession::SampledUnits(const Task& task, std::int32_t position) const {
  if (!in_iteration_ || position < 0) {
    return task.range ? task.range->likely : plan_.RemainingUnits(task);
  }
  return IsSkipped(position) ? 0.0 : samples_.units[static_cast<std::size_t>(position)];
}

}  // namespace nimbrel::engine
