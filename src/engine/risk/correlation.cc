#include "engine/risk/correlation.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <numeric>
#include <optional>
#include <unordered_set>
#include <utility>

#include "engine/risk/tied_numbers.h"

namespace nimbrel::engine {
namespace {

/// The rank correlation of two normal numbers, for people.
double RankCorrelation(double rho) {
  return 6.0 / std::numbers::pi * std::asin(std::clamp(rho, -1.0, 1.0) / 2.0);
}

/// Which of some things hang together.
class Clusters {
 public:
  explicit Clusters(std::size_t size) : parent_(size) {
    std::iota(parent_.begin(), parent_.end(), std::size_t{0});
  }
  std::size_t Find(std::size_t item) {
    while (parent_[item] != item) {
      parent_[item] = parent_[parent_[item]];
      item = parent_[item];
    }
    return item;
  }
  void Join(std::size_t a, std::size_t b) { parent_[Find(a)] = Find(b); }

 private:
  std::vector<std::size_t> parent_;
};

/// The values of one kind, duration or occurrence, by their tasks' positions, and their pairs.
class Weave {
 public:
  Weave(const Plan& plan, Purpose purpose, Correlation& into)
      : plan_(plan), purpose_(purpose), into_(into) {}

  /// All pairs of some tasks.
  void AddGroup(std::vector<std::size_t> positions, double coefficient) {
    groups_.push_back({std::move(positions), coefficient});
  }
  /// Two weather tasks.
  void AddPair(std::size_t a, std::size_t b, double coefficient) {
    weather_.insert({a, b});
    groups_.push_back({{std::min(a, b), std::max(a, b)}, coefficient});
  }

  void Finish() {
    Clusters clusters(plan_.tasks().size());
    for (const Group& group : groups_) {
      for (const std::size_t member : group.members) {
        clusters.Join(member, group.members.front());
      }
    }
    std::map<std::size_t, std::vector<const Group*>> woven;  // by cluster
    for (const Group& group : groups_) {
      woven[clusters.Find(group.members.front())].push_back(&group);
    }
    for (const auto& [cluster, groups] : woven) {
      if (groups.size() == 1) {
        AddAlike(*groups.front());
      } else {
        AddEntangled(groups);
      }
    }
  }

 private:
  struct Group {
    std::vector<std::size_t> members;  // ascending
    double coefficient;
  };

  std::string NameOf(std::size_t position) const {
    const Task& task = plan_.tasks()[position];
    const std::string name = task.description.empty() ? task.id : task.description;
    return weather_.contains(position)
               ? fmt::format("\"{}\" of {}", name, plan_.FindCalendar(task.calendar)->name)
               : name;
  }

  /// Weather tasks are tied to none but each other.
  std::string Counted(const std::vector<std::size_t>& members) const {
    return fmt::format("{} {}", members.size(),
                       weather_.contains(members.front()) ? "weather periods" : "tasks");
  }

  void AddSet(const std::vector<std::size_t>& members, Mixing mixing) {
    TiedSet set{purpose_, {}, std::move(mixing)};
    for (const std::size_t position : members) {
      const Task& task = plan_.tasks()[position];
      set.members.push_back({task.uid, task.stream});
    }
    into_.sets.push_back(std::move(set));
  }

  void NoteRepair(const std::vector<std::size_t>& members, std::size_t a, std::size_t b,
                  double asked, double used) {
    into_.notes.push_back(
        fmt::format("The coefficients that tie the {} of {} are no correlation matrix; the "
                    "nearest one is used. The greatest change: {} with {}, {:.2f} became {:.2f}.",
                    purpose_ == Purpose::kDuration ? "durations" : "occurrences", Counted(members),
                    NameOf(a), NameOf(b), asked, used));
  }

  void AddAlike(const Group& group) {
    const std::size_t size = group.members.size();
    double rho = NormalCorrelation(group.coefficient);
    const double least = -1.0 / (static_cast<double>(size) - 1.0);
    if (rho < least) {
      // Nearest among all, since neither the asked matrix nor the nearest changes when two members
      // change places.
      NoteRepair(group.members, group.members[0], group.members[1], group.coefficient,
                 RankCorrelation(least));
      rho = least;
    }
    AddSet(group.members, Mixing::Alike(size, rho));
  }

