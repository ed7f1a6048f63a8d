#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "engine/objects/face.h"
#include "engine/objects/taken_days.h"
#include "host/corvane8.h"

namespace nimbrel::engine {

/// DayIn for dates before day zero and for what is no date.
std::int32_t DayInUnusual(platform::Date date);

/// The day in which a date falls, counted as in Instant. Raises error 6 outside the years 100 to
/// 9999.
inline std::int32_t DayIn(platform::Date date) {
  return date.serial >= 0.0 && date.serial < platform::kLastSerialDay
             ? static_cast<std::int32_t>(date.serial)
             : DayInUnusual(date);
}

/// A calendar of the plan, or one that was taken out of it; then it goes on alone with a copy.
class CalendarObject final : public Face<Corvane8::Calendar> {
 public:
  CalendarObject(PlanSession& session, Uid uid);

  std::string get_Name() override;
  void SetDays(Corvane8::Long status, platform::Date from, platform::Date to) override;
  Corvane8::Long WorkingTime(platform::Date from, platform::Date to, Corvane8::Long one) override;
  Corvane8::Long WeekdayStatus(Corvane8::Long weekday, Corvane8::Long one) override;

  Uid uid() const { return uid_; }
  bool in_plan() const { return removed_ == nullptr; }
  /// Brings CalendarDefinition::taken up to date in the document.
  void WriteTakenDays();
  /// To be called before the calendar leaves the document.
  void Detach();

 private:
  CalendarDefinition& Data() {
    if (generation_ != session().generation()) {
      Resolve();
    }
    return *data_;
  }
  void Resolve();
  std::int32_t WorkedDays(std::int32_t first, std::int32_t last);

  Uid uid_;
  CalendarDefinition* data_ = nullptr;
  CalendarIndex position_ = -1;
  std::uint32_t generation_ = 0;
  TakenDaysJournal journal_;
  std::unique_ptr<CalendarDefinition> removed_;
};

/// A risk calendar of the plan, or one that was taken out of it.
class RiskCalendarObject final : public Face<Corvane8::RiskCalendar> {
 public:
  RiskCalendarObject(PlanSession& session, Uid uid) : Face(session), uid_(uid) {}

  void put_Description(std::string_view value) override;
  std::string get_Name() override;
  void put_Calendar(const platform::Ref<Corvane8::Calendar>& value) override;

  Uid uid() const { return uid_; }
  bool in_plan() const { return removed_ == nullptr; }
  /// To be called before the risk calendar leaves the document.
  void Detach();

 private:
  RiskCalendarDefinition& Data();

  Uid uid_;
  std::unique_ptr<RiskCalendarDefinition> removed_;
};

}  // namespace nimbrel::engine
