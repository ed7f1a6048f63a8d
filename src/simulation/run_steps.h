#pragma once

#include "host/corvane8.h"
#include "platform/date.h"
#include "platform/ref.h"

/// Steps that more than one event of a run takes.
namespace nimbrel::modWeatherEvents {

/// Brings every weather calendar's days back over the run's bounds.
void ResetCalendars();

/// Takes the constraint off every marked task. What the user had put there is not saved anywhere: a
/// marked task has no constraint of its own during a run and after it.
void ClearConstraints();

/// The earliest date of a window's edge. Raises error 13 if its text is no date.
platform::Date StartDateOf(const Corvane8::Ref<Corvane8::Task>& t);

}  // namespace nimbrel::modWeatherEvents
