#include "engine/formats/mspdi_calendars.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engine/formats/mspdi_calendar.h"

namespace nimbrel::engine {

MspdiCalendars::MspdiCalendars(const XmlFile& file, WarningList& warnings) : file_(&file) {
  for (const pugi::xml_node node : file.root().child("Calendars").children("Calendar")) {
    ReadCalendar(XmlElement(file, node), warnings);
  }
}

void MspdiCalendars::ReadCalendar(const XmlElement& element, WarningList& warnings) {
  Entry entry;
  entry.number = element.Integer("UID", -1);
  if (entry.number < 0) {
    element.FailChild("UID", "a number of 0 or more");
  }
  entry.name = element.Text("Name");
  if (entry.name.empty()) {
    entry.name = "Calendar " + std::to_string(entry.number);
  }
  entry.is_base = element.Flag("IsBaseCalendar", false);
  entry.base = element.Integer("BaseCalendarUID", -1);
  entry.node = element.node();
  ReadMspdiCalendar(*file_, element.node(), entry.builder, single_days_, warnings);
  if (!index_by_number_.emplace(entry.number, entries_.size()).second) {
    element.FailChild("UID", "a number that no other calendar has");
  }
  entries_.push_back(std::move(entry));
}

void MspdiCalendars::Complete(std::size_t index) {
  const auto base_of = [this](std::size_t of) {
    const auto found = index_by_number_.find(entries_[of].base);
    return found == index_by_number_.end() ? std::optional<std::size_t>() : found->second;
  };
  std::vector<std::size_t> chain;
  for (std::optional<std::size_t> at = index; at && !entries_[*at].complete; at = base_of(*at)) {
    if (chain.size() > entries_.size()) {
      throw FormatError(file_->name(), file_->LineOf(entries_[index].node),
                        "expected calendars that rest on each other in no circle, found " +
                            Quoted(entries_[index].name) + " resting on itself");
    }
    chain.push_back(*at);
  }
  for (auto at = chain.rbegin(); at != chain.rend(); ++at) {
    Entry& entry = entries_[*at];
    if (const std::optional<std::size_t> base = base_of(*at)) {
      entry.builder.InheritWeek(entries_[*base].builder);
      entry.builder.InheritExceptions(entries_[*base].builder);
      Charge(entry.builder.exception_count(), entry.node);
    }
    SetStandardWeek(entry.builder);
    entry.definition = entry.builder.Build(entry.name);
    entry.work_key = WorkKey(entry.definition);
    entry.complete = true;
  }
}

void MspdiCalendars::Charge(std::size_t single_days, pugi::xml_node node) {
  single_days_ += static_cast<std::int64_t>(single_days);
  if (single_days_ > kMostSingleDays) {
    throw FormatError(file_->name(), file_->LineOf(node),
                      "expected at most 2000000 single days in all calendars, found more");
  }
}

Uid MspdiCalendars::Add(CalendarDefinition definition, pugi::xml_node node, Plan& plan) {
  Charge(definition.exceptions.size(), node);
  definition.uid = 0;
  definition.name = names_.TakeFree(definition.name);
  const bool has_work = HasWorkingTime(definition);
  std::string work_key = WorkKey(definition);
  const Uid uid = plan.AddCalendar(std::move(definition)).uid;
  uid_by_work_.emplace(std::move(work_key), uid);
  index_by_uid_[uid] = plan.calendars.size() - 1;
  has_work_[uid] = has_work;
  return uid;
}

void MspdiCalendars::AddShared(std::int64_t default_number, Plan& plan, WarningList& warnings) {
  std::optional<std::int64_t> first;
  for (const Entry& entry : entries_) {
    if (entry.is_base) {
      first = first.value_or(entry.number);
      UidOf(entry.number, plan);
    }
  }
  if (Has(default_number)) {
    plan.default_calendar = UidOf(default_number, plan);
    return;
  }
  warnings.Add("plans whose calendar is not in the file: another one is taken");
  if (first) {
    plan.default_calendar = UidOf(*first, plan);
    return;
  }
  CalendarBuilder builder;
  SetStandardWeek(builder);
  plan.default_calendar = Add(builder.Build("Standard"), file_->root(), plan);
}

const CalendarDefinition& MspdiCalendars::DefinitionOf(std::int64_t number) {
  const std::size_t index = index_by_number_.at(number);
  Complete(index);
  return entries_[index].definition;
}

Uid MspdiCalendars::UidOf(std::int64_t number, Plan& plan) {
  const CalendarDefinition& definition = DefinitionOf(number);
  Entry& entry = entries_[index_by_number_.at(number)];
  if (entry.uid == 0) {
    entry.uid = Add(definition, entry.node, plan);
  }
  return entry.uid;
}

std::int64_t MspdiCalendars::SameWorkAs(std::int64_t number) {
  const std::size_t index = index_by_number_.at(number);
  Complete(index);
  return number_by_work_.emplace(entries_[index].work_key, number).first->second;
}

CalendarDefinition MspdiCalendars::Combine(const std::vector<std::int64_t>& resources,
                                           std::int64_t own) {
  constexpr std::size_t kMostNamed = 3;
  CalendarDefinition work = DefinitionOf(resources.front());
  for (std::size_t i = 1; i < resources.size(); ++i) {
    const CalendarDefinition& next = DefinitionOf(resources[i]);
    std::string name = i < kMostNamed ? work.name + " + " + next.name : work.name;
    work = Union(work, next);
    work.name = std::move(name);
    Charge(work.exceptions.size(), entries_[index_by_number_.at(resources[i])].node);
  }
  return own < 0 ? work : Intersection(DefinitionOf(own), work);
}

Uid MspdiCalendars::OfResources(const std::vector<std::int64_t>& resources, std::int64_t own,
                                Plan& plan) {
  std::vector<std::int64_t> key;
  key.reserve(resources.size() + 1);
  for (const std::int64_t resource : resources) {
    key.push_back(SameWorkAs(resource));
  }
  std::sort(key.begin(), key.end());
  key.erase(std::unique(key.begin(), key.end()), key.end());
  const std::vector<std::int64_t> distinct = key;
  key.push_back(own);
  const auto known = combined_.find(key);
  if (known != combined_.end()) {
    return known->second;
  }
  CalendarDefinition work = Combine(distinct, own);
  const auto same = uid_by_work_.find(WorkKey(work));
  const Uid uid =
      same != uid_by_work_.end()
          ? same->second
          : Add(std::move(work), entries_[index_by_number_.at(distinct.front())].node, plan);
  combined_.emplace(std::move(key), uid);
  return uid;
}

Uid MspdiCalendars::Elapsed(Plan& plan) {
  if (elapsed_ == 0) {
    CalendarDefinition definition;
    definition.name = "24 Hours";
    definition.week.fill({{0, kMinutesPerDay}});
    const auto same = uid_by_work_.find(WorkKey(definition));
    elapsed_ =
        same != uid_by_work_.end() ? same->second : Add(std::move(definition), file_->root(), plan);
  }
  return elapsed_;
}

std::int64_t MspdiCalendars::WorkWithin(Uid calendar, const std::vector<TimeSpan>& spans,
                                        const Plan& plan) const {
  return engine::WorkWithin(plan.calendars[index_by_uid_.at(calendar)], spans);
}

bool MspdiCalendars::HasWork(Uid calendar) const {
  const auto found = has_work_.find(calendar);
  return found != has_work_.end() && found->second;
}

}  // namespace nimbrel::engine
