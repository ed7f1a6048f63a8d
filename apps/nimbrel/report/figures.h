#pragma once

#include <string>
#include <utility>
#include <vector>

#include "nimbrel/json_text.h"

namespace nimbrel::cli::report {

/// The text for an element or a quoted attribute. Control characters, which HTML does not have,
/// become U+FFFD, as do bytes that are no UTF-8.
std::string Escaped(const std::string& text);

/// The text from a plan for an element: kept apart from what stands around it, whichever way it is
/// written.
std::string Isolated(const std::string& text);

/// How a figure of the run's JSON is written; the names stand in data-as.
enum class Form {
  kFinish,       // "finish": a day, YYYY-MM-DD; a midnight belongs to the day before
  kLongFinish,   // "finish": the same as "21 August 2028"
  kStart,        // "start": a day; a midnight belongs to the day that begins
  kDays,         // "days": with one decimal
  kShare,        // "share": of 1, in whole percent
  kFineShare,    // "share": with one decimal
  kCorrelation,  // "number": with two decimals and a sign
  kNumber,       // "number": with two decimals
  kCount,        // "count": 1,234
  kText,         // "text"
};

/// Figures of a run's JSON as marked elements, by their place, a JSON pointer.
class Figures {
 public:
  /// `run` outlives the object.
  explicit Figures(const Json& run) : run_(run) {}

  /// Whether there is such a place, and something other than null in it.
  bool Has(const std::string& place) const;
  const Json& At(const std::string& place) const;
  /// 0 for what is not there.
  std::size_t CountAt(const std::string& place) const;

  /// An element with the figure; a dash for null.
  std::string Show(const std::string& place, Form form) const;
  /// The text alone, for an attribute; a dash for null. Not for texts from plans.
  std::string Plain(const std::string& place, Form form) const;
  /// "18 August 2028 to 21 August 2028", the interval of the percentile at a place; "" without one.
  std::string Interval(const std::string& place, Form form) const;
  /// The percentile, and below it its interval.
  std::string WithInterval(const std::string& place, Form form) const;

 private:
  const Json& run_;
};

/// The columns of a table; those that are aligned to the right hold numbers.
struct Column {
  std::string title;
  bool is_number = false;
};

/// A table of HTML cells. The first cell of a row is its header.
class HtmlTable {
 public:
  HtmlTable(std::string caption, std::vector<Column> columns)
      : caption_(std::move(caption)), columns_(std::move(columns)) {}

  void AddRow(const std::vector<std::string>& cells);
  bool IsEmpty() const { return rows_.empty(); }
  /// In a box that scrolls sideways where the table is wider than the page.
  std::string Html() const;

 private:
  std::string caption_;
  std::vector<Column> columns_;
  std::string rows_;
};

/// What opens to show the table behind a chart.
std::string Behind(const std::string& summary, const std::string& html);

/// "Shown are 100 of 2,345 tasks; tasks.csv of --csv has all." or "" if nothing is left out.
std::string CutNote(std::size_t shown, std::size_t all, const std::string& of,
                    const std::string& file);

}  // namespace nimbrel::cli::report
