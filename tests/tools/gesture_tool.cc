#include "tests/tools/gesture_tool.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "engine/objects/host.h"
#include "nimbrel/command_error.h"
#include "nimbrel/input_text.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/wiring.h"
#include "platform/locale.h"
#include "spreadsheet/excel_application.h"
#include "spreadsheet/workbook_viewer.h"
#include "tests/support/gestures/gesture_script.h"
#include "tests/tools/faces.h"
#include "tests/tools/play.h"

namespace nimbrel::gestures {
namespace {

using cli::BadCommandLine;

struct Command {
  std::string face = Faces().front().name;
  const platform::Locale* locale = &platform::DefaultLocale();
  std::string plan;
  std::string script;
};

constexpr const char* kUsage = "expected [--face plain|qt|win32] [--locale NAME] PLAN.nplan SCRIPT";

const platform::Locale* LocaleOf(const std::string& name) {
  const platform::Locale* const locale = platform::FindLocale(name);
  if (locale == nullptr) {
    std::string known;
    for (const platform::Locale& one : platform::KnownLocales()) {
      known += (known.empty() ? "" : ", ") + one.name;
    }
    throw BadCommandLine("expected a locale, one of " + known + ", found " + name);
  }
  return locale;
}

Command ReadCommandLine(const std::vector<std::string>& arguments) {
  Command command;
  std::vector<std::string> files;
  for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
    const bool is_option = *argument == "--face" || *argument == "--locale";
    if (!is_option) {
      if (argument->starts_with("--")) {
        throw BadCommandLine(std::string(kUsage) + ", found " + *argument);
      }
      files.push_back(*argument);
      continue;
    }
    const std::string& option = *argument;
    if (++argument == arguments.end()) {
      throw BadCommandLine("expected a name behind " + option);
    }
    if (option == "--face") {
      command.face = *argument;
    } else {
      command.locale = LocaleOf(*argument);
    }
  }
  if (files.size() != 2) {
    throw BadCommandLine(kUsage);
  }
  command.plan = files[0];
  command.script = files[1];
  return command;
}

std::unique_ptr<Hands> MakeHands(const std::string& name) {
  const std::vector<Face>& faces = Faces();
  const auto face = std::find_if(faces.begin(), faces.end(),
                                 [&name](const Face& one) { return one.name == name; });
  if (face == faces.end()) {
    throw BadCommandLine("there is no face " + name);
  }
  if (face->make_hands == nullptr) {
    throw BadCommandLine("the face " + name + " is not built into this program");
  }
  return face->make_hands();
}

void Play(const Command& command, std::ostream& out) {
  const std::unique_ptr<Hands> hands = MakeHands(command.face);
  PlayOnPlan(command.plan, ParseScript(cli::ReadTextFile(command.script), command.script), *hands,
             *command.locale, out);
}

}  // namespace

void PlayOnPlan(const std::string& plan, std::vector<Gesture> script, Hands& hands,
                const platform::Locale& locale, std::ostream& out,
                const std::function<void(toolkit::Desktop&)>& open) {
  const auto host = engine::MakeHost(cli::OpenPlanToChange(plan).plan, cli::MakeHostOptions());
  spreadsheet::WorkbookSaver viewer(plan + ".shown.xlsx");
  spreadsheet::ExcelServers excel(viewer);
  PlayOnHost(*host, std::move(script), hands, locale, excel, out, open);
  cli::SaveDocument(host->document(), plan);
}

int RunGestureTool(const std::vector<std::string>& arguments, std::ostream& out,
                   std::ostream& err) {
  try {
    Play(ReadCommandLine(arguments), out);
    return static_cast<int>(cli::ExitCode::kDone);
  } catch (const cli::CommandError& error) {
    err << "nimbrel-gestures: " << error.what() << '\n';
    return static_cast<int>(error.code());
  } catch (const ScriptError& error) {
    err << "nimbrel-gestures: " << error.what() << '\n';
    return static_cast<int>(cli::ExitCode::kBadCommandLine);
  }
}

}  // namespace nimbrel::gestures
