#include "engine/risk/collect.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/risk/sensitivity.h"
#include "engine/risk/until.h"

namespace nimbrel::engine {
namespace {

std::size_t Index(std::int32_t number) {
  return static_cast<std::size_t>(number);
}

/// Iterations done, from 0.
std::vector<std::int32_t> IterationsDone(RunBoard& board) {
  std::vector<std::int32_t> iterations;
  for (std::int32_t tile = 0; tile < board.tiles(); ++tile) {
    for (std::int32_t i = 0; i < board.done(tile); ++i) {
      iterations.push_back(tile * kTileIterations + i);
    }
  }
  return iterations;
}

/// Reads the dates of single tasks back, a block of tasks at a time.
class ColumnReader {
 public:
  /// `count` is the number of iterations done.
  ColumnReader(const RunContext& context, std::size_t count) : context_(context), count_(count) {
    constexpr std::size_t kDatesAtATime = 1 << 19;
    block_ = static_cast<std::int32_t>(
        std::clamp<std::size_t>(kDatesAtATime / std::max<std::size_t>(count, 1), 1, 256));
  }

  /// Calls `take(task, starts, finishes)` for each task in order.
  template <class Take>
  void Read(Take&& take) {
    const auto tasks = static_cast<std::int32_t>(context_.inputs.layout.tasks.size());
    for (TaskIndex first = 0; first < tasks; first += block_) {
      const std::int32_t size = std::min(block_, tasks - first);
      ReadBlock(first, size);
      for (std::int32_t i = 0; i < size; ++i) {
        const std::span<const Instant> both(columns_.data() + Index(i) * 2 * count_, 2 * count_);
        take(first + i, both.first(count_), both.last(count_));
      }
    }
  }

 private:
  void ReadBlock(TaskIndex first, std::int32_t size) {
    constexpr auto kTile = static_cast<std::size_t>(kTileIterations);
    columns_.resize(Index(size) * 2 * count_);
    tile_.resize(Index(size) * 2 * kTile);
    std::size_t place = 0;
    for (std::int32_t tile = 0; tile < context_.board.tiles(); ++tile) {
      const std::size_t done = Index(context_.board.done(tile));
      if (done == 0) {
        continue;
      }
      context_.dates->ReadTile(tile, first, size, tile_);
      for (std::size_t column = 0; column < Index(size) * 2; ++column) {
        std::copy_n(tile_.begin() + static_cast<std::ptrdiff_t>(column * kTile), done,
                    columns_.begin() + static_cast<std::ptrdiff_t>(column * count_ + place));
      }
      place += done;
    }
  }

