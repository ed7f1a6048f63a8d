#include "engine/risk/iteration_story.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <stdexcept>
#include <unordered_map>

#include "engine/risk/iteration_maker.h"
#include "engine/risk/lost_days.h"
#include "engine/risk/variants.h"
#include "engine/schedule/network.h"
#include "engine/schedule/telling.h"

namespace nimbrel::engine {
namespace {

void AddDay(std::vector<DayRange>& ranges, std::int32_t day) {
  if (!ranges.empty() && ranges.back().last + 1 == day) {
    ranges.back().last = day;
  } else {
    ranges.push_back({day, day});
  }
}

/// Notes whose days are taken: those of the task whose sample was read last among those on the
/// calendar.
class TakingWitness final : public IterationWitness {
 public:
  explicit TakingWitness(Host& host) : host_(host) {}

  void SampleRead(const Task& task) override { reader_of_[task.calendar] = task.uid; }

  void DaysTaken(CalendarIndex calendar, std::int32_t first, std::int32_t last) override {
    const Scheduler& scheduler = host_.scheduler();
    const Uid uid = calendars_[static_cast<std::size_t>(calendar)];
    first = std::max(first, kFirstCoveredDay);
    last = std::min(last, kLastCoveredDay);
    for (std::int32_t day = first; day <= last; ++day) {
      if (scheduler.IsWorkedDay(calendar, day)) {
        taken_[reader_of_[uid]][day] = true;
      }
    }
  }

  void NameCalendars(const Plan& plan) {
    for (const CalendarDefinition& calendar : plan.calendars) {
      calendars_.push_back(calendar.uid);
    }
  }

  std::vector<DayRange> TakenBy(Uid task) const {
    std::vector<DayRange> ranges;
    if (const auto found = taken_.find(task); found != taken_.end()) {
      for (const auto& [day, is_taken] : found->second) {
        AddDay(ranges, day);
      }
    }
    return ranges;
  }

 private:
  Host& host_;
  std::vector<Uid> calendars_;
  std::unordered_map<Uid, Uid> reader_of_;  // by calendar
  std::unordered_map<Uid, std::map<std::int32_t, bool>> taken_;
};

class Teller {
 public:
  Teller(const RunInputs& inputs, IterationMaker& maker)
      : inputs_(inputs), maker_(maker), lost_(inputs.layout) {}

  IterationStory Tell(std::int32_t iteration) {
    TakingWitness witness(maker_.host());
    witness.NameCalendars(inputs_.plan);
    maker_.host().SetWitness(&witness);
    maker_.Make(iteration);
    maker_.host().SetWitness(nullptr);

    const Scheduler& scheduler = maker_.host().scheduler();
    lost_.Take(scheduler);
    IterationStory story;
    story.iteration = iteration;
    story.finish = scheduler.finish();
    TellDraws(witness, story);
    std::vector<HeldTask> pushed;
    maker_.FindPushed(pushed);
    ScheduleTelling telling;
    telling.SetHeld(scheduler, pushed);
    for (const TaskIndex task : telling.OneDrivingPath(scheduler, -1)) {
      story.path.push_back(
          {UidOf(task), scheduler.early_start(task), scheduler.early_finish(task)});
    }
    TellPushes(pushed, story);
    // How long tasks have waited is asked without what pushed them.
    Variants(inputs_).UndoPushes(maker_);
    TellHolds(story);
    maker_.End();
    return story;
  }

 private:
  Uid UidOf(TaskIndex task) const { return inputs_.layout.tasks[static_cast<std::size_t>(task)]; }

  void TellDraws(const TakingWitness& witness, IterationStory& story) const {
    if (!inputs_.wiring.host.carries_weather) {
      return;
    }
    const IterationSamples& samples = maker_.host().samples();
    for (std::size_t i = 0; i < inputs_.plan.tasks().size(); ++i) {
      const Task& task = inputs_.plan.tasks()[i];
      if (task.kind == TaskKind::kTask && inputs_.wiring.host.carries_weather(task)) {
        story.draws.push_back({.task = task.uid,
                               .occurred = samples.skipped[i] == 0,
                               .units = samples.units[i],
                               .taken = witness.TakenBy(task.uid)});
      }
    }
  }

