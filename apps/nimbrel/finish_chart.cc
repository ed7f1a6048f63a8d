#include "nimbrel/finish_chart.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "nimbrel/text_table.h"

namespace nimbrel::cli {
namespace {

using engine::Instant;

constexpr int kMostRows = 20;

/// The day on which a finish falls: one at midnight ends the day before.
std::int32_t FinishDay(Instant instant) {
  return instant.AsFinish().day();
}

std::int32_t DaysARow(std::int32_t days) {
  for (const std::int32_t width : {1, 2, 3, 7, 14, 28, 56, 91, 182, 365}) {
    if ((days + width - 1) / width <= kMostRows) {
      return width;
    }
  }
  return (days + kMostRows - 1) / kMostRows;
}

/// How many finishes fall into each row.
std::vector<std::int64_t> CountRows(std::span<const Instant> finishes, std::int32_t first,
                                    std::int32_t width, std::size_t rows) {
  std::vector<std::int64_t> counts(rows, 0);
  for (const Instant finish : finishes) {
    ++counts[static_cast<std::size_t>((FinishDay(finish) - first) / width)];
  }
  return counts;
}

/// A bar of `eighths` eighths of a character.
std::string Bar(std::int64_t eighths, bool utf8) {
  static constexpr std::array<const char*, 8> kParts = {"", "▏", "▎", "▍", "▌", "▋", "▊", "▉"};
  std::string bar;
  if (!utf8) {
    bar.assign(static_cast<std::size_t>((eighths + 7) / 8), '#');
    return bar;
  }
  for (std::int64_t full = eighths / 8; full > 0; --full) {
    bar += "█";
  }
  return bar + kParts[static_cast<std::size_t>(eighths % 8)];
}

/// One series beside another.
class Series {
 public:
  Series(std::string title, std::vector<std::int64_t> counts)
      : title_(std::move(title)), counts_(std::move(counts)) {
    for (const std::int64_t count : counts_) {
      total_ += count;
      highest_ = std::max(highest_, count);
    }
  }

  std::string Heading(std::size_t width) const { return Padded(title_, width + kAroundBar); }

  /// The bar, and the share that has finished by the end of the row.
  std::string Row(std::size_t row, std::size_t width, bool utf8) {
    done_ += counts_[row];
    std::int64_t eighths = counts_[row] * static_cast<std::int64_t>(width) * 8 / highest_;
    if (counts_[row] > 0) {
      eighths = std::max<std::int64_t>(eighths, 1);  // rare is not never
    }
    return Padded(Bar(eighths, utf8), width) +
           fmt::format(" {:3.0f}%  ",
                       100 * static_cast<double>(done_) / static_cast<double>(total_));
  }

  static constexpr std::size_t kAroundBar = 7;

 private:
  std::string title_;
  std::vector<std::int64_t> counts_;
  std::int64_t total_ = 0;
  std::int64_t highest_ = 1;
  std::int64_t done_ = 0;
};

}  // namespace

std::string FinishChart(std::span<const Instant> finishes, std::span<const Instant> without_weather,
                        const Terminal& terminal) {
  std::int32_t first = FinishDay(finishes.front());
  std::int32_t last = first;
  for (const std::span<const Instant> samples : {finishes, without_weather}) {
    for (const Instant finish : samples) {
      first = std::min(first, FinishDay(finish));
      last = std::max(last, FinishDay(finish));
    }
  }
  const std::int32_t days = DaysARow(last - first + 1);
  const std::size_t rows = static_cast<std::size_t>((last - first) / days) + 1;

  std::vector<Series> series;
  if (!without_weather.empty()) {
    series.emplace_back("without weather", CountRows(without_weather, first, days, rows));
  }
  series.emplace_back(without_weather.empty() ? "" : "with weather",
                      CountRows(finishes, first, days, rows));

  const bool utf8 = terminal.utf8 && terminal.out_is_terminal;
  const std::size_t room = static_cast<std::size_t>(terminal.columns) - 14;
  const std::size_t width =
      std::clamp<std::size_t>(room / series.size() - Series::kAroundBar, 10, 36);

  std::string text = Padded(days == 1 ? "Finish on" : "Finish by", 12);
  for (const Series& one : series) {
    text += one.Heading(width);
  }
  text.erase(text.find_last_not_of(' ') + 1);
  text += '\n';
  for (std::size_t row = 0; row < rows; ++row) {
    const std::int32_t day = first + static_cast<std::int32_t>(row + 1) * days - 1;
    std::string line = engine::ToIsoText(Instant(day, 0)).substr(0, 10) + "  ";
    for (Series& one : series) {
      line += one.Row(row, width, utf8);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

}  // namespace nimbrel::cli
