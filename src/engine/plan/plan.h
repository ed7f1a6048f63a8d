#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "engine/calendar/calendar_definition.h"
#include "engine/calendar/instant.h"
#include "engine/plan/correlation_group.h"
#include "platform/variant.h"

namespace nimbrel::engine {

/// Identity of a task or calendar within a plan: never 0, never used twice, kept by the plan file.
using Uid = std::int32_t;

/// How the plan counts durations; the value is the host's code, units in a calendar day.
enum class TimeUnit : std::int32_t { kDays = 1, kHours = 24, kQuarters = 96 };

// The values of these enums are kept in plan files: add at the end, never renumber.

enum class TaskKind : std::int32_t {
  kTask = 0,
  kStartMilestone = 1,
  kFinishMilestone = 2,
  kSummary = 3,        // has children; its dates span theirs
  kLevelOfEffort = 4,  // stretches between its predecessors and successors; drives nothing
};

enum class ConstraintType : std::int32_t {
  kNone = 0,
  kStartOn = 1,
  kFinishOn = 2,
  kStartNoEarlier = 3,
  kFinishNoEarlier = 4,
  kStartNoLater = 5,
  kFinishNoLater = 6,
  kMandatoryStart = 7,   // overrides the logic
  kMandatoryFinish = 8,  // overrides the logic
  kAsLateAsPossible = 9,
  kPlacedStart = 10,  // overrides the logic forward; late dates are as if it was not there
};

struct Constraint {
  ConstraintType type = ConstraintType::kNone;
  Instant date;  // absent for kNone and kAsLateAsPossible
  friend bool operator==(const Constraint&, const Constraint&) = default;
};

enum class LinkType : std::int32_t {
  kFinishToStart = 0,
  kStartToStart = 1,
  kFinishToFinish = 2,
  kStartToFinish = 3,
};

/// The calendar on which a lag runs. Lags never wait for weather.
enum class LagCalendar : std::int32_t {
  kPredecessor = 0,
  kSuccessor = 1,
  kPlanDefault = 2,
  kElapsed = 3,  // around the clock
};

struct Link {
  Uid predecessor = 0;
  Uid successor = 0;
  LinkType type = LinkType::kFinishToStart;
  std::int32_t lag_minutes = 0;  // of work on the lag's calendar; negative for a lead
  LagCalendar lag_calendar = LagCalendar::kPredecessor;
  friend bool operator==(const Link&, const Link&) = default;
};

enum class Shape : std::int32_t { kTriangular = 0, kUniform = 1, kPert = 2, kSingle = 3 };

/// A three-point estimate in plan units, minimum <= likely <= maximum.
struct ThreePoint {
  double minimum = 0;
  double likely = 0;
  double maximum = 0;
  Shape shape = Shape::kTriangular;
  friend bool operator==(const ThreePoint&, const ThreePoint&) = default;
};

/// Risk of occurrence: with the chance of `probability` percent the task happens in an iteration.
struct OccurrenceRisk {
  double probability = 100;
  std::int32_t mode = 0;  // stored for whoever writes it; this host's engine does not read it
  friend bool operator==(const OccurrenceRisk&, const OccurrenceRisk&) = default;
};

/// A text stored on a task for a module.
struct UserValue {
  std::string section;
  std::string key;
  std::string value;
  friend bool operator==(const UserValue&, const UserValue&) = default;
};

struct CustomValue {
  std::string field;
  platform::Variant value;
  friend bool operator==(const CustomValue&, const CustomValue&) = default;
};

/// A risk calendar assigned to a task.
struct RiskAssignment {
  Uid risk_calendar = 0;
  double value = 0;
  friend bool operator==(const RiskAssignment&, const RiskAssignment&) = default;
};

/// Dates that the tool which wrote the plan had computed, kept for comparison only.
struct StoredDates {
  Instant early_start, early_finish, late_start, late_finish;
  std::optional<std::int32_t> total_float_minutes;
  friend bool operator==(const StoredDates&, const StoredDates&) = default;
};

struct Task {
  Uid uid = 0;
  std::string id;           // unique in the plan without regard to case
  std::string description;  // what users call its name
  TaskKind kind = TaskKind::kTask;
  Uid parent = 0;    // the summary above; 0 at the top
  Uid calendar = 0;  // 0: the plan's default calendar

