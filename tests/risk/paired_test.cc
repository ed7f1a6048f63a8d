#include "engine/risk/paired.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

namespace nimbrel::engine {
namespace {

Instant At(double days) {
  return Instant::FromMinutes(46000LL * kMinutesPerDay + std::llround(days * kMinutesPerDay));
}

PairedPercentiles P80Of(const std::vector<Instant>& samples) {
  return {samples, DateSummarizer().PercentileOf(samples, 80)};
}

double DaysBetween(Instant later, Instant earlier) {
  return static_cast<double>(later.Minutes() - earlier.Minutes()) / kMinutesPerDay;
}

std::vector<Instant> Squares(double later) {
  std::vector<Instant> samples;
  for (int i = 0; i < 100; ++i) {
    samples.push_back(At(i * i / 100.0 + later));
  }
  return samples;
}

TEST(Difference, OfTwoWaysThatAreTheSameIsCertain) {
  const std::vector<Instant> samples = Squares(0);
  const DayInterval interval = IntervalOfDifference(P80Of(samples), P80Of(samples));
  EXPECT_EQ(interval.low, 0.0);
  EXPECT_EQ(interval.high, 0.0);
}

TEST(Difference, OfAShiftedWayIsAsCertain) {
  const std::vector<Instant> later = Squares(7);
  const std::vector<Instant> samples = Squares(0);
  const DayInterval interval = IntervalOfDifference(P80Of(later), P80Of(samples));
  EXPECT_DOUBLE_EQ(interval.low, 7.0);
  EXPECT_DOUBLE_EQ(interval.high, 7.0);
}

// 100 samples a day apart: the place of P80 has the deviation 4, of which 1.96 are 8 places.
TEST(Difference, FromAWayThatIsAlwaysTheSameIsAsWideAsTheOther) {
  const std::vector<Instant> same(100, At(0));
  std::vector<Instant> samples;
  for (int i = 0; i < 100; ++i) {
    samples.push_back(At(i));
  }
  const DayInterval interval = IntervalOfDifference(P80Of(samples), P80Of(same));
  EXPECT_DOUBLE_EQ(interval.low, 79 - 8);
  EXPECT_DOUBLE_EQ(interval.high, 79 + 8);
}

// Two ways that have nothing to do with each other: 10,000 samples a day apart, in an order of
// which the one says nothing of the other. The deviation of each place is 40, that of the
// difference 40 sqrt 2, of which 1.96 are 110.9.
TEST(Difference, OfWaysThatHaveNothingToDoWithEachOtherAddsAsSquares) {
  std::vector<Instant> a;
  std::vector<Instant> b;
  for (int i = 0; i < 10'000; ++i) {
    a.push_back(At(i));
    b.push_back(At(i % 100 * 100 + i / 100));
  }
  const DayInterval interval = IntervalOfDifference(P80Of(a), P80Of(b));
  EXPECT_NEAR(interval.low, -110.9, 3);
  EXPECT_NEAR(interval.high, 110.9, 3);
}

/// How many of 1,000 runs of 400 iterations have an interval that holds the difference of the P80s
/// of a run of 4 million.
template <class Draw>
int RunsThatHoldTheTruth(const Draw& draw) {
  std::mt19937_64 bits(20270301);
  std::vector<Instant> with;
  std::vector<Instant> without;
  const auto draw_all = [&](std::size_t n) {
    with.resize(n);
    without.resize(n);
    for (std::size_t i = 0; i < n; ++i) {
      std::tie(without[i], with[i]) =
          draw([&bits] { return (static_cast<double>(bits() >> 11) + 0.5) * 0x1p-53; });
    }
  };
  draw_all(4'000'000);
  const double truth = DaysBetween(P80Of(with).percentile.value, P80Of(without).percentile.value);
  int held = 0;
  for (int run = 0; run < 1000; ++run) {
    draw_all(400);
    const DayInterval interval = IntervalOfDifference(P80Of(with), P80Of(without));
    held += interval.low - 1e-9 <= truth && truth <= interval.high + 1e-9 ? 1 : 0;
  }
  return held;
}

/// The finish without weather is normal, what the weather adds exponential.
template <class Uniform>
std::pair<double, double> SmoothFinishes(const Uniform& uniform) {
  const double without = 200 + 10 * std::sqrt(-2 * std::log(uniform())) *
                                   std::cos(2 * 3.14159265358979323846 * uniform());
  return {without, without - 8 * std::log(uniform())};
}

/// A moment of working time, of which a week has five days, as a moment of the calendar.
double OnWorkingDays(double days) {
  const double weeks = std::floor(days / 5);
  return weeks * 7 + (days - weeks * 5);
}

// 95% of 1,000 runs should hold the truth; 3 sigma of that count are 2.1%. Order statistics are
// discrete, so that somewhat more is no fault.
TEST(Difference, IntervalsHoldTheTrueDifference) {
  const int held = RunsThatHoldTheTruth([](const auto& uniform) {
    const auto [without, with] = SmoothFinishes(uniform);
    return std::pair(At(without), At(with));
  });
  EXPECT_GE(held, 929);
  EXPECT_LE(held, 985) << "an interval that is far too wide says nothing";
}

// Finishes that jump over weekends, and weather that comes in whole days or not at all.
TEST(Difference, IntervalsHoldTheTrueDifferenceAlsoWhereFinishesLeaveGaps) {
  const int held = RunsThatHoldTheTruth([](const auto& uniform) {
    const double without = 200 + 6 * uniform() + 6 * uniform();
    const double lost = uniform() < 0.6 ? 0 : std::floor(1 - 3 * std::log(uniform()));
    return std::pair(At(OnWorkingDays(without)), At(OnWorkingDays(without + lost)));
  });
  EXPECT_GE(held, 929);
}

}  // namespace
}  // namespace nimbrel::engine
