#pragma once

#include <cstdint>
#include <string>

#include "engine/plan/plan.h"
#include "engine/risk/iteration_story.h"
#include "nimbrel/console.h"

namespace nimbrel::cli {

/// What an iteration belongs to.
struct ExplainedRun {
  std::uint64_t seed = 1;
  std::int32_t iterations = 0;  // of the run
  int percentile = 0;           // that the iteration was picked by; 0: by its number
};

/// The story for people.
std::string StoryText(const engine::Plan& plan, const engine::IterationStory& story,
                      const ExplainedRun& run);

/// The story as JSON, with a line break at its end. Runs of days are pairs of dates, both included.
std::string StoryJson(const engine::Plan& plan, const engine::IterationStory& story,
                      const ExplainedRun& run);

}  // namespace nimbrel::cli
