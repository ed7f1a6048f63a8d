#include "nimbrel/run_charts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "nimbrel/text_table.h"
#include "nimbrel/weather_json.h"

namespace nimbrel::cli {
namespace {

constexpr int kRows = 10;
constexpr std::size_t kMostColumns = 72;
constexpr std::size_t kLabelWidth = 34;
constexpr std::size_t kBarWidth = 24;
constexpr int kBlue = 34;
constexpr int kGreen = 32;
constexpr int kRed = 31;

bool ShowsBlocks(const Terminal& terminal) {
  return terminal.utf8 && terminal.out_is_terminal;
}

/// The share by the end of a day, between points as a straight line.
double ShareAt(const std::vector<engine::CurvePoint>& curve, double day) {
  if (day <= curve.front().day) {
    return 0.0;
  }
  for (std::size_t i = 1; i < curve.size(); ++i) {
    if (day <= curve[i].day) {
      const double part = (day - curve[i - 1].day) / (curve[i].day - curve[i - 1].day);
      return curve[i - 1].share + part * (curve[i].share - curve[i - 1].share);
    }
  }
  return 1.0;
}

/// One curve on a grid of characters: the row from the top at each column.
std::vector<int> RowsOf(const std::vector<engine::CurvePoint>& curve, std::int32_t first,
                        std::int32_t last, std::size_t columns) {
  std::vector<int> rows(columns);
  for (std::size_t column = 0; column < columns; ++column) {
    const double day = first + static_cast<double>(last - first) * static_cast<double>(column) /
                                   static_cast<double>(columns - 1);
    rows[column] = kRows - static_cast<int>(std::lround(ShareAt(curve, day) * kRows));
  }
  return rows;
}

std::string Repeated(const std::string& text, std::size_t count) {
  std::string repeated;
  for (std::size_t i = 0; i < count; ++i) {
    repeated += text;
  }
  return repeated;
}

/// The line under the curves, and the days at its ends and in its middle.
std::string Axis(std::int32_t first, std::int32_t last, std::size_t columns) {
  const std::string from = IsoDay(first);
  const std::string middle = IsoDay(first + (last - first) / 2);
  std::string line = std::string(6, ' ') + Padded(from, columns / 2 - 5) + middle;
  line = Padded(line, 6 + columns - 10) + IsoDay(last);
  return std::string(5, ' ') + '+' + std::string(columns, '-') + '\n' + line + '\n';
}

}  // namespace

std::string Painted(const std::string& text, int colour, const Terminal& terminal) {
  return terminal.colours ? fmt::format("\x1b[{}m{}\x1b[0m", colour, text) : text;
}

std::string CurveChart(const engine::RunDocument& document, const Terminal& terminal) {
  const std::vector<engine::CurvePoint>& with = document.finish.curve;
  const std::vector<engine::CurvePoint>* without =
      document.without_weather.has_value() ? &document.without_weather->curve : nullptr;
  std::int32_t first = with.front().day;
  std::int32_t last = with.back().day;
  if (without != nullptr) {
    first = std::min(first, without->front().day);
    last = std::max(last, without->back().day);
  }
  if (last - first == 1) {  // the curve begins a day before the first finish
    return fmt::format("All iterations finish on {}.\n", IsoDay(last));
  }
  const std::size_t columns =
      std::clamp<std::size_t>(static_cast<std::size_t>(terminal.columns) - 8, 32, kMostColumns);
  const bool blocks = ShowsBlocks(terminal);
  const std::string with_mark = Painted(blocks ? "●" : "*", kBlue, terminal);
  const std::string without_mark = Painted(blocks ? "·" : ".", kGreen, terminal);
  const std::vector<int> with_rows = RowsOf(with, first, last, columns);
  const std::vector<int> without_rows =
      without == nullptr ? std::vector<int>() : RowsOf(*without, first, last, columns);

  std::string text = "Share finished by the end of the day";
  if (without != nullptr) {
    text += fmt::format(" ({} with weather, {} without)", with_mark, without_mark);
  }
  text += '\n';
  for (int row = 0; row <= kRows; ++row) {
    std::string line = fmt::format("{:3d}% |", 100 - 100 * row / kRows);
    std::size_t blanks = 0;
    for (std::size_t column = 0; column < columns; ++column) {
      const bool is_with = with_rows[column] == row;
      if (!is_with && (without == nullptr || without_rows[column] != row)) {
        ++blanks;
        continue;
      }
      line += std::string(blanks, ' ') + (is_with ? with_mark : without_mark);
      blanks = 0;
    }
    text += line + '\n';
  }
  return text + Axis(first, last, columns);
}

std::string TornadoChart(const std::string& title, const std::vector<TornadoBar>& bars,
                         const Terminal& terminal) {
  double widest = 0;
  bool any_left = false;
  std::size_t value_width = 0;
  for (const TornadoBar& bar : bars) {
    widest = std::max(widest, std::abs(bar.value));
    any_left = any_left || bar.value < 0;
    value_width = std::max(value_width, DisplayWidth(bar.text));
  }
  const std::string mark = ShowsBlocks(terminal) ? "█" : "#";
  std::string text = title + '\n';
  for (const TornadoBar& bar : bars) {
    auto length = static_cast<std::size_t>(
        widest > 0 ? std::lround(std::abs(bar.value) / widest * static_cast<double>(kBarWidth))
                   : 0);
    if (bar.value != 0) {
      length = std::max<std::size_t>(length, 1);
    }
    std::string line = "  " + Padded(CutTo(bar.label, kLabelWidth), kLabelWidth) + " " +
                       std::string(value_width - DisplayWidth(bar.text), ' ') + bar.text + "  ";
    if (any_left) {
      line += bar.value < 0 ? std::string(kBarWidth - length, ' ') +
                                  Painted(Repeated(mark, length), kRed, terminal) + "|"
                            : std::string(kBarWidth, ' ') + "|";
    } else {
      line += "|";
    }
    if (bar.value > 0) {
      line += Painted(Repeated(mark, length), kBlue, terminal);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text += line + '\n';
  }
  return text;
}

}  // namespace nimbrel::cli
