#include "engine/risk/run_document_maker.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>
#include <utility>

#include "engine/results/intervals.h"
#include "engine/risk/paired.h"

namespace nimbrel::engine {
namespace {

using Samples = std::span<const Instant>;

constexpr std::int32_t kMostPoints = 200;
constexpr std::int32_t kMostBars = 40;

/// The day on which a finish falls: one at midnight ends the day before.
std::int32_t FinishDay(Instant instant) {
  return instant.AsFinish().day();
}

DayRange DaysOf(Samples samples) {
  DayRange days{FinishDay(samples.front()), FinishDay(samples.front())};
  for (const Instant sample : samples) {
    days.first = std::min(days.first, FinishDay(sample));
    days.last = std::max(days.last, FinishDay(sample));
  }
  return days;
}

std::vector<CurvePoint> CurveOf(Samples samples) {
  const DayRange days = DaysOf(samples);
  std::vector<std::int64_t> counts(static_cast<std::size_t>(days.last - days.first) + 1);
  for (const Instant sample : samples) {
    ++counts[static_cast<std::size_t>(FinishDay(sample) - days.first)];
  }
  const std::int32_t step = (days.last - days.first + kMostPoints) / kMostPoints;
  std::vector<CurvePoint> curve = {{days.first - 1, 0.0}};
  std::int64_t done = 0;
  for (std::int32_t day = days.first; day <= days.last; ++day) {
    done += counts[static_cast<std::size_t>(day - days.first)];
    if ((day - days.first + 1) % step == 0 || day == days.last) {
      curve.push_back({day, static_cast<double>(done) / static_cast<double>(samples.size())});
    }
  }
  return curve;
}

std::int32_t BarWidth(std::int32_t days) {
  for (const std::int32_t width : {1, 2, 3, 7, 14, 28, 56, 91, 182, 365}) {
    if ((days + width - 1) / width <= kMostBars) {
      return width;
    }
  }
  return (days + kMostBars - 1) / kMostBars;
}

std::vector<HistogramBar> BarsOf(Samples samples, DayRange days) {
  const std::int32_t width = BarWidth(days.last - days.first + 1);
  std::vector<HistogramBar> bars;
  for (std::int32_t first = days.first; first <= days.last; first += width) {
    bars.push_back({{first, first + width - 1}, 0});
  }
  for (const Instant sample : samples) {
    ++bars[static_cast<std::size_t>((FinishDay(sample) - days.first) / width)].count;
  }
  return bars;
}

FinishDistribution DistributionOf(Samples samples, DayRange days) {
  return {DateSummarizer().Summarize(samples, true), CurveOf(samples), BarsOf(samples, days)};
}

/// Of the iterations, those that finish by a moment.
double ShareBy(Samples samples, Instant moment) {
  const auto done = std::count_if(samples.begin(), samples.end(), [moment](Instant sample) {
    return sample.Minutes() <= moment.Minutes();
  });
  return static_cast<double>(done) / static_cast<double>(samples.size());
}

std::vector<MonthLoss> MonthsOf(const HeatMap& map) {
  std::vector<MonthLoss> months;
  for (std::size_t i = 0; i < map.chance.size(); ++i) {
    const std::int32_t day = map.first_day + static_cast<std::int32_t>(i);
    std::string month = ToIsoText(Instant(day, 0)).substr(0, 7);
    if (months.empty() || months.back().month != month) {
      months.push_back({std::move(month), 0});
    }
    months.back().days += map.chance[i];
  }
  return months;
}

/// Intervals stand in a document only where there are samples enough for them.
void LeaveOutIntervals(RunDocument& document) {
  LeaveOutIntervals(document.finish.statistics);
  if (document.without_weather.has_value()) {
    LeaveOutIntervals(document.without_weather->statistics);
  }
  if (document.weather_delay.has_value()) {
    LeaveOutIntervals(*document.weather_delay);
  }
  for (CalendarLoss& calendar : document.calendars) {
    LeaveOutIntervals(calendar.lost_days);
  }
  for (std::vector<DatedTask>* tasks : {&document.tasks, &document.milestones}) {
    for (DatedTask& task : *tasks) {
      LeaveOutInterval(task.finish.count, task.start);
      LeaveOutIntervals(task.finish);
    }
  }
  if (document.attribution.has_value()) {
    Attribution& attribution = *document.attribution;
    LeaveOutIntervals(attribution.all);
    LeaveOutIntervals(attribution.none);
    LeaveOutIntervals(attribution.delay);
    for (CalendarAttribution& calendar : attribution.calendars) {
      LeaveOutIntervals(calendar.left_out);
      LeaveOutIntervals(calendar.alone);
      LeaveOutIntervals(calendar.delay);
      LeaveOutIntervals(calendar.delay_alone);
    }
  }
}

double DaysBetween(Instant later, Instant earlier) {
  return static_cast<double>(later.Minutes() - earlier.Minutes()) / kMinutesPerDay;
}

/// A way in which the iterations finish.
struct Way {
  Samples samples;
  const DateStatistics& statistics;
};

DayFigures Difference(const Way& of, const Way& less) {
  if (of.statistics.count == 0 || less.statistics.count == 0) {
    return {};
  }
  DayFigures figures;
  figures.mean = DaysBetween(of.statistics.mean, less.statistics.mean);
  struct Members {
    double DayFigures::*value;
    double DayFigures::*low;
    double DayFigures::*high;
  };
  constexpr std::array<Members, 3> kMembers = {
      {{&DayFigures::p50, &DayFigures::p50_low, &DayFigures::p50_high},
       {&DayFigures::p80, &DayFigures::p80_low, &DayFigures::p80_high},
       {&DayFigures::p90, &DayFigures::p90_low, &DayFigures::p90_high}}};
  for (std::size_t i = 0; i < kMembers.size(); ++i) {
    const PairedPercentiles a{of.samples, PercentilesOf(of.statistics)[i + 1]};
    const PairedPercentiles b{less.samples, PercentilesOf(less.statistics)[i + 1]};
    const double days = DaysBetween(a.percentile.value, b.percentile.value);
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    const DayInterval interval = HasQuantileInterval(of.statistics.count, a.percentile.percent)
                                     ? IntervalOfDifference(a, b)
                                     : DayInterval{kNone, kNone};
    figures.*kMembers[i].value = days;
    figures.*kMembers[i].low = interval.low;
    figures.*kMembers[i].high = interval.high;
  }
  return figures;
}

DayStatistics Delay(Samples of, Samples less) {
  std::vector<std::int64_t> minutes(of.size());
  std::transform(of.begin(), of.end(), less.begin(), minutes.begin(),
                 [](Instant a, Instant b) { return a.Minutes() - b.Minutes(); });
  return SummarizeMinutes(minutes);
}

class Maker {
 public:
  Maker(const Plan& plan, const DocumentParts& parts)
      : plan_(plan), parts_(parts), run_(parts.run) {}

