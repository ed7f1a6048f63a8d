// nimbrel weather export

#include <fmt/format.h>

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "nimbrel/command_error.h"
#include "nimbrel/command_line.h"
#include "nimbrel/interrupt.h"
#include "nimbrel/output_file.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/weather_workbook.h"
#include "nimbrel/weather_workbook_commands.h"
#include "platform/message_box.h"
#include "platform/posix/detached_process_start.h"
#include "platform/runtime_error.h"
#include "platform/text.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_viewer.h"
#include "spreadsheet/xlsx_writer.h"

namespace nimbrel::cli {
namespace {

struct Options {
  std::string plan;
  std::string output;
  bool open = false;
};

/// Message boxes as warnings.
class WarningBox final : public platform::MessageBox {
 public:
  explicit WarningBox(Console& console) : console_(console) {}
  void Show(const std::string& text, const std::string& /*title*/) override {
    std::string line;
    for (const char c : text) {
      line += c == '\n' ? ' ' : c;
    }
    std::erase(line, '\r');
    console_.err << "nimbrel: warning: " << line << '\n';
  }

 private:
  Console& console_;
};

/// Writes what the export makes visible to a file, and shows it if that is wanted. Raises
/// CommandError; an interrupt ends it without a trace.
class FileViewer final : public spreadsheet::WorkbookViewer {
 public:
  FileViewer(const Options& options, const InterruptWatch& interrupt, Console& console)
      : options_(options), interrupt_(interrupt), warnings_(console) {}

  void Show(const spreadsheet::Workbook& workbook, const std::string& /*path*/) override {
    // An absolute path is no option to any program.
    const std::string path = std::filesystem::absolute(options_.output).string();
    try {
      spreadsheet::WorkbookSaver(path, [this] { return interrupt_.Raised(); }).Show(workbook, {});
    } catch (const platform::RuntimeError& error) {
      if (error.number() == spreadsheet::kStoppedByUser) {
        throw CommandError(ExitCode::kStopped, options_.output + ": stopped, and not written");
      }
      throw FileTrouble(NamedAsGiven(error.text(), path));
    }
    sheets_ = workbook.sheets().size();
    if (options_.open) {
      spreadsheet::DesktopViewer(Start, warnings_).Show(workbook, path);
    }
  }
  std::size_t sheets() const { return sheets_; }

 private:
  /// The writer's message, with the file as the user has named it.
  std::string NamedAsGiven(const std::string& text, const std::string& path) const {
    return text.starts_with(path + ":") ? options_.output + text.substr(path.size()) : text;
  }
  static bool Start(const std::vector<std::string>& command) {
    constexpr std::int32_t kLastFailure = 32;
    return platform::StartDetached(command) > kLastFailure;
  }

  const Options& options_;
  const InterruptWatch& interrupt_;
  WarningBox warnings_;
  std::size_t sheets_ = 0;
};

void RequireWorkbookName(const std::string& path) {
  const std::string extension = std::filesystem::path(path).extension().string();
  if (!platform::EqualsIgnoreCase(extension, ".xlsx")) {
    throw BadCommandLine(
        fmt::format("-o: expected a file name that ends in .xlsx, found \"{}\"", path));
  }
}

ExitCode Export(const Options& options, Console& console) {
  RequireWorkbookName(options.output);
  RequireOtherFile("-o", options.output, options.plan);
  const PlanDocument document = OpenPlan(options.plan, {});
  // The dialog itself takes no notice; the file is where it matters.
  const InterruptWatch interrupt({SIGINT, SIGTERM, SIGHUP});
  FileViewer viewer(options, interrupt, console);
  spreadsheet::ExcelServers servers(viewer);
  try {
    UnshownDialog dialog(document.plan, servers, {}, console);
    dialog.Press(dialog.form().cmdExport);
    if (!dialog.messages().empty()) {
      throw BadInput(options.plan + ": " + dialog.messages().front());
    }
  } catch (const platform::RuntimeError& error) {
    throw BadInput(options.plan + ": " + error.text());
  }
  ShowWarnings(document, console);
  console.out << fmt::format(
      "{}: {}\n", options.output,
      Counted(static_cast<std::int64_t>(viewer.sheets()), "weather calendar", "weather calendars"));
  return ExitCode::kDone;
}

}  // namespace

void AddWeatherExportCommand(CLI::App& weather, Console& console, Action& action) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      weather.add_subcommand("export", "Write the weather of a plan into a workbook");
  command->add_option("PLAN", options->plan, "The plan")->required();
  command->add_option("-o,--output", options->output, "The workbook to write, an .xlsx file")
      ->type_name("FILE.xlsx")
      ->required();
  command->add_flag("--open", options->open, "Open the workbook when it is written");
  command->footer(
      "Each calendar becomes a sheet with a row for each period or window. Which tasks feel the\n"
      "calendars is not written.\n"
      "\n"
      "Examples:\n"
      "  nimbrel weather export bridge.nplan -o weather.xlsx\n"
      "  nimbrel weather export bridge.nplan -o weather.xlsx --open");
  command->callback([options, &console, &action] {
    action = [options, &console] { return Export(*options, console); };
  });
}

}  // namespace nimbrel::cli
