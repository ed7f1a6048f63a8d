#include "engine/formats/xer_lags.h"

namespace nimbrel::engine {

WorkTable* XerLags::TableOf(Uid calendar) {
  const CalendarDefinition* definition = plan_->FindCalendar(calendar);
  if (definition == nullptr) {
    return nullptr;
  }
  Hours& hours = hours_.try_emplace(calendar, *definition).first->second;
  return hours.calendar.has_work() ? &hours.table : nullptr;
}

Instant XerLags::EndOf(Instant begin, std::int32_t minutes, Uid calendar) {
  if (begin.IsAbsent() || minutes == 0) {
    return begin;
  }
  if (calendar == 0) {
    return Instant::FromMinutes(begin.Minutes() + minutes);
  }
  WorkTable* table = TableOf(calendar);
  try {
    return table == nullptr ? Instant()
                            : table->FinishAt(table->Position(begin) + table->CapMinutes(minutes));
  } catch (const OutsideCalendars&) {
    return {};
  }
}

Instant XerLags::BeginOf(Instant end, std::int32_t minutes, Uid calendar) {
  if (end.IsAbsent() || minutes == 0) {
    return end;
  }
  if (calendar == 0) {
    return Instant::FromMinutes(end.Minutes() - minutes);
  }
  WorkTable* table = TableOf(calendar);
  try {
    return table == nullptr ? Instant()
                            : table->StartAt(table->Position(end) - table->CapMinutes(minutes));
  } catch (const OutsideCalendars&) {
    return {};
  }
}

}  // namespace nimbrel::engine