  std::int32_t remaining_minutes = 0;  // work still to be done; 0 for milestones and when finished
  std::int32_t original_minutes = 0;   // as planned before any progress
  std::optional<ThreePoint> range;     // of the remaining duration; absent: single value
  std::optional<OccurrenceRisk> risk;  // absent: certain

  Constraint constraint;
  Constraint second_constraint;

  Instant actual_start;   // absent: not started
  Instant actual_finish;  // absent: not finished
  Instant suspended;
  Instant resumed;
  /// Absent: none; what remains is stretched or cut to end there, to nothing where it has passed.
  Instant expected_finish;
  double percent_complete = 0;  // 0 to 100, as shown; scheduling rests on the remaining duration

  std::vector<UserValue> user_values;
  std::vector<CustomValue> custom_values;
  std::vector<RiskAssignment> risk_calendars;
  StoredDates stored;

  /// Names the task's random streams. Set from the first ID and kept through renames, so that a
  /// task draws the same numbers whatever other tasks the plan has.
  std::uint64_t stream = 0;

  friend bool operator==(const Task&, const Task&) = default;

  bool IsStarted() const { return !actual_start.IsAbsent(); }
  bool IsFinished() const { return !actual_finish.IsAbsent(); }
  bool IsMilestone() const {
    return kind == TaskKind::kStartMilestone || kind == TaskKind::kFinishMilestone;
  }
  /// The stored text, or null. Sections and keys are compared without regard to case.
  const std::string* FindUserValue(std::string_view section, std::string_view key) const;
};

/// A calendar as the risk engine sees it: days off in the calendar behind it hold up its tasks.
struct RiskCalendarDefinition {
  Uid uid = 0;
  std::string name;  // unique among the risk calendars without regard to case
  std::string description;
  Uid calendar = 0;  // 0: none yet, then it takes no days
  friend bool operator==(const RiskCalendarDefinition&, const RiskCalendarDefinition&) = default;
};

struct CustomField {
  std::string name;
  std::int32_t code = 0;
  friend bool operator==(const CustomField&, const CustomField&) = default;
};

/// How what is left of a started task treats predecessors that are not finished. Retained logic: it
/// waits for them. Progress override: it goes ahead, and they have float as if there was no link.
/// Actual dates: it goes ahead, and the dates at which it has started or finished limit the late
/// dates of its predecessors. A finished task waits for nothing, and under the first two rules its
/// predecessors have float as if there was no link to it.
enum class ProgressRule : std::int32_t {
  kRetainedLogic = 0,
  kProgressOverride = 1,
  kActualDates = 2
};
enum class FloatRule : std::int32_t { kStart = 0, kFinish = 1, kSmaller = 2 };

/// How the plan is to be scheduled, as its file says.
struct ScheduleOptions {
  ProgressRule progress = ProgressRule::kRetainedLogic;
  FloatRule total_float = FloatRule::kFinish;
  /// Whether what remains waits for the data date, and completed tasks drive nothing past it.
  /// False: work not started waits for the plan's start only, what remains of started work goes on
  /// where it is resumed or where the work done ends, and completed tasks drive by their actual
  /// dates.
  bool remaining_from_data_date = true;
  bool lag_from_early_start = true;  // of a started predecessor; false: from its actual start
  Instant must_finish;               // absent: late dates start from the latest early finish
  std::int32_t critical_float_minutes = 0;  // at most so much float is critical
  bool critical_by_longest_path = false;  // critical is what drives the finish, whatever its float
  bool open_ends_critical = false;        // a task without successors has no float
  /// Whether a primary constraint to start or finish no later holds the early dates as well,
  /// against the links.
  bool no_later_holds_early = false;
  friend bool operator==(const ScheduleOptions&, const ScheduleOptions&) = default;
};

/// A project plan: a plain value that can be copied, compared and saved.
///
/// Tasks stand in the plan's order; a summary may stand before or after its children. References
/// into the plan are valid until tasks or calendars are added or removed.
class Plan {
 public:
  std::string name;
  std::string title;
  Instant start;      // the plan's start: nothing not started is scheduled before it
  Instant data_date;  // absent: as `start`. What remains is scheduled from here on
  TimeUnit time_unit = TimeUnit::kDays;
  std::int32_t hours_per_day = 8;  // 1 to 24
  std::int32_t date_format = 7;    // the host's code, 0 to 14
  Uid default_calendar = 0;
  bool recalculate_after_move = false;
  ScheduleOptions schedule;
  std::vector<CalendarDefinition> calendars;
  std::vector<RiskCalendarDefinition> risk_calendars;
  std::vector<Link> links;
  std::vector<CustomField> custom_fields;
  /// Sampled values that go together. Tasks that are removed leave them; a group that is left with
  /// one member goes.
  std::vector<CorrelationGroup> correlations;
  /// Options by section, group and key, each compared exactly.
  std::map<std::array<std::string, 3>, std::string> options;

