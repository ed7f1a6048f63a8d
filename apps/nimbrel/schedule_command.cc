#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "engine/schedule/scheduler.h"
#include "nimbrel/command_line.h"
#include "nimbrel/commands.h"
#include "nimbrel/json_text.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/plan_facts.h"
#include "nimbrel/text_table.h"
#include "nimbrel/wiring.h"

namespace nimbrel::cli {
namespace {

using engine::Instant;
using engine::Plan;
using engine::Scheduler;
using engine::Task;
using engine::TaskIndex;
using enum TextTable::Align;

struct Options {
  std::string plan;
  std::string output = "-";
  bool json = false;
  bool csv = false;
  ReadingChoice reading;
};

const char* TypeName(engine::TaskKind kind) {
  switch (kind) {
    case engine::TaskKind::kTask:
      return "task";
    case engine::TaskKind::kStartMilestone:
      return "start_milestone";
    case engine::TaskKind::kFinishMilestone:
      return "finish_milestone";
    case engine::TaskKind::kSummary:
      return "summary";
    case engine::TaskKind::kLevelOfEffort:
      return "level_of_effort";
  }
  return "task";
}

double Hours(std::int32_t minutes) {
  return Rounded(minutes / 60.0, 2);
}

std::vector<std::string> DrivingIds(const Plan& plan, const Scheduler& scheduler, TaskIndex task) {
  std::vector<std::string> ids;
  for (const TaskIndex driver : scheduler.DrivingPredecessors(task)) {
    ids.push_back(plan.FindTask(scheduler.TaskAt(driver))->id);
  }
  return ids;
}

std::string AsJson(const Plan& plan, const Scheduler& scheduler) {
  Json json;
  json["data_date"] = DateJson(plan.StatusDate());
  json["finish"] = DateJson(scheduler.finish());
  json["tasks"] = Json::array();
  for (TaskIndex at = 0; at < scheduler.task_count(); ++at) {
    const Task& task = *plan.FindTask(scheduler.TaskAt(at));
    Json one;
    one["id"] = task.id;
    one["name"] = task.description;
    one["type"] = TypeName(task.kind);
    one["early_start"] = DateJson(scheduler.early_start(at));
    one["early_finish"] = DateJson(scheduler.early_finish(at));
    one["late_start"] = DateJson(scheduler.late_start(at));
    one["late_finish"] = DateJson(scheduler.late_finish(at));
    one["total_float_hours"] = Hours(scheduler.total_float(at));
    one["free_float_hours"] = Hours(scheduler.free_float(at));
    one["critical"] = scheduler.is_critical(at);
    one["driving_predecessors"] = DrivingIds(plan, scheduler, at);
    json["tasks"].push_back(std::move(one));
  }
  return JsonText(json);
}

std::string AsCsv(const Plan& plan, const Scheduler& scheduler) {
  std::string text =
      "id,name,type,early_start,early_finish,late_start,late_finish,total_float_hours,"
      "free_float_hours,critical,driving_predecessors\n";
  for (TaskIndex at = 0; at < scheduler.task_count(); ++at) {
    const Task& task = *plan.FindTask(scheduler.TaskAt(at));
    text += fmt::format(
        "{},{},{},{},{},{},{},{},{},{},{}\n", CsvField(task.id), CsvField(task.description),
        TypeName(task.kind), DateText(scheduler.early_start(at)),
        DateText(scheduler.early_finish(at)), DateText(scheduler.late_start(at)),
        DateText(scheduler.late_finish(at)), Hours(scheduler.total_float(at)),
        Hours(scheduler.free_float(at)), scheduler.is_critical(at),
        CsvField(fmt::format("{}", fmt::join(DrivingIds(plan, scheduler, at), ";"))));
  }
  return text;
}

std::string MinuteText(Instant instant) {
  std::string text = engine::ToIsoText(instant);
  return text.empty() ? "-" : text.replace(10, 1, " ");
}

std::string AsText(const Plan& plan, const Scheduler& scheduler) {
  TextTable table({kLeft, kLeft, kLeft, kLeft, kLeft, kLeft, kRight, kLeft});
  table.AddRow(
      {"ID", "Name", "Early start", "Early finish", "Late start", "Late finish", "Float (h)", ""});
  table.AddRule();
  for (TaskIndex at = 0; at < scheduler.task_count(); ++at) {
    const Task& task = *plan.FindTask(scheduler.TaskAt(at));
    table.AddRow({CutTo(task.id, 20), CutTo(task.description, 44),
                  MinuteText(scheduler.early_start(at)), MinuteText(scheduler.early_finish(at)),
                  MinuteText(scheduler.late_start(at)), MinuteText(scheduler.late_finish(at)),
                  fmt::format("{:g}", Hours(scheduler.total_float(at))),
                  scheduler.is_critical(at) ? "critical" : ""});
  }
  return fmt::format("{}: from {} to {}\n\n", TitleOf(plan), MinuteText(plan.StatusDate()),
                     MinuteText(scheduler.finish())) +
         table.Text();
}

ExitCode Schedule(const Options& options, Console& console) {
  RequireOtherFile("-o", options.output, options.plan);
  const PlanDocument document = OpenPlan(options.plan, options.reading);
  std::string text;
  try {
    Scheduler scheduler(document.plan, [](const Task& task) { return !CarriesWeather(task); });
    scheduler.ScheduleForward();
    scheduler.ScheduleBackward();
    text = options.json  ? AsJson(document.plan, scheduler)
           : options.csv ? AsCsv(document.plan, scheduler)
                         : AsText(document.plan, scheduler);
  } catch (const engine::SchedulingError& error) {
    throw BadInput(options.plan + ": " + error.what());
  }
  ShowWarnings(document, console);
  PendingOutput(console, options.output, std::move(text)).Commit();
  return ExitCode::kDone;
}

}  // namespace

void AddScheduleCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("schedule", "Schedule a plan once, on likely durations, without weather");
  command->add_option("PLAN", options->plan, "The plan: .nplan, XER or MSPDI XML")->required();
  CLI::Option* json = command->add_flag("--json", options->json, "Write JSON");
  command->add_flag("--csv", options->csv, "Write CSV")->excludes(json);
  command
      ->add_option("-o,--output", options->output,
                   "Where to write; \"-\", the default, is "
                   "standard output")
      ->type_name("FILE");
  AddReadingOptions(*command, options->reading);
  command->footer(
      "Early and late dates, total and free float, what is critical, and what drives each start.\n"
      "What remains of started tasks is scheduled from the data date on.\n"
      "\n"
      "Examples:\n"
      "  nimbrel schedule bridge.nplan\n"
      "  nimbrel schedule bridge.xer --json -o schedule.json");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Schedule(*options, console); };
  });
}

}  // namespace nimbrel::cli
