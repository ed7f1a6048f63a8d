#include "desk/weather_desk.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

#include "engine/plan/plan_fault.h"
#include "engine/plan/plan_store.h"
#include "nimbrel/plan_document.h"
#include "nimbrel/wiring.h"
#include "platform/ref.h"
#include "platform/runtime_error.h"
#include "platform/text.h"

namespace nimbrel::desk {
namespace {

constexpr const char* kTitle = "Nimbrel";
constexpr const char* kExtension = ".nplan";

bool Exists(const std::string& path) {
  std::error_code error;
  return std::filesystem::exists(path, error);
}

}  // namespace

WeatherDesk::WeatherDesk(toolkit::Desktop& desktop, engine::HostOptions options,
                         std::function<void()> show_dialog, cli::Console& console)
    : desktop_(desktop),
      options_(std::move(options)),
      show_dialog_(std::move(show_dialog)),
      console_(console) {}

cli::ExitCode WeatherDesk::Run(const std::string& path) {
  const OpenedFile file(path);
  cli::PlanDocument document = cli::OpenPlanToChange(path);
  const engine::Plan before = document.plan;
  const platform::Ref<engine::Host> host = engine::MakeHost(std::move(document.plan), options_);
  const std::shared_ptr<void> joined = cli::JoinAddIn(*host);
  Outcome outcome = Outcome::kBackToDialog;
  while (outcome == Outcome::kBackToDialog) {
    ShowDialog(path);
    if (host->document() == before) {
      return cli::ExitCode::kDone;
    }
    outcome = Save(host->document(), file);
  }
  if (outcome == Outcome::kGivenUp) {
    console_.err << "nimbrel: " << path << ": the changes were given up\n";
    return cli::ExitCode::kFileTrouble;
  }
  return cli::ExitCode::kDone;
}

void WeatherDesk::ShowDialog(const std::string& path) {
  try {
    show_dialog_();
  } catch (const platform::RuntimeError& error) {
    // Whoever started this from a window sees no terminal.
    const std::string text = path + ": the weather dialog cannot be shown: " + error.text();
    Tell(text);
    throw cli::BadInput(text);
  }
}

WeatherDesk::Outcome WeatherDesk::Save(const engine::Plan& plan, const OpenedFile& file) {
  if (const std::optional<std::string> fault = engine::FindFault(plan)) {
    return Ask("The plan cannot be saved: " + *fault +
               "\n\nDo you want to go back and mend it? No gives all changes up.")
               ? Outcome::kBackToDialog
               : Outcome::kGivenUp;
  }
  std::string target = file.path();
  if (file.HasChanged() &&
      !Ask(file.path() +
           " has been changed by another program since it was opened.\n\nDo you want to overwrite "
           "it? No lets you save under another name.")) {
    target = PickName(file);
  }
  while (!target.empty()) {
    try {
      engine::SavePlan(plan, target);
      if (target != file.path()) {
        console_.out << "Saved as " << target << '\n';
      }
      return Outcome::kSaved;
    } catch (const engine::PlanFileError& error) {
      Tell(std::string("The plan cannot be saved.\n\n") + error.what() +
           "\n\nPlease choose another name.");
    }
    target = PickName(file);
  }
  return Outcome::kGivenUp;
}

std::string WeatherDesk::PickName(const OpenedFile& file) {
  const std::filesystem::path from(file.path());
  toolkit::FileRequest request;
  request.title = "Save the plan under another name";
  request.folder = from.parent_path().string();
  request.filter_name = "Plans (*.nplan)";
  request.pattern = "*.nplan";
  request.file_name = from.stem().string() + " (2)" + kExtension;
  request.save = true;
  while (true) {
    std::string path = desktop_.PickFile(request);
    if (path.empty()) {
      if (Ask("The changes to " + file.path() +
              " are not saved.\n\nDo you want to give them up?")) {
        return "";
      }
      continue;
    }
    const std::string extension = std::filesystem::path(path).extension().string();
    if (platform::EqualsIgnoreCase(extension, kExtension)) {
      return path;
    }
    // The file dialog has asked about the name that it saw, not about this one.
    path += kExtension;
    if (!Exists(path) || Ask(path + " is there already.\n\nDo you want to replace it?")) {
      return path;
    }
  }
}

bool WeatherDesk::Ask(const std::string& question) {
  return desktop_.MsgBox(question, kTitle, toolkit::Buttons::kYesNo) == toolkit::Answer::kYes;
}

void WeatherDesk::Tell(const std::string& text) {
  desktop_.MsgBox(text, kTitle);
}

}  // namespace nimbrel::desk
