#include "engine/plan/plan.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "platform/number.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

template <class Items>
auto FindNamed(Items& items, std::string_view name) -> decltype(&items.front()) {
  const auto found = std::find_if(items.begin(), items.end(), [name](const auto& item) {
    return platform::EqualsIgnoreCase(item.name, name);
  });
  return found == items.end() ? nullptr : &*found;
}

template <class Items>
auto FindByUid(Items& items, Uid uid) -> decltype(&items.front()) {
  const auto found =
      std::find_if(items.begin(), items.end(), [uid](const auto& item) { return item.uid == uid; });
  return found == items.end() ? nullptr : &*found;
}

}  // namespace

const std::string* Task::FindUserValue(std::string_view section, std::string_view key) const {
  for (const UserValue& value : user_values) {
    if (platform::EqualsIgnoreCase(value.section, section) &&
        platform::EqualsIgnoreCase(value.key, key)) {
      return &value.value;
    }
  }
  return nullptr;
}

void Plan::BuildIndex() const {
  if (index_valid_) {
    return;
  }
  uid_by_id_.clear();
  index_by_uid_.clear();
  for (std::size_t i = 0; i < tasks_.size(); ++i) {
    uid_by_id_.emplace(platform::FoldCase(tasks_[i].id), tasks_[i].uid);
    index_by_uid_.emplace(tasks_[i].uid, static_cast<std::int32_t>(i));
  }
  index_valid_ = true;
}

const Task* Plan::FindTask(std::string_view id) const {
  BuildIndex();
  const auto found = uid_by_id_.find(platform::FoldCase(id));
  return found == uid_by_id_.end() ? nullptr : FindTask(found->second);
}

Task* Plan::FindTask(std::string_view id) {
  return const_cast<Task*>(std::as_const(*this).FindTask(id));
}

const Task* Plan::FindTask(Uid uid) const {
  const std::int32_t index = IndexOf(uid);
  return index < 0 ? nullptr : &tasks_[static_cast<std::size_t>(index)];
}

Task* Plan::FindTask(Uid uid) {
  return const_cast<Task*>(std::as_const(*this).FindTask(uid));
}

std::int32_t Plan::IndexOf(Uid uid) const {
  BuildIndex();
  const auto found = index_by_uid_.find(uid);
  return found == index_by_uid_.end() ? -1 : found->second;
}

Task& Plan::AddTask(Task task) {
  BuildIndex();
  if (task.uid == 0) {
    task.uid = FreshUid();
  } else {
    ReserveUids(task.uid + 1);
  }
  if (task.stream == 0) {
    task.stream = StreamOfId(task.id);
  }
  const auto index = static_cast<std::int32_t>(tasks_.size());
  if (index_by_uid_.contains(task.uid)) {
    throw platform::RuntimeError(platform::kDuplicateKey,
                                 "A task has the number " + std::to_string(task.uid) + " already");
  }
  if (!uid_by_id_.emplace(platform::FoldCase(task.id), task.uid).second) {
    throw platform::RuntimeError(platform::kDuplicateKey, "A task has the ID already: " + task.id);
  }
  index_by_uid_.emplace(task.uid, index);
  tasks_.push_back(std::move(task));
  return tasks_.back();
}

void Plan::RenameTask(Uid uid, const std::string& id) {
  const Task* holder = FindTask(id);
  if (holder != nullptr && holder->uid != uid) {
    throw platform::RuntimeError(platform::kDuplicateKey, "A task has the ID already: " + id);
  }
  if (Task* task = FindTask(uid); task != nullptr && task->id != id) {
    task->id = id;
    index_valid_ = false;
  }
}

void Plan::RemoveTask(Uid uid) {
  const std::int32_t index = IndexOf(uid);
  if (index < 0) {
    return;
  }
  const std::string id = platform::FoldCase(tasks_[static_cast<std::size_t>(index)].id);
  RemoveWhere([uid](Uid one) { return one == uid; });
  // Whoever removes tasks one by one would wait long if the tables were made anew each time.
  uid_by_id_.erase(id);
  index_by_uid_.erase(uid);
  for (auto i = static_cast<std::size_t>(index); i < tasks_.size(); ++i) {
    index_by_uid_[tasks_[i].uid] = static_cast<std::int32_t>(i);
  }
  index_valid_ = true;
}

void Plan::RemoveTasks(const std::unordered_set<Uid>& uids) {
  RemoveWhere([&uids](Uid uid) { return uids.contains(uid); });
}

