// The faces of the plan and of what hangs on it directly.

#include <algorithm>
#include <string>
#include <utility>

#include "platform/runtime_error.h"
#include "platform/text.h"
#include "tests/support/host/faces.h"

namespace nimbrel::recording {

using Corvane8::Long;
using Corvane8::Ref;
using platform::Date;
using platform::MakeRef;
using platform::RuntimeError;
using platform::Variant;

namespace {

class PropertiesFace : public Corvane8::PlanProperties {
 public:
  explicit PropertiesFace(Context context) : context_(std::move(context)) {}
  std::string get_Title() override {
    context_.recorder->Call("PlanProperties", "Title");
    return context_.plan->title;
  }
  Date get_AnchorDate() override {
    context_.recorder->Call("PlanProperties", "AnchorDate");
    return context_.plan->anchor;
  }
  Date get_ReferenceDate() override {
    context_.recorder->Call("PlanProperties", "ReferenceDate");
    return context_.plan->reference;
  }
  Long get_TimeUnit() override {
    context_.recorder->Call("PlanProperties", "TimeUnit");
    return context_.plan->time_unit;
  }

 private:
  Context context_;
};

class DisplayFace : public Corvane8::PlanDisplay {
 public:
  explicit DisplayFace(Context context) : context_(std::move(context)) {}
  Long get_DateFormat() override {
    context_.recorder->Call("PlanDisplay", "DateFormat");
    return context_.plan->date_format;
  }
  Long get_HoursPerDay() override {
    context_.recorder->Call("PlanDisplay", "HoursPerDay");
    return context_.plan->hours_per_day;
  }

 private:
  Context context_;
};

class OptionsFace : public Corvane8::RiskOptions {
 public:
  explicit OptionsFace(Context context) : context_(std::move(context)) {}
  bool get_RecalculateAfterMove() override {
    context_.recorder->Call("RiskOptions", "RecalculateAfterMove");
    return context_.plan->recalculate_after_move;
  }

 private:
  Context context_;
};

class RiskAnalysisFace : public Corvane8::RiskAnalysis {
 public:
  explicit RiskAnalysisFace(Context context) : context_(std::move(context)) {}
  Ref<Corvane8::RiskOptions> get_Options() override {
    context_.recorder->Call("RiskAnalysis", "Options");
    return MakeRef<OptionsFace>(context_);
  }
  double get_Rnd() override {
    context_.recorder->Call("RiskAnalysis", "Rnd");
    PlanState& plan = *context_.plan;
    if (plan.random_reads < plan.scripted_random.size()) {
      return plan.scripted_random[plan.random_reads++];
    }
    return plan.NextRandom();
  }

 private:
  Context context_;
};

class ChangeMonitorFace : public Corvane8::ChangeMonitor {
 public:
  explicit ChangeMonitorFace(Context context) : context_(std::move(context)) {}
  void put_Enabled(bool value) override {
    context_.recorder->Put("ChangeMonitor", "Enabled", value);
    context_.plan->monitor_enabled = value;
  }

 private:
  Context context_;
};

/// The definition that CustomFields.Add hands out.
class FieldFace : public platform::Object {};

class CustomFieldsFace : public Corvane8::CustomFields {
 public:
  explicit CustomFieldsFace(Context context) : context_(std::move(context)) {}
  Ref<platform::Object> Add(std::string_view name, Long code) override {
    context_.recorder->Call("CustomFields", "Add", name, code);
    if (!context_.plan->custom_fields.insert(platform::FoldCase(name)).second) {
      throw RuntimeError(platform::kDuplicateKey, "The field exists: " + std::string(name));
    }
    return MakeRef<FieldFace>();
  }

