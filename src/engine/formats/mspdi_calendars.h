#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/formats/calendar_algebra.h"
#include "engine/formats/calendar_builder.h"
#include "engine/formats/unique_names.h"
#include "engine/formats/warning_list.h"
#include "engine/formats/xml_file.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// The calendars of an MSPDI file, and those that the plan needs besides. The file must live as
/// long.
class MspdiCalendars {
 public:
  /// Reads all calendars. Raises FormatError for one that cannot be read and for calendars that
  /// rest on each other in a circle.
  MspdiCalendars(const XmlFile& file, WarningList& warnings);

  /// Puts the base calendars into the plan and sets its default calendar: the one with the file's
  /// number, else the first base calendar, else five days a week of eight hours.
  void AddShared(std::int64_t default_number, Plan& plan, WarningList& warnings);

  bool Has(std::int64_t number) const { return index_by_number_.contains(number); }
  /// The calendar with the file's number, which there must be, with all that it inherits.
  const CalendarDefinition& DefinitionOf(std::int64_t number);
  /// The plan's number of the same, put into the plan if it is not there yet.
  Uid UidOf(std::int64_t number, Plan& plan);

  /// The plan's number of the calendar of tasks whose assigned resources have these calendars: the
  /// time in which any of the resources works. Within the calendar `own` only, unless that is -1.
  /// A calendar that has the same working time as one that the plan has already is that one.
  Uid OfResources(const std::vector<std::int64_t>& resources, std::int64_t own, Plan& plan);

  /// The plan's number of a calendar that works around the clock.
  Uid Elapsed(Plan& plan);

  /// Minutes of work that a calendar of the plan has within the spans.
  std::int64_t WorkWithin(Uid calendar, const std::vector<TimeSpan>& spans, const Plan& plan) const;

  /// Whether the calendar in the plan has any working time.
  bool HasWork(Uid calendar) const;

 private:
  struct Entry {
    std::int64_t number = 0;
    std::string name;
    std::int64_t base = -1;
    bool is_base = false;
    pugi::xml_node node;
    CalendarBuilder builder;
    CalendarDefinition definition;
    std::string work_key;
    bool complete = false;
    Uid uid = 0;
  };

  void ReadCalendar(const XmlElement& element, WarningList& warnings);
  void Complete(std::size_t index);
  /// Counts single days against what all calendars may have together. Raises FormatError.
  void Charge(std::size_t single_days, pugi::xml_node node);
  /// The first calendar of the file that has the same working time as this one.
  std::int64_t SameWorkAs(std::int64_t number);
  CalendarDefinition Combine(const std::vector<std::int64_t>& resources, std::int64_t own);
  Uid Add(CalendarDefinition definition, pugi::xml_node node, Plan& plan);

  const XmlFile* file_;
  std::vector<Entry> entries_;
  std::unordered_map<std::int64_t, std::size_t> index_by_number_;
  std::map<std::vector<std::int64_t>, Uid> combined_;
  std::unordered_map<std::string, std::int64_t> number_by_work_;
  std::unordered_map<std::string, Uid> uid_by_work_;   // of calendars in the plan
  std::unordered_map<Uid, std::size_t> index_by_uid_;  // in Plan::calendars
  std::unordered_map<Uid, bool> has_work_;
  UniqueNames names_;
  Uid elapsed_ = 0;
  std::int64_t single_days_ = 0;  // in all calendars so far
};

}  // namespace nimbrel::engine
