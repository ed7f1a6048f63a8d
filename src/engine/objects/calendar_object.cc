#include "engine/objects/calendar_object.h"

#include <algorithm>

#include "engine/calendar/day_bits.h"
#include "platform/runtime_error.h"

namespace nimbrel::engine {
namespace {

using Corvane8::Long;
using platform::Date;
using platform::RuntimeError;

std::int32_t UnitsInWorkedDay(const Plan& plan) {
  switch (plan.time_unit) {
    case TimeUnit::kHours:
      return plan.hours_per_day;
    case TimeUnit::kQuarters:
      return plan.hours_per_day * 4;
    case TimeUnit::kDays:
      break;
  }
  return 1;
}

}  // namespace

std::int32_t DayInUnusual(Date date) {
  if (!platform::IsValidDate(date)) {
    throw RuntimeError(platform::kOverflow, "A date lies outside the years 100 to 9999");
  }
  return static_cast<std::int32_t>(platform::DayOf(date).serial);
}

CalendarObject::CalendarObject(PlanSession& session, Uid uid) : Face(session), uid_(uid) {}

void CalendarObject::Resolve() {
  if (removed_ != nullptr) {
    data_ = removed_.get();
  } else {
    position_ = session().CalendarPosition(uid_);
    data_ = &session().plan().calendars[static_cast<std::size_t>(position_)];
  }
  generation_ = session().generation();
}

std::string CalendarObject::get_Name() {
  return Data().name;
}

void CalendarObject::SetDays(Long status, Date from, Date to) {
  if (status != 0 && status != 1) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "The status of days must be 0 or 1, not " + std::to_string(status));
  }
  const std::int32_t first = DayIn(from);
  const std::int32_t last = to.serial == 0.0 ? first : DayIn(to);
  if (last < first) {
    return;
  }
  CalendarDefinition& data = Data();
  if (removed_ != nullptr) {
    (status == 0 ? TakeRange : GiveRange)(data.taken, first, last);
  } else if (status == 0) {
    if (IterationWitness* witness = session().witness()) {
      witness->DaysTaken(position_, first, last);
    }
    journal_.Take(first, last);
    session().DaysTaken(position_, first, last);
  } else {
    journal_.Give(first, last);
    session().DaysGiven(position_, first, last);
  }
}

Long CalendarObject::WorkingTime(Date from, Date to, Long /*one*/) {
  const std::int32_t first = DayIn(from);
  const std::int32_t last = DayIn(to);
  return last < first ? 0 : WorkedDays(first, last) * UnitsInWorkedDay(session().plan());
}

std::int32_t CalendarObject::WorkedDays(std::int32_t first, std::int32_t last) {
  CalendarDefinition& data = Data();
  if (removed_ == nullptr) {
    if (Scheduler* scheduler = session().FreshScheduler()) {
      return scheduler->WorkedDays(position_, first, last);
    }
    WriteTakenDays();
  }
  // Counting days needs no compiled plan, which one under construction may not even allow.
  first = std::max(first, kFirstCoveredDay);
  last = std::min(last, kLastCoveredDay);
  std::int32_t worked = 0;
  for (std::int32_t day = first; day <= last; ++day) {
    worked += !PatternOn(data, day).empty() && !IsTaken(data, day) ? 1 : 0;
  }
  return worked;
}

Long CalendarObject::WeekdayStatus(Long weekday, Long /*one*/) {
  if (weekday < 0 || weekday > 6) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "A weekday must be 0 (Monday) to 6, not " + std::to_string(weekday));
  }
  return Data().week[static_cast<std::size_t>(weekday)].empty() ? 0 : 1;
}

void CalendarObject::WriteTakenDays() {
  if (!journal_.IsEmpty()) {
    journal_.WriteTo(Data().taken);
  }
}

void CalendarObject::Detach() {
  WriteTakenDays();
  removed_ = std::make_unique<CalendarDefinition>(Data());
  data_ = removed_.get();
}

RiskCalendarDefinition& RiskCalendarObject::Data() {
  return removed_ != nullptr ? *removed_ : *session().plan().FindRiskCalendar(uid_);
}

void RiskCalendarObject::put_Description(std::string_view value) {
  Data().description = value;
}

std::string RiskCalendarObject::get_Name() {
  return Data().name;
}

void RiskCalendarObject::put_Calendar(const platform::Ref<Corvane8::Calendar>& value) {
  Uid calendar = 0;
  if (!value.IsNothing()) {
    const auto& object = OwnObject<CalendarObject>(value, session(), "calendar");
    if (!object.in_plan()) {
      throw RuntimeError(platform::kInvalidProcedureCall, "The calendar is no longer in the plan");
    }
    calendar = object.uid();
  }
  RiskCalendarDefinition& data = Data();
  if (data.calendar != calendar) {
    data.calendar = calendar;
    session().StructureChanged();
  }
}

void RiskCalendarObject::Detach() {
  removed_ = std::make_unique<RiskCalendarDefinition>(Data());
}

}  // namespace nimbrel::engine
