#pragma once

#include <memory>
#include <string>

#include "engine/objects/host.h"
#include "engine/plan/plan.h"
#include "engine/risk/run.h"

namespace nimbrel::cli {

/// Whether the plan is marked as one that has weather, by the option that the add-in reads too.
bool IsWeatherPlan(const engine::Plan& plan);

/// The role that a task plays in the plan's weather: "" for an ordinary task, else "1" for a
/// period, "3" and "4" for the edges of a window, "10" for the summary above them.
std::string WeatherRole(const engine::Task& task);

/// Whether the task only carries weather data, and so takes part in no schedule and no result.
bool CarriesWeather(const engine::Task& task);

/// Whether weather must not split the task.
bool IsNoSplit(const engine::Task& task);

/// What the embedded host is made with.
engine::HostOptions MakeHostOptions();

/// Makes `host` the add-in's application, in the default locale, until what is returned is let go.
/// One at a time.
[[nodiscard]] std::shared_ptr<void> JoinAddIn(engine::Host& host);

/// A run with the add-in listening to its events, or, without `weather`, with nobody listening.
/// Progress and cancelling are left open.
engine::RunWiring MakeRunWiring(bool weather);

}  // namespace nimbrel::cli
