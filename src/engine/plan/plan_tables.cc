#include <fmt/format.h>

#include <string>

#include "engine/plan/plan_rows.h"

namespace nimbrel::engine {
namespace {

/// The tables, those that refer to others before those they refer to.
constexpr const char* kTables[] = {"correlation_members",
                                   "correlation_groups",
                                   "links",
                                   "risk_assignments",
                                   "custom_values",
                                   "user_values",
                                   "stored_dates",
                                   "constraints",
                                   "risks",
                                   "ranges",
                                   "tasks",
                                   "custom_fields",
                                   "plan",
                                   "options",
                                   "risk_calendars",
                                   "calendar_taken_days",
                                   "calendar_exception_shifts",
                                   "calendar_exceptions",
                                   "calendar_shifts",
                                   "calendars"};

// Dates are local, as text "YYYY-MM-DDTHH:MM"; 24:00 is the end of a day. Codes are those of the
// enums in plan.h. Real numbers stand in columns of type ANY: in a REAL column SQLite keeps a whole
// number as an integer, and so loses the sign of a zero. `position` is the order in the plan.
constexpr const char* kCreate = R"sql(
CREATE TABLE calendars (
  uid INTEGER PRIMARY KEY,
  position INTEGER NOT NULL,
  name TEXT NOT NULL UNIQUE
) STRICT;

CREATE TABLE calendar_shifts (  -- the weekly pattern
  calendar INTEGER NOT NULL REFERENCES calendars (uid),
  weekday INTEGER NOT NULL,     -- Monday 0 to Sunday 6
  position INTEGER NOT NULL,
  begin_minute INTEGER NOT NULL,
  end_minute INTEGER NOT NULL,
  PRIMARY KEY (calendar, weekday, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE calendar_exceptions (  -- a day without shifts is a holiday
  calendar INTEGER NOT NULL REFERENCES calendars (uid),
  day TEXT NOT NULL,
  PRIMARY KEY (calendar, day)
) STRICT, WITHOUT ROWID;

CREATE TABLE calendar_exception_shifts (
  calendar INTEGER NOT NULL,
  day TEXT NOT NULL,
  position INTEGER NOT NULL,
  begin_minute INTEGER NOT NULL,
  end_minute INTEGER NOT NULL,
  PRIMARY KEY (calendar, day, position),
  FOREIGN KEY (calendar, day) REFERENCES calendar_exceptions (calendar, day)
) STRICT, WITHOUT ROWID;

CREATE TABLE calendar_taken_days (  -- runs of days made non-working, both ends included
  calendar INTEGER NOT NULL REFERENCES calendars (uid),
  position INTEGER NOT NULL,
  first_day TEXT NOT NULL,
  last_day TEXT NOT NULL,
  PRIMARY KEY (calendar, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE risk_calendars (
  uid INTEGER PRIMARY KEY,
  position INTEGER NOT NULL,
  name TEXT NOT NULL UNIQUE,
  description TEXT NOT NULL,
  calendar INTEGER REFERENCES calendars (uid)
) STRICT;

CREATE TABLE options (
  section TEXT NOT NULL,
  option_group TEXT NOT NULL,
  key TEXT NOT NULL,
  value TEXT NOT NULL,
  PRIMARY KEY (section, option_group, key)
) STRICT, WITHOUT ROWID;

CREATE TABLE plan (
  id INTEGER PRIMARY KEY CHECK (id = 1),
  name TEXT NOT NULL,
  title TEXT NOT NULL,
  start TEXT,
  data_date TEXT,
  time_unit INTEGER NOT NULL,
  hours_per_day INTEGER NOT NULL,
  date_format INTEGER NOT NULL,
  default_calendar INTEGER REFERENCES calendars (uid),
  recalculate_after_move INTEGER NOT NULL,
  progress_rule INTEGER NOT NULL,
  float_rule INTEGER NOT NULL,
  remaining_from_data_date INTEGER NOT NULL,
  lag_from_early_start INTEGER NOT NULL,
  must_finish TEXT,
  critical_float_minutes INTEGER NOT NULL,
  critical_by_longest_path INTEGER NOT NULL,
  open_ends_critical INTEGER NOT NULL,
  no_later_holds_early INTEGER NOT NULL,
  next_uid INTEGER NOT NULL
) STRICT;

CREATE TABLE custom_fields (
  position INTEGER PRIMARY KEY,
  name TEXT NOT NULL UNIQUE,
  code INTEGER NOT NULL
) STRICT;

CREATE TABLE tasks (
  uid INTEGER PRIMARY KEY,
  position INTEGER NOT NULL,
  id TEXT NOT NULL UNIQUE,
  description TEXT NOT NULL,
  kind INTEGER NOT NULL,
  parent INTEGER REFERENCES tasks (uid) DEFERRABLE INITIALLY DEFERRED,
  calendar INTEGER REFERENCES calendars (uid),
  remaining_minutes INTEGER NOT NULL,
  original_minutes INTEGER NOT NULL,
  actual_start TEXT,
  actual_finish TEXT,
  suspended TEXT,
  resumed TEXT,
  expected_finish TEXT,
  percent_complete ANY NOT NULL CHECK (typeof(percent_complete) = 'real'),
  stream INTEGER NOT NULL           -- 64 bits, as a signed number
) STRICT;
CREATE INDEX tasks_by_parent ON tasks (parent);

CREATE TABLE ranges (
  task INTEGER PRIMARY KEY REFERENCES tasks (uid),
  minimum ANY NOT NULL CHECK (typeof(minimum) = 'real'),
  likely ANY NOT NULL CHECK (typeof(likely) = 'real'),
  maximum ANY NOT NULL CHECK (typeof(maximum) = 'real'),
  shape INTEGER NOT NULL
) STRICT;

CREATE TABLE risks (
  task INTEGER PRIMARY KEY REFERENCES tasks (uid),
  probability ANY NOT NULL CHECK (typeof(probability) = 'real'),
  mode INTEGER NOT NULL
) STRICT;

CREATE TABLE constraints (
  task INTEGER NOT NULL REFERENCES tasks (uid),
  rank INTEGER NOT NULL,            -- 1: the first, 2: the second
  type INTEGER NOT NULL,
  date TEXT,
  PRIMARY KEY (task, rank)
) STRICT, WITHOUT ROWID;

CREATE TABLE stored_dates (
  task INTEGER PRIMARY KEY REFERENCES tasks (uid),
  early_start TEXT,
  early_finish TEXT,
  late_start TEXT,
  late_finish TEXT,
  total_float_minutes INTEGER
) STRICT;

CREATE TABLE user_values (
  task INTEGER NOT NULL REFERENCES tasks (uid),
  position INTEGER NOT NULL,
  section TEXT NOT NULL,
  key TEXT NOT NULL,
  value TEXT NOT NULL,
  PRIMARY KEY (task, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE custom_values (
  task INTEGER NOT NULL REFERENCES tasks (uid),
  position INTEGER NOT NULL,
  field TEXT NOT NULL,
  type TEXT NOT NULL,               -- empty, boolean, integer, real, date (as a real), text
  value ANY,
  PRIMARY KEY (task, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE risk_assignments (
  task INTEGER NOT NULL REFERENCES tasks (uid),
  position INTEGER NOT NULL,
  risk_calendar INTEGER NOT NULL REFERENCES risk_calendars (uid),
  value ANY NOT NULL CHECK (typeof(value) = 'real'),
  PRIMARY KEY (task, position)
) STRICT, WITHOUT ROWID;

CREATE TABLE links (
  position INTEGER PRIMARY KEY,
  predecessor INTEGER NOT NULL REFERENCES tasks (uid),
  successor INTEGER NOT NULL REFERENCES tasks (uid),
  type INTEGER NOT NULL,
  lag_minutes INTEGER NOT NULL,
  lag_calendar INTEGER NOT NULL
) STRICT;

CREATE TABLE correlation_groups (
  position INTEGER PRIMARY KEY,
  coefficient ANY NOT NULL CHECK (typeof(coefficient) = 'real')
) STRICT;

CREATE TABLE correlation_members (  -- a task, or a calendar by its name
  correlation_group INTEGER NOT NULL REFERENCES correlation_groups (position),
  position INTEGER NOT NULL,
  task INTEGER REFERENCES tasks (uid),
  calendar TEXT,
  PRIMARY KEY (correlation_group, position),
  CHECK ((task IS NULL) <> (calendar IS NULL))
) STRICT, WITHOUT ROWID;
)sql";

}  // namespace

void CreatePlanTables(SqliteDatabase& database) {
  for (const char* table : kTables) {
    database.Execute(fmt::format("DROP TABLE IF EXISTS {}", table));
  }
  database.Execute(kCreate);
  database.Execute(fmt::format("PRAGMA application_id = {}; PRAGMA user_version = {}",
                               kPlanApplicationId, kPlanSchemaVersion));
}

}  // namespace nimbrel::engine
