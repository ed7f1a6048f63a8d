// The weather dialog on a large plan of the embedded host: what a user waits for.
//
// The plan has 20,000 tasks, and a calendar of 1,000 periods and one of 1,000 windows on show, a
// second calendar of each kind beside them.

#include <benchmark/benchmark.h>

#include <functional>
#include <string>
#include <utility>

#include "bench/support/generated_plan.h"
#include "dialog/frm_weather.h"
#include "engine/objects/host.h"
#include "host/mod_global.h"
#include "platform/locale.h"
#include "toolkit/desktop.h"

namespace nimbrel::bench {
namespace {

using engine::Plan;
using engine::Task;
using engine::Uid;

constexpr std::int32_t kTasks = 20'000;
constexpr int kRowsOnShow = 1'000;
constexpr int kYears = 84;  // of months of a period each

bool CarriesWeather(const Task& task) {
  return task.FindUserValue("weather", "tasktype") != nullptr;
}

Uid AddWeatherCalendar(Plan& plan, const std::string& name) {
  const Uid calendar = plan.AddCalendar(engine::MakeWeekCalendar(name, 7, plan.hours_per_day)).uid;
  plan.risk_calendars.push_back({plan.FreshUid(), name, "Weather calendar", calendar});
  return calendar;
}

Task WeatherTask(const std::string& id, Uid parent, Uid calendar, const char* type) {
  Task task;
  task.id = id;
  task.description = "Weather";
  task.parent = parent;
  task.calendar = calendar;
  task.range = engine::ThreePoint{1, 2, 3, engine::Shape::kTriangular};
  task.user_values.push_back({"weather", "tasktype", type});
  return task;
}

void AddPeriods(Plan& plan, Uid summary, const std::string& calendar, int count) {
  const Uid uid = AddWeatherCalendar(plan, calendar);
  for (int i = 0; i < count; ++i) {
    const int year = 2027 + i / 12 % kYears;
    Task task = WeatherTask(calendar + std::to_string(i), summary, uid, "1");
    task.custom_values.push_back({"Weather-start", platform::MakeDate(year, i % 12 + 1, 1)});
    task.custom_values.push_back({"Weather-end", platform::MakeDate(year, i % 12 + 1, 28)});
    plan.AddTask(std::move(task));
  }
}

void AddWindows(Plan& plan, Uid summary, const std::string& calendar, int count) {
  const Uid uid = AddWeatherCalendar(plan, calendar);
  for (int i = 0; i < count; ++i) {
    const std::string year = std::to_string(2027 + i % kYears);
    Task start = WeatherTask(calendar + std::to_string(i) + "A", summary, uid, "3");
    start.user_values.push_back({"weather", "startdate", "12/1/" + year});
    Task end = WeatherTask(calendar + std::to_string(i) + "B", summary, uid, "4");
    end.user_values.push_back({"weather", "startdate", "12/20/" + year});
    engine::Link link;
    link.predecessor = plan.AddTask(std::move(start)).uid;
    link.successor = plan.AddTask(std::move(end)).uid;
    plan.links.push_back(link);
  }
}

Plan LargePlan() {
  GeneratorOptions options;
  options.tasks = kTasks;
  options.event_calendars = 0;
  Plan plan = GeneratePlan(options);
  plan.options[{"NIMBRELMOD", "Options", "IsWeatherPlan"}] = "TRUE";
  Task above;
  above.id = "WEATHER";
  above.kind = engine::TaskKind::kSummary;
  above.user_values.push_back({"weather", "tasktype", "10"});
  const Uid summary = plan.AddTask(std::move(above)).uid;
  AddPeriods(plan, summary, "GALES", kRowsOnShow);
  AddPeriods(plan, summary, "FROST", kRowsOnShow);
  AddWindows(plan, summary, "ICE", kRowsOnShow);
  AddWindows(plan, summary, "FLOOD", 1);
  return plan;
}

/// Does on the dialog what it is told, and closes it by the window's own button.
class Hand final : public toolkit::Desktop {
 public:
  std::function<void(dialog::frmWeather&)> on_show;

