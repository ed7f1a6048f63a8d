#include "nimbrel/ranges.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string_view>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

#include "nimbrel/command_error.h"
#include "nimbrel/input_text.h"
#include "nimbrel/wiring.h"
#include "platform/text.h"

namespace nimbrel::cli {
namespace {

using engine::Plan;
using engine::Shape;
using engine::Task;
using engine::TaskKind;
using engine::ThreePoint;
using engine::Uid;

constexpr double kMostPercent = 1000;
constexpr double kMostDays = 73050;  // 200 years, as in plans that are imported

/// A number that is written in full, such as "12" or "0.5"; nothing for anything else.
std::optional<double> ParseNumber(std::string_view text) {
  text = platform::Trim(text);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

/// Why a task takes no range; null for one that does.
const char* WhyNoRange(const Task& task) {
  if (CarriesWeather(task)) {
    return "one that carries weather";
  }
  switch (task.kind) {
    case TaskKind::kStartMilestone:
    case TaskKind::kFinishMilestone:
      return "a milestone";
    case TaskKind::kSummary:
      return "a summary";
    case TaskKind::kLevelOfEffort:
      return "a level of effort";
    case TaskKind::kTask:
      break;
  }
  return task.IsFinished() ? "one that is finished" : nullptr;
}

/// Ranges that have been found right, to be set together in the end.
class PendingRanges {
 public:
  explicit PendingRanges(Plan& plan) : plan_(plan) {}

  void Add(Uid task, const ThreePoint& range) { ranges_.emplace_back(task, range); }
  std::int64_t Apply() {
    for (const auto& [task, range] : ranges_) {
      plan_.FindTask(task)->range = range;
    }
    return std::ssize(ranges_);
  }

 private:
  Plan& plan_;
  std::vector<std::pair<Uid, ThreePoint>> ranges_;
};

/// One row of a CSV file.
struct CsvRow {
  std::int64_t line = 0;  // where it begins, from 1
  std::vector<std::string> fields;
};

/// Takes CSV text apart: fields in quotes may hold commas, line breaks and doubled quotes; lines
/// end with LF, CRLF or CR.
class CsvReader {
 public:
  CsvReader(std::string_view text, const std::string& file) : text_(text), file_(file) {}

  /// The next row that has something in it; false behind the last one.
  bool Next(CsvRow& row) {
    while (at_ < text_.size()) {
      row = {line_, {}};
      do {
        row.fields.push_back(ReadField());
      } while (Take(','));
      TakeLineEnd();
      if (row.fields.size() > 1 || !platform::Trim(row.fields.front()).empty()) {
        return true;
      }
    }
    return false;
  }

 private:
  bool Take(char c) {
    const bool is_there = at_ < text_.size() && text_[at_] == c;
    at_ += is_there ? 1 : 0;
    return is_there;
  }

  void TakeLineEnd() {
    const bool carriage_return = Take('\r');
    if (Take('\n') || carriage_return) {
      ++line_;
    }
  }

  std::string ReadField() {
    if (Take('"')) {
      return ReadQuoted();
    }
    const std::size_t end = std::min(text_.find_first_of(",\r\n", at_), text_.size());
    std::string field(text_.substr(at_, end - at_));
    at_ = end;
    return field;
  }

  std::string ReadQuoted() {
    const std::int64_t line = line_;
    std::string field;
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      if (c == '"' && !Take('"')) {
        if (at_ < text_.size() && std::string_view(",\r\n").find(text_[at_]) == std::string::npos) {
          throw BadInput(fmt::format("{}:{}: expected a comma after the closing quote, found {}",
                                     file_, line_, QuotedText(text_.substr(at_, 1))));
        }
        return field;
      }
      line_ += c == '\n' ? 1 : 0;
      field += c;
    }
    throw BadInput(
        fmt::format("{}:{}: expected a closing quote, found the end of the file", file_, line));
  }

  std::string_view text_;
  const std::string& file_;
  std::size_t at_ = 0;
  std::int64_t line_ = 1;
};

/// Reads the rows of a ranges file into ranges of the plan's tasks.
class RangesReader {
 public:
  RangesReader(const Plan& plan, const std::string& file, Shape shape)
      : plan_(plan), file_(file), shape_(shape) {
    // A day is HoursPerDay hours of work, whatever the plan counts in.
    units_a_day_ = plan.hours_per_day * 60 / plan.MinutesPerUnit();
  }

  void ReadHeader(const CsvRow& row) {
    for (std::size_t i = 0; i < row.fields.size(); ++i) {
      const auto column = ColumnCalled(platform::Trim(row.fields[i]));
      if (!column) {
        Fail(row, "the columns id, min, likely, max and shape", QuotedText(row.fields[i]));
      }
      if (position_[*column] >= 0) {
        Fail(row, "each column once", QuotedText(row.fields[i]) + " twice");
      }
      position_[*column] = static_cast<int>(i);
    }
    for (std::size_t column = kId; column <= kMax; ++column) {
      if (position_[column] < 0) {
        Fail(row, fmt::format("a column \"{}\"", kColumns[column]), "none");
      }
    }
    width_ = row.fields.size();
  }

  std::pair<Uid, ThreePoint> Read(const CsvRow& row) {
    if (row.fields.size() != width_) {
      Fail(row, fmt::format("{} fields", width_), std::to_string(row.fields.size()));
    }
    const Task& task = TaskOf(row);
    ThreePoint range;
    const double minimum = Days(row, kMin);
    const double likely = Days(row, kLikely);
    const double maximum = Days(row, kMax);
    if (minimum > likely || likely > maximum) {
      Fail(row, "min <= likely <= max", fmt::format("{}, {}, {}", minimum, likely, maximum));
    }
    return {task.uid,
            {minimum * units_a_day_, likely * units_a_day_, maximum * units_a_day_, ShapeOf(row)}};
  }