  const RunContext& context_;
  std::size_t count_;
  std::int32_t block_ = 1;
  std::vector<Instant> tile_;     // task, start or finish, tile iteration
  std::vector<Instant> columns_;  // task, start or finish, iteration
};

/// Sums over the workers that are counts, in any order the same.
template <class Sum, class Part>
std::vector<Sum> AddUp(std::int32_t workers, std::size_t size, Part&& part) {
  std::vector<Sum> sums(size);
  for (std::int32_t worker = 0; worker < workers; ++worker) {
    const auto values = part(worker);
    for (std::size_t i = 0; i < size; ++i) {
      sums[i] += values[i];
    }
  }
  return sums;
}

/// Of the targets, the finishes by iteration.
using TargetFinishes = std::vector<std::vector<Instant>>;

TargetFinishes CollectTasks(const RunContext& context, RunResult& result) {
  const RunLayout& layout = context.inputs.layout;
  const std::int32_t workers = context.board.extent().workers;
  const auto count = static_cast<double>(result.iterations());
  const auto driving = AddUp<std::uint64_t>(
      workers, layout.tasks.size(), [&](std::int32_t i) { return context.board.driving(i); });
  const auto pushed = AddUp<std::int64_t>(workers, layout.no_split.size(), [&](std::int32_t i) {
    return context.board.pushed_minutes(i);
  });

  result.tasks.resize(layout.tasks.size());
  for (const TaskIndex task : layout.asked) {
    result.samples.push_back({.task = layout.tasks[Index(task)], .start = {}, .finish = {}});
  }
  TargetFinishes targets(layout.targets.size());
  DateSummarizer summarizer;
  ColumnReader reader(context, result.iteration_numbers.size());
  reader.Read(
      [&](TaskIndex task, std::span<const Instant> starts, std::span<const Instant> finishes) {
        TaskResult& into = result.tasks[Index(task)];
        into.task = layout.tasks[Index(task)];
        into.start = summarizer.PercentileOf(starts, 50);
        into.finish = summarizer.Summarize(finishes, true);
        into.criticality = count > 0 ? static_cast<double>(driving[Index(task)]) / count : 0.0;
        into.elapsed_sd_days = ElapsedDeviation(starts, finishes);
        for (std::size_t i = 0; i < targets.size(); ++i) {
          if (layout.targets[i] == task) {
            targets[i].assign(finishes.begin(), finishes.end());
          }
        }
        for (std::size_t i = 0; i < layout.asked.size(); ++i) {
          if (layout.asked[i] == task) {
            result.samples[i].start.assign(starts.begin(), starts.end());
            result.samples[i].finish.assign(finishes.begin(), finishes.end());
          }
        }
      });
  for (std::size_t i = 0; i < layout.no_split.size() && count > 0; ++i) {
    result.tasks[Index(layout.no_split[i])].nosplit_pushed_days =
        static_cast<double>(pushed[i]) / (count * kMinutesPerDay);
  }
  return targets;
}

/// What the durations have to do with the plan's finish and with the targets'.
void CollectSensitivities(const RunContext& context, const TargetFinishes& targets,
                          RunResult& result) {
  const RunLayout& layout = context.inputs.layout;
  Sampler sampler(context.inputs.plan, layout.design,
                  layout.tied.has_value() ? &*layout.tied : nullptr);
  std::vector<std::vector<double>> columns = {GradesOf(result.finish_samples)};
  for (const std::vector<Instant>& finishes : targets) {
    columns.push_back(GradesOf(finishes));
  }
  const auto correlations = GradeCorrelations(sampler, result.iteration_numbers, columns);
  const auto count = static_cast<double>(result.iterations());
  result.targets.resize(targets.size());
  for (std::size_t i = 0; i < targets.size(); ++i) {
    result.targets[i].task = layout.tasks[Index(layout.targets[i])];
    result.targets[i].drives.resize(layout.tasks.size());
    const auto driving = AddUp<std::uint64_t>(
        context.board.extent().workers, layout.tasks.size(),
        [&](std::int32_t worker) { return context.board.target_driving(worker, i); });
    for (std::size_t task = 0; task < layout.tasks.size() && count > 0; ++task) {
      result.targets[i].drives[task].criticality = static_cast<double>(driving[task]) / count;
    }
  }
  for (std::size_t task = 0; task < layout.tasks.size(); ++task) {
    const auto position = Index(context.inputs.plan.IndexOf(layout.tasks[task]));
    result.tasks[task].sensitivity = correlations[0][position];
    for (std::size_t i = 0; i < targets.size(); ++i) {
      result.targets[i].drives[task].sensitivity = correlations[i + 1][position];
    }
  }
}

/// In how many iterations a calendar lost each day, without the days before the first such day and
/// after the last.
void CollectDayCounts(const RunContext& context, std::size_t calendar, CalendarResult& into) {
  const std::size_t days = context.board.day_counts(0, calendar).size();
  const auto counts = AddUp<std::uint32_t>(
      context.board.extent().workers, days,
      [&](std::int32_t worker) { return context.board.day_counts(worker, calendar); });
  const auto is_lost = [](std::uint32_t count) { return count > 0; };
  const auto first = std::find_if(counts.begin(), counts.end(), is_lost);
  const auto last = std::find_if(counts.rbegin(), counts.rend(), is_lost).base();
  if (first < last) {
    into.first_day = kFirstCoveredDay + static_cast<std::int32_t>(first - counts.begin());
    into.day_counts.assign(first, last);
  }
}

void CollectAttribution(const RunContext& context, const std::vector<std::int32_t>& iterations,
                        RunResult& result) {
  const RunLayout& layout = context.inputs.layout;
  AttributionResult& into = result.attribution.emplace();
  const auto column = [&](std::int32_t variant) {
    if (variant < 0) {
      return result.finish_samples;
    }
    std::vector<Instant> finishes;
    for (const std::int32_t iteration : iterations) {
      finishes.push_back(context.board.variant_finishes(iteration)[Index(variant)]);
    }
    return finishes;
  };
  into.none = column(0);
  into.ledger.resize(layout.calendars.size());
  for (std::size_t i = 0; i < layout.calendars.size(); ++i) {
    into.left_out.push_back(column(layout.VariantOf(i, false)));
    into.alone.push_back(column(layout.VariantOf(i, true)));
    for (std::int32_t worker = 0; worker < context.board.extent().workers; ++worker) {
      const LedgerResult& part = context.board.ledger(worker)[i];
      LedgerResult& sum = into.ledger[i];
      sum.lost += part.lost;
      sum.off += part.off;
      sum.idle += part.idle;
      sum.absorbed += part.absorbed;
      sum.moving += part.moving;
    }
  }
}

void CollectCalendars(const RunContext& context, const std::vector<std::int32_t>& iterations,
                      RunResult& result) {
  std::vector<std::int64_t> lost(iterations.size());
  for (std::size_t i = 0; i < context.inputs.layout.calendars.size(); ++i) {
    const WeatherCalendar& calendar = context.inputs.layout.calendars[i];
    const CalendarDefinition& definition = context.inputs.plan.calendars[Index(calendar.index)];
    std::transform(iterations.begin(), iterations.end(), lost.begin(), [&](std::int32_t k) {
      return std::int64_t{context.board.lost_days(k)[i]} * kMinutesPerDay;
    });
    result.calendars.push_back({.calendar = definition.uid,
                                .name = definition.name,
                                .kind = calendar.kind,
                                .lost_days = SummarizeMinutes(lost),
                                .first_day = 0,
                                .day_counts = {}});
    CollectDayCounts(context, i, result.calendars.back());
  }
}

}  // namespace

RunResult Collect(const RunContext& context) {
  const std::vector<std::int32_t> iterations = IterationsDone(context.board);
  RunResult result;
  result.version = NIMBREL_VERSION;
  result.seed = context.inputs.options.seed;
  result.iterations_asked = context.inputs.options.iterations;
  result.deterministic_finish = context.inputs.layout.deterministic_finish;
  result.iteration_numbers.reserve(iterations.size());
  result.finish_samples.reserve(iterations.size());
  for (const std::int32_t iteration : iterations) {
    result.iteration_numbers.push_back(iteration + 1);
    result.finish_samples.push_back(context.board.finish(iteration));
  }
  result.stopped = result.iterations() < context.board.iterations_planned();
  result.latin_hypercube = context.inputs.options.sampling == Sampling::kLatinHypercube;
  result.notes = context.inputs.layout.notes;
  if (const double days = context.inputs.options.until_days; days > 0) {
    const double width = WidthOfP80(result.finish_samples);
    result.until = {days, width, !result.stopped && width <= days};
  }
  result.finish = DateSummarizer().Summarize(result.finish_samples, true);
  if (context.dates != nullptr) {
    const TargetFinishes targets = CollectTasks(context, result);
    CollectSensitivities(context, targets, result);
    CollectCalendars(context, iterations, result);
    if (context.inputs.options.attribute) {
      CollectAttribution(context, iterations, result);
    }
  }
  return result;
}

}  // namespace nimbrel::engine
