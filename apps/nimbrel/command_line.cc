#include "nimbrel/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace nimbrel::cli {
namespace {

/// Commas between the thousands of a number in digits, with or without a sign before it.
std::string GroupedDigits(std::string digits) {
  const std::size_t first = digits.starts_with('-') ? 1 : 0;
  for (std::size_t at = digits.size(); at > first + 3; at -= 3) {
    digits.insert(at - 3, 1, ',');
  }
  return digits;
}

}  // namespace

CLI::Validator WholeNumber(std::uint64_t least, std::uint64_t most) {
  return {[least, most](std::string& text) -> std::string {
            std::uint64_t value = 0;
            const auto [end, error] =
                std::from_chars(text.data(), text.data() + text.size(), value);
            if (error == std::errc() && end == text.data() + text.size() && value >= least &&
                value <= most) {
              return {};
            }
            return fmt::format("expected a whole number from {} to {}, found \"{}\"",
                               GroupedDigits(fmt::format("{}", least)),
                               GroupedDigits(fmt::format("{}", most)), text);
          },
          ""};
}

CLI::Validator OneOf(std::vector<std::string> words) {
  return {[words = std::move(words)](std::string& text) -> std::string {
            if (std::find(words.begin(), words.end(), text) != words.end()) {
              return {};
            }
            return fmt::format("expected {}, found \"{}\"", fmt::join(words, " or "), text);
          },
          ""};
}

void AddReadingOptions(CLI::App& command, ReadingChoice& choice) {
  command
      .add_option("--project", choice.project,
                  "Short name of the project to read, for a file that holds several")
      ->type_name("NAME");
  command
      .add_option("--time-unit", choice.time_unit,
                  "What durations are counted in: days (working days of the plan's hours a day, "
                  "with fractions), hours or quarters (of an hour). Default: days")
      ->type_name("UNIT")
      ->check(OneOf({"days", "hours", "quarters"}));
}

engine::ReadOptions ToReadOptions(const ReadingChoice& choice) {
  engine::ReadOptions options;
  if (!choice.project.empty()) {
    options.project = choice.project;
  }
  options.time_unit = choice.time_unit == "hours"      ? engine::TimeUnit::kHours
                      : choice.time_unit == "quarters" ? engine::TimeUnit::kQuarters
                                                       : engine::TimeUnit::kDays;
  return options;
}

std::string Grouped(std::int64_t number) {
  return GroupedDigits(fmt::format("{}", number));
}

std::string Counted(std::int64_t number, const std::string& singular, const std::string& plural) {
  return Grouped(number) + " " + (number == 1 ? singular : plural);
}

}  // namespace nimbrel::cli