  RunDocument Make() {
    RunDocument document;
    document.version = run_.version;
    document.plan = plan_.name;
    document.title = plan_.title;
    document.time_unit = plan_.time_unit;
    document.data_date = plan_.data_date;
    document.choices = Choices();
    document.deterministic_finish = run_.deterministic_finish;
    AddFinishes(document);
    AddCalendars(document);
    AddTasks(document);
    AddSensitivities(document);
    if (run_.attribution.has_value() && run_.iterations() > 0) {
      AddAttribution(*run_.attribution, document);
    }
    AddChain(document);
    LeaveOutIntervals(document);
    document.warnings = run_.notes;
    const auto& until = document.choices.until;
    if (until.has_value() && !until->met && !run_.stopped) {
      document.warnings.push_back(UntilWarning(*until));
    }
    return document;
  }

 private:
  const Task& TaskOf(Uid uid) const { return *plan_.FindTask(uid); }

  std::string UntilWarning(const UntilOutcome& until) const {
    if (std::isnan(until.width_days)) {
      return fmt::format(
          "Too few iterations ({}) for a 95% interval of P80, and so for one of {:g} days or less.",
          run_.iterations(), until.days);
    }
    if (run_.iterations() < kLeastUntilIterations) {
      return fmt::format(
          "The run ended at its {} iterations; whether the 95% interval of P80 is {:g} days wide "
          "or less is told by {} at least.",
          run_.iterations(), until.days, kLeastUntilIterations);
    }
    return fmt::format(
        "The 95% interval of P80 is {:.1f} days wide after all {} iterations, not {:g} or less.",
        until.width_days, run_.iterations(), until.days);
  }

