#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "nimbrel/command_line.h"
#include "nimbrel/report/sections.h"

namespace nimbrel::cli::report {
namespace {

constexpr std::size_t kMostRows = 300;  // of a table
constexpr std::size_t kOpenRows = 15;   // a table with so many rows is not folded away

bool IsNumber(const std::string& text) {
  char* end = nullptr;
  std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0';
}

std::string InputPart(const Figures& figures, const std::string& place) {
  const Json& input = figures.At(place);
  const Json& rows = input.at("rows");
  std::vector<Column> columns;
  for (std::size_t i = 0; i < input.at("columns").size(); ++i) {
    const bool is_number = i > 0 && std::all_of(rows.begin(), rows.end(), [i](const Json& row) {
                             return IsNumber(row[i].get<std::string>());
                           });
    columns.push_back({input.at("columns")[i].get<std::string>(), is_number});
  }
  const std::string title = input.at("title").get<std::string>();
  HtmlTable table(title, columns);
  const std::size_t shown = std::min(rows.size(), kMostRows);
  for (std::size_t row = 0; row < shown; ++row) {
    std::vector<std::string> cells;
    for (std::size_t column = 0; column < columns.size(); ++column) {
      cells.push_back(figures.Show(fmt::format("{}/rows/{}/{}", place, row, column), Form::kText));
    }
    table.AddRow(cells);
  }
  const std::string html = table.Html() + CutNote(shown, rows.size(), "rows", "inputs.csv");
  const std::string heading = fmt::format("<h3>{}</h3>\n", Escaped(title));
  return heading +
         (rows.size() <= kOpenRows
              ? html
              : Behind("Table of " + Counted(static_cast<std::int64_t>(shown), "row", "rows"),
                       html));
}

}  // namespace

std::string InputSection(const Figures& figures) {
  std::string body;
  for (std::size_t i = 0; i < figures.CountAt("/inputs"); ++i) {
    body += InputPart(figures, fmt::format("/inputs/{}", i));
  }
  return Section("inputs", "What went in", body);
}

std::string MakingSection(const Figures& figures) {
  const bool is_lhs = figures.At("/sampling") == "lhs";
  return Section(
      "making", "How this was made",
      fmt::format(
          "<p>By Nimbrel {} in {} iterations with seed {}, sampled by {}. In each iteration every "
          "duration is drawn from its range and the weather of each calendar from its periods and "
          "windows, and the plan is scheduled on the days that are left. The same plan, options "
          "and "
          "seed give the same report, byte by byte, on any machine.</p>\n"
          "<p>A percentile is the smallest date that at least so many percent of the iterations do "
          "not exceed. Its 95% interval runs between two of the dates that came out, by the "
          "binomial distribution, and assumes nothing of their shape. Percentiles of fewer "
          "iterations than that takes have none. All figures are in <code>nimbrel run "
          "--json</code> "
          "and <code>--csv</code>; days are calendar days.</p>\n",
          figures.Show("/version", Form::kText), figures.Show("/iterations", Form::kCount),
          figures.Show("/seed", Form::kText), is_lhs ? "Latin hypercube" : "Monte Carlo"));
}

}  // namespace nimbrel::cli::report
