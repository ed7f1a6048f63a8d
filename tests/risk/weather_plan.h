#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/risk/run.h"
#include "host/corvane8.h"

namespace nimbrel::engine {

/// Makes small plans, with weather as the add-in stores it.
///
/// A plan starts on Monday, 4 January 2027, at the start of work; days below are counted from that
/// day as 1. Tasks stand on "SEVEN", a calendar that works every day of the week.
class WeatherPlan {
 public:
  /// `hours` of work a day.
  explicit WeatherPlan(TimeUnit unit = TimeUnit::kDays, int hours = 8);

  Plan plan;

  /// A task of a fixed duration in plan units, behind others that stand for finish to start links.
  Task& AddTask(const std::string& id, double units,
                const std::vector<std::string>& predecessors = {});
  /// A task with a range.
  Task& AddTask(const std::string& id, const ThreePoint& range,
                const std::vector<std::string>& predecessors = {});
  Uid UidOf(const std::string& id) const { return plan.FindTask(id)->uid; }

  /// An empty event or window calendar with its risk calendar. Makes the plan a weather plan.
  void AddWeatherCalendar(const std::string& name);
  /// A period from one day to another, both included, with a length in plan units.
  Task& AddPeriod(const std::string& calendar, int first, int last, const ThreePoint& length,
                  double probability = 100);
  /// A window that opens on one of three days and closes on one of three.
  void AddWindow(const std::string& calendar, const std::array<int, 3>& start,
                 const std::array<int, 3>& finish);
  void Assign(const std::string& task, const std::string& calendar);
  void MarkNoSplit(const std::string& task);

  /// Number of a day since the plan's first, which is 1.
  static int DayOf(Instant instant);
  /// The day as counted in calendars.
  static std::int32_t Serial(int day);

 private:
  Task& AddWeatherTask(const std::string& type, const std::string& calendar);
};

/// A length that is the same in every iteration.
ThreePoint Always(double units);

/// Hands each event to a function, if there is one.
class Listener : public Corvane8::ApplicationEvents {
 public:
  using PlanRef = Corvane8::Ref<Corvane8::Plan>;
  std::function<void(const PlanRef&)> before_analysis;
  std::function<void(const PlanRef&, std::int32_t)> before_iteration;
  std::function<void(const PlanRef&, std::int32_t)> after_iteration;
  std::function<void(const PlanRef&)> after_analysis;

  virtual ~Listener() = default;
  void PlanBeforeRiskAnalysis(const PlanRef& plan) override;
  void PlanBeforeRiskIteration(const PlanRef& plan, std::int32_t iteration) override;
  void PlanAfterRiskIteration(const PlanRef& plan, std::int32_t iteration) override;
  void PlanAfterRiskAnalysis(const PlanRef& plan) override;
};

/// A wiring that knows weather tasks, calendar kinds and no-split marks, with the add-in listening.
/// Every schedule of its runs goes through the independent checker; one that does not pass ends the
/// run with an error that says what is wrong with it.
RunWiring WithAddIn();
/// The same without the checker, for runs whose schedules leave out days that the plan has taken.
RunWiring WithUncheckedAddIn();
/// The same with nobody listening.
RunWiring WithoutAddIn();
/// The same with a listener of the test's own, which each worker has a copy of.
RunWiring WithListener(const Listener& listener);

/// The number of days by which each finish of a task is later than `day`.
std::vector<int> DaysLate(const std::vector<Instant>& finishes, int day);

/// Fails the test unless each value came about as often as its chance says: within 4.5 standard
/// deviations of the binomial distribution, which a right run misses with a chance of 7 in a
/// million a value; and no value without a chance came at all.
void ExpectFrequencies(const std::vector<int>& values,
                       const std::function<double(int value)>& chance);

}  // namespace nimbrel::engine
