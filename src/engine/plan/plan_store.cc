#include "engine/plan/plan_store.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

#include "engine/plan/plan_fault.h"
#include "engine/plan/plan_rows.h"
#include "engine/plan/sqlite_database.h"

namespace nimbrel::engine {
namespace {

namespace fs = std::filesystem;

/// How SQLite files begin, with the zero byte.
constexpr std::string_view kSqliteHeader("SQLite format 3\0", 16);

PlanFileError FileTrouble(const std::string& path, const std::string& message) {
  return {PlanFileError::Kind::kFile, path + ": " + message};
}

PlanFileError BadContent(const std::string& path, const std::string& message) {
  return {PlanFileError::Kind::kContent, path + ": " + message};
}

/// The error that tells what SQLite has said. `purpose` is "read" or "written".
PlanFileError Explain(const SqliteError& error, const std::string& path,
                      const std::string& purpose) {
  switch (error.code() & 0xFF) {
    case SQLITE_NOTADB:
      return BadContent(path, "expected a plan file, found something else");
    case SQLITE_CORRUPT:
      return BadContent(
          path, fmt::format("expected a plan file, found a damaged one ({})", error.what()));
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return FileTrouble(path, fmt::format("cannot be {}: expected it to be free, found it locked "
                                           "by another program",
                                           purpose));
    case SQLITE_READONLY:
      return FileTrouble(path, fmt::format("cannot be {}: expected leave to write to it, found it "
                                           "write-protected",
                                           purpose));
    default:
      break;
  }
  return error.IsFileTrouble()
             ? FileTrouble(path, fmt::format("cannot be {}: {}", purpose, error.what()))
             : BadContent(path, fmt::format("expected the tables of a plan file, found: {}",
                                            error.what()));
}

/// The version of the open file. Raises PlanFileError unless it is a plan file that this program
/// knows.
std::int64_t RequirePlanFile(SqliteDatabase& database, const std::string& path) {
  const std::int64_t application = database.Number("PRAGMA application_id");
  if (application != kPlanApplicationId) {
    throw BadContent(path, fmt::format("expected a plan file (application id {}), found an SQLite "
                                       "file of another kind ({})",
                                       kPlanApplicationId, application));
  }
  const std::int64_t version = database.Number("PRAGMA user_version");
  if (version < 1 || version > kPlanSchemaVersion) {
    throw BadContent(
        path, fmt::format("expected a plan file of version 1 to {}, found version {}{}",
                          kPlanSchemaVersion, version,
                          version > kPlanSchemaVersion ? "; a newer program has written it" : ""));
  }
  return version;
}

void RequireRegularFile(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) {
    throw FileTrouble(path,
                      "cannot be read: " + (error ? error.message() : std::string("No such file")));
  }
  if (!fs::is_regular_file(status)) {
    throw FileTrouble(path, "cannot be read: expected a file, found a folder or a device");
  }
}

/// The whole plan in one transaction.
void Store(SqliteDatabase& database, const Plan& plan) {
  CreatePlanTables(database);
  WritePlanRows(database, plan);
  database.Execute("COMMIT");
}

/// The file at a path: its device and its number there.
std::pair<std::uint64_t, std::uint64_t> IdentityOf(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) {
    throw FileTrouble(path, std::string("cannot be read: ") + std::strerror(errno));
  }
  return {status.st_dev, status.st_ino};
}

/// Which state of the file a transaction on it sees.
PlanRevision RevisionOf(const SqliteDatabase& database, const std::string& path) {
  const auto [device, file] = IdentityOf(path);
  return {device, file, database.ChangeCount()};
}

void SaveOver(const Plan& plan, const std::string& path, const PlanRevision* expected) {
  try {
    SqliteDatabase database(path);
    if (database.IsWriteProtected()) {
      throw SqliteError(SQLITE_READONLY, "");
    }
    RequirePlanFile(database, path);
    database.Execute(
        "PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL; "
        "PRAGMA foreign_keys = ON; BEGIN IMMEDIATE");
    RequirePlanFile(database, path);  // nobody else can change it any more
    if (expected != nullptr && RevisionOf(database, path) != *expected) {
      throw FileTrouble(path,
                        "was changed by another program after it was read; its changes stand, and "
                        "nothing was saved: please repeat the command");
    }
    Store(database, plan);
  } catch (const SqliteError& error) {
    throw Explain(error, path, "written");
  }
}

