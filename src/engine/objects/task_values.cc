// What a task carries: dates and constraint, texts and custom fields, estimate and risk.

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/objects/task_object.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

using Corvane8::Long;
using platform::Date;
using platform::RuntimeError;
using platform::Variant;

/// The progress in percent of a task that has begun and says nothing of how far it is: other than
/// zero, since that is how readers tell a task that has begun.
constexpr double kBegun = 1.0;

/// The date of a moment; that of the status date where there is none.
Date DateOr(Instant instant, const Plan& plan) {
  if (instant.IsAbsent()) {
    instant = plan.StatusDate();
  }
  return instant.IsAbsent() ? Date{} : instant.ToDate();
}

/// The constraint as far as it has an effect.
Constraint EffectOf(const Constraint& constraint) {
  switch (constraint.type) {
    case ConstraintType::kNone:
      return {};
    case ConstraintType::kAsLateAsPossible:
      return {ConstraintType::kAsLateAsPossible, {}};
    default:
      return constraint.date.IsAbsent() ? Constraint{} : constraint;
  }
}

/// The value of a field, or null. Nearly always the name is written as the field's own, so that is
/// tried first: comparing without case takes longer.
const CustomValue* FindCustom(const Task& task, std::string_view name) {
  const auto& values = task.custom_values;
  auto found = std::find_if(values.begin(), values.end(),
                            [name](const CustomValue& value) { return value.field == name; });
  if (found == values.end()) {
    found = std::find_if(values.begin(), values.end(), [name](const CustomValue& value) {
      return platform::EqualsIgnoreCase(value.field, name);
    });
  }
  return found == values.end() ? nullptr : &*found;
}

}  // namespace

// Dates.

Date TaskDatesObject::get_Start() {
  task().RequireInPlan();
  const Task& data = task().Data();
  return Guarded(data, [&] {
    const Scheduler& scheduler = session().WithDates();
    const TaskIndex index = session().DatesIndex(data, task().position());
    return DateOr(index < 0 ? Instant() : scheduler.early_start(index), session().plan());
  });
}

Date TaskDatesObject::get_Finish() {
  task().RequireInPlan();
  const Task& data = task().Data();
  return Guarded(data, [&] {
    const Scheduler& scheduler = session().WithDates();
    const TaskIndex index = session().DatesIndex(data, task().position());
    return DateOr(index < 0 ? Instant() : scheduler.early_finish(index), session().plan());
  });
}

double TaskDatesObject::get_Progress() {
  const Task& data = task().Data();
  if (data.IsFinished()) {
    return 100.0;
  }
  return data.percent_complete == 0.0 && data.IsStarted() ? kBegun : data.percent_complete;
}

const Constraint& TaskDatesObject::Wanted() {
  if (!wanted_read_) {
    wanted_ = task().Data().constraint;
    wanted_read_ = true;
  }
  return wanted_;
}

void TaskDatesObject::Apply() {
  Task& data = task().Data();
  const Constraint effect = EffectOf(wanted_);
  if (data.constraint == effect) {
    return;
  }
  data.constraint = effect;
  if (task().in_plan()) {
    session().ConstraintChanged(data, task().position());
  }
}

void TaskDatesObject::put_ConstraintDate(Date value) {
  Instant date;
  if (value.serial != 0.0) {
    DayIn(value);  // raises for what is no date
    date = Instant::FromDate(value);
  }
  Wanted();
  wanted_.date = date;
  Apply();
}

void TaskDatesObject::put_Constraint(Long value) {
  constexpr Long kLast = static_cast<Long>(ConstraintType::kAsLateAsPossible);
  if (value < 0 || value > kLast) {
    throw RuntimeError(platform::kInvalidProcedureCall, "The constraint of a task must be 0 to " +
                                                            std::to_string(kLast) + ", not " +
                                                            std::to_string(value));
  }
  Wanted();
  wanted_.type = static_cast<ConstraintType>(value);
  Apply();
}

// Texts and custom fields.

Variant UserFieldsObject::GetCustom(std::string_view name) {
  const CustomValue* value = FindCustom(task().Data(), name);
  return value == nullptr ? Variant() : value->value;
}

void UserFieldsObject::SetCustom(std::string_view name, const Variant& value) {
  const auto& fields = session().plan().custom_fields;
  const auto field = std::find_if(fields.begin(), fields.end(), [name](const CustomField& known) {
    return platform::EqualsIgnoreCase(known.name, name);
  });
  if (field == fields.end()) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "The plan has no custom field \"" + std::string(name) + "\"");
  }
  task().ChangeIdentity([&] {
    std::vector<CustomValue>& values = task().Data().custom_values;
    std::erase_if(values, [&](const CustomValue& old) {
      return platform::EqualsIgnoreCase(old.field, name);
    });
    if (!value.IsEmpty()) {
      values.push_back({field->name, value});
    }
  });
}

void UserFieldsObject::SetValue(Long /*two*/, std::string_view section, std::string_view key,
                                std::string_view value) {
  task().ChangeIdentity([&] {
    std::vector<UserValue>& values = task().Data().user_values;
    const auto found = std::find_if(values.begin(), values.end(), [&](const UserValue& old) {
      return platform::EqualsIgnoreCase(old.section, section) &&
             platform::EqualsIgnoreCase(old.key, key);
    });
    if (found != values.end()) {
      found->value = value;
    } else {
      values.push_back({std::string(section), std::string(key), std::string(value)});
    }
  });
}

std::string UserFieldsObject::GetValue(Long /*two*/, std::string_view section, std::string_view key,
                                       std::string_view default_value) {
  const std::string* value = task().Data().FindUserValue(section, key);
  return value == nullptr ? std::string(default_value) : *value;
}

// Estimate.

double DurationObject::Get(double ThreePoint::*point) {
  return task().Data().range.value().*point;
}

void DurationObject::Put(double ThreePoint::*point, double value) {
  Task& data = task().Data();
  const Plan& plan = session().plan();
  if (!(std::abs(value) * plan.MinutesPerUnit() <= std::numeric_limits<std::int32_t>::max())) {
    throw RuntimeError(platform::kOverflow,
                       "A duration of the task " + data.id + " is too long or no number");
  }
  ThreePoint& range = data.range.value();
  range.*point = value;
  if (range.shape == Shape::kSingle &&
      (range.minimum != range.likely || range.maximum != range.likely)) {
    range.shape = Shape::kTriangular;
  }
  if (task().in_plan()) {
    session().LikelyChanged(data, task().position());
  }
}

void DurationObject::put_Likely(double value) {
  Put(&ThreePoint::likely, value);
}
double DurationObject::get_Likely() {
  return Get(&ThreePoint::likely);
}
void DurationObject::put_Maximum(double value) {
  Put(&ThreePoint::maximum, value);
}
double DurationObject::get_Maximum() {
  return Get(&ThreePoint::maximum);
}
void DurationObject::put_Minimum(double value) {
  Put(&ThreePoint::minimum, value);
}
double DurationObject::get_Minimum() {
  return Get(&ThreePoint::minimum);
}

// Risk of occurrence.

void TaskRiskObject::put_Mode(Long value) {
  task().Risk(-1);
  task().Data().risk->mode = value;
}

void TaskRiskObject::put_Probability(double value) {
  if (!std::isfinite(value)) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "The probability of the task " + task().Data().id + " must be a number");
  }
  task().Risk(-1);
  task().Data().risk->probability = value;
}

double TaskRiskObject::get_Probability() {
  const Task& data = task().Data();
  return data.risk ? data.risk->probability : OccurrenceRisk().probability;
}

}  // namespace nimbrel::engine