  /// The lost days of a task from one day to another, and the calendars that lost any.
  struct Losses {
    std::vector<DayRange> days;
    std::int32_t count = 0;
    std::vector<Uid> calendars;
  };
  Losses LossesOf(TaskIndex task, std::int32_t first, std::int32_t last) const {
    const Scheduler& scheduler = maker_.host().scheduler();
    const std::vector<CalendarIndex>& calendars = CalendarsOf(scheduler, task);
    std::vector<std::size_t> weather;
    bool own_is_weather = false;
    for (std::size_t i = 0; i < inputs_.layout.calendars.size(); ++i) {
      const CalendarIndex index = inputs_.layout.calendars[i].index;
      if (std::find(calendars.begin(), calendars.end(), index) != calendars.end()) {
        weather.push_back(i);
        own_is_weather = own_is_weather || index == calendars.front();
      }
    }
    const WorkCalendar& own =
        scheduler.network().calendars[static_cast<std::size_t>(calendars.front())];
    const DayBits& works = own_is_weather ? own.open() : own.worked();
    Losses losses;
    std::vector<bool> has_lost(weather.size(), false);
    for (std::int32_t day = first; day <= last; ++day) {
      bool is_lost = false;
      for (std::size_t i = 0; i < weather.size(); ++i) {
        if (works.Test(day) && lost_.days(weather[i]).Test(day)) {
          has_lost[i] = true;
          is_lost = true;
        }
      }
      if (is_lost) {
        AddDay(losses.days, day);
        ++losses.count;
      }
    }
    for (std::size_t i = 0; i < weather.size(); ++i) {
      if (has_lost[i]) {
        const CalendarIndex index = inputs_.layout.calendars[weather[i]].index;
        losses.calendars.push_back(inputs_.plan.calendars[static_cast<std::size_t>(index)].uid);
      }
    }
    return losses;
  }

  void TellPushes(std::span<const HeldTask> pushed, IterationStory& story) const {
    const Scheduler& scheduler = maker_.host().scheduler();
    for (const auto& [task, first] : pushed) {
      const Instant start = scheduler.early_start(task);
      story.pushed.push_back({.task = UidOf(task),
                              .first_start = first,
                              .start = start,
                              .past = LossesOf(task, first.day(), start.day()).days});
    }
  }

  void TellHolds(IterationStory& story) const {
    const Scheduler& scheduler = maker_.host().scheduler();
    const Network& network = scheduler.network();
    for (TaskIndex task = 0; task < scheduler.task_count(); ++task) {
      const Slot slot = network.slot_of[static_cast<std::size_t>(task)];
      if (!network.IsOpen(slot) || network.nodes[static_cast<std::size_t>(slot)].is_milestone) {
        continue;
      }
      const std::int32_t first = FirstDayUnderWay(scheduler, task);
      const Instant finish = scheduler.early_finish(task);
      Losses losses = LossesOf(task, first, finish.day());
      if (losses.count > 0) {
        story.held.push_back({.task = UidOf(task),
                              .first_day = first,
                              .start = scheduler.early_start(task),
                              .finish = finish,
                              .lost = std::move(losses.days),
                              .lost_days = losses.count,
                              .calendars = std::move(losses.calendars)});
      }
    }
  }

  const RunInputs& inputs_;
  IterationMaker& maker_;
  LostDays lost_;
};

}  // namespace

IterationStory TellIteration(const Plan& plan, const RunOptions& options, const RunWiring& wiring,
                             std::int32_t iteration) {
  if (iteration < 1 || iteration > options.iterations) {
    throw std::invalid_argument(
        fmt::format("The run has iterations 1 to {}, not {}.", options.iterations, iteration));
  }
  const RunLayout layout = MakeRunLayout(plan, options, wiring);
  const RunInputs inputs{plan, options, wiring, layout};
  IterationMaker maker(inputs);
  maker.Start();
  IterationStory story = Teller(inputs, maker).Tell(iteration);
  maker.Finish();
  return story;
}

}  // namespace nimbrel::engine
