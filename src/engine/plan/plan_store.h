#pragma once

#include <stdexcept>
#include <string>

#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// A plan file cannot be read or written. what() is "FILE: what was expected, what was found".
class PlanFileError : public std::runtime_error {
 public:
  enum class Kind {
    kFile,     // the file system, or another program that holds the file
    kContent,  // what is in the file, or in the plan to be saved
  };

  PlanFileError(Kind kind, const std::string& message) : std::runtime_error(message), kind_(kind) {}

  Kind kind() const noexcept { return kind_; }

 private:
  Kind kind_;
};

/// Whether a file begins as SQLite files do, and so is one for LoadPlan to take or refuse. False
/// for a file that cannot be read.
bool IsPlanFile(const std::string& path);

/// Reads a plan file. If a save was cut off, what was saved before it is read. The plan equals the
/// one that was saved, and is sound (see FindFault). Raises PlanFileError.
Plan LoadPlan(const std::string& path);

/// Saves a plan in one transaction: whatever happens in the middle of it, the file holds either
/// what it held before or the new plan in full, and a new file is there in full or not at all.
/// Raises PlanFileError, and then leaves everything as it was; also where there is a file already
/// that is not empty and no plan file.
void SavePlan(const Plan& plan, const std::string& path);

}  // namespace nimbrel::engine
