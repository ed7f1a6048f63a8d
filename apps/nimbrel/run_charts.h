#pragma once

#include <string>
#include <vector>

#include "engine/results/run_document.h"
#include "nimbrel/console.h"

namespace nimbrel::cli {

/// The text in a colour where `terminal` shows colours, else the text. Codes are those of ANSI
/// terminals, as 34 for blue.
std::string Painted(const std::string& text, int colour, const Terminal& terminal);

/// The share of the iterations that have finished over the days, as a curve of characters with and,
/// where there is one, without weather; a line of text where all finish on one day. The document
/// has at least one iteration.
std::string CurveChart(const engine::RunDocument& document, const Terminal& terminal);

/// A value with a bar that goes to the right, or to the left if it is below 0.
struct TornadoBar {
  std::string label;
  double value = 0;
  std::string text;  // the value as it is to be shown
};

/// Bars under a title, in the order in which they are given. All of them are as long as the widest
/// one allows.
std::string TornadoChart(const std::string& title, const std::vector<TornadoBar>& bars,
                         const Terminal& terminal);

}  // namespace nimbrel::cli
