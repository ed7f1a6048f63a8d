#pragma once

#include <cstdint>

#include "engine/plan/plan.h"
#include "engine/plan/sqlite_database.h"

namespace nimbrel::engine {

/// "NPLN": tells a plan file from other SQLite files.
inline constexpr std::int64_t kPlanApplicationId = 0x4E504C4E;
/// Of the tables below; kept as the file's user_version. Files of all versions from 1 on can be
/// read, and have the newest one once they are saved. Version 2 added whether dates that are held
/// hold early dates too, version 3 correlation.
inline constexpr std::int64_t kPlanSchemaVersion = 3;

/// Makes the tables of a plan file, in place of those that are there. Raises SqliteError.
void CreatePlanTables(SqliteDatabase& database);

/// Fills the empty tables. The plan must be sound (see FindFault). Raises SqliteError.
void WritePlanRows(const SqliteDatabase& database, const Plan& plan);

/// Reads a plan from the tables of a version, 1 to kPlanSchemaVersion; what a version does not have
/// is as in a new plan. The plan may not be sound yet. Raises SqliteError, and UnexpectedValue for
/// a row that no plan can take.
Plan ReadPlanRows(const SqliteDatabase& database, std::int64_t version);

}  // namespace nimbrel::engine
