#include "engine/results/run_document.h"

namespace nimbrel::engine {

std::array<Percentile<double>, 3> PercentilesOf(const DayFigures& figures) {
  return {{{50, figures.p50, figures.p50_low, figures.p50_high},
           {80, figures.p80, figures.p80_low, figures.p80_high},
           {90, figures.p90, figures.p90_low, figures.p90_high}}};
}

}  // namespace nimbrel::engine
