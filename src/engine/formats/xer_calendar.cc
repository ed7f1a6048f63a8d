#include "engine/formats/xer_calendar.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <vector>

#include "engine/calendar/instant.h"
#include "engine/formats/format_error.h"
#include "engine/formats/value_text.h"
#include "platform/text.h"

namespace nimbrel::engine {
namespace {

/// Deepest known calendars have five levels.
constexpr int kDeepest = 32;

struct Node {
  std::string_view name;
  std::string_view values;
  std::vector<Node> children;
};

[[noreturn]] void Fail(std::string_view expected, std::string_view found) {
  throw XerCalendarError(fmt::format("expected {}, found {}", expected,
                                     found.empty() ? "the end of the calendar" : Quoted(found)));
}

/// Reads nodes from a text, each character once.
class NodeParser {
 public:
  explicit NodeParser(std::string_view text) : text_(text) {}

  Node ReadAll() {
    Node node = ReadNode(0);
    SkipGaps();
    if (at_ < text_.size()) {
      Fail("nothing after the calendar's last bracket", text_.substr(at_));
    }
    return node;
  }

 private:
  void SkipGaps() {
    while (at_ < text_.size() &&
           (static_cast<unsigned char>(text_[at_]) <= ' ' || text_[at_] == '\x7F')) {
      ++at_;
    }
  }

  bool NextIs(char letter) {
    SkipGaps();
    return at_ < text_.size() && text_[at_] == letter;
  }

  void Take(char letter) {
    if (!NextIs(letter)) {
      Fail(fmt::format("\"{}\" in the calendar's data", letter), text_.substr(at_));
    }
    ++at_;
  }

  /// The text up to one of the letters, which is not taken.
  std::string_view TakeUntil(std::string_view letters) {
    const std::size_t end = text_.find_first_of(letters, at_);
    if (end == std::string_view::npos) {
      Fail(fmt::format("one of \"{}\" in the calendar's data", letters), {});
    }
    const std::string_view taken = text_.substr(at_, end - at_);
    at_ = end;
    return platform::Trim(taken);
  }

  Node ReadNode(int depth) {
    if (depth > kDeepest) {
      Fail("at most 32 levels of brackets in the calendar's data", text_.substr(at_));
    }
    Node node;
    Take('(');
    TakeUntil("|(");  // a running number that says nothing
    Take('|');
    Take('|');
    node.name = TakeUntil("()");
    Take('(');
    node.values = TakeUntil("()");
    Take(')');
    Take('(');
    while (NextIs('(')) {
      node.children.push_back(ReadNode(depth + 1));
    }
    Take(')');
    Take(')');
    return node;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

/// The value that follows a key in "key|value|key|value".
std::string_view ValueOf(std::string_view values, std::string_view key) {
  while (!values.empty()) {
    const std::size_t bar = values.find('|');
    const std::string_view name = platform::Trim(values.substr(0, bar));
    values = bar == std::string_view::npos ? std::string_view() : values.substr(bar + 1);
    const std::size_t next = values.find('|');
    if (name == key) {
      return platform::Trim(values.substr(0, next));
    }
    values = next == std::string_view::npos ? std::string_view() : values.substr(next + 1);
  }
  return {};
}

/// Minute of the day of "8:00", "08:00", "24:00", "0", "08:00 PM"; nothing for any other text.
std::optional<int> ReadClock(std::string_view text) {
  const std::string folded = platform::FoldCase(text);
  std::string_view clock = folded;
  const bool afternoon = clock.ends_with("pm");
  const bool half_day = afternoon || clock.ends_with("am");
  if (half_day) {
    clock = platform::Trim(clock.substr(0, clock.size() - 2));
  }
  const std::size_t colon = clock.find(':');
  const std::optional<std::int64_t> hour = ReadInteger(clock.substr(0, colon));
  const std::optional<std::int64_t> minute = colon == std::string_view::npos
                                                 ? std::optional<std::int64_t>(0)
                                                 : ReadInteger(clock.substr(colon + 1));
  if (!hour || !minute || *hour < 0 || *hour > 24 || *minute < 0 || *minute > 59 ||
      (half_day && (*hour < 1 || *hour > 12))) {
    return std::nullopt;
  }
  const std::int64_t whole = half_day ? *hour % 12 + (afternoon ? 12 : 0) : *hour;
  const std::int64_t total = whole * 60 + *minute;
  return total > kMinutesPerDay ? std::nullopt : std::optional<int>(static_cast<int>(total));
}

int ReadShiftEnd(const Node& node, std::string_view key) {
  const std::optional<int> clock = ReadClock(ValueOf(node.values, key));
  if (!clock) {
    Fail(fmt::format("a time of day for \"{}\" in the calendar's data", key),
         node.values.empty() ? "()" : node.values);
  }
  return *clock;
}

std::vector<FileShift> ReadShifts(const Node& day) {
  std::vector<FileShift> shifts;
  for (const Node& node : day.children) {
    const int begin = ReadShiftEnd(node, "s");
    const int end = ReadShiftEnd(node, "f");
    // 24:00 as a begin is 00:00: a whole day of work is written with the same time twice. An end
    // at 23:59 is how files write the end of the day.
    const bool to_midnight = end == 0 || end == kMinutesPerDay - 1;
    shifts.push_back({begin % kMinutesPerDay, to_midnight ? kMinutesPerDay : end});
  }
  return shifts;
}

void ReadWeek(const Node& week, CalendarBuilder& builder) {
  for (const Node& day : week.children) {
    const std::optional<std::int64_t> number = ReadInteger(day.name);
    if (!number || *number < 1 || *number > 7) {
      Fail("a weekday from 1 (Sunday) to 7 in the calendar's data", day.name);
    }
    builder.SetWeekday(static_cast<int>((*number + 5) % 7), ReadShifts(day));
  }
}

std::int64_t ReadExceptions(const Node& exceptions, CalendarBuilder& builder) {
  std::int64_t left_out = 0;
  for (const Node& node : exceptions.children) {
    const std::optional<std::int64_t> day = ReadInteger(ValueOf(node.values, "d"));
    if (!day) {
      Fail("the day of an exception as a number in the calendar's data",
           node.values.empty() ? "()" : node.values);
    }
    if (*day < kFirstPlanDay || *day > kLastPlanDay) {
      ++left_out;
    } else {
      builder.SetException(static_cast<std::int32_t>(*day), ReadShifts(node));
    }
  }
  return left_out;
}

}  // namespace

std::int64_t ReadXerCalendar(std::string_view text, CalendarBuilder& builder) {
  const Node root = NodeParser(text).ReadAll();
  if (root.name != "CalendarData") {
    Fail("\"CalendarData\" at the start of the calendar's data", root.name);
  }
  std::int64_t left_out = 0;
  for (const Node& node : root.children) {
    if (node.name == "DaysOfWeek") {
      ReadWeek(node, builder);
    } else if (node.name == "Exceptions") {
      left_out += ReadExceptions(node, builder);
    }
  }
  return left_out;
}

}  // namespace nimbrel::engine
