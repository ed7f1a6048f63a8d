#pragma once

#include <string>
#include <utility>
#include <vector>

#include "engine/results/run_document.h"

namespace nimbrel::cli {

/// The names that tables can have.
inline constexpr const char* kTableNames[] = {
    "run",        "finish",         "curve",    "histogram",  "tasks",
    "milestones", "calendars",      "heat_map", "months",     "sensitivity",
    "ledger",     "critical_chain", "inputs",   "attribution"};

/// A table of a run's results as text.
struct ResultTable {
  std::string name;  // of its file, without the ending
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> rows;
};

/// The tables of a run, those that it has something in. Numbers and dates are written as in the
/// JSON.
std::vector<ResultTable> TablesOf(const engine::RunDocument& document);

/// The table as CSV, the columns in the first line.
std::string TableCsv(const ResultTable& table);

}  // namespace nimbrel::cli