 private:
  Context context_;
};

class PlanFace : public Corvane8::Plan {
 public:
  explicit PlanFace(Context context) : context_(std::move(context)) {}
  std::string get_Name() override {
    Called("Name");
    return context_.plan->name;
  }
  Ref<Corvane8::PlanRiskCalendars> get_RiskCalendars() override {
    Called("RiskCalendars");
    return MakePlanRiskCalendarsFace(context_);
  }
  Ref<Corvane8::PlanProperties> get_Properties() override {
    Called("Properties");
    return MakeRef<PropertiesFace>(context_);
  }
  Ref<Corvane8::RiskAnalysis> get_RiskAnalysis() override {
    Called("RiskAnalysis");
    return MakeRef<RiskAnalysisFace>(context_);
  }
  Ref<Corvane8::ChangeMonitor> get_ChangeMonitor() override {
    Called("ChangeMonitor");
    return MakeRef<ChangeMonitorFace>(context_);
  }
  Ref<Corvane8::PlanTasks> get_Tasks() override {
    Called("Tasks");
    return MakePlanTasksFace(context_);
  }
  Ref<Corvane8::PlanCalendars> get_Calendars() override {
    Called("Calendars");
    return MakePlanCalendarsFace(context_);
  }
  void Recalculate() override {
    Called("Recalculate");
    context_.plan->Schedule();
  }
  void put_AutoRecalculate(bool value) override {
    context_.recorder->Put("Plan", "AutoRecalculate", value);
    context_.plan->auto_recalculate = value;
  }
  void RecalculateFinish() override { Called("RecalculateFinish"); }
  void SetOption(std::string_view section, std::string_view group, std::string_view key,
                 std::string_view value) override {
    context_.recorder->Call("Plan", "SetOption", section, group, key, value);
    context_.plan->options[{std::string(section), std::string(group), std::string(key)}] = value;
  }
  std::string GetOption(std::string_view section, std::string_view group, std::string_view key,
                        std::string_view default_value) override {
    context_.recorder->Call("Plan", "GetOption", section, group, key, default_value);
    const auto found =
        context_.plan->options.find({std::string(section), std::string(group), std::string(key)});
    return found == context_.plan->options.end() ? std::string(default_value) : found->second;
  }
  Ref<Corvane8::CustomFields> get_CustomFields() override {
    Called("CustomFields");
    return MakeRef<CustomFieldsFace>(context_);
  }
  Ref<Corvane8::PlanDisplay> get_Display() override {
    Called("Display");
    return MakeRef<DisplayFace>(context_);
  }

 private:
  void Called(std::string_view operation) const { context_.recorder->Call("Plan", operation); }

  Context context_;
};

class PlanTasksFace : public Corvane8::PlanTasks {
 public:
  explicit PlanTasksFace(Context context) : context_(std::move(context)) {}
  Ref<Corvane8::Task> Add() override {
    context_.recorder->Call("PlanTasks", "Add");
    PlanState& plan = *context_.plan;
    auto task = std::make_shared<TaskState>();
    do {
      task->id = "T" + std::to_string(plan.next_task++);
    } while (plan.FindTask(task->id));
    task->calendar = plan.calendars.front();
    plan.tasks.push_back(task);
    return MakeTaskFace(context_, task);
  }
  Ref<Corvane8::Task> Item(const Variant& key) override {
    context_.recorder->Call("PlanTasks", "Item", key);
    auto task = context_.plan->FindTask(KeyText(key));
    if (!task) {
      RaiseMissing("tasks", KeyText(key));
    }
    return MakeTaskFace(context_, task);
  }
  void Remove(const Variant& key) override {
    context_.recorder->Call("PlanTasks", "Remove", key);
    PlanState& plan = *context_.plan;
    const auto gone = plan.FindTask(KeyText(key));
    if (!gone) {
      RaiseMissing("tasks", KeyText(key));
    }
    std::erase(plan.tasks, gone);
    for (const auto& task : plan.tasks) {
      std::erase_if(task->successors, [&gone](const std::weak_ptr<TaskState>& successor) {
        return successor.lock() == gone;
      });
      if (task->parent.lock() == gone) {
        task->parent.reset();
      }
    }
  }
  std::vector<Ref<Corvane8::Task>> Elements() override {
    context_.recorder->Call("PlanTasks", "Elements");
    std::vector<Ref<Corvane8::Task>> elements;
    for (const auto& task : context_.plan->tasks) {
      elements.push_back(MakeTaskFace(context_, task));
    }
    return elements;
  }

