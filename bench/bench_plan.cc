// bench_plan FILE.nplan: writes the plan that the speed figures are for: 10,000 tasks over ten
// years, with weather.

#include <cstdio>
#include <exception>

#include "bench/support/generated_plan.h"
#include "engine/plan/plan_store.h"

int main(int count, char** arguments) {
  if (count != 2) {
    std::fputs("usage: bench_plan FILE.nplan\n", stderr);
    return 2;
  }
  try {
    nimbrel::engine::SavePlan(nimbrel::bench::GeneratePlan({}), arguments[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_plan: %s\n", error.what());
    return 1;
  }
  return 0;
}
