#include "engine/formats/xer_calendars.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "engine/formats/xer_calendar.h"

namespace nimbrel::engine {
namespace {

/// Bounds what calendars that inherit from each other can grow to. Real plans have some thousands.
constexpr std::size_t kMostExceptions = 2'000'000;

constexpr std::string_view kStandardName = "Standard";

void SetStandardWeek(CalendarBuilder& builder) {
  for (int weekday = 0; weekday < 5; ++weekday) {
    builder.SetWeekday(weekday, {{480, 720}, {780, 1020}});
  }
}

}  // namespace

XerCalendars::XerCalendars(const XerFile& file, WarningList& warnings) : file_(&file) {
  file.ForEach("CALENDAR", [&](const XerRow& row) { ReadRow(row, warnings); });
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    index_by_key_.emplace(entries_[i].key, i);
  }
}

void XerCalendars::ReadRow(const XerRow& row, WarningList& warnings) {
  Entry entry;
  entry.key = row.Required("clndr_id");
  entry.name = row.Text("clndr_name");
  entry.base = row.Text("base_clndr_id");
  entry.type = row.Text("clndr_type");
  entry.project = row.Text("proj_id");
  entry.line = row.line();
  entry.is_default = row.Flag("default_flag", false);
  entry.hours_per_day = row.Number("day_hr_cnt", 8);
  const std::string_view data = row.Text("clndr_data");
  if (data.empty()) {
    entry.says_nothing = true;
  } else {
    try {
      const std::int64_t left_out = ReadXerCalendar(data, entry.builder);
      warnings.Add("single days of calendars before 1950 or after 2150: left out", left_out);
    } catch (const XerCalendarError& error) {
      row.Fail(std::string(error.what()) + " of " + Quoted(entry.name));
    }
  }
  if (entry.says_nothing && entry.base.empty()) {
    SetStandardWeek(entry.builder);
    warnings.Add("calendars without data: taken as Monday to Friday, eight hours a day");
  }
  entries_.push_back(std::move(entry));
}

std::optional<std::size_t> XerCalendars::Find(std::string_view key) const {
  const auto found = index_by_key_.find(key);
  return found == index_by_key_.end() ? std::nullopt : std::optional<std::size_t>(found->second);
}

void XerCalendars::Complete(std::size_t index) {
  std::vector<std::size_t> chain;
  std::optional<std::size_t> next = index;
  while (next && !entries_[*next].complete) {
    if (chain.size() > entries_.size()) {
      throw FormatError(file_->name(), entries_[index].line,
                        "expected calendars that rest on each other in no circle, found " +
                            Quoted(entries_[index].name) + " resting on itself");
    }
    chain.push_back(*next);
    next = entries_[*next].base.empty() ? std::nullopt : Find(entries_[*next].base);
  }
  for (auto at = chain.rbegin(); at != chain.rend(); ++at) {
    Entry& entry = entries_[*at];
    entry.complete = true;
    const std::optional<std::size_t> base = Find(entry.base);
    if (base && !entry.base.empty()) {
      entry.builder.InheritExceptions(entries_[*base].builder);
      if (entry.says_nothing) {
        entry.builder.InheritWeek(entries_[*base].builder);
      }
    } else if (entry.says_nothing) {
      SetStandardWeek(entry.builder);
    }
    exceptions_in_plan_ += entry.builder.exception_count();
    if (exceptions_in_plan_ > kMostExceptions) {
      throw FormatError(file_->name(), entry.line,
                        "expected at most 2000000 single days in all calendars, found more");
    }
  }
}

Uid XerCalendars::AddToPlan(std::size_t index, Plan& plan) {
  if (entries_[index].uid == 0) {
    Complete(index);
    Entry& entry = entries_[index];
    const CalendarDefinition& added = plan.AddCalendar(
        entry.builder.Build(names_.TakeFree(entry.name.empty() ? "Calendar" : entry.name)));
    entry.uid = added.uid;
    has_work_[added.uid] = HasWorkingTime(added);
  }
  return entries_[index].uid;
}

void XerCalendars::AddShared(std::string_view project, Plan& plan) {
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    const bool of_project = entries_[i].project.empty() || entries_[i].project == project;
    if (of_project && entries_[i].type != "CA_Rsrc") {
      AddToPlan(i, plan);
    }
  }
}

void XerCalendars::SetDefault(std::string_view key, Plan& plan, WarningList& warnings) {
  std::optional<std::size_t> index = Find(key);
  if (!index && !entries_.empty()) {
    warnings.Add("projects whose default calendar is not in the file: another one is taken");
    const auto marked = std::find_if(entries_.begin(), entries_.end(),
                                     [](const Entry& entry) { return entry.is_default; });
    index = marked == entries_.end() ? 0 : static_cast<std::size_t>(marked - entries_.begin());
  }
  if (!index) {
    warnings.Add("files without calendars: Monday to Friday is taken, eight hours a day");
    CalendarBuilder builder;
    SetStandardWeek(builder);
    plan.default_calendar = plan.AddCalendar(builder.Build(names_.TakeFree(kStandardName))).uid;
    has_work_[plan.default_calendar] = true;
    plan.hours_per_day = 8;
    return;
  }
  plan.default_calendar = AddToPlan(*index, plan);
  const double hours = entries_[*index].hours_per_day;
  plan.hours_per_day = static_cast<std::int32_t>(std::clamp(std::round(hours), 1.0, 24.0));
  if (plan.hours_per_day != hours) {
    warnings.Add("default calendars whose hours a day are no whole number from 1 to 24: rounded");
  }
}

Uid XerCalendars::UidOf(std::string_view key, Plan& plan) {
  const std::optional<std::size_t> index = Find(key);
  return index ? AddToPlan(*index, plan) : 0;
}

bool XerCalendars::HasWork(Uid calendar) const {
  const auto found = has_work_.find(calendar);
  return found != has_work_.end() && found->second;
}

}  // namespace nimbrel::engine
