#pragma once

#include <cstdint>

#include "engine/plan/plan.h"
#include "engine/plan/sqlite_database.h"

namespace nimbrel::engine {

/// "NPLN": tells a plan file from other SQLite files.
inline constexpr std::int64_t kPlanApplicationId = 0x4E504C4E;
/// Of the tables below; kept as the file's user_version.
inline constexpr std::int64_t kPlanSchemaVersion = 2;

/// Makes the tables of a plan file, in place of those that are there. Raises SqliteError.
void CreatePlanTables(SqliteDatabase& database);

/// Fills the empty tables. The plan must be sound (see FindFault). Raises SqliteError.
void WritePlanRows(const SqliteDatabase& database, const Plan& plan);

/// Reads a plan from the tables. It may not be sound yet. Raises SqliteError, and UnexpectedValue
/// for a row that no plan can take.
Plan ReadPlanRows(const SqliteDatabase& database);

}  // namespace nimbrel::engine
