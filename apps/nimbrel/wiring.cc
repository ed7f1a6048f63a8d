#include "nimbrel/wiring.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "host/cls_nimbrel.h"
#include "host/mod_global.h"
#include "platform/locale.h"
#include "platform/text.h"
#include "simulation/mod_weather_events.h"

namespace nimbrel::cli {
namespace {

using engine::Host;
using engine::Plan;
using engine::Task;

constexpr const char* kSection = "weather";

host::Seams MakeSeams() {
  host::Seams seams;
  seams.handlers.BeforeRiskAnalysis = modWeatherEvents::BeforeRiskAnalysis;
  seams.handlers.BeforeRiskIteration = modWeatherEvents::BeforeRiskIteration;
  seams.handlers.AfterRiskIteration = modWeatherEvents::AfterRiskIteration;
  seams.handlers.AfterRiskAnalysis = modWeatherEvents::AfterRiskAnalysis;
  return seams;
}

/// Lets the add-in listen for as long as it lives.
class Listening {
 public:
  explicit Listening(Host& host)
      : application_(JoinAddIn(host)), entry_(platform::MakeRef<host::clsNimbrel>(MakeSeams())) {
    entry_->LaunchStartCorvane();
  }
  ~Listening() {
    entry_->LaunchStopCorvane();
    modWeatherEvents::ReleaseRunState();  // it holds objects of a host that ends before we do
  }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;

 private:
  std::shared_ptr<void> application_;
  platform::Ref<host::clsNimbrel> entry_;
};

/// What a calendar is for, by a task that points at it.
std::string CalendarKind(const Plan& /*plan*/, const Task& task) {
  const std::string role = WeatherRole(task);
  return role == "1" ? "event" : role == "3" || role == "4" ? "window" : "";
}

/// The days of a period, from its first to its last; nothing for what is no period.
std::optional<engine::DayRange> SpanOf(const Task& task) {
  if (WeatherRole(task) != "1") {
    return std::nullopt;
  }
  engine::DayRange span;
  int ends = 0;
  for (const engine::CustomValue& value : task.custom_values) {
    const auto* date = value.value.Get<platform::Date>();
    if (date == nullptr) {
      continue;
    }
    const auto day = static_cast<std::int32_t>(std::floor(date->serial));
    if (platform::EqualsIgnoreCase(value.field, "Weather-start")) {
      span.first = day;
      ++ends;
    } else if (platform::EqualsIgnoreCase(value.field, "Weather-end")) {
      span.last = day;
      ++ends;
    }
  }
  return ends == 2 ? std::optional(span) : std::nullopt;
}

/// Periods go together on the days that they have in common.
bool SpansOverlap(const Plan& /*plan*/, const Task& one, const Task& other) {
  const std::optional<engine::DayRange> a = SpanOf(one);
  const std::optional<engine::DayRange> b = SpanOf(other);
  return a && b && a->first <= b->last && b->first <= a->last;
}

}  // namespace

bool IsWeatherPlan(const Plan& plan) {
  const auto option = plan.options.find({"NIMBRELMOD", "Options", "IsWeatherPlan"});
  return option != plan.options.end() && option->second == "TRUE";
}

std::string WeatherRole(const Task& task) {
  const std::string* type = task.FindUserValue(kSection, "tasktype");
  return type == nullptr || *type == "0" ? "" : *type;
}

bool CarriesWeather(const Task& task) {
  return !WeatherRole(task).empty();
}

bool IsNoSplit(const Task& task) {
  const std::string* mark = task.FindUserValue(kSection, "nosplit");
  return mark != nullptr && platform::EqualsIgnoreCase(*mark, "True");
}

engine::HostOptions MakeHostOptions() {
  engine::HostOptions options;
  options.carries_weather = CarriesWeather;
  return options;
}

std::shared_ptr<void> JoinAddIn(Host& host) {
  modGlobal::Wiring wiring;
  wiring.locale = platform::DefaultLocale();
  wiring.create_application = [&host] { return platform::Ref<Corvane8::Application>(&host); };
  modGlobal::Wire(std::move(wiring));
  // Wiring anew lets the application go, and with it the host.
  return {nullptr, [](void*) { modGlobal::Wire({}); }};
}

engine::RunWiring MakeRunWiring(bool weather) {
  engine::RunWiring wiring;
  wiring.host = MakeHostOptions();
  wiring.together = SpansOverlap;
  if (weather) {
    wiring.attach = [](Host& host) -> std::shared_ptr<void> {
      return std::make_shared<Listening>(host);
    };
    wiring.no_split = IsNoSplit;
    wiring.calendar_kind = CalendarKind;
  }
  return wiring;
}

}  // namespace nimbrel::cli
