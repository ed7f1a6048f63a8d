#pragma once

#include <string>
#include <vector>

#include "nimbrel/report/figures.h"

namespace nimbrel::cli::report {

/// Where the figures of the finish stand in a run's JSON. Empty for what the run did not compute.
struct FinishPlaces {
  explicit FinishPlaces(const Figures& figures);

  bool weather = false;       // whether the run had weather
  std::string finish;         // with weather, if the run had any
  std::string without;        // without weather, beside `finish`
  std::string delay;          // days that weather adds, iteration by iteration
  std::string cost;           // difference of the percentiles
  std::string curve_with;     // of the distributions
  std::string curve_without;  // likewise
};

/// The parts of the page, each a <section>; "" for one that has nothing to say.
std::string SummarySection(const Figures& figures, const FinishPlaces& places);
std::string WarningSection(const Figures& figures);
std::string FinishSection(const Figures& figures, const FinishPlaces& places);
std::string CostSection(const Figures& figures, const FinishPlaces& places);
std::string SeasonSection(const Figures& figures, const FinishPlaces& places);
std::string DriverSection(const Figures& figures);
std::string MilestoneSection(const Figures& figures);
std::string ChainSection(const Figures& figures, const FinishPlaces& places);
std::string TaskSection(const Figures& figures);
std::string InputSection(const Figures& figures);
std::string MakingSection(const Figures& figures);

/// A section with a heading that it is named by.
std::string Section(const std::string& id, const std::string& title, const std::string& body);

/// A chart that report.js draws, with a text that says what is in it, a line on how to read it, and
/// the table behind. `height` is a class of report.css.
std::string ChartFigure(const std::string& chart, const std::string& height,
                        const std::string& label, const std::string& reading,
                        const std::string& behind);

/// Says which option computes what is missing.
std::string Missing(const std::string& what, const std::string& option);

/// How many tasks the tornado of a target shows.
inline constexpr std::size_t kTornadoTasks = 15;
/// How many calendars, and days of them all, the heat maps show.
inline constexpr std::size_t kHeatMaps = 24;
inline constexpr std::size_t kHeatDays = 60'000;

/// The calendars whose heat maps are shown, as positions in /heat_maps: those that lose most days.
std::vector<std::size_t> HeatMapsShown(const Figures& figures);

}  // namespace nimbrel::cli::report
