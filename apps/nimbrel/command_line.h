#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <string>

#include "engine/formats/plan_reader.h"

namespace nimbrel::cli {

/// Accepts a whole number from `least` to `most` in digits alone, so that what CLI11 converts
/// afterwards always converts.
CLI::Validator WholeNumber(std::uint64_t least, std::uint64_t most);

/// Accepts one of the words, and says which there are if it is another.
CLI::Validator OneOf(std::vector<std::string> words);

/// How a plan that is not in a .nplan is to be read, from the command line.
struct ReadingChoice {
  std::string project;    // empty: the file's only one
  std::string time_unit;  // days, hours or quarters; empty: days
};

/// Declares --project and --time-unit.
void AddReadingOptions(CLI::App& command, ReadingChoice& choice);

engine::ReadOptions ToReadOptions(const ReadingChoice& choice);

/// 1,234,567
std::string Grouped(std::int64_t number);

/// "1 link", "1,200 links".
std::string Counted(std::int64_t number, const std::string& singular, const std::string& plural);

}  // namespace nimbrel::cli
