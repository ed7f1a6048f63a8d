#pragma once

#include <string>

namespace nimbrel::model {

/// The two kinds of weather calendars, each with its own controls.
enum class CalendarKind { kEvent, kWindow };

/// The controls of the weather dialog that the storage of weather data feeds. The dialog implements
/// it; a program without a dialog gives NoControls.
class WeatherControls {
 public:
  virtual ~WeatherControls() = default;

  /// Fills the box of base calendars (cbAllCals) with the plan's calendars anew.
  virtual void FillCalendarCombo() = 0;
  /// Empties the list of calendars (lstWeatherCals, lstWWCals), from its first entry on.
  virtual void ClearCalendarList(CalendarKind kind) = 0;
  /// Clears the check list of calendars (lstWCals1, lstWCals3).
  virtual void ClearCheckList(CalendarKind kind) = 0;
  /// Clears the rows of periods or windows (lstWeather, lstWW).
  virtual void ClearRows(CalendarKind kind) = 0;
  /// Adds a calendar at the end of the list of calendars.
  virtual void AddToCalendarList(CalendarKind kind, const std::string& strName) = 0;
  /// Adds a calendar at the top of the check list, its key being the name in upper case.
  virtual void AddToCheckList(CalendarKind kind, const std::string& strName) = 0;
  /// Runs the click handler of the list of window calendars (lstWWCals).
  virtual void ClickWindowCalendars() = 0;
};

/// For programs that keep weather data without a dialog.
class NoControls final : public WeatherControls {
 public:
  void FillCalendarCombo() override {}
  void ClearCalendarList(CalendarKind /*kind*/) override {}
  void ClearCheckList(CalendarKind /*kind*/) override {}
  void ClearRows(CalendarKind /*kind*/) override {}
  void AddToCalendarList(CalendarKind /*kind*/, const std::string& /*strName*/) override {}
  void AddToCheckList(CalendarKind /*kind*/, const std::string& /*strName*/) override {}
  void ClickWindowCalendars() override {}
};

}  // namespace nimbrel::model
