#include "host/mod_global.h"

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "platform/number.h"
#include "platform/runtime_error.h"

namespace nimbrel::modGlobal {

using Corvane8::Ref;

std::string g_strModulesFolder;
platform::Collection<std::string> g_colEventHeaders;
platform::Collection<std::string> g_colWindowHeaders;

namespace {

constexpr std::string_view kSection = "NIMBRELMOD";
constexpr std::string_view kGroup = "Options";
constexpr std::string_view kIsWeatherPlan = "IsWeatherPlan";

constexpr std::int32_t kHours = 24;
constexpr std::int32_t kQuarters = 96;
constexpr std::int32_t kQuartersPerHour = 4;

/// By the plan's date format code.
constexpr std::array<std::string_view, 15> kDateFormats = {
    "DD/MM/YY",    "DD/MM/YYYY", "DD-MM-YY",    "DD-MM-YYYY", "DD-MMM-YY",
    "DD-MMM-YYYY", "DD MMM YY",  "DD MMM YYYY", "MM/DD/YY",   "MM/DD/YYYY",
    "MM-DD-YY",    "MM-DD-YYYY", "YYYY-MM-DD",  "DD/MMM/YY",  "YYYY/MM/DD"};

struct State {
  Wiring wiring;
  Ref<Corvane8::Application> application;
};

/// Never destroyed: the application stays to the end of the process, after all static objects.
State& TheState() {
  static State& state = *new State;
  return state;
}

}  // namespace

void Wire(Wiring wiring) {
  TheState().application = nullptr;
  TheState().wiring = std::move(wiring);
}

const Ref<Corvane8::Application>& Application() {
  State& state = TheState();
  if (state.application.IsNothing()) {
    if (state.wiring.create_application) {
      state.application = state.wiring.create_application();
    }
    if (state.application.IsNothing()) {
      platform::RaiseNothing();
    }
  }
  return state.application;
}

const platform::Locale& Locale() {
  return TheState().wiring.locale;
}

bool IsWeatherPlan(const Ref<Corvane8::Plan>& plan) {
  return !plan.IsNothing() && plan->GetOption(kSection, kGroup, kIsWeatherPlan, "") == "TRUE";
}

void SetIsWeatherPlan(const Ref<Corvane8::Plan>& plan, bool bValue) {
  const std::string_view strValue = bValue ? "TRUE" : "FALSE";
  if (!plan.IsNothing()) {
    plan->SetOption(kSection, kGroup, kIsWeatherPlan, strValue);
  }
}

void AddWeatherFields() {
  platform::IgnoreErrors(
      [] { Application()->get_ActivePlan()->get_CustomFields()->Add("Weather-start", 2); });
  platform::IgnoreErrors(
      [] { Application()->get_ActivePlan()->get_CustomFields()->Add("Weather-end", 3); });
}

platform::Date NormalisePlanDate(platform::Date dtValue) {
  const std::int32_t nCode = Application()->get_ActivePlan()->get_Display()->get_DateFormat();
  const auto nFormat = static_cast<std::size_t>(nCode);
  const std::string_view strFormat =
      nCode >= 0 && nFormat < kDateFormats.size() ? kDateFormats[nFormat] : std::string_view();
  return platform::ParseDate(platform::FormatDate(dtValue, strFormat, Locale()), Locale());
}

std::int32_t DaysToPlanUnits(std::int32_t nDays) {
  const Ref<Corvane8::Plan> plan = Application()->get_ActivePlan();
  const std::int32_t nTimeUnit = plan->get_Properties()->get_TimeUnit();
  if (nTimeUnit == kHours) {
    return platform::MultiplyLong(nDays, plan->get_Display()->get_HoursPerDay());
  }
  if (nTimeUnit == kQuarters) {
    const std::int32_t nHours =
        platform::MultiplyLong(nDays, plan->get_Display()->get_HoursPerDay());
    return platform::MultiplyLong(nHours, kQuartersPerHour);
  }
  return nDays;
}

std::int32_t PlanUnitsToDays(std::int32_t nUnits) {
  const Ref<Corvane8::Plan> plan = Application()->get_ActivePlan();
  const std::int32_t nTimeUnit = plan->get_Properties()->get_TimeUnit();
  if (nTimeUnit == kHours) {
    return platform::ToLong(platform::Divide(nUnits, plan->get_Display()->get_HoursPerDay()));
  }
  if (nTimeUnit == kQuarters) {
    const double dHours = platform::Divide(nUnits, plan->get_Display()->get_HoursPerDay());
    return platform::ToLong(dHours / 4.0);
  }
  return nUnits;
}

}  // namespace nimbrel::modGlobal
