#pragma once

#include <cstdint>
#include <vector>

#include "engine/calendar/calendar_definition.h"

namespace nimbrel::engine {

/// Adds the days from `first` to `last` to ranges that stand in order and apart from each other
/// (see CalendarDefinition::taken), and keeps them so. Nothing happens if last < first.
void TakeRange(std::vector<DayRange>& taken, std::int32_t first, std::int32_t last);

/// Takes the days from `first` to `last` out of such ranges.
void GiveRange(std::vector<DayRange>& taken, std::int32_t first, std::int32_t last);

/// Changes of a calendar's taken days that the document does not have yet.
///
/// An iteration takes hundreds of days and gives all of them back, so the document is brought up to
/// date only when someone looks at it. Once the journal has been as long as it gets, adding to it
/// allocates nothing.
class TakenDaysJournal {
 public:
  void Take(std::int32_t first, std::int32_t last) { Add({first, last, true}); }
  void Give(std::int32_t first, std::int32_t last);

  /// Makes the changes to `taken` and forgets them.
  void WriteTo(std::vector<DayRange>& taken);

  bool IsEmpty() const { return changes_.empty(); }

 private:
  struct Change {
    std::int32_t first;
    std::int32_t last;
    bool take;
  };
  void Add(Change change);

  std::vector<Change> changes_;
  std::int32_t first_ = 0;  // the days that the changes touch
  std::int32_t last_ = 0;
};

}  // namespace nimbrel::engine
