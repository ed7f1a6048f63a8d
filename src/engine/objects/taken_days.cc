#include "engine/objects/taken_days.h"

#include <algorithm>

namespace nimbrel::engine {

void TakeRange(std::vector<DayRange>& taken, std::int32_t first, std::int32_t last) {
  if (last < first) {
    return;
  }
  // Ranges that overlap the new one or touch it become one with it.
  const auto begin = std::lower_bound(
      taken.begin(), taken.end(), first,
      [](const DayRange& range, std::int32_t day) { return range.last + 1 < day; });
  auto end = begin;
  while (end != taken.end() && end->first <= last + 1) {
    first = std::min(first, end->first);
    last = std::max(last, end->last);
    ++end;
  }
  if (begin == end) {
    taken.insert(begin, DayRange{first, last});
    return;
  }
  *begin = {first, last};
  taken.erase(begin + 1, end);
}

void GiveRange(std::vector<DayRange>& taken, std::int32_t first, std::int32_t last) {
  if (last < first) {
    return;
  }
  auto at =
      std::lower_bound(taken.begin(), taken.end(), first,
                       [](const DayRange& range, std::int32_t day) { return range.last < day; });
  if (at != taken.end() && at->first < first) {
    const DayRange whole = *at;
    at->last = first - 1;
    ++at;
    if (whole.last > last) {
      taken.insert(at, DayRange{last + 1, whole.last});
      return;
    }
  }
  auto end = at;
  while (end != taken.end() && end->last <= last) {
    ++end;
  }
  if (end != taken.end()) {
    end->first = std::max(end->first, last + 1);
  }
  taken.erase(at, end);
}

void TakenDaysJournal::Give(std::int32_t first, std::int32_t last) {
  // What is given back within the range need not have been taken at all. This keeps the journal
  // short: each iteration starts with giving back everything.
  if (!changes_.empty() && first <= first_ && last >= last_) {
    changes_.clear();
  }
  Add({first, last, false});
}

void TakenDaysJournal::Add(Change change) {
  if (change.last < change.first) {
    return;
  }
  first_ = changes_.empty() ? change.first : std::min(first_, change.first);
  last_ = changes_.empty() ? change.last : std::max(last_, change.last);
  changes_.push_back(change);
}

void TakenDaysJournal::WriteTo(std::vector<DayRange>& taken) {
  for (const Change& change : changes_) {
    if (change.take) {
      TakeRange(taken, change.first, change.last);
    } else {
      GiveRange(taken, change.first, change.last);
    }
  }
  changes_.clear();
}

}  // namespace nimbrel::engine