 private:
  Context context_;
};

class PlanCalendarsFace : public Corvane8::PlanCalendars {
 public:
  explicit PlanCalendarsFace(Context context) : context_(std::move(context)) {}
  Ref<Corvane8::Calendar> Add(std::string_view name) override {
    context_.recorder->Call("PlanCalendars", "Add", name);
    if (context_.plan->FindCalendar(name)) {
      throw RuntimeError(platform::kDuplicateKey, "The calendar exists: " + std::string(name));
    }
    return MakeCalendarFace(context_, context_.plan->AddCalendar(name));
  }
  Ref<Corvane8::Calendar> Item(const Variant& key) override {
    context_.recorder->Call("PlanCalendars", "Item", key);
    auto calendar = context_.plan->FindCalendar(KeyText(key));
    if (!calendar) {
      RaiseMissing("calendars", KeyText(key));
    }
    return MakeCalendarFace(context_, calendar);
  }
  void Remove(const Variant& key) override {
    context_.recorder->Call("PlanCalendars", "Remove", key);
    const auto gone = context_.plan->FindCalendar(KeyText(key));
    if (!gone) {
      RaiseMissing("calendars", KeyText(key));
    }
    std::erase(context_.plan->calendars, gone);
  }
  std::vector<Ref<Corvane8::Calendar>> Elements() override {
    context_.recorder->Call("PlanCalendars", "Elements");
    std::vector<Ref<Corvane8::Calendar>> elements;
    for (const auto& calendar : context_.plan->calendars) {
      elements.push_back(MakeCalendarFace(context_, calendar));
    }
    return elements;
  }

 private:
  Context context_;
};

class PlanRiskCalendarsFace : public Corvane8::PlanRiskCalendars {
 public:
  explicit PlanRiskCalendarsFace(Context context) : context_(std::move(context)) {}
  Ref<Corvane8::RiskCalendar> Add(std::string_view name) override {
    context_.recorder->Call("PlanRiskCalendars", "Add", name);
    if (context_.plan->FindRiskCalendar(name)) {
      throw RuntimeError(platform::kDuplicateKey, "The risk calendar exists: " + std::string(name));
    }
    auto calendar = std::make_shared<RiskCalendarState>();
    calendar->name = std::string(name);
    context_.plan->risk_calendars.push_back(calendar);
    return MakeRiskCalendarFace(context_, calendar);
  }
  Ref<Corvane8::RiskCalendar> Item(const Variant& key) override {
    context_.recorder->Call("PlanRiskCalendars", "Item", key);
    auto calendar = context_.plan->FindRiskCalendar(KeyText(key));
    if (!calendar) {
      RaiseMissing("risk calendars", KeyText(key));
    }
    return MakeRiskCalendarFace(context_, calendar);
  }
  void Remove(const Variant& key) override {
    context_.recorder->Call("PlanRiskCalendars", "Remove", key);
    const auto gone = context_.plan->FindRiskCalendar(KeyText(key));
    if (!gone) {
      RaiseMissing("risk calendars", KeyText(key));
    }
    std::erase(context_.plan->risk_calendars, gone);
    for (const auto& task : context_.plan->tasks) {
      std::erase_if(task->risk_calendars, [&gone](const AssignedRiskCalendar& assigned) {
        return assigned.risk_calendar == gone;
      });
    }
  }
  std::vector<Ref<Corvane8::RiskCalendar>> Elements() override {
    context_.recorder->Call("PlanRiskCalendars", "Elements");
    std::vector<Ref<Corvane8::RiskCalendar>> elements;
    for (const auto& calendar : context_.plan->risk_calendars) {
      elements.push_back(MakeRiskCalendarFace(context_, calendar));
    }
    return elements;
  }

 private:
  Context context_;
};

}  // namespace

Ref<Corvane8::Plan> MakePlanFace(const Context& context) {
  return MakeRef<PlanFace>(context);
}

Ref<Corvane8::PlanTasks> MakePlanTasksFace(const Context& context) {
  return MakeRef<PlanTasksFace>(context);
}

Ref<Corvane8::PlanCalendars> MakePlanCalendarsFace(const Context& context) {
  return MakeRef<PlanCalendarsFace>(context);
}

Ref<Corvane8::PlanRiskCalendars> MakePlanRiskCalendarsFace(const Context& context) {
  return MakeRef<PlanRiskCalendarsFace>(context);
}

std::string KeyText(const Variant& key) {
  if (const auto* text = key.Get<std::string>()) {
    return *text;
  }
  throw RuntimeError(platform::kTypeMismatch, "A key of this collection is a text");
}

void RaiseMissing(const std::string& collection, const std::string& key) {
  throw RuntimeError(platform::kInvalidProcedureCall, "Not among the " + collection + ": " + key);
}

}  // namespace nimbrel::recording