  RunChoices Choices() const {
    RunChoices choices;
    choices.seed = run_.seed;
    choices.iterations_asked = run_.iterations_asked;
    choices.iterations = run_.iterations();
    choices.stopped = run_.stopped;
    choices.sampling = run_.latin_hypercube ? "lhs" : "mc";
    if (run_.until.days > 0) {
      const bool has_interval = HasQuantileInterval(run_.iterations(), 80);
      choices.until = UntilOutcome{
          run_.until.days,
          has_interval ? run_.until.width_days : std::numeric_limits<double>::quiet_NaN(),
          has_interval && run_.until.met && run_.iterations() >= kLeastUntilIterations};
    }
    choices.weather = parts_.weather;
    return choices;
  }

  void AddFinishes(RunDocument& document) const {
    const Samples with = run_.finish_samples;
    Samples without;
    if (parts_.compared != nullptr) {
      without = parts_.compared->without_weather.finish_samples;
      if (!parts_.compared->delay_minutes.empty()) {
        document.weather_delay = parts_.compared->delay;
      }
    } else if (run_.attribution.has_value() && !with.empty()) {
      without = run_.attribution->none;
      document.weather_delay = Delay(with, without);
    }
    if (with.empty()) {
      if (!without.empty()) {
        document.without_weather = DistributionOf(without, DaysOf(without));
      }
      return;
    }
    DayRange days = DaysOf(with);
    if (!without.empty()) {
      const DayRange others = DaysOf(without);
      days = {std::min(days.first, others.first), std::max(days.last, others.last)};
      document.without_weather = DistributionOf(without, days);
    }
    document.finish = DistributionOf(with, days);
    document.deterministic_share = ShareBy(with, document.deterministic_finish);
  }

  void AddCalendars(RunDocument& document) const {
    const auto count = static_cast<double>(run_.iterations());
    for (const CalendarResult& calendar : run_.calendars) {
      document.calendars.push_back({calendar.name, calendar.kind, calendar.lost_days});
      HeatMap& map = document.heat_maps.emplace_back();
      map.name = calendar.name;
      map.kind = calendar.kind;
      map.first_day = calendar.first_day;
      for (const std::uint32_t lost : calendar.day_counts) {
        map.chance.push_back(lost / count);
      }
      map.months = MonthsOf(map);
    }
  }

  void AddTasks(RunDocument& document) const {
    for (const TaskResult& result : run_.tasks) {
      const Task& task = TaskOf(result.task);
      DatedTask dated;
      dated.id = task.id;
      dated.name = task.description;
      dated.is_milestone = task.IsMilestone();
      dated.is_finished = task.IsFinished();
      dated.start = result.start;
      dated.finish = result.finish;
      dated.criticality = result.criticality;
      dated.nosplit_pushed_days = result.nosplit_pushed_days;
      if (dated.is_milestone) {
        document.milestones.push_back(dated);
      }
      document.tasks.push_back(std::move(dated));
    }
  }

  TaskDrive DriveOf(const TaskResult& task, double criticality, double sensitivity,
                    double target_deviation) const {
    TaskDrive drive;
    drive.id = TaskOf(task.task).id;
    drive.name = TaskOf(task.task).description;
    drive.criticality = criticality;
    drive.sensitivity = sensitivity;
    drive.cruciality = criticality * std::abs(sensitivity);
    drive.ssi = target_deviation > 0 ? criticality * task.elapsed_sd_days / target_deviation : 0.0;
    return drive;
  }

  static void Order(std::vector<TaskDrive>& drives) {
    std::erase_if(drives,
                  [](const TaskDrive& d) { return d.criticality == 0 && d.sensitivity == 0; });
    std::stable_sort(drives.begin(), drives.end(), [](const TaskDrive& a, const TaskDrive& b) {
      return a.cruciality > b.cruciality;
    });
  }

  /// Summaries and levels of effort follow other tasks and drive nothing.
  bool IsDriver(Uid uid) const {
    const TaskKind kind = TaskOf(uid).kind;
    return kind != TaskKind::kSummary && kind != TaskKind::kLevelOfEffort;
  }

  void AddSensitivities(RunDocument& document) const {
    Sensitivity& of_finish = document.sensitivities.emplace_back();
    for (const TaskResult& task : run_.tasks) {
      if (IsDriver(task.task)) {
        of_finish.tasks.push_back(
            DriveOf(task, task.criticality, task.sensitivity, run_.finish.sd_days));
      }
    }
    Order(of_finish.tasks);
    for (const TargetResult& target : run_.targets) {
      Sensitivity& of_target = document.sensitivities.emplace_back();
      of_target.id = TaskOf(target.task).id;
      of_target.name = TaskOf(target.task).description;
      const auto result =
          std::find_if(run_.tasks.begin(), run_.tasks.end(),
                       [&target](const TaskResult& task) { return task.task == target.task; });
      for (std::size_t i = 0; i < run_.tasks.size(); ++i) {
        if (IsDriver(run_.tasks[i].task)) {
          of_target.tasks.push_back(DriveOf(run_.tasks[i], target.drives[i].criticality,
                                            target.drives[i].sensitivity, result->finish.sd_days));
        }
      }
      Order(of_target.tasks);
    }
  }

