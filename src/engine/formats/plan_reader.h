#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/formats/format_error.h"
#include "engine/plan/plan.h"

namespace nimbrel::engine {

/// Something in a file that the plan cannot hold, or holds otherwise than the file says.
struct ReadWarning {
  std::string text;
  std::int64_t count = 0;  // how many times it is in the file, at least 1
  friend bool operator==(const ReadWarning&, const ReadWarning&) = default;
};

struct ReadOptions {
  /// Short name of the project to read, without regard to case. Needed for a file of several.
  std::optional<std::string> project;
  TimeUnit time_unit = TimeUnit::kDays;  // of the plan that is made
};

struct ReadResult {
  Plan plan;
  std::vector<ReadWarning> warnings;  // in the order in which they first came up
};

/// Reads a plan file, choosing the reader by what is in it: XER or MSPDI XML. Raises FormatError,
/// which names the file by its last part, and std::system_error if the file cannot be read.
ReadResult ReadPlanFile(const std::filesystem::path& path, const ReadOptions& options);

/// Reads the bytes of an XER file. `name` stands in errors. Raises FormatError.
///
/// The plan's tasks have the activities' codes as IDs; the nodes of the breakdown structure become
/// summaries whose IDs are the path of their codes, joined by points. Dates before 1950 and after
/// 2150, durations below 0 and above 200 years are errors.
ReadResult ReadXer(std::string_view bytes, const std::string& name, const ReadOptions& options);

/// Reads the bytes of an MSPDI file. `name` stands in errors. Raises FormatError.
///
/// The plan's tasks have the file's ID numbers as IDs if each is there and unique, else the UIDs.
/// Manually scheduled tasks are held by a mandatory start, inactive ones are left out. Elapsed
/// durations run on a calendar "24 Hours".
ReadResult ReadMspdi(std::string_view bytes, const std::string& name, const ReadOptions& options);

/// Short names of the projects that can be read from the file, in its order. Raises as ReadPlanFile
/// does.
std::vector<std::string> ListProjects(const std::filesystem::path& path);

}  // namespace nimbrel::engine
