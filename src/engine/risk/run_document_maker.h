#pragma once

#include <cstdint>

#include "engine/plan/plan.h"
#include "engine/results/run_document.h"
#include "engine/results/run_result.h"
#include "engine/risk/iteration_story.h"

namespace nimbrel::engine {

/// What a document is made of; what is pointed to is not kept.
struct DocumentParts {
  const RunResult& run;
  bool weather = false;                       // whether weather was applied in it
  const ComparedResult* compared = nullptr;   // where the same iterations ran without weather
  const IterationStory* p80_story = nullptr;  // of IterationNearest(run, 80), if it was told
};

/// Makes the document of a run, without `inputs`; `warnings` are those of the run itself.
RunDocument MakeRunDocument(const Plan& plan, const DocumentParts& parts);

/// The number of the first iteration whose finish is the run's p-percentile, 0 < p <= 100. The run
/// has at least one iteration.
std::int32_t IterationNearest(const RunResult& run, int percent);

}  // namespace nimbrel::engine