  void AddEntangled(const std::vector<const Group*>& groups) {
    std::vector<std::size_t> members;
    for (const Group* group : groups) {
      members.insert(members.end(), group->members.begin(), group->members.end());
    }
    std::sort(members.begin(), members.end());
    members.erase(std::unique(members.begin(), members.end()), members.end());
    if (members.size() > kMostEntangled) {
      throw SamplingError(
          fmt::format("the correlation groups tie {} to each other with different "
                      "coefficients, of which {} is one; at most {} can be",
                      Counted(members), NameOf(members.front()), kMostEntangled));
    }
    SquareMatrix matrix(members.size());
    for (std::size_t i = 0; i < members.size(); ++i) {
      matrix.At(i, i) = 1.0;
    }
    const auto place_of = [&members](std::size_t position) {
      return static_cast<std::size_t>(std::lower_bound(members.begin(), members.end(), position) -
                                      members.begin());
    };
    for (const Group* group : groups) {
      const double rho = NormalCorrelation(group->coefficient);
      for (std::size_t a = 0; a < group->members.size(); ++a) {
        for (std::size_t b = 0; b < a; ++b) {
          const std::size_t i = place_of(group->members[a]);
          const std::size_t j = place_of(group->members[b]);
          matrix.At(i, j) = rho;
          matrix.At(j, i) = rho;
        }
      }
    }
    AddSet(members, MixingFor(matrix, members));
  }

  Mixing MixingFor(const SquareMatrix& matrix, const std::vector<std::size_t>& members) {
    if (std::optional<SquareMatrix> lower = FactorLower(matrix)) {
      return Mixing::ByFactor(std::move(*lower));
    }
    SquareMatrix nearest = NearestCorrelation(matrix);
    std::pair<std::size_t, std::size_t> greatest{0, 1};
    const auto change = [&](std::size_t i, std::size_t j) {
      return std::abs(nearest.At(i, j) - matrix.At(i, j));
    };
    for (std::size_t i = 0; i < members.size(); ++i) {
      for (std::size_t j = i + 1; j < members.size(); ++j) {
        if (change(i, j) > change(greatest.first, greatest.second) + 1e-6) {
          greatest = {i, j};
        }
      }
    }
    const auto [a, b] = greatest;
    NoteRepair(members, members[a], members[b], RankCorrelation(matrix.At(a, b)),
               RankCorrelation(nearest.At(a, b)));
    // A matrix at the edge may be a hair beyond it: a little of the identity brings it back.
    for (double share = 0; share < 1e-6; share = share * 10 + 1e-12) {
      SquareMatrix moved = nearest;
      for (std::size_t i = 0; i < moved.size(); ++i) {
        for (std::size_t j = 0; j < moved.size(); ++j) {
          moved.At(i, j) *= i == j ? 1.0 : 1.0 - share;
        }
      }
      if (std::optional<SquareMatrix> lower = FactorLower(moved)) {
        return Mixing::ByFactor(std::move(*lower));
      }
    }
    throw SamplingError("a correlation matrix cannot be repaired");
  }

  const Plan& plan_;
  Purpose purpose_;
  Correlation& into_;
  std::vector<Group> groups_;
  std::unordered_set<std::size_t> weather_;  // positions of tasks that carry weather
};

class Builder {
 public:
  Builder(const Plan& plan, const Together& together)
      : plan_(plan),
        together_(together),
        durations_(plan, Purpose::kDuration, result_),
        occurrences_(plan, Purpose::kOccurrence, result_) {}

  Correlation Build() {
    for (const CorrelationGroup& group : plan_.correlations) {
      if (group.calendars.empty()) {
        AddTasks(group);
      } else {
        AddCalendars(group);
      }
    }
    durations_.Finish();
    occurrences_.Finish();
    return std::move(result_);
  }