  const std::vector<Task>& tasks() const { return tasks_; }

  /// The task with an ID (without regard to case) or a uid; null if there is none.
  const Task* FindTask(std::string_view id) const;
  Task* FindTask(std::string_view id);
  const Task* FindTask(Uid uid) const;
  Task* FindTask(Uid uid);
  /// Position in tasks(), or -1.
  std::int32_t IndexOf(Uid uid) const;

  /// Appends a task. A uid of 0 and a stream of 0 are filled in. Raises error 457 if the ID or the
  /// uid is taken.
  Task& AddTask(Task task);
  /// Gives a task another ID. Raises error 457 if another task has it.
  void RenameTask(Uid uid, const std::string& id);
  /// Takes a task out, with its links; its children move up to its parent. Nothing happens if there
  /// is no such task.
  void RemoveTask(Uid uid);
  /// RemoveTask for each of these, in about the time of one.
  void RemoveTasks(const std::unordered_set<Uid>& uids);
  /// Puts a task behind all others. Nothing happens if there is no such task.
  void MoveTaskToEnd(Uid uid);
  /// An ID that no task has: "N" and a number.
  std::string FreshTaskId() const;
  Uid FreshUid() { return next_uid_++; }
  Uid next_uid() const { return next_uid_; }
  /// All uids below `uid` count as used. For readers of plan files.
  void ReserveUids(Uid uid);

  /// Calendars by name (without regard to case) or uid; null if there is none.
  const CalendarDefinition* FindCalendar(std::string_view name) const;
  CalendarDefinition* FindCalendar(std::string_view name);
  const CalendarDefinition* FindCalendar(Uid uid) const;
  CalendarDefinition* FindCalendar(Uid uid);
  const RiskCalendarDefinition* FindRiskCalendar(std::string_view name) const;
  const RiskCalendarDefinition* FindRiskCalendar(Uid uid) const;
  RiskCalendarDefinition* FindRiskCalendar(std::string_view name);
  RiskCalendarDefinition* FindRiskCalendar(Uid uid);
  /// Appends a calendar and gives it a uid if it has none.
  CalendarDefinition& AddCalendar(CalendarDefinition calendar);

  /// Minutes of work in one plan unit: a day has hours_per_day hours.
  double MinutesPerUnit() const;
  /// The remaining duration as a single value in plan units.
  double RemainingUnits(const Task& task) const;
  /// The likely remaining duration in whole minutes: of the range where there is one.
  std::int32_t LikelyMinutes(const Task& task) const;
  /// The moment from which what remains is scheduled: the data date, else the start.
  Instant StatusDate() const { return data_date.IsAbsent() ? start : data_date; }

  friend bool operator==(const Plan& a, const Plan& b);

 private:
  void BuildIndex() const;
  /// Takes out the tasks whose numbers `goes` is true for; the look-up tables are then no longer
  /// valid.
  template <class Goes>
  void RemoveWhere(const Goes& goes);

  std::vector<Task> tasks_;
  Uid next_uid_ = 1;
  // Look-up tables, made on first use after tasks were moved, renamed or removed several at a time.
  mutable bool index_valid_ = false;
  mutable std::unordered_map<std::string, Uid> uid_by_id_;
  mutable std::unordered_map<Uid, std::int32_t> index_by_uid_;
};

/// The random stream of a task that is created with this ID: 64 bits of its letters (FNV-1a, then
/// the finaliser of SplitMix64).
std::uint64_t StreamOfId(std::string_view id);

}  // namespace nimbrel::engine
