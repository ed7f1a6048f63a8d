#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "com/host_object.h"

/// The objects of a host that is reached through IDispatch, by the names of their members. What a
/// host hands back through an argument is given to it as a reference of the member's own kind.
namespace nimbrel::com {

using Corvane8::Long;
using Corvane8::Ref;
using platform::Date;
using platform::Variant;

class HostPlan;
class HostPlanProperties;
class HostPlanDisplay;
class HostRiskAnalysis;
class HostRiskOptions;
class HostChangeMonitor;
class HostCustomFields;
class HostPlanTasks;
class HostPlanCalendars;
class HostPlanRiskCalendars;
class HostRiskCalendar;
class HostCalendar;
class HostTask;
class HostTaskDates;
class HostUserFields;
class HostDuration;
class HostTaskRisk;
class HostTaskLinks;
class HostLinkList;
class HostTaskLink;
class HostTaskRiskCalendars;
class HostTaskRiskCalendar;
class HostAnything;

template <>
struct HostClass<Corvane8::Plan> {
  using type = HostPlan;
  static constexpr const char* kName = "Plan";
};

template <>
struct HostClass<Corvane8::PlanProperties> {
  using type = HostPlanProperties;
  static constexpr const char* kName = "PlanProperties";
};

template <>
struct HostClass<Corvane8::PlanDisplay> {
  using type = HostPlanDisplay;
  static constexpr const char* kName = "PlanDisplay";
};

template <>
struct HostClass<Corvane8::RiskAnalysis> {
  using type = HostRiskAnalysis;
  static constexpr const char* kName = "RiskAnalysis";
};

template <>
struct HostClass<Corvane8::RiskOptions> {
  using type = HostRiskOptions;
  static constexpr const char* kName = "RiskOptions";
};

template <>
struct HostClass<Corvane8::ChangeMonitor> {
  using type = HostChangeMonitor;
  static constexpr const char* kName = "ChangeMonitor";
};

template <>
struct HostClass<Corvane8::CustomFields> {
  using type = HostCustomFields;
  static constexpr const char* kName = "CustomFields";
};

template <>
struct HostClass<Corvane8::PlanTasks> {
  using type = HostPlanTasks;
  static constexpr const char* kName = "PlanTasks";
};

template <>
struct HostClass<Corvane8::PlanCalendars> {
  using type = HostPlanCalendars;
  static constexpr const char* kName = "PlanCalendars";
};

template <>
struct HostClass<Corvane8::PlanRiskCalendars> {
  using type = HostPlanRiskCalendars;
  static constexpr const char* kName = "PlanRiskCalendars";
};

template <>
struct HostClass<Corvane8::RiskCalendar> {
  using type = HostRiskCalendar;
  static constexpr const char* kName = "RiskCalendar";
};

template <>
struct HostClass<Corvane8::Calendar> {
  using type = HostCalendar;
  static constexpr const char* kName = "Calendar";
};

template <>
struct HostClass<Corvane8::Task> {
  using type = HostTask;
  static constexpr const char* kName = "Task";
};

template <>
struct HostClass<Corvane8::TaskDates> {
  using type = HostTaskDates;
  static constexpr const char* kName = "TaskDates";
};

template <>
struct HostClass<Corvane8::UserFields> {
  using type = HostUserFields;
  static constexpr const char* kName = "UserFields";
};

template <>
struct HostClass<Corvane8::Duration> {
  using type = HostDuration;
  static constexpr const char* kName = "Duration";
};

template <>
struct HostClass<Corvane8::TaskRisk> {
  using type = HostTaskRisk;
  static constexpr const char* kName = "TaskRisk";
};

template <>
struct HostClass<Corvane8::TaskLinks> {
  using type = HostTaskLinks;
  static constexpr const char* kName = "TaskLinks";
};

template <>
struct HostClass<Corvane8::LinkList> {
  using type = HostLinkList;
  static constexpr const char* kName = "LinkList";
};

template <>
struct HostClass<Corvane8::TaskLink> {
  using type = HostTaskLink;
  static constexpr const char* kName = "TaskLink";
};

template <>
struct HostClass<Corvane8::TaskRiskCalendars> {
  using type = HostTaskRiskCalendars;
  static constexpr const char* kName = "TaskRiskCalendars";
};

template <>
struct HostClass<Corvane8::TaskRiskCalendar> {
  using type = HostTaskRiskCalendar;
  static constexpr const char* kName = "TaskRiskCalendar";
};

template <>
struct HostClass<platform::Object> {
  using type = HostAnything;
  static constexpr const char* kName = "Object";
};

class HostPlan final : public Bound<Corvane8::Plan> {
 public:
  using Bound::Bound;
  std::string get_Name() override { return Get<std::string>("Name"); }
  Ref<Corvane8::PlanRiskCalendars> get_RiskCalendars() override {
    return Get<Ref<Corvane8::PlanRiskCalendars>>("RiskCalendars");
  }
  Ref<Corvane8::PlanProperties> get_Properties() override {
    return Get<Ref<Corvane8::PlanProperties>>("Properties");
  }
  Ref<Corvane8::RiskAnalysis> get_RiskAnalysis() override {
    return Get<Ref<Corvane8::RiskAnalysis>>("RiskAnalysis");
  }
  Ref<Corvane8::ChangeMonitor> get_ChangeMonitor() override {
    return Get<Ref<Corvane8::ChangeMonitor>>("ChangeMonitor");
  }
  Ref<Corvane8::PlanTasks> get_Tasks() override { return Get<Ref<Corvane8::PlanTasks>>("Tasks"); }
  Ref<Corvane8::PlanCalendars> get_Calendars() override {
    return Get<Ref<Corvane8::PlanCalendars>>("Calendars");
  }
  void Recalculate() override { Call("Recalculate"); }
  void put_AutoRecalculate(bool value) override { Put("AutoRecalculate", value); }
  void RecalculateFinish() override { Call("RecalculateFinish"); }
  void SetOption(std::string_view section, std::string_view group, std::string_view key,
                 std::string_view value) override {
    Call("SetOption", section, group, key, value);
  }
  std::string GetOption(std::string_view section, std::string_view group, std::string_view key,
                        std::string_view default_value) override {
    return CallOut<std::string>("GetOption", section, group, key, default_value);
  }
  Ref<Corvane8::CustomFields> get_CustomFields() override {
    return Get<Ref<Corvane8::CustomFields>>("CustomFields");
  }
  Ref<Corvane8::PlanDisplay> get_Display() override {
    return Get<Ref<Corvane8::PlanDisplay>>("Display");
  }
};

class HostPlanProperties final : public Bound<Corvane8::PlanProperties> {
 public:
  using Bound::Bound;
  std::string get_Title() override { return Get<std::string>("Title"); }
  Date get_AnchorDate() override { return Get<Date>("AnchorDate"); }
  Date get_ReferenceDate() override { return Get<Date>("ReferenceDate"); }
  Long get_TimeUnit() override { return Get<Long>("TimeUnit"); }
};

class HostPlanDisplay final : public Bound<Corvane8::PlanDisplay> {
 public:
  using Bound::Bound;
  Long get_DateFormat() override { return Get<Long>("DateFormat"); }
  Long get_HoursPerDay() override { return Get<Long>("HoursPerDay"); }
};

class HostRiskAnalysis final : public Bound<Corvane8::RiskAnalysis> {
 public:
  using Bound::Bound;
  Ref<Corvane8::RiskOptions> get_Options() override {
    return Get<Ref<Corvane8::RiskOptions>>("Options");
  }
  double get_Rnd() override { return Get<double>("Rnd"); }
};

class HostRiskOptions final : public Bound<Corvane8::RiskOptions> {
 public:
  using Bound::Bound;
  bool get_RecalculateAfterMove() override { return Get<bool>("RecalculateAfterMove"); }
};

class HostChangeMonitor final : public Bound<Corvane8::ChangeMonitor> {
 public:
  using Bound::Bound;
  void put_Enabled(bool value) override { Put("Enabled", value); }
};

class HostCustomFields final : public Bound<Corvane8::CustomFields> {
 public:
  using Bound::Bound;
  Ref<platform::Object> Add(std::string_view name, Long code) override {
    return CallOut<Ref<platform::Object>>("Add", name, code);
  }
};

class HostPlanTasks final : public Bound<Corvane8::PlanTasks> {
 public:
  using Bound::Bound;
  Ref<Corvane8::Task> Add() override { return CallOut<Ref<Corvane8::Task>>("Add"); }
  Ref<Corvane8::Task> Item(const Variant& key) override {
    return CallOut<Ref<Corvane8::Task>>("Item", key);
  }
  void Remove(const Variant& key) override { Call("Remove", key); }
  std::vector<Ref<Corvane8::Task>> Elements() override {
    return ElementsOf<Corvane8::Task>(dispatch());
  }
};

class HostPlanCalendars final : public Bound<Corvane8::PlanCalendars> {
 public:
  using Bound::Bound;
  Ref<Corvane8::Calendar> Add(std::string_view name) override {
    return CallOut<Ref<Corvane8::Calendar>>("Add", name);
  }
  Ref<Corvane8::Calendar> Item(const Variant& key) override {
    return CallOut<Ref<Corvane8::Calendar>>("Item", key);
  }
  void Remove(const Variant& key) override { Call("Remove", key); }
  std::vector<Ref<Corvane8::Calendar>> Elements() override {
    return ElementsOf<Corvane8::Calendar>(dispatch());
  }
};

class HostPlanRiskCalendars final : public Bound<Corvane8::PlanRiskCalendars> {
 public:
  using Bound::Bound;
  Ref<Corvane8::RiskCalendar> Add(std::string_view name) override {
    return CallOut<Ref<Corvane8::RiskCalendar>>("Add", name);
  }
  Ref<Corvane8::RiskCalendar> Item(const Variant& key) override {
    return CallOut<Ref<Corvane8::RiskCalendar>>("Item", key);
  }
  void Remove(const Variant& key) override { Call("Remove", key); }
  std::vector<Ref<Corvane8::RiskCalendar>> Elements() override {
    return ElementsOf<Corvane8::RiskCalendar>(dispatch());
  }
};

class HostRiskCalendar final : public Bound<Corvane8::RiskCalendar> {
 public:
  using Bound::Bound;
  void put_Description(std::string_view value) override { Put("Description", value); }
  std::string get_Name() override { return Get<std::string>("Name"); }
  void put_Calendar(const Ref<Corvane8::Calendar>& value) override { Put("Calendar", value); }
};

class HostCalendar final : public Bound<Corvane8::Calendar> {
 public:
  using Bound::Bound;
  std::string get_Name() override { return Get<std::string>("Name"); }
  void SetDays(Long status, Date from, Date to) override { Call("SetDays", status, from, to); }
  Long WorkingTime(Date from, Date to, Long one) override {
    return CallOut<Long>("WorkingTime", from, to, one);
  }
  Long WeekdayStatus(Long weekday, Long one) override {
    return CallOut<Long>("WeekdayStatus", weekday, one);
  }
};

class HostTask final : public Bound<Corvane8::Task> {
 public:
  using Bound::Bound;
  bool get_SkipInIteration() override { return Get<bool>("SkipInIteration"); }
  void put_Calendar(const Ref<Corvane8::Calendar>& value) override { Put("Calendar", value); }
  Ref<Corvane8::Calendar> get_Calendar() override {
    return Get<Ref<Corvane8::Calendar>>("Calendar");
  }
  Long get_SampledDuration() override { return Get<Long>("SampledDuration"); }
  Long get_Type() override { return Get<Long>("Type"); }
  void put_Description(std::string_view value) override { Put("Description", value); }
  std::string get_Description() override { return Get<std::string>("Description"); }
  void put_ID(std::string_view value) override { Put("ID", value); }
  std::string get_ID() override { return Get<std::string>("ID"); }
  Ref<Corvane8::TaskLinks> get_Links() override { return Get<Ref<Corvane8::TaskLinks>>("Links"); }
  Ref<Corvane8::TaskDates> get_Dates() override { return Get<Ref<Corvane8::TaskDates>>("Dates"); }
  Ref<Corvane8::UserFields> get_UserFields() override {
    return Get<Ref<Corvane8::UserFields>>("UserFields");
  }
  std::vector<Ref<Corvane8::Task>> get_Children() override;
  Ref<Corvane8::TaskRiskCalendars> get_RiskCalendars() override {
    return Get<Ref<Corvane8::TaskRiskCalendars>>("RiskCalendars");
  }
  Ref<Corvane8::Duration> Duration(Long mode) override {
    return CallOut<Ref<Corvane8::Duration>>("Duration", mode);
  }
  Ref<Corvane8::TaskRisk> Risk(Long mode) override {
    return CallOut<Ref<Corvane8::TaskRisk>>("Risk", mode);
  }
  void MoveUnder(Long zero, const Ref<Corvane8::Task>& parent) override {
    Call("MoveUnder", zero, parent);
  }
  Ref<Corvane8::Task> Parent(Long zero) override {
    return CallOut<Ref<Corvane8::Task>>("Parent", zero);
  }
  Date NextWorkingDate(Date date, double zero) override {
    return CallOut<Date>("NextWorkingDate", date, zero);
  }
  bool get_Critical() override { return Get<bool>("Critical"); }
};

class HostTaskDates final : public Bound<Corvane8::TaskDates> {
 public:
  using Bound::Bound;
  Date get_Finish() override { return Get<Date>("Finish"); }
  double get_Progress() override { return Get<double>("Progress"); }
  Date get_Start() override { return Get<Date>("Start"); }
  void put_ConstraintDate(Date value) override { Put("ConstraintDate", value); }
  void put_Constraint(Long value) override { Put("Constraint", value); }
};

class HostUserFields final : public Bound<Corvane8::UserFields> {
 public:
  using Bound::Bound;
  Variant GetCustom(std::string_view name) override { return CallOut<Variant>("GetCustom", name); }
  void SetCustom(std::string_view name, const Variant& value) override {
    Call("SetCustom", name, value);
  }
  void SetValue(Long two, std::string_view section, std::string_view key,
                std::string_view value) override {
    Call("SetValue", two, section, key, value);
  }
  std::string GetValue(Long two, std::string_view section, std::string_view key,
                       std::string_view default_value) override {
    return CallOut<std::string>("GetValue", two, section, key, default_value);
  }
};

class HostDuration final : public Bound<Corvane8::Duration> {
 public:
  using Bound::Bound;
  void put_Likely(double value) override { Put("Likely", value); }
  double get_Likely() override { return Get<double>("Likely"); }
  void put_Maximum(double value) override { Put("Maximum", value); }
  double get_Maximum() override { return Get<double>("Maximum"); }
  void put_Minimum(double value) override { Put("Minimum", value); }
  double get_Minimum() override { return Get<double>("Minimum"); }
};

class HostTaskRisk final : public Bound<Corvane8::TaskRisk> {
 public:
  using Bound::Bound;
  void put_Mode(Long value) override { Put("Mode", value); }
  void put_Probability(double value) override { Put("Probability", value); }
  double get_Probability() override { return Get<double>("Probability"); }
};

class HostTaskLinks final : public Bound<Corvane8::TaskLinks> {
 public:
  using Bound::Bound;
  Ref<Corvane8::LinkList> get_Successors() override {
    return Get<Ref<Corvane8::LinkList>>("Successors");
  }
};

class HostLinkList final : public Bound<Corvane8::LinkList> {
 public:
  using Bound::Bound;
  Ref<Corvane8::TaskLink> Add(std::string_view task_id, Long two, Long zero1, Long zero2,
                              Long zero3) override {
    return CallOut<Ref<Corvane8::TaskLink>>("Add", task_id, two, zero1, zero2, zero3);
  }
  Ref<Corvane8::TaskLink> Item(const Variant& index) override {
    return CallOut<Ref<Corvane8::TaskLink>>("Item", index);
  }
};

class HostTaskLink final : public Bound<Corvane8::TaskLink> {
 public:
  using Bound::Bound;
  Ref<Corvane8::Task> get_Task() override { return Get<Ref<Corvane8::Task>>("Task"); }
};

class HostTaskRiskCalendars final : public Bound<Corvane8::TaskRiskCalendars> {
 public:
  using Bound::Bound;
  Ref<Corvane8::TaskRiskCalendar> Add(std::string_view name) override {
    return CallOut<Ref<Corvane8::TaskRiskCalendar>>("Add", name);
  }
  void Remove(const Variant& key) override { Call("Remove", key); }
  std::vector<Ref<Corvane8::TaskRiskCalendar>> Elements() override {
    return ElementsOf<Corvane8::TaskRiskCalendar>(dispatch());
  }
};

class HostTaskRiskCalendar final : public Bound<Corvane8::TaskRiskCalendar> {
 public:
  using Bound::Bound;
  void put_Value(double value) override { Put("Value", value); }
  Ref<Corvane8::RiskCalendar> get_RiskCalendar() override {
    return Get<Ref<Corvane8::RiskCalendar>>("RiskCalendar");
  }
};

/// An object that is only held.
class HostAnything final : public Bound<platform::Object> {
 public:
  using Bound::Bound;
};

}  // namespace nimbrel::com
