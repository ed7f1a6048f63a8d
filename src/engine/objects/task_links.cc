// What a task is joined to: successors and risk calendars.

#include <algorithm>
#include <array>

#include "engine/objects/task_object.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

using Corvane8::Long;
using platform::Ref;
using platform::RuntimeError;
using platform::Variant;

/// Link types by their code: the upper bit is set where the link goes out from the finish, the
/// lower one where it leads to the finish.
constexpr std::array<LinkType, 4> kLinkTypes = {LinkType::kStartToStart, LinkType::kStartToFinish,
                                                LinkType::kFinishToStart,
                                                LinkType::kFinishToFinish};

/// Successors of a task, in the order of adding.
std::vector<Uid> SuccessorsOf(const Plan& plan, Uid task) {
  std::vector<Uid> successors;
  for (const Link& link : plan.links) {
    if (link.predecessor == task) {
      successors.push_back(link.successor);
    }
  }
  return successors;
}

/// The object of `pointer_to(object) == wanted`, made by `make` if there is none yet.
template <class Object, class Matches, class Make>
Object& FindOrMake(std::vector<std::unique_ptr<Object>>& objects, const Matches& matches,
                   const Make& make) {
  const auto found = std::find_if(objects.begin(), objects.end(),
                                  [&](const auto& object) { return matches(*object); });
  return found != objects.end() ? **found : *objects.emplace_back(make());
}

}  // namespace

// Links.

Ref<Corvane8::LinkList> TaskLinksObject::get_Successors() {
  return task().successors().Share();
}

Ref<Corvane8::Task> TaskLinkObject::get_Task() {
  return task().Share();
}

Ref<Corvane8::TaskLink> LinkListObject::ShareLink(TaskObject& far_end) {
  return FindOrMake(
             links_, [&](const TaskLinkObject& link) { return link.far_end() == &far_end; },
             [&] { return std::make_unique<TaskLinkObject>(session(), far_end); })
      .Share();
}

Ref<Corvane8::TaskLink> LinkListObject::Add(std::string_view task_id, Long two, Long zero1,
                                            Long zero2, Long zero3) {
  task().RequireInPlan();
  Plan& plan = session().plan();
  const Task* successor = plan.FindTask(task_id);
  if (successor == nullptr) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "There is no task \"" + std::string(task_id) + "\"");
  }
  if (two < 0 || two >= static_cast<Long>(kLinkTypes.size()) || zero1 != 0 || zero2 != 0 ||
      zero3 != 0) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "A link is added with a type of 0 to 3 and three zeros");
  }
  if (successor->uid == task().uid()) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "The task " + successor->id + " cannot be linked to itself");
  }
  Link link;
  link.predecessor = task().uid();
  link.successor = successor->uid;
  link.type = kLinkTypes[static_cast<std::size_t>(two)];
  const bool there = std::any_of(plan.links.begin(), plan.links.end(), [&](const Link& old) {
    return old.predecessor == link.predecessor && old.successor == link.successor &&
           old.type == link.type;
  });
  if (there) {
    throw RuntimeError(platform::kDuplicateKey, "The tasks " + task().Data().id + " and " +
                                                    successor->id + " have such a link already");
  }
  plan.links.push_back(link);
  session().StructureChanged();
  return ShareLink(session().TaskAt(plan.IndexOf(link.successor)));
}

Ref<Corvane8::TaskLink> LinkListObject::Item(const Variant& index) {
  if (index.Is<std::string>()) {
    throw RuntimeError(platform::kTypeMismatch, "A link is known by its number, not by a text");
  }
  const std::vector<Uid> successors = SuccessorsOf(session().plan(), task().uid());
  const std::int32_t position =
      PositionOfKey(index, successors.size(), "link", [](const std::string&) { return -1; });
  const Uid far_end = successors[static_cast<std::size_t>(position)];
  return ShareLink(session().TaskAt(session().plan().IndexOf(far_end)));
}

// Risk calendars.

void TaskRiskCalendarObject::put_Value(double value) {
  auto& assigned = task().Data().risk_calendars;
  const auto found = std::find_if(
      assigned.begin(), assigned.end(),
      [this](const RiskAssignment& entry) { return entry.risk_calendar == risk_calendar_->uid(); });
  if (found == assigned.end()) {
    throw RuntimeError(platform::kApplicationDefined,
                       "The risk calendar \"" + risk_calendar_->get_Name() +
                           "\" is no longer assigned to the task " + task().Data().id);
  }
  found->value = value;
}

Ref<Corvane8::RiskCalendar> TaskRiskCalendarObject::get_RiskCalendar() {
  return risk_calendar_->Share();
}

Ref<Corvane8::TaskRiskCalendar> TaskRiskCalendarsObject::ShareAssigned(
    RiskCalendarObject& risk_calendar) {
  return FindOrMake(
             assigned_,
             [&](const TaskRiskCalendarObject& object) {
               return object.risk_calendar() == &risk_calendar;
             },
             [&] {
               return std::make_unique<TaskRiskCalendarObject>(session(), task(), risk_calendar);
             })
      .Share();
}

Ref<Corvane8::TaskRiskCalendar> TaskRiskCalendarsObject::Add(std::string_view name) {
  task().RequireInPlan();
  const RiskCalendarDefinition* definition = session().plan().FindRiskCalendar(name);
  if (definition == nullptr) {
    throw RuntimeError(platform::kInvalidProcedureCall,
                       "There is no risk calendar \"" + std::string(name) + "\"");
  }
  auto& assigned = task().Data().risk_calendars;
  const bool there = std::any_of(
      assigned.begin(), assigned.end(),
      [definition](const RiskAssignment& entry) { return entry.risk_calendar == definition->uid; });
  if (there) {
    throw RuntimeError(platform::kDuplicateKey, "The task " + task().Data().id +
                                                    " has the risk calendar \"" + definition->name +
                                                    "\" already");
  }
  assigned.push_back({definition->uid, 0.0});
  session().StructureChanged();
  return ShareAssigned(*session().FindRiskCalendar(definition->uid));
}

void TaskRiskCalendarsObject::Remove(const Variant& key) {
  auto& assigned = task().Data().risk_calendars;
  const Plan& plan = session().plan();
  const std::int32_t position = PositionOfKey(
      key, assigned.size(), "risk calendar of the task", [&](const std::string& name) {
        const auto found =
            std::find_if(assigned.begin(), assigned.end(), [&](const RiskAssignment& entry) {
              const auto* definition = plan.FindRiskCalendar(entry.risk_calendar);
              return definition != nullptr && platform::EqualsIgnoreCase(definition->name, name);
            });
        return found == assigned.end() ? -1 : static_cast<std::int32_t>(found - assigned.begin());
      });
  assigned.erase(assigned.begin() + position);
  session().StructureChanged();
}

std::vector<Ref<Corvane8::TaskRiskCalendar>> TaskRiskCalendarsObject::Elements() {
  std::vector<Ref<Corvane8::TaskRiskCalendar>> elements;
  for (const RiskAssignment& entry : task().Data().risk_calendars) {
    if (RiskCalendarObject* risk_calendar = session().FindRiskCalendar(entry.risk_calendar)) {
      elements.push_back(ShareAssigned(*risk_calendar));
    }
  }
  return elements;
}

}  // namespace nimbrel::engine
