#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "nimbrel/console.h"

namespace nimbrel::cli {

/// A line on standard error that is drawn over and over: a bar with iterations done, rate and time
/// left. Draws at most ten times a second, and nothing at all where standard error is no terminal.
class ProgressBar {
 public:
  /// `clock` gives seconds from any origin; it only runs forward.
  ProgressBar(Console& console, std::function<double()> clock);
  /// Clears the line.
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Show(std::int64_t done, std::int64_t total);

 private:
  Console& console_;
  std::function<double()> clock_;
  double begun_;
  double drawn_ = -1;  // when, from the beginning
};

/// The text of such a line: `elapsed` seconds have gone since the first iteration began.
std::string ProgressLine(std::int64_t done, std::int64_t total, double elapsed,
                         const Terminal& terminal);

/// Seconds of the machine's steady clock.
double SteadySeconds();

}  // namespace nimbrel::cli
