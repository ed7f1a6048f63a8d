#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/formats/calendar_builder.h"
#include "engine/formats/unique_names.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xer_table.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// The calendars of an XER file, and which of them are in the plan. The file must live as long.
class XerCalendars {
 public:
  /// Reads all calendars. Raises FormatError for one that cannot be read, used or not, and for
  /// calendars that rest on each other in a circle.
  XerCalendars(const XerFile& file, WarningList& warnings);

  /// Puts the global calendars and those of a project into the plan.
  void AddShared(std::string_view project, Plan& plan);

  /// Sets the plan's default calendar and its hours a day: the calendar with the key, else the one
  /// that the file has as its default, else its first, else five days a week of eight hours.
  void SetDefault(std::string_view key, Plan& plan, WarningList& warnings);

  /// The plan's number of the calendar with the file's key, put into the plan if it is not there
  /// yet; 0 if the file has no such calendar.
  Uid UidOf(std::string_view key, Plan& plan);

  /// Whether the calendar in the plan has any working time.
  bool HasWork(Uid calendar) const;

 private:
  struct Entry {
    std::string_view key;
    std::string_view name;
    std::string_view base;
    std::string_view type;
    std::string_view project;
    std::int64_t line = 0;
    bool is_default = false;
    double hours_per_day = 8;
    CalendarBuilder builder;
    bool says_nothing = false;  // has no data of its own
    bool complete = false;      // what it inherits is in
    Uid uid = 0;                // 0 while it is not in the plan
  };

  void ReadRow(const XerRow& row, WarningList& warnings);
  /// Brings in what a calendar inherits, from the far end of the chain on.
  void Complete(std::size_t index);
  Uid AddToPlan(std::size_t index, Plan& plan);
  std::optional<std::size_t> Find(std::string_view key) const;

  const XerFile* file_;
  std::vector<Entry> entries_;
  std::unordered_map<std::string_view, std::size_t> index_by_key_;
  std::unordered_map<Uid, bool> has_work_;
  UniqueNames names_;
  std::size_t exceptions_in_plan_ = 0;
};

}  // namespace nimbrel::engine
