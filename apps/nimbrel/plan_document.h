#pragma once

#include <string>
#include <vector>

#include "engine/plan/plan.h"
#include "engine/plan/plan_store.h"
#include "nimbrel/command_line.h"
#include "nimbrel/console.h"

namespace nimbrel::cli {

/// A plan, where it came from, and what its file held that it cannot hold.
struct PlanDocument {
  engine::Plan plan;
  std::string path;                   // as given on the command line
  bool is_own_format = false;         // a .nplan, which can be saved
  engine::PlanRevision revision;      // of a .nplan: the state of the file that was read
  std::vector<std::string> warnings;  // with counts, in the order of the file
};

/// Reads a plan, choosing the reader by what is in the file and not by its name. Raises
/// CommandError, which names the file, and engine::FormatError, which names file and row.
PlanDocument OpenPlan(const std::string& path, const ReadingChoice& choice);

/// Reads a plan that is to be changed. Raises CommandError also where it is no .nplan.
PlanDocument OpenPlanToChange(const std::string& path);

/// Puts the document's warnings on standard error, a line each: for commands whose output is data.
void ShowWarnings(const PlanDocument& document, Console& console);

/// Saves a plan that was read from the document's own file, a .nplan, and changed, in one step.
/// Raises CommandError, also where the file was written in the meantime; it is then as it was.
void SaveChanges(const engine::Plan& plan, const PlanDocument& document);

/// Saves the plan in one step. Raises CommandError; the file is then as it was.
void SaveDocument(const engine::Plan& plan, const std::string& path);

}  // namespace nimbrel::cli
