#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "engine/check/plan_health.h"
#include "engine/check/stored_dates.h"
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

using engine::DateDifference;
using engine::DateField;
using engine::DifferingActivity;
using engine::HealthFinding;
using engine::Plan;
using engine::Scheduler;
using engine::StoredDatesReport;
using engine::Task;
using enum TextTable::Align;

struct Options {
  std::string plan;
  bool json = false;
  bool all = false;
  ReadingChoice reading;
};

constexpr std::size_t kShown = 10;  // of each list, without --all

/// What there is to say of a plan.
struct Report {
  Plan plan;
  StoredDatesReport dates;
  std::vector<HealthFinding> health;
};

/// Schedules the plan as its own tool had: on remaining durations, whatever ranges it was given.
Report Inspect(Plan plan) {
  for (const Task& task : plan.tasks()) {
    if (!CarriesWeather(task)) {
      plan.FindTask(task.uid)->range.reset();
    }
  }
  Scheduler scheduler(plan, [](const Task& task) { return !CarriesWeather(task); });
  scheduler.ScheduleForward();
  scheduler.ScheduleBackward();
  Report report{{}, CompareStoredDates(plan, scheduler), InspectPlan(plan, scheduler)};
  report.plan = std::move(plan);
  return report;
}

/// "early start" as a key: "early_start".
std::string KeyOf(DateField field) {
  std::string key(NameOf(field));
  std::replace(key.begin(), key.end(), ' ', '_');
  return key;
}

double Hours(std::int32_t minutes) {
  return Rounded(minutes / 60.0, 2);
}

Json DifferenceJson(const DateDifference& difference) {
  Json json;
  json["field"] = KeyOf(difference.field);
  if (difference.field == DateField::kTotalFloat) {
    json["stored_hours"] = Hours(difference.stored_minutes);
    json["computed_hours"] = Hours(difference.computed_minutes);
  } else {
    json["stored"] = DateJson(difference.stored);
    json["computed"] = DateJson(difference.computed);
  }
  return json;
}

Json DatesJson(const Report& report) {
  Json json;
  json["activities"] = report.dates.activities;
  json["equal"] = report.dates.equal;
  json["fields"] = Json::array();
  for (std::size_t field = 0; field < engine::kDateFieldCount; ++field) {
    const engine::FieldAgreement& agreement = report.dates.fields[field];
    json["fields"].push_back(
        {{"field", KeyOf(static_cast<DateField>(field))},
         {"compared", agreement.compared},
         {"equal", agreement.equal},
         {"share", agreement.compared == 0 ? Json(nullptr) : Json(Rounded(agreement.Share(), 4))}});
  }
  json["differing"] = Json::array();
  for (const DifferingActivity& activity : report.dates.differing) {
    const Task& task = *report.plan.FindTask(activity.task);
    Json one;
    one["id"] = task.id;
    one["name"] = task.description;
    one["cause"] = activity.cause;
    one["differences"] = Json::array();
    for (const DateDifference& difference : activity.differences) {
      one["differences"].push_back(DifferenceJson(difference));
    }
    json["differing"].push_back(std::move(one));
  }
  return json;
}

std::string AsJson(const Report& report) {
  Json json;
  json["plan"] = report.plan.name;
  json["data_date"] = DateJson(report.plan.StatusDate());
  json["stored_dates"] = DatesJson(report);
  json["health"] = Json::array();
  for (const HealthFinding& finding : report.health) {
    json["health"].push_back({{"key", finding.key},
                              {"title", finding.title},
                              {"count", finding.items.size()},
                              {"items", finding.items}});
  }
  return JsonText(json);
}

std::string MinuteText(engine::Instant instant) {
  std::string text = DateText(instant);
  return text.empty() ? "-" : text.replace(10, 1, " ");
}

std::string DifferenceText(const DateDifference& difference) {
  if (difference.field == DateField::kTotalFloat) {
    return fmt::format("{} stored {:g} h, ours {:g} h", NameOf(difference.field),
                       Hours(difference.stored_minutes), Hours(difference.computed_minutes));
  }
  return fmt::format("{} stored {}, ours {}", NameOf(difference.field),
                     MinuteText(difference.stored), MinuteText(difference.computed));
}