template <class Goes>
void Plan::RemoveWhere(const Goes& goes) {
  for (Task& task : tasks_) {
    while (task.parent != 0 && goes(task.parent)) {
      const std::int32_t above = IndexOf(task.parent);
      task.parent = above < 0 ? 0 : tasks_[static_cast<std::size_t>(above)].parent;
    }
  }
  std::erase_if(
      links, [&goes](const Link& link) { return goes(link.predecessor) || goes(link.successor); });
  std::erase_if(tasks_, [&goes](const Task& task) { return goes(task.uid); });
  std::erase_if(correlations, [&goes](CorrelationGroup& group) {
    std::erase_if(group.tasks, goes);
    return group.calendars.empty() && group.tasks.size() < 2;
  });
  index_valid_ = false;
}

void Plan::MoveTaskToEnd(Uid uid) {
  const std::int32_t index = IndexOf(uid);
  if (index >= 0) {
    std::rotate(tasks_.begin() + index, tasks_.begin() + index + 1, tasks_.end());
    index_valid_ = false;
  }
}

std::string Plan::FreshTaskId() const {
  for (Uid number = next_uid_;; ++number) {
    std::string id = "N" + std::to_string(number);
    if (FindTask(id) == nullptr) {
      return id;
    }
  }
}

void Plan::ReserveUids(Uid uid) {
  next_uid_ = std::max(next_uid_, uid);
}

const CalendarDefinition* Plan::FindCalendar(std::string_view calendar_name) const {
  return FindNamed(calendars, calendar_name);
}
CalendarDefinition* Plan::FindCalendar(std::string_view calendar_name) {
  return FindNamed(calendars, calendar_name);
}
const CalendarDefinition* Plan::FindCalendar(Uid uid) const {
  return FindByUid(calendars, uid);
}
CalendarDefinition* Plan::FindCalendar(Uid uid) {
  return FindByUid(calendars, uid);
}

const RiskCalendarDefinition* Plan::FindRiskCalendar(std::string_view calendar_name) const {
  return FindNamed(risk_calendars, calendar_name);
}
const RiskCalendarDefinition* Plan::FindRiskCalendar(Uid uid) const {
  return FindByUid(risk_calendars, uid);
}
RiskCalendarDefinition* Plan::FindRiskCalendar(std::string_view calendar_name) {
  return FindNamed(risk_calendars, calendar_name);
}
RiskCalendarDefinition* Plan::FindRiskCalendar(Uid uid) {
  return FindByUid(risk_calendars, uid);
}

CalendarDefinition& Plan::AddCalendar(CalendarDefinition calendar) {
  if (calendar.uid == 0) {
    calendar.uid = FreshUid();
  } else {
    ReserveUids(calendar.uid + 1);
  }
  calendars.push_back(std::move(calendar));
  return calendars.back();
}

double Plan::MinutesPerUnit() const {
  switch (time_unit) {
    case TimeUnit::kHours:
      return 60.0;
    case TimeUnit::kQuarters:
      return 15.0;
    case TimeUnit::kDays:
      break;
  }
  return hours_per_day * 60.0;
}

double Plan::RemainingUnits(const Task& task) const {
  return task.remaining_minutes / MinutesPerUnit();
}

std::int32_t Plan::LikelyMinutes(const Task& task) const {
  return task.range ? platform::ToLong(task.range->likely * MinutesPerUnit())
                    : task.remaining_minutes;
}

bool operator==(const Plan& a, const Plan& b) {
  const auto fields = [](const Plan& plan) {
    return std::tie(plan.name, plan.title, plan.start, plan.data_date, plan.time_unit,
                    plan.hours_per_day, plan.date_format, plan.default_calendar,
                    plan.recalculate_after_move, plan.schedule, plan.calendars, plan.risk_calendars,
                    plan.links, plan.custom_fields, plan.correlations, plan.options, plan.tasks_,
                    plan.next_uid_);
  };
  return fields(a) == fields(b);
}

std::uint64_t StreamOfId(std::string_view id) {
  std::uint64_t hash = 0xCBF29CE484222325u;
  for (const char letter : id) {
    hash = (hash ^ static_cast<unsigned char>(letter)) * 0x100000001B3u;
  }
  hash = (hash ^ (hash >> 30)) * 0xBF58476D1CE4E5B9u;
  hash = (hash ^ (hash >> 27)) * 0x94D049BB133111EBu;
  return hash ^ (hash >> 31);
}

}  // namespace nimbrel::engine
