#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/objects/calendar_object.h"
#include "engine/objects/face.h"
#include "host/corvane8.h"

namespace nimbrel::engine {

class TaskObject;

/// An object that stands for one side of a task.
template <class Interface>
class TaskFace : public Face<Interface> {
 public:
  TaskFace(PlanSession& session, TaskObject& task) : Face<Interface>(session), task_(&task) {}

 protected:
  TaskObject& task() const { return *task_; }

 private:
  TaskObject* task_;
};

class TaskDatesObject final : public TaskFace<Corvane8::TaskDates> {
 public:
  using TaskFace::TaskFace;
  platform::Date get_Finish() override;
  double get_Progress() override;
  platform::Date get_Start() override;
  void put_ConstraintDate(platform::Date value) override;
  void put_Constraint(Corvane8::Long value) override;

 private:
  /// Type and date as they were put last, in whichever order; the document gets only what has an
  /// effect.
  const Constraint& Wanted();
  void Apply();

  Constraint wanted_;
  bool wanted_read_ = false;
};

class UserFieldsObject final : public TaskFace<Corvane8::UserFields> {
 public:
  using TaskFace::TaskFace;
  platform::Variant GetCustom(std::string_view name) override;
  void SetCustom(std::string_view name, const platform::Variant& value) override;
  void SetValue(Corvane8::Long two, std::string_view section, std::string_view key,
                std::string_view value) override;
  std::string GetValue(Corvane8::Long two, std::string_view section, std::string_view key,
                       std::string_view default_value) override;
};

class DurationObject final : public TaskFace<Corvane8::Duration> {
 public:
  using TaskFace::TaskFace;
  void put_Likely(double value) override;
  double get_Likely() override;
  void put_Maximum(double value) override;
  double get_Maximum() override;
  void put_Minimum(double value) override;
  double get_Minimum() override;

 private:
  double Get(double ThreePoint::*point);
  void Put(double ThreePoint::*point, double value);
};

class TaskRiskObject final : public TaskFace<Corvane8::TaskRisk> {
 public:
  using TaskFace::TaskFace;
  void put_Mode(Corvane8::Long value) override;
  void put_Probability(double value) override;
  double get_Probability() override;
};

class TaskLinkObject final : public TaskFace<Corvane8::TaskLink> {
 public:
  /// `task` is the one at the far end.
  using TaskFace::TaskFace;
  platform::Ref<Corvane8::Task> get_Task() override;
  const TaskObject* far_end() const { return &task(); }
};

class LinkListObject final : public TaskFace<Corvane8::LinkList> {
 public:
  using TaskFace::TaskFace;
  platform::Ref<Corvane8::TaskLink> Add(std::string_view task_id, Corvane8::Long two,
                                        Corvane8::Long zero1, Corvane8::Long zero2,
                                        Corvane8::Long zero3) override;
  platform::Ref<Corvane8::TaskLink> Item(const platform::Variant& index) override;

 private:
  platform::Ref<Corvane8::TaskLink> ShareLink(TaskObject& far_end);

  std::vector<std::unique_ptr<TaskLinkObject>> links_;  // one to each far end
};

class TaskLinksObject final : public TaskFace<Corvane8::TaskLinks> {
 public:
  using TaskFace::TaskFace;
  platform::Ref<Corvane8::LinkList> get_Successors() override;
};

class TaskRiskCalendarObject final : public TaskFace<Corvane8::TaskRiskCalendar> {
 public:
  TaskRiskCalendarObject(PlanSession& session, TaskObject& task, RiskCalendarObject& risk_calendar)
      : TaskFace(session, task), risk_calendar_(&risk_calendar) {}
  void put_Value(double value) override;
  platform::Ref<Corvane8::RiskCalendar> get_RiskCalendar() override;
  const RiskCalendarObject* risk_calendar() const { return risk_calendar_; }

 private:
  RiskCalendarObject* risk_calendar_;
};

class TaskRiskCalendarsObject final : public TaskFace<Corvane8::TaskRiskCalendars> {
 public:
  using TaskFace::TaskFace;
  platform::Ref<Corvane8::TaskRiskCalendar> Add(std::string_view name) override;
  void Remove(const platform::Variant& key) override;
  std::vector<platform::Ref<Corvane8::TaskRiskCalendar>> Elements() override;

 private:
  platform::Ref<Corvane8::TaskRiskCalendar> ShareAssigned(RiskCalendarObject& risk_calendar);

  std::vector<std::unique_ptr<TaskRiskCalendarObject>> assigned_;  // one to each risk calendar
};

/// A task of the plan, or one that was taken out of it: then it goes on alone with a copy, and what
/// needs the plan raises error 1004.
class TaskObject final : public Face<Corvane8::Task> {
 public:
  TaskObject(PlanSession& session, Uid uid);

  bool get_SkipInIteration() override;
  void put_Calendar(const platform::Ref<Corvane8::Calendar>& value) override;
  platform::Ref<Corvane8::Calendar> get_Calendar() override;
  Corvane8::Long get_SampledDuration() override;
  Corvane8::Long get_Type() override;
  void put_Description(std::string_view value) override;
  std::string get_Description() override;
  void put_ID(std::string_view value) override;
  std::string get_ID() override;
  platform::Ref<Corvane8::TaskLinks> get_Links() override;
  platform::Ref<Corvane8::TaskDates> get_Dates() override;
  platform::Ref<Corvane8::UserFields> get_UserFields() override;
  std::vector<platform::Ref<Corvane8::Task>> get_Children() override;
  platform::Ref<Corvane8::TaskRiskCalendars> get_RiskCalendars() override;
  platform::Ref<Corvane8::Duration> Duration(Corvane8::Long mode) override;
  platform::Ref<Corvane8::TaskRisk> Risk(Corvane8::Long mode) override;
  void MoveUnder(Corvane8::Long zero, const platform::Ref<Corvane8::Task>& parent) override;
  platform::Ref<Corvane8::Task> Parent(Corvane8::Long zero) override;
  platform::Date NextWorkingDate(platform::Date date, double zero) override;
  bool get_Critical() override;

  Uid uid() const { return uid_; }
  bool in_plan() const { return removed_ == nullptr; }
  /// The task's record, in the document while the task is there.
  engine::Task& Data() {
    if (generation_ != session().generation()) {
      Resolve();
    }
    return *data_;
  }
  /// Position in the document; Data() must have been called since the last change, and the task
  /// must be there.
  std::int32_t position() const { return position_; }
  /// Raises error 1004 if the task has been taken out of the plan.
  void RequireInPlan() const;
  /// To be called before the task leaves the document.
  void Detach();
  /// A change that the predicate of weather tasks may look at.
  template <class Change>
  void ChangeIdentity(const Change& change);

  LinkListObject& successors() { return successors_; }

 private:
  void Resolve();

  Uid uid_;
  engine::Task* data_ = nullptr;
  CalendarObject* calendar_ = nullptr;  // that get_Calendar gives
  std::int32_t position_ = -1;
  std::uint32_t generation_ = 0;
  std::unique_ptr<engine::Task> removed_;

  TaskDatesObject dates_;
  UserFieldsObject user_fields_;
  DurationObject duration_;
  TaskRiskObject risk_;
  TaskLinksObject links_;
  LinkListObject successors_;
  TaskRiskCalendarsObject risk_calendars_;
};

template <class Change>
void TaskObject::ChangeIdentity(const Change& change) {
  const bool took_part = session().Participates(Data());
  change();
  if (in_plan() && session().Participates(Data()) != took_part) {
    session().StructureChanged();
  }
}

}  // namespace nimbrel::engine
