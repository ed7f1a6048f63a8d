#include "nimbrel/progress_bar.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>
#include <utility>

#include "nimbrel/command_line.h"

namespace nimbrel::cli {
namespace {

constexpr double kSecondsBetweenDrawings = 0.1;

std::string TimeText(double seconds) {
  const auto whole = std::llround(std::max(0.0, seconds));
  if (whole >= 3600) {
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
  }
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

std::string ProgressLine(std::int64_t done, std::int64_t total, double elapsed,
                         const Terminal& terminal) {
  const double share = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 0;
  std::string text =
      fmt::format(" {:3.0f}%  {} of {}", std::floor(share * 100), Grouped(done), Grouped(total));
  if (done > 0 && elapsed > 0) {
    const double rate = static_cast<double>(done) / elapsed;
    text += fmt::format("  {}/s  {} left", Grouped(std::llround(rate)),
                        TimeText(static_cast<double>(total - done) / rate));
  }
  const int width = std::clamp(terminal.columns - 3 - static_cast<int>(text.size()), 0, 40);
  const auto full = static_cast<int>(share * width);
  std::string bar;
  for (int at = 0; at < width; ++at) {
    bar += terminal.utf8 ? (at < full ? "█" : "░") : (at < full ? "#" : ".");
  }
  return width > 0 ? "[" + bar + "]" + text : text;
}

ProgressBar::ProgressBar(Console& console, std::function<double()> clock)
    : console_(console), clock_(std::move(clock)), begun_(clock_()) {}

ProgressBar::~ProgressBar() {
  if (drawn_ >= 0) {
    console_.err << "\r\x1b[K";
    console_.err.flush();
  }
}

void ProgressBar::Show(std::int64_t done, std::int64_t total) {
  if (!console_.terminal.err_is_terminal) {
    return;
  }
  const double elapsed = clock_() - begun_;
  if (drawn_ >= 0 && elapsed - drawn_ < kSecondsBetweenDrawings) {
    return;
  }
  drawn_ = elapsed;
  console_.err << '\r' << ProgressLine(done, total, elapsed, console_.terminal) << "\x1b[K";
  console_.err.flush();
}

double SteadySeconds() {
  return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

}  // namespace nimbrel::cli
