// nimbrel weather import

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>

#include "nimbrel/command_error.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/weather_import_watch.h"
#include "nimbrel/weather_json.h"
#include "nimbrel/weather_summary.h"
#include "nimbrel/weather_workbook.h"
#include "nimbrel/weather_workbook_commands.h"
#include "nimbrel/wiring.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/grid.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::cli {
namespace {

using dialog::frmWeather;
using toolkit::ListItemRef;

struct Options {
  std::string plan;
  std::string file;
  bool replace = false;
};

/// Nothing is shown here: an import leaves no workbook to its user.
class NoViewer final : public spreadsheet::WorkbookViewer {
 public:
  void Show(const spreadsheet::Workbook& /*workbook*/, const std::string& /*path*/) override {}
};

/// The first cell that the dialog's own save of a list refuses; row from 0, column of the sheet.
struct RefusedCell {
  std::size_t row = 0;
  std::int32_t column = 0;
};

/// Saves the rows of a list once more, to learn which cell it is that cannot be saved. Nothing if
/// all can, or if the rows have not been tied to tasks yet.
template <class Tasks>
std::optional<RefusedCell> FindRefusedCell(const toolkit::ListView& list, const Tasks& tasks) {
  for (const ListItemRef& row : list.ListItems()) {
    if (!tasks.Contains(row->Text())) {
      return std::nullopt;
    }
  }
  std::size_t index = 0;
  for (const ListItemRef& row : list.ListItems()) {
    for (std::int32_t cell = 1; cell <= row->ListSubItems().Count(); ++cell) {
      std::string text = row->ListSubItems().Item(cell).Text();
      try {
        tasks.Item(row->Text())->UpdateFromText(text, cell);
      } catch (const platform::RuntimeError&) {
        return RefusedCell{index, cell + 1};  // the cells of both lists begin in column B
      }
    }
    ++index;
  }
  return std::nullopt;
}

std::string PlaceText(const CellWatch& watch, std::int32_t row, std::int32_t column) {
  return fmt::format("sheet {}, row {}, column {}", spreadsheet::Quoted(watch.sheet), row,
                     spreadsheet::ColumnLetters(column));
}

/// Where in the workbook the import has failed, as far as that can be told; empty if it had not
/// come to a sheet yet.
std::string FailedPlace(frmWeather& form, const CellWatch& watch) {
  if (watch.sheet.empty()) {
    return {};
  }
  if (watch.is_suspect && watch.row > 3) {
    return PlaceText(watch, watch.row, watch.column);
  }
  auto cell = FindRefusedCell(form.lstWeather, form.m_oStorage.m_colEventTasks);
  if (!cell) {
    cell = FindRefusedCell(form.lstWW, form.m_oStorage.m_colWindowTasks);
  }
  if (cell && cell->row < watch.taken_rows.size()) {
    return PlaceText(watch, watch.taken_rows[cell->row], cell->column);
  }
  return "sheet " + spreadsheet::Quoted(watch.sheet);
}

/// What is odd about a sheet's marker, as the end of a sentence that begins with the sheet; empty
/// if nothing is. The marker of windows is taken only as it stands; anything else means events.
std::string MarkerFault(const std::string& marker) {
  const std::string folded = platform::FoldCase(marker);
  if (folded == "weather-windows" || folded.find("window") == std::string::npos) {
    return {};
  }
  return "counts as one of event periods, since A3 holds " + spreadsheet::Quoted(marker) +
         " and not 'Weather-Windows'";
}

void WarnOfMarkers(const Options& options, const CellWatch& watch, Console& console) {
  for (const auto& [sheet, marker] : watch.markers) {
    if (const std::string fault = MarkerFault(marker); !fault.empty()) {
      console.err << fmt::format("nimbrel: warning: {}: sheet {} {}\n", options.file,
                                 spreadsheet::Quoted(sheet), fault);
    }
  }
}

/// An absolute path means no cancelled dialog, whatever the file is called.
std::string FullPath(const Options& options) {
  return std::filesystem::absolute(options.file).string();
}

[[noreturn]] void RaiseFailed(const Options& options, const std::string& text,
                              const std::string& place, const CellWatch& watch) {
  const std::string fault = watch.markers.empty() ? "" : MarkerFault(watch.markers.back().second);
  const std::string hint = fault.empty() ? "" : " (the sheet " + fault + ")";
  // Errors of the reader name file and place themselves.
  const std::string path = FullPath(options) + ":";
  if (text.starts_with(path)) {
    throw BadInput(options.file + ":" + text.substr(path.size()) + hint);
  }
  throw BadInput(options.file + ": " + (place.empty() ? "" : place + ": ") + text + hint);
}

void RequireReadable(const std::string& path) {
  std::error_code error;
  if (std::filesystem::is_fifo(path, error) || std::filesystem::is_socket(path, error)) {
    throw FileTrouble(path + ": cannot be read: it is a pipe, which would be waited for");
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  file.peek();
  if (!file && !file.eof()) {
    throw FileTrouble(path + ": cannot be read: " + std::strerror(errno == 0 ? EIO : errno));
  }
}

/// Raises CommandError where a sheet has taken over a calendar that the plan works on.
void RequireFreeNames(const Options& options, const engine::Plan& before,
                      const engine::Plan& after) {
  for (const engine::Task& task : after.tasks()) {
    const engine::CalendarDefinition* calendar =
        CarriesWeather(task) ? after.FindCalendar(task.calendar) : nullptr;
    const engine::CalendarDefinition* taken =
        calendar == nullptr ? nullptr : before.FindCalendar(calendar->name);
    const std::string work = taken == nullptr ? "" : WorkOn(before, taken->uid);
    if (!work.empty()) {
      throw BadInput(fmt::format(
          "{}: sheet {}: expected the name of a calendar for weather alone, found that of {}",
          options.file, spreadsheet::Quoted(calendar->name), work));
    }
  }
}

ExitCode Import(const Options& options, Console& console) {
  const PlanDocument document = OpenPlanToChange(options.plan);
  RequireReadable(options.file);
  CellWatch watch;
  NoViewer viewer;
  spreadsheet::ExcelServers servers(viewer);
  WatchedServers watched(servers, watch);
  std::unique_ptr<UnshownDialog> dialog;
  try {
    dialog = std::make_unique<UnshownDialog>(
        document.plan, watched, UnshownDialog::Answers{FullPath(options), options.replace},
        console);
  } catch (const platform::RuntimeError& error) {
    throw BadInput(options.plan + ": " + error.text());
  }
  try {
    dialog->Press(dialog->form().cmdImport);
  } catch (const platform::RuntimeError& error) {
    RaiseFailed(options, error.text(), FailedPlace(dialog->form(), watch), watch);
  }
  if (dialog->has_asked() && !options.replace) {
    throw BadInput(options.plan +
                   ": expected a plan without weather data, found some; --replace puts the "
                   "workbook's in their place");
  }
  if (watch.sheet.empty()) {  // no workbook is without a sheet
    throw FileTrouble(options.file + ": cannot be read");
  }
  RequireFreeNames(options, document.plan, dialog->document());
  WarnOfMarkers(options, watch, console);
  engine::Plan plan = dialog->document();
  NameWeatherStreams(plan, document.plan);
  console.out << WeatherSummary(options.plan, plan);
  FlushOutput(console);
  SaveChanges(plan, document);
  return ExitCode::kDone;
}

}  // namespace

void AddWeatherImportCommand(CLI::App& weather, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      weather.add_subcommand("import", "Put a workbook's weather into a plan that has none");
  command->add_option("PLAN", options->plan, "The .nplan to change")->required();
  command->add_option("FILE", options->file, "The workbook, .xlsx or .xls")->required();
  command->add_flag("--replace", options->replace,
                    "Let it take the place of weather data that the plan has");
  command->footer(
      "Each sheet becomes a calendar. Assignments of tasks to calendars are not in a workbook, "
      "and\n"
      "go with the calendars that are replaced.\n"
      "\n"
      "Examples:\n"
      "  nimbrel weather import bridge.nplan weather.xlsx\n"
      "  nimbrel weather import bridge.nplan weather.xls --replace");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Import(*options, console); };
  });
}

}  // namespace nimbrel::cli
