#include "tests/com/weather_trial.h"

#include <string>

#include "platform/date.h"

namespace nimbrel::com {
namespace {

using Corvane8::Long;
using Corvane8::Plan;
using Corvane8::Ref;
using Corvane8::Task;
using platform::Date;

constexpr const char* kSection = "weather";

Date January(int day) {
  return platform::MakeDate(2027, 1, day);
}

void AddCalendar(const Ref<Plan>& plan, const std::string& name) {
  plan->get_RiskCalendars()->Add(name)->put_Calendar(plan->get_Calendars()->Add(name));
}

Ref<Task> AddWeatherTask(const Ref<Plan>& plan, const std::string& type,
                         const std::string& calendar) {
  Ref<Task> task = plan->get_Tasks()->Add();
  task->MoveUnder(0, plan->get_Tasks()->Item("WEATHER"));
  task->get_UserFields()->SetValue(2, kSection, "tasktype", type);
  task->put_Calendar(plan->get_Calendars()->Item(calendar));
  return task;
}

void SetLength(const Ref<Task>& task, double minimum, double likely, double maximum) {
  const auto duration = task->Duration(-1);
  duration->put_Minimum(minimum);
  duration->put_Likely(likely);
  duration->put_Maximum(maximum);
}

void AddPeriod(const Ref<Plan>& plan, Date first, Date last, double maximum, double probability) {
  const Ref<Task> period = AddWeatherTask(plan, "1", "NORTH SEA");
  SetLength(period, 0, maximum / 2, maximum);
  period->get_UserFields()->SetCustom("Weather-start", first);
  period->get_UserFields()->SetCustom("Weather-end", last);
  if (probability < 100) {
    period->Risk(-1)->put_Probability(probability);
  }
}

Ref<Task> AddEdge(const Ref<Plan>& plan, const std::string& type, const std::string& first) {
  const Ref<Task> edge = AddWeatherTask(plan, type, "RIVER");
  SetLength(edge, 0, 1, 3);
  edge->get_UserFields()->SetValue(2, kSection, "startdate", first);
  return edge;
}

}  // namespace

void AddTrialWeather(const Ref<Plan>& plan) {
  plan->SetOption("NIMBRELMOD", "Options", "IsWeatherPlan", "TRUE");
  plan->get_CustomFields()->Add("Weather-start", 2);
  plan->get_CustomFields()->Add("Weather-end", 3);
  const Ref<Task> summary = plan->get_Tasks()->Add();
  summary->put_ID("WEATHER");
  summary->get_UserFields()->SetValue(2, kSection, "tasktype", "10");
  AddCalendar(plan, "NORTH SEA");
  AddCalendar(plan, "RIVER");
  AddPeriod(plan, January(4), January(29), 12, 100);
  AddPeriod(plan, January(18), platform::MakeDate(2027, 2, 26), 9, 60);
  const Ref<Task> opening = AddEdge(plan, "3", "2027-01-13");
  const Ref<Task> closing = AddEdge(plan, "4", "2027-01-18");
  opening->get_Links()->get_Successors()->Add(closing->get_ID(), 2, 0, 0, 0);
  const auto tasks = plan->get_Tasks();
  tasks->Item("A")->get_RiskCalendars()->Add("NORTH SEA")->put_Value(0.0);
  tasks->Item("B")->get_RiskCalendars()->Add("RIVER")->put_Value(0.0);
  tasks->Item("C")->get_RiskCalendars()->Add("NORTH SEA")->put_Value(0.0);
  tasks->Item("B")->get_UserFields()->SetValue(2, kSection, "nosplit", "True");
}

void DateRecorder::PlanBeforeRiskAnalysis(const Ref<Plan>& /*plan*/) {
  events_.push_back(1);
}

void DateRecorder::PlanBeforeRiskIteration(const Ref<Plan>& /*plan*/, Long /*iteration*/) {
  events_.push_back(2);
}

void DateRecorder::PlanAfterRiskIteration(const Ref<Plan>& plan, Long /*iteration*/) {
  events_.push_back(3);
  for (const char* id : {"A", "B", "C"}) {
    const auto dates = plan->get_Tasks()->Item(id)->get_Dates();
    dates_.push_back(dates->get_Start().serial);
    dates_.push_back(dates->get_Finish().serial);
  }
}

void DateRecorder::PlanAfterRiskAnalysis(const Ref<Plan>& /*plan*/) {
  events_.push_back(4);
}

}  // namespace nimbrel::com
