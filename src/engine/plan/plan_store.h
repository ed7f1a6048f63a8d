#pragma once

#include <cstdint>
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

/// A state of a plan file: two are equal if nothing was written in between.
struct PlanRevision {
  std::uint64_t device = 0;
  std::uint64_t file = 0;          // its number on the device: another one took its place
  std::uint32_t change_count = 0;  // by the file's own count
  friend bool operator==(const PlanRevision&, const PlanRevision&) = default;
};

struct StoredPlan {
  Plan plan;
  PlanRevision revision;
};

/// LoadPlan, and which state of the file it was.
StoredPlan LoadStoredPlan(const std::string& path);

/// SavePlan for a plan that was read from the file in that state and then changed. Raises
/// PlanFileError (kFile) where the file has been written since: what others changed there would be
/// lost. A file that is gone is made anew.
void SaveChangedPlan(const Plan& plan, const std::string& path, const PlanRevision& revision);

/// Saves a plan in one transaction: whatever happens in the middle of it, the file holds either
/// what it held before or the new plan in full, and a new file is there in full or not at all.
/// Raises PlanFileError, and then leaves everything as it was; also where there is a file already
/// that is not empty and no plan file.
void SavePlan(const Plan& plan, const std::string& path);

}  // namespace nimbrel::engine
