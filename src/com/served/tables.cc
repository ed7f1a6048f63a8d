#include <corvane8.h>

#include "com/served/member.h"

// The members of every class in the order of the object library's IDL.

namespace nimbrel::com::served {
namespace {

/// The elements of a collection, as they are offered to others.
template <class Collection>
std::vector<ComVariant> Elements(Object& object) {
  std::vector<ComVariant> elements;
  for (const auto& element : dynamic_cast<Collection&>(object).Elements()) {
    elements.push_back(ToCaller(element));
  }
  return elements;
}

constexpr std::array kApplication = {
    Get<&Corvane8::Application::get_ActivePlan>("ActivePlan"),
    Get<&Corvane8::Application::get_Path>("Path"),
    Get<&Corvane8::Application::get_hWnd>("hWnd"),
};

constexpr std::array kPlan = {
    Get<&Corvane8::Plan::get_Name>("Name"),
    Get<&Corvane8::Plan::get_RiskCalendars>("RiskCalendars"),
    Get<&Corvane8::Plan::get_Properties>("Properties"),
    Get<&Corvane8::Plan::get_RiskAnalysis>("RiskAnalysis"),
    Get<&Corvane8::Plan::get_ChangeMonitor>("ChangeMonitor"),
    Get<&Corvane8::Plan::get_Tasks>("Tasks"),
    Get<&Corvane8::Plan::get_Calendars>("Calendars"),
    Method<&Corvane8::Plan::Recalculate>("Recalculate"),
    Put<&Corvane8::Plan::put_AutoRecalculate>("AutoRecalculate"),
    Method<&Corvane8::Plan::RecalculateFinish>("RecalculateFinish"),
    Method<&Corvane8::Plan::SetOption>("SetOption"),
    Method<&Corvane8::Plan::GetOption>("GetOption"),
    Get<&Corvane8::Plan::get_CustomFields>("CustomFields"),
    Get<&Corvane8::Plan::get_Display>("Display"),
};

constexpr std::array kPlanProperties = {
    Get<&Corvane8::PlanProperties::get_Title>("Title"),
    Get<&Corvane8::PlanProperties::get_AnchorDate>("AnchorDate"),
    Get<&Corvane8::PlanProperties::get_ReferenceDate>("ReferenceDate"),
    Get<&Corvane8::PlanProperties::get_TimeUnit>("TimeUnit"),
};

constexpr std::array kPlanDisplay = {
    Get<&Corvane8::PlanDisplay::get_DateFormat>("DateFormat"),
    Get<&Corvane8::PlanDisplay::get_HoursPerDay>("HoursPerDay"),
};

constexpr std::array kRiskAnalysis = {
    Get<&Corvane8::RiskAnalysis::get_Options>("Options"),
    Get<&Corvane8::RiskAnalysis::get_Rnd>("Rnd"),
};

constexpr std::array kRiskOptions = {
    Get<&Corvane8::RiskOptions::get_RecalculateAfterMove>("RecalculateAfterMove"),
};

constexpr std::array kChangeMonitor = {
    Put<&Corvane8::ChangeMonitor::put_Enabled>("Enabled"),
};

constexpr std::array kCustomFields = {
    Method<&Corvane8::CustomFields::Add>("Add"),
};

constexpr std::array kPlanTasks = {
    Method<&Corvane8::PlanTasks::Add>("Add"),
    Method<&Corvane8::PlanTasks::Item>("Item"),
    Method<&Corvane8::PlanTasks::Remove>("Remove"),
};

constexpr std::array kPlanCalendars = {
    Method<&Corvane8::PlanCalendars::Add>("Add"),
    Method<&Corvane8::PlanCalendars::Item>("Item"),
    Method<&Corvane8::PlanCalendars::Remove>("Remove"),
};

constexpr std::array kPlanRiskCalendars = {
    Method<&Corvane8::PlanRiskCalendars::Add>("Add"),
    Method<&Corvane8::PlanRiskCalendars::Item>("Item"),
    Method<&Corvane8::PlanRiskCalendars::Remove>("Remove"),
};

constexpr std::array kRiskCalendar = {
    Put<&Corvane8::RiskCalendar::put_Description>("Description"),
    Get<&Corvane8::RiskCalendar::get_Name>("Name"),
    Put<&Corvane8::RiskCalendar::put_Calendar>("Calendar"),
};

constexpr std::array kCalendar = {
    Get<&Corvane8::Calendar::get_Name>("Name"),
    Method<&Corvane8::Calendar::SetDays>("SetDays"),
    Method<&Corvane8::Calendar::WorkingTime>("WorkingTime"),
    Method<&Corvane8::Calendar::WeekdayStatus>("WeekdayStatus"),
};

constexpr std::array kTask = {
    Get<&Corvane8::Task::get_SkipInIteration>("SkipInIteration"),
    Put<&Corvane8::Task::put_Calendar>("Calendar"),
    Get<&Corvane8::Task::get_Calendar>("Calendar"),
    Get<&Corvane8::Task::get_SampledDuration>("SampledDuration"),
    Get<&Corvane8::Task::get_Type>("Type"),
    Put<&Corvane8::Task::put_Description>("Description"),
    Get<&Corvane8::Task::get_Description>("Description"),
    Put<&Corvane8::Task::put_ID>("ID"),
    Get<&Corvane8::Task::get_ID>("ID"),
    Get<&Corvane8::Task::get_Links>("Links"),
    Get<&Corvane8::Task::get_Dates>("Dates"),
    Get<&Corvane8::Task::get_UserFields>("UserFields"),
    Get<&Corvane8::Task::get_Children>("Children"),
    Get<&Corvane8::Task::get_RiskCalendars>("RiskCalendars"),
    Method<&Corvane8::Task::Duration>("Duration"),
    Method<&Corvane8::Task::Risk>("Risk"),
    Method<&Corvane8::Task::MoveUnder>("MoveUnder"),
    Method<&Corvane8::Task::Parent>("Parent"),
    Method<&Corvane8::Task::NextWorkingDate>("NextWorkingDate"),
    Get<&Corvane8::Task::get_Critical>("Critical"),
};

constexpr std::array kTaskDates = {
    Get<&Corvane8::TaskDates::get_Finish>("Finish"),
    Get<&Corvane8::TaskDates::get_Progress>("Progress"),
    Get<&Corvane8::TaskDates::get_Start>("Start"),
    Put<&Corvane8::TaskDates::put_ConstraintDate>("ConstraintDate"),
    Put<&Corvane8::TaskDates::put_Constraint>("Constraint"),
};

constexpr std::array kUserFields = {
    Method<&Corvane8::UserFields::GetCustom>("GetCustom"),
    Method<&Corvane8::UserFields::SetCustom>("SetCustom"),
    Method<&Corvane8::UserFields::SetValue>("SetValue"),
    Method<&Corvane8::UserFields::GetValue>("GetValue"),
};

constexpr std::array kDuration = {
    Put<&Corvane8::Duration::put_Likely>("Likely"),
    Get<&Corvane8::Duration::get_Likely>("Likely"),
    Put<&Corvane8::Duration::put_Maximum>("Maximum"),
    Get<&Corvane8::Duration::get_Maximum>("Maximum"),
    Put<&Corvane8::Duration::put_Minimum>("Minimum"),
    Get<&Corvane8::Duration::get_Minimum>("Minimum"),
};

constexpr std::array kTaskRisk = {
    Put<&Corvane8::TaskRisk::put_Mode>("Mode"),
    Put<&Corvane8::TaskRisk::put_Probability>("Probability"),
    Get<&Corvane8::TaskRisk::get_Probability>("Probability"),
};

constexpr std::array kTaskLinks = {
    Get<&Corvane8::TaskLinks::get_Successors>("Successors"),
};

constexpr std::array kLinkList = {
    Method<&Corvane8::LinkList::Add>("Add"),
    Method<&Corvane8::LinkList::Item>("Item"),
};

constexpr std::array kTaskLink = {
    Get<&Corvane8::TaskLink::get_Task>("Task"),
};

constexpr std::array kTaskRiskCalendars = {
    Method<&Corvane8::TaskRiskCalendars::Add>("Add"),
    Method<&Corvane8::TaskRiskCalendars::Remove>("Remove"),
};

constexpr std::array kTaskRiskCalendar = {
    Put<&Corvane8::TaskRiskCalendar::put_Value>("Value"),
    Get<&Corvane8::TaskRiskCalendar::get_RiskCalendar>("RiskCalendar"),
};

}  // namespace

template <>
const ClassTable& TableOf<Corvane8::Application>() {
  static const ClassTable table = {"Application", kApplication, nullptr, &DIID__Application};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::Plan>() {
  static const ClassTable table = {"Plan", kPlan, nullptr, &DIID__Plan};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::PlanProperties>() {
  static const ClassTable table = {"PlanProperties", kPlanProperties, nullptr,
                                   &DIID__PlanProperties};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::PlanDisplay>() {
  static const ClassTable table = {"PlanDisplay", kPlanDisplay, nullptr, &DIID__PlanDisplay};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::RiskAnalysis>() {
  static const ClassTable table = {"RiskAnalysis", kRiskAnalysis, nullptr, &DIID__RiskAnalysis};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::RiskOptions>() {
  static const ClassTable table = {"RiskOptions", kRiskOptions, nullptr, &DIID__RiskOptions};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::ChangeMonitor>() {
  static const ClassTable table = {"ChangeMonitor", kChangeMonitor, nullptr, &DIID__ChangeMonitor};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::CustomFields>() {
  static const ClassTable table = {"CustomFields", kCustomFields, nullptr, &DIID__CustomFields};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::PlanTasks>() {
  static const ClassTable table = {"PlanTasks", kPlanTasks, Elements<Corvane8::PlanTasks>,
                                   &DIID__PlanTasks};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::PlanCalendars>() {
  static const ClassTable table = {"PlanCalendars", kPlanCalendars,
                                   Elements<Corvane8::PlanCalendars>, &DIID__PlanCalendars};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::PlanRiskCalendars>() {
  static const ClassTable table = {"PlanRiskCalendars", kPlanRiskCalendars,
                                   Elements<Corvane8::PlanRiskCalendars>, &DIID__PlanRiskCalendars};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::RiskCalendar>() {
  static const ClassTable table = {"RiskCalendar", kRiskCalendar, nullptr, &DIID__RiskCalendar};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::Calendar>() {
  static const ClassTable table = {"Calendar", kCalendar, nullptr, &DIID__Calendar};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::Task>() {
  static const ClassTable table = {"Task", kTask, nullptr, &DIID__Task};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::TaskDates>() {
  static const ClassTable table = {"TaskDates", kTaskDates, nullptr, &DIID__TaskDates};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::UserFields>() {
  static const ClassTable table = {"UserFields", kUserFields, nullptr, &DIID__UserFields};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::Duration>() {
  static const ClassTable table = {"Duration", kDuration, nullptr, &DIID__Duration};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::TaskRisk>() {
  static const ClassTable table = {"TaskRisk", kTaskRisk, nullptr, &DIID__TaskRisk};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::TaskLinks>() {
  static const ClassTable table = {"TaskLinks", kTaskLinks, nullptr, &DIID__TaskLinks};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::LinkList>() {
  static const ClassTable table = {"LinkList", kLinkList, nullptr, &DIID__LinkList};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::TaskLink>() {
  static const ClassTable table = {"TaskLink", kTaskLink, nullptr, &DIID__TaskLink};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::TaskRiskCalendars>() {
  static const ClassTable table = {"TaskRiskCalendars", kTaskRiskCalendars,
                                   Elements<Corvane8::TaskRiskCalendars>, &DIID__TaskRiskCalendars};
  return table;
}

template <>
const ClassTable& TableOf<Corvane8::TaskRiskCalendar>() {
  static const ClassTable table = {"TaskRiskCalendar", kTaskRiskCalendar, nullptr,
                                   &DIID__TaskRiskCalendar};
  return table;
}

/// What a custom field's definition is to others: an object without members.
template <>
const ClassTable& TableOf<Object>() {
  static const ClassTable table = {"Object", {}, nullptr, nullptr};
  return table;
}

}  // namespace nimbrel::com::served