 private:
  enum Column : std::size_t { kId, kMin, kLikely, kMax, kShape };
  static constexpr std::array<std::string_view, 5> kColumns = {"id", "min", "likely", "max",
                                                               "shape"};

  [[noreturn]] void Fail(const CsvRow& row, const std::string& expected,
                         const std::string& found) const {
    throw BadInput(fmt::format("{}:{}: expected {}, found {}", file_, row.line, expected, found));
  }

  static std::optional<std::size_t> ColumnCalled(std::string_view name) {
    for (std::size_t column = 0; column < kColumns.size(); ++column) {
      if (platform::EqualsIgnoreCase(kColumns[column], name)) {
        return column;
      }
    }
    return std::nullopt;
  }

  std::string Field(const CsvRow& row, Column column) const {
    return std::string(platform::Trim(row.fields[static_cast<std::size_t>(position_[column])]));
  }

  const Task& TaskOf(const CsvRow& row) {
    const std::string id = Field(row, kId);
    const Task* task = plan_.FindTask(id);
    if (task == nullptr) {
      Fail(row, "the ID of a task of the plan", QuotedText(id));
    }
    if (const char* why = WhyNoRange(*task)) {
      Fail(row, "a task that has a duration left",
           fmt::format("{}, which is {}", QuotedText(id), why));
    }
    if (!seen_.insert(task->uid).second) {
      Fail(row, "each task once", QuotedText(id) + " for the second time");
    }
    return *task;
  }

  double Days(const CsvRow& row, Column column) const {
    const std::string text = Field(row, column);
    const std::optional<double> days = ParseNumber(text);
    if (!days || *days < 0 || *days > kMostDays) {
      Fail(row, fmt::format("days from 0 to {} as {}", kMostDays, kColumns[column]),
           QuotedText(text));
    }
    return *days;
  }

  Shape ShapeOf(const CsvRow& row) const {
    const std::string text = position_[kShape] < 0 ? std::string() : Field(row, kShape);
    if (text.empty()) {
      return shape_;
    }
    const std::optional<Shape> shape = ParseShape(text);
    if (!shape) {
      Fail(row, "triangular, pert or uniform", QuotedText(text));
    }
    return *shape;
  }

  const Plan& plan_;
  const std::string& file_;
  Shape shape_;
  double units_a_day_;
  std::array<int, 5> position_ = {-1, -1, -1, -1, -1};  // of each column among the fields
  std::size_t width_ = 0;
  std::unordered_set<Uid> seen_;
};

}  // namespace

PercentRange ParsePercentRange(const std::string& text) {
  std::vector<double> points;
  std::string_view rest = text;
  for (bool more = true; more;) {
    const std::size_t comma = rest.find(',');
    const std::optional<double> point = ParseNumber(rest.substr(0, comma));
    if (point && *point >= 0 && *point <= kMostPercent) {
      points.push_back(*point);
    }
    more = comma != std::string_view::npos && point;
    rest.remove_prefix(more ? comma + 1 : rest.size());
  }
  const bool all_read = points.size() == 3 && std::count(text.begin(), text.end(), ',') == 2;
  if (!all_read || points[0] > points[1] || points[1] > points[2]) {
    throw BadCommandLine(fmt::format(
        "--default: expected MIN,LIKELY,MAX in percent, three numbers from 0 to {} in this order, "
        "found {}",
        kMostPercent, QuotedText(text)));
  }
  return {points[0], points[1], points[2]};
}

std::optional<Shape> ParseShape(const std::string& text) {
  constexpr std::pair<std::string_view, Shape> kShapes[] = {
      {"triangular", Shape::kTriangular}, {"pert", Shape::kPert}, {"uniform", Shape::kUniform}};
  for (const auto& [name, shape] : kShapes) {
    if (platform::EqualsIgnoreCase(name, text)) {
      return shape;
    }
  }
  return std::nullopt;
}

std::int64_t ApplyDefaultRanges(Plan& plan, const PercentRange& percent, Shape shape) {
  PendingRanges ranges(plan);
  for (const Task& task : plan.tasks()) {
    if (WhyNoRange(task) != nullptr) {
      continue;
    }
    if (task.remaining_minutes * (percent.maximum / 100) > std::numeric_limits<int>::max()) {
      throw BadInput(
          fmt::format("--default: expected durations that can be scheduled, found {}% "
                      "of the remaining duration of task {}",
                      percent.maximum, QuotedText(task.id)));
    }
    const double units = plan.RemainingUnits(task);
    ranges.Add(task.uid, {units * percent.minimum / 100, units * percent.likely / 100,
                          units * percent.maximum / 100, shape});
  }
  return ranges.Apply();
}

std::int64_t ApplyRangesText(Plan& plan, const std::string& text, const std::string& file,
                             Shape shape) {
  CsvReader csv(text, file);
  RangesReader reader(plan, file, shape);
  CsvRow row;
  if (!csv.Next(row)) {
    throw BadInput(file + ":1: expected a row with the columns id, min, likely, max, found none");
  }
  reader.ReadHeader(row);
  PendingRanges ranges(plan);
  while (csv.Next(row)) {
    const auto [task, range] = reader.Read(row);
    ranges.Add(task, range);
  }
  return ranges.Apply();
}

std::int64_t ApplyRangesCsv(Plan& plan, const std::string& path, Shape shape) {
  return ApplyRangesText(plan, ReadTextFile(path), path, shape);
}

}  // namespace nimbrel::cli
