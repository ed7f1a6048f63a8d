#include "nimbrel/run_report.h"

#include <fmt/format.h>

#include <cstddef>
#include <string>

#include "nimbrel/json_text.h"

namespace nimbrel::cli {

bool IsStopped(const RunReport& report) {
  return report.run().stopped || (report.compared && report.results.without_weather.stopped);
}

std::string RunSamplesCsv(const engine::Plan& plan, const RunReport& report) {
  const engine::RunResult& run = report.run();
  std::string text = "iteration,finish";
  for (const engine::TaskSamples& samples : run.samples) {
    const std::string& id = plan.FindTask(samples.task)->id;
    text += "," + CsvField("start:" + id) + "," + CsvField("finish:" + id);
  }
  text += report.compared ? ",finish_without_weather\n" : "\n";
  for (std::size_t at = 0; at < run.iteration_numbers.size(); ++at) {
    text += fmt::format("{},{}", run.iteration_numbers[at], DateText(run.finish_samples[at]));
    for (const engine::TaskSamples& samples : run.samples) {
      text += "," + DateText(samples.start[at]) + "," + DateText(samples.finish[at]);
    }
    text += report.compared
                ? "," + DateText(report.results.without_weather.finish_samples[at]) + "\n"
                : "\n";
  }
  return text;
}

}  // namespace nimbrel::cli