/// The line that says how many of a list are not shown; empty if all are.
std::string MoreText(std::size_t count, std::size_t shown) {
  return count <= shown ? ""
                        : fmt::format("  and {} more: --all lists them\n",
                                      Grouped(static_cast<std::int64_t>(count - shown)));
}

std::string DatesText(const Report& report, std::size_t most) {
  const StoredDatesReport& dates = report.dates;
  if (dates.activities == 0) {
    return "Stored dates: the plan has none to compare with\n";
  }
  std::string text = fmt::format("Stored dates: {} of {} equal\n", Grouped(dates.equal),
                                 Counted(dates.activities, "open activity", "open activities"));
  TextTable table({kLeft, kRight, kRight, kRight});
  table.AddRow({"", "compared", "equal", "share"});
  table.AddRule();
  for (std::size_t field = 0; field < engine::kDateFieldCount; ++field) {
    const engine::FieldAgreement& agreement = dates.fields[field];
    table.AddRow({std::string(NameOf(static_cast<DateField>(field))), Grouped(agreement.compared),
                  Grouped(agreement.equal),
                  agreement.compared == 0 ? "-" : fmt::format("{:.1f}%", 100 * agreement.Share())});
  }
  text += table.Text(2);
  const std::size_t shown = std::min(most, dates.differing.size());
  for (std::size_t i = 0; i < shown; ++i) {
    const DifferingActivity& activity = dates.differing[i];
    const Task& task = *report.plan.FindTask(activity.task);
    text += fmt::format("  {} {}{}\n", task.id, CutTo(task.description, 44),
                        activity.cause.empty() ? "" : " (" + activity.cause + ")");
    for (const DateDifference& difference : activity.differences) {
      text += fmt::format("    {}\n", DifferenceText(difference));
    }
  }
  return text + MoreText(dates.differing.size(), shown);
}

std::string HealthText(const Report& report, std::size_t most) {
  std::string text = "Health\n";
  for (const HealthFinding& finding : report.health) {
    text += fmt::format("{:>7}  {}\n", Grouped(static_cast<std::int64_t>(finding.items.size())),
                        finding.title);
    const std::size_t shown = std::min(most, finding.items.size());
    for (std::size_t i = 0; i < shown; ++i) {
      text += fmt::format("           {}\n", finding.items[i]);
    }
    const std::string more = MoreText(finding.items.size(), shown);
    text += more.empty() ? "" : "         " + more;
  }
  return text;
}

ExitCode Check(const Options& options, Console& console) {
  PlanDocument document = OpenPlan(options.plan, options.reading);
  std::string text;
  try {
    const Report report = Inspect(std::move(document.plan));
    const std::size_t most = options.all ? std::string::npos : kShown;
    text = options.json ? AsJson(report)
                        : fmt::format("{}: from {}\n\n", TitleOf(report.plan),
                                      MinuteText(report.plan.StatusDate())) +
                              DatesText(report, most) + "\n" + HealthText(report, most);
  } catch (const engine::SchedulingError& error) {
    throw BadInput(options.plan + ": " + error.what());
  }
  ShowWarnings(document, console);
  PendingOutput(console, "-", std::move(text)).Commit();
  return ExitCode::kDone;
}

}  // namespace

void AddCheckCommand(CLI::App& app, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "check", "Compare a plan's stored dates with ours, and look its health over");
  command->add_option("PLAN", options->plan, "The plan: .nplan, XER or MSPDI XML")->required();
  CLI::Option* json = command->add_flag("--json", options->json, "Write JSON");
  command->add_flag("--all", options->all, "List everything that is found")->excludes(json);
  AddReadingOptions(*command, options->reading);
  command->footer(
      "Early and late dates and total float as the plan's own tool had left them are held\n"
      "against the ones computed here, on remaining durations and without weather. Dates are\n"
      "equal when no working time lies between them.\n"
      "\n"
      "Examples:\n"
      "  nimbrel check bridge.xer\n"
      "  nimbrel check bridge.nplan --json");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Check(*options, console); };
  });
}

}  // namespace nimbrel::cli