 private:
  void AddTasks(const CorrelationGroup& group) {
    std::vector<std::size_t> members;
    std::size_t fixed = 0;
    for (const Uid uid : group.tasks) {
      const std::int32_t position = plan_.IndexOf(uid);
      if (position < 0 || !DrawsDuration(plan_.tasks()[static_cast<std::size_t>(position)])) {
        ++fixed;
      } else {
        members.push_back(static_cast<std::size_t>(position));
      }
    }
    if (fixed > 0) {
      result_.notes.push_back(
          fmt::format("{} of the {} tasks of a correlation group (coefficient {:g}) have no range "
                      "of durations and go with nothing.",
                      fixed, group.tasks.size(), group.coefficient));
    }
    std::sort(members.begin(), members.end());
    if (members.size() > 1) {
      durations_.AddGroup(std::move(members), group.coefficient);
    }
  }

  void AddCalendars(const CorrelationGroup& group) {
    std::vector<std::vector<std::size_t>> tasks;  // by calendar of the group
    for (const std::string& name : group.calendars) {
      const CalendarDefinition* calendar = plan_.FindCalendar(name);
      if (calendar == nullptr) {
        result_.notes.push_back(
            fmt::format("The plan has no calendar \"{}\", which a correlation group names.", name));
        continue;
      }
      std::vector<std::size_t>& on_calendar = tasks.emplace_back();
      for (std::size_t i = 0; i < plan_.tasks().size(); ++i) {
        if (plan_.tasks()[i].calendar == calendar->uid) {
          on_calendar.push_back(i);
        }
      }
    }
    for (std::size_t a = 0; a < tasks.size(); ++a) {
      for (std::size_t b = a + 1; b < tasks.size(); ++b) {
        AddCalendarPairs(tasks[a], tasks[b], group.coefficient);
      }
    }
  }

  void AddCalendarPairs(const std::vector<std::size_t>& first,
                        const std::vector<std::size_t>& second, double coefficient) {
    for (const std::size_t a : first) {
      for (const std::size_t b : second) {
        const Task& one = plan_.tasks()[a];
        const Task& other = plan_.tasks()[b];
        if (!together_ || !together_(plan_, one, other)) {
          continue;
        }
        if (DrawsDuration(one) && DrawsDuration(other)) {
          durations_.AddPair(a, b, coefficient);
        }
        if (DrawsOccurrence(one) && DrawsOccurrence(other)) {
          occurrences_.AddPair(a, b, coefficient);
        }
      }
    }
  }

  const Plan& plan_;
  const Together& together_;
  Correlation result_;
  Weave durations_;
  Weave occurrences_;
};

}  // namespace

double NormalCorrelation(double coefficient) {
  // 2 sin x with x at most pi / 6, by its series: the same bits everywhere.
  const double x = std::numbers::pi / 6.0 * coefficient;
  double term = x;
  double sum = x;
  for (int k = 3; k <= 21; k += 2) {
    term *= -x * x / (k * (k - 1));
    sum += term;
  }
  return std::clamp(2.0 * sum, -1.0, 1.0);
}

Mixing Mixing::Alike(std::size_t size, double rho) {
  Mixing mixing(size);
  const auto count = static_cast<double>(size);
  mixing.own_ = std::sqrt(std::max(1.0 - rho, 0.0));
  mixing.shared_ = (std::sqrt(std::max(1.0 + (count - 1.0) * rho, 0.0)) - mixing.own_) / count;
  return mixing;
}

Mixing Mixing::ByFactor(SquareMatrix lower) {
  Mixing mixing(lower.size());
  mixing.lower_ = std::move(lower);
  return mixing;
}

void Mixing::Mix(std::span<double> numbers) const {
  if (lower_.size() == 0) {
    const double sum = std::accumulate(numbers.begin(), numbers.end(), 0.0);
    for (double& number : numbers) {
      number = own_ * number + shared_ * sum;
    }
    return;
  }
  // From the last row up: a row needs the numbers before it as they were.
  for (std::size_t i = numbers.size(); i-- > 0;) {
    const double* const row = lower_.Row(i);
    double mixed = 0.0;
    for (std::size_t k = 0; k <= i; ++k) {
      mixed += row[k] * numbers[k];
    }
    numbers[i] = mixed;
  }
}

Correlation MakeCorrelation(const Plan& plan, const Together& together) {
  return Builder(plan, together).Build();
}

}  // namespace nimbrel::engine
