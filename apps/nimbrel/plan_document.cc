#include "nimbrel/plan_document.h"

#include <fmt/format.h>

#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

#include "engine/formats/plan_reader.h"
#include "engine/plan/plan_store.h"
#include "nimbrel/command_error.h"

namespace nimbrel::cli {
namespace {

CommandError ToCommandError(const engine::PlanFileError& error) {
  return error.kind() == engine::PlanFileError::Kind::kContent ? BadInput(error.what())
                                                               : FileTrouble(error.what());
}

/// Reads one of this system's own plans.
PlanDocument Load(const std::string& path) {
  try {
    engine::StoredPlan stored = engine::LoadStoredPlan(path);
    return {.plan = std::move(stored.plan),
            .path = path,
            .is_own_format = true,
            .revision = stored.revision,
            .warnings = {}};
  } catch (const engine::PlanFileError& error) {
    throw ToCommandError(error);
  }
}

engine::ReadResult ReadForeign(const std::string& path, const engine::ReadOptions& options) {
  try {
    return engine::ReadPlanFile(path, options);
  } catch (const std::system_error& error) {
    throw FileTrouble(path + ": cannot be read: " + error.code().message());
  }
}

}  // namespace

PlanDocument OpenPlan(const std::string& path, const ReadingChoice& choice) {
  if (engine::IsPlanFile(path)) {
    if (!choice.project.empty() || !choice.time_unit.empty()) {
      throw BadCommandLine(
          "--project and --time-unit: expected an XER or MSPDI XML file, found \"" + path +
          "\", which is one plan already");
    }
    return Load(path);
  }
  PlanDocument document;
  document.path = path;
  engine::ReadResult result = ReadForeign(path, ToReadOptions(choice));
  document.plan = std::move(result.plan);
  for (const engine::ReadWarning& warning : result.warnings) {
    document.warnings.push_back(fmt::format("{} ({})", warning.text, warning.count));
  }
  return document;
}

PlanDocument OpenPlanToChange(const std::string& path) {
  if (!engine::IsPlanFile(path)) {
    // Where it cannot be read at all, that is what is to be said; what is in it does not matter.
    std::error_code error;
    if (!std::filesystem::exists(path, error)) {
      throw FileTrouble(path + ": cannot be read: " +
                        std::make_error_code(std::errc::no_such_file_or_directory).message());
    }
    throw BadInput(path +
                   ": expected a .nplan, which can be changed; make one with 'nimbrel import'");
  }
  return Load(path);
}

void ShowWarnings(const PlanDocument& document, Console& console) {
  for (const std::string& warning : document.warnings) {
    console.err << "nimbrel: warning: " << warning << '\n';
  }
}

void SaveDocument(const engine::Plan& plan, const std::string& path) {
  try {
    engine::SavePlan(plan, path);
  } catch (const engine::PlanFileError& error) {
    throw ToCommandError(error);
  }
}

void SaveChanges(const engine::Plan& plan, const PlanDocument& document) {
  try {
    engine::SaveChangedPlan(plan, document.path, document.revision);
  } catch (const engine::PlanFileError& error) {
    throw ToCommandError(error);
  }
}

}  // namespace nimbrel::cli