  void AddAttribution(const AttributionResult& found, RunDocument& document) const {
    const Samples all = run_.finish_samples;
    DateSummarizer summarizer;
    Attribution& into = document.attribution.emplace();
    into.all = run_.finish;
    into.none = summarizer.Summarize(found.none, true);
    const Way with_all{all, into.all};
    const Way with_none{found.none, into.none};
    into.cost = Difference(with_all, with_none);
    into.delay = Delay(all, found.none);
    const auto count = static_cast<double>(run_.iterations());
    for (std::size_t i = 0; i < run_.calendars.size(); ++i) {
      CalendarAttribution& calendar = into.calendars.emplace_back();
      calendar.name = run_.calendars[i].name;
      calendar.kind = run_.calendars[i].kind;
      calendar.left_out = summarizer.Summarize(found.left_out[i], true);
      calendar.alone = summarizer.Summarize(found.alone[i], true);
      calendar.cost = Difference(with_all, {found.left_out[i], calendar.left_out});
      calendar.cost_alone = Difference({found.alone[i], calendar.alone}, with_none);
      calendar.delay = Delay(all, found.left_out[i]);
      calendar.delay_alone = Delay(found.alone[i], found.none);
      const LedgerResult& sums = found.ledger[i];
      const auto mean = [count](std::int64_t sum) { return static_cast<double>(sum) / count; };
      document.ledger.push_back({calendar.name, calendar.kind, mean(sums.lost), mean(sums.off),
                                 mean(sums.idle), mean(sums.absorbed), mean(sums.moving),
                                 TasksOn(calendar.name)});
    }
  }

  /// How many tasks a weather calendar is assigned to, or are on it by their own.
  std::int64_t TasksOn(const std::string& calendar) const {
    const RiskCalendarDefinition* definition = plan_.FindRiskCalendar(calendar);
    if (definition == nullptr) {
      return 0;
    }
    return std::count_if(run_.tasks.begin(), run_.tasks.end(), [&](const TaskResult& result) {
      const Task& task = *plan_.FindTask(result.task);
      return (definition->calendar != 0 && task.calendar == definition->calendar) ||
             std::any_of(task.risk_calendars.begin(), task.risk_calendars.end(),
                         [&](const RiskAssignment& assigned) {
                           return assigned.risk_calendar == definition->uid;
                         });
    });
  }

  void AddChain(RunDocument& document) const {
    if (parts_.p80_story == nullptr) {
      return;
    }
    const IterationStory& story = *parts_.p80_story;
    document.chain.iteration = story.iteration;
    document.chain.finish = story.finish;
    for (const IterationStory::Step& step : story.path) {
      const Task& task = TaskOf(step.task);
      ChainTask& link = document.chain.tasks.emplace_back();
      link.id = task.id;
      link.name = task.description;
      link.is_milestone = task.IsMilestone();
      link.start = step.start;
      link.finish = step.finish;
      const auto is_it = [&step](const auto& entry) { return entry.task == step.task; };
      link.is_pushed = std::any_of(story.pushed.begin(), story.pushed.end(), is_it);
      const auto hold = std::find_if(story.held.begin(), story.held.end(), is_it);
      if (hold != story.held.end()) {
        link.lost = hold->lost;
        for (const Uid calendar : hold->calendars) {
          link.causes.push_back(plan_.FindCalendar(calendar)->name);
        }
      }
    }
  }

  const Plan& plan_;
  const DocumentParts& parts_;
  const RunResult& run_;
};

}  // namespace

RunDocument MakeRunDocument(const Plan& plan, const DocumentParts& parts) {
  return Maker(plan, parts).Make();
}

std::int32_t IterationNearest(const RunResult& run, int percent) {
  const Instant value = DateSummarizer().PercentileOf(run.finish_samples, percent).value;
  const auto found = std::find(run.finish_samples.begin(), run.finish_samples.end(), value);
  return run.iteration_numbers[static_cast<std::size_t>(found - run.finish_samples.begin())];
}

}  // namespace nimbrel::engine