/// A file beside `path` that takes its place in the end, or goes.
class NewFile {
 public:
  explicit NewFile(const std::string& path) : path_(path) {
    const fs::path target(path);
    for (int number = 0;; ++number) {
      temporary_ = (target.parent_path() /
                    fmt::format(".{}.{}-{}.tmp", target.filename().string(), ::getpid(), number))
                       .string();
      const int file = ::open(temporary_.c_str(), O_CREAT | O_EXCL | O_CLOEXEC | O_WRONLY, 0666);
      if (file >= 0) {
        ::close(file);
        return;
      }
      if (errno != EEXIST) {
        throw FileTrouble(path, std::string("cannot be written: ") + std::strerror(errno));
      }
    }
  }
  ~NewFile() {
    if (!in_place_) {
      RemoveCompanions(temporary_);
      ::unlink(temporary_.c_str());
    }
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  const std::string& temporary() const { return temporary_; }

  void PutInPlace() {
    // A journal left by a file of this name that is gone would be played into the new one.
    RemoveCompanions(path_);
    if (::rename(temporary_.c_str(), path_.c_str()) != 0) {
      throw FileTrouble(path_, std::string("cannot be written: ") + std::strerror(errno));
    }
    in_place_ = true;
    SynchroniseFolder();
  }

 private:
  static void RemoveCompanions(const std::string& path) {
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
      ::unlink((path + suffix).c_str());
    }
  }

  /// Makes the new name last. Some file systems cannot; the file is whole all the same.
  void SynchroniseFolder() const {
    const fs::path folder = fs::path(path_).parent_path();
    const int file = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
    if (file >= 0) {
      ::fsync(file);
      ::close(file);
    }
  }

  std::string path_;
  std::string temporary_;
  bool in_place_ = false;
};

void SaveNew(const Plan& plan, const std::string& path) {
  NewFile file(path);
  try {
    SqliteDatabase database(file.temporary());
    database.Execute(
        "PRAGMA journal_mode = DELETE; PRAGMA synchronous = FULL; "
        "PRAGMA foreign_keys = ON; BEGIN IMMEDIATE");
    Store(database, plan);
  } catch (const SqliteError& error) {
    throw Explain(error, path, "written");
  }
  file.PutInPlace();
}

void Save(const Plan& plan, const std::string& path, const PlanRevision* expected) {
  if (const std::optional<std::string> fault = FindFault(plan)) {
    throw BadContent(path, "the plan cannot be saved: " + *fault);
  }
  std::error_code error;
  // A link is followed, so that it goes on pointing at the file.
  const fs::path resolved = fs::canonical(path, error);
  const std::string target = error ? path : resolved.string();
  const bool is_there = fs::exists(target, error);
  if (is_there && !fs::is_regular_file(target, error)) {
    throw FileTrouble(path, "cannot be written: expected a file, found a folder or a device");
  }
  if (is_there && fs::file_size(target, error) > 0) {
    SaveOver(plan, target, expected);
  } else {
    SaveNew(plan, target);
  }
}

}  // namespace

bool IsPlanFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string header(kSqliteHeader.size(), ' ');
  file.read(header.data(), static_cast<std::streamsize>(header.size()));
  return file && header == kSqliteHeader;
}

Plan LoadPlan(const std::string& path) {
  return LoadStoredPlan(path).plan;
}

StoredPlan LoadStoredPlan(const std::string& path) {
  RequireRegularFile(path);
  StoredPlan stored;
  try {
    const auto before = IdentityOf(path);
    SqliteDatabase database(path);
    database.Execute("BEGIN");  // all tables as they are at one moment
    stored.plan = ReadPlanRows(database, RequirePlanFile(database, path));
    stored.revision = RevisionOf(database, path);
    if (std::pair(stored.revision.device, stored.revision.file) != before) {
      throw FileTrouble(path, "cannot be read: another program has just replaced it; try again");
    }
  } catch (const SqliteError& error) {
    throw Explain(error, path, "read");
  } catch (const UnexpectedValue& error) {
    throw BadContent(path, error.what());
  }
  if (const std::optional<std::string> fault = FindFault(stored.plan)) {
    throw BadContent(path, *fault);
  }
  return stored;
}

void SavePlan(const Plan& plan, const std::string& path) {
  Save(plan, path, nullptr);
}

void SaveChangedPlan(const Plan& plan, const std::string& path, const PlanRevision& revision) {
  Save(plan, path, &revision);
}

}  // namespace nimbrel::engine