 protected:
  void RunModal(toolkit::Form& form) override {
    if (on_show) {
      on_show(static_cast<dialog::frmWeather&>(form));
    }
    form.UserClose();
  }
  toolkit::Answer ShowMessage(const toolkit::Message& message) override {
    return message.buttons == toolkit::Buttons::kOk ? toolkit::Answer::kOk : toolkit::Answer::kYes;
  }
  std::string ShowFileDialog(const toolkit::FileRequest& /*request*/) override { return {}; }
};

/// The large plan, open in a host that is the add-in's application.
class Opened {
 public:
  Opened() : host_(engine::MakeHost(LargePlan(), {.carries_weather = CarriesWeather, .path = {}})) {
    modGlobal::Wire({[this] { return platform::Ref<Corvane8::Application>(host_.get()); },
                     platform::DefaultLocale()});
  }
  ~Opened() { modGlobal::Wire({}); }
  Opened(const Opened&) = delete;
  Opened& operator=(const Opened&) = delete;

  void ShowDialog(std::function<void(dialog::frmWeather&)> on_show) {
    Hand hand;
    hand.on_show = std::move(on_show);
    dialog::ShowWeatherDialog(hand);
  }

 private:
  platform::Ref<engine::Host> host_;
};

/// With the first scheduling of the plan, which the colours of the tree need.
void BM_Open(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Opened opened;
    state.ResumeTiming();
    opened.ShowDialog([&state](dialog::frmWeather& form) {
      state.PauseTiming();
      state.counters["nodes"] = form.tvTasks.Nodes().Count();
      state.counters["rows"] = form.lstWeather.ListItems().Count();
    });
    state.ResumeTiming();
  }
}
BENCHMARK(BM_Open)->Unit(benchmark::kMillisecond);

/// Finds what one task in a hundred has in its text.
void BM_Find(benchmark::State& state) {
  Opened opened;
  opened.ShowDialog([&state](dialog::frmWeather& form) {
    form.tabs.UserPickTab(2);
    form.txtFind.UserType("Task 77");
    for (auto _ : state) {
      form.cmdFind.UserClick();
    }
    state.counters["nodes"] = form.tvTasks.Nodes().Count();
  });
}
BENCHMARK(BM_Find)->Unit(benchmark::kMillisecond);

/// Leaves a calendar of 1,000 periods for another of as many.
void BM_ChangeEventCalendar(benchmark::State& state) {
  Opened opened;
  opened.ShowDialog([&state](dialog::frmWeather& form) {
    for (auto _ : state) {
      form.lstWeatherCals.UserPick(1 - form.lstWeatherCals.ListIndex());
    }
  });
}
BENCHMARK(BM_ChangeEventCalendar)->Unit(benchmark::kMillisecond);

/// Leaves a calendar of 1,000 windows and comes back to it.
void BM_ChangeWindowCalendar(benchmark::State& state) {
  Opened opened;
  opened.ShowDialog([&state](dialog::frmWeather& form) {
    form.tabs.UserPickTab(1);
    for (auto _ : state) {
      form.lstWWCals.UserPick(1);
      form.lstWWCals.UserPick(0);
    }
  });
}
BENCHMARK(BM_ChangeWindowCalendar)->Unit(benchmark::kMillisecond);

/// Deletes a calendar of 1,000 periods, with all its tasks.
void BM_DeleteEventCalendar(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Opened opened;
    opened.ShowDialog([&state](dialog::frmWeather& form) {
      state.ResumeTiming();
      form.cmdDelCalendar.UserClick();
      state.PauseTiming();
    });
    state.ResumeTiming();
  }
}
BENCHMARK(BM_DeleteEventCalendar)->Unit(benchmark::kMillisecond);

/// Removes all 2,000 periods and 1,001 windows.
void BM_ClearAll(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    Opened opened;
    opened.ShowDialog([&state](dialog::frmWeather& form) {
      state.ResumeTiming();
      form.cmdClearAll.UserClick();
      state.PauseTiming();
    });
    state.ResumeTiming();
  }
}
BENCHMARK(BM_ClearAll)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace nimbrel::bench
