#include "engine/plan/sqlite_database.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <array>
#include <limits>
#include <utility>

namespace nimbrel::engine {
namespace {

constexpr int kPatienceMilliseconds = 2000;

[[noreturn]] void Raise(sqlite3* handle, int code) {
  throw SqliteError(code,
                    handle == nullptr ? sqlite3_errstr(code) : std::string(sqlite3_errmsg(handle)));
}

}  // namespace

bool SqliteError::IsFileTrouble() const noexcept {
  switch (code_ & 0xFF) {
    case SQLITE_PERM:
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_NOMEM:
    case SQLITE_READONLY:
    case SQLITE_IOERR:
    case SQLITE_FULL:
    case SQLITE_CANTOPEN:
    case SQLITE_PROTOCOL:
    case SQLITE_NOLFS:
    case SQLITE_AUTH:
      return true;
    default:
      return false;
  }
}

SqliteDatabase::SqliteDatabase(const std::string& path) {
  // Without SQLITE_OPEN_URI a name such as "file:x?mode=memory" is only a name.
  const int code = sqlite3_open_v2(path.c_str(), &handle_,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_PRIVATECACHE, nullptr);
  if (code != SQLITE_OK) {
    const SqliteError error(
        code, handle_ == nullptr ? sqlite3_errstr(code) : std::string(sqlite3_errmsg(handle_)));
    sqlite3_close(handle_);
    throw error;
  }
  sqlite3_extended_result_codes(handle_, 1);
  sqlite3_busy_timeout(handle_, kPatienceMilliseconds);
  // A file from elsewhere must not run code of its own through views or triggers.
  sqlite3_db_config(handle_, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
  sqlite3_db_config(handle_, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
  sqlite3_db_config(handle_, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
}

SqliteDatabase::~SqliteDatabase() {
  sqlite3_close(handle_);
}

void SqliteDatabase::Execute(const std::string& sql) {
  const int code = sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) {
    Raise(handle_, code);
  }
}

std::int64_t SqliteDatabase::Number(const std::string& sql) {
  SqliteStatement statement(*this, "", sql);
  return statement.Next() ? statement.Integer(0) : 0;
}

bool SqliteDatabase::IsWriteProtected() const {
  return sqlite3_db_readonly(handle_, "main") == 1;
}

std::uint32_t SqliteDatabase::ChangeCount() const {
  // By way of SQLite's own file: another one, when it is closed, would take SQLite's locks along.
  sqlite3_file* file = nullptr;
  int code = sqlite3_file_control(handle_, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  std::array<std::uint8_t, 4> bytes{};
  constexpr sqlite3_int64 kPlaceInHeader = 24;
  if (code == SQLITE_OK) {
    code =
        file->pMethods->xRead(file, bytes.data(), static_cast<int>(bytes.size()), kPlaceInHeader);
  }
  if (code != SQLITE_OK) {
    throw SqliteError(code, sqlite3_errstr(code));
  }
  std::uint32_t count = 0;
  for (const std::uint8_t byte : bytes) {  // the highest comes first
    count = count << 8 | byte;
  }
  return count;
}

SqliteStatement::SqliteStatement(const SqliteDatabase& database, std::string table,
                                 const std::string& sql)
    : database_(database.handle()), table_(std::move(table)) {
  const int code = sqlite3_prepare_v2(database_, sql.c_str(), static_cast<int>(sql.size() + 1),
                                      &handle_, nullptr);
  if (code != SQLITE_OK) {
    Raise(database_, code);
  }
}

SqliteStatement::~SqliteStatement() {
  sqlite3_finalize(handle_);
}

void SqliteStatement::Fail() const {
  Raise(database_, sqlite3_extended_errcode(database_));
}

void SqliteStatement::BindInteger(int parameter, std::int64_t value) {
  if (sqlite3_bind_int64(handle_, parameter + 1, value) != SQLITE_OK) {
    Fail();
  }
}

void SqliteStatement::BindReal(int parameter, double value) {
  if (sqlite3_bind_double(handle_, parameter + 1, value) != SQLITE_OK) {
    Fail();
  }
}

void SqliteStatement::BindText(int parameter, std::string_view value) {
  // A view without characters may have no address, which SQLite would take for NULL.
  const char* text = value.empty() ? "" : value.data();
  if (sqlite3_bind_text64(handle_, parameter + 1, text, value.size(), SQLITE_STATIC, SQLITE_UTF8) !=
      SQLITE_OK) {
    Fail();
  }
}

void SqliteStatement::Insert() {
  if (sqlite3_step(handle_) != SQLITE_DONE || sqlite3_reset(handle_) != SQLITE_OK) {
    Fail();
  }
  sqlite3_clear_bindings(handle_);
}

bool SqliteStatement::Next() {
  switch (sqlite3_step(handle_)) {
    case SQLITE_ROW:
      ++row_;
      return true;
    case SQLITE_DONE:
      return false;
    default:
      Fail();
  }
}

bool SqliteStatement::IsNull(int column) const {
  return sqlite3_column_type(handle_, column) == SQLITE_NULL;
}

bool SqliteStatement::HoldsInteger(int column) const {
  return sqlite3_column_type(handle_, column) == SQLITE_INTEGER;
}

bool SqliteStatement::HoldsReal(int column) const {
  return sqlite3_column_type(handle_, column) == SQLITE_FLOAT;
}

bool SqliteStatement::HoldsText(int column) const {
  return sqlite3_column_type(handle_, column) == SQLITE_TEXT;
}

std::int64_t SqliteStatement::Integer(int column) const {
  if (!HoldsInteger(column)) {
    Refuse(column, "a whole number");
  }
  return sqlite3_column_int64(handle_, column);
}

std::int32_t SqliteStatement::Integer32(int column) const {
  const std::int64_t value = Integer(column);
  if (value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max()) {
    Refuse(column, "a whole number of 32 bits");
  }
  return static_cast<std::int32_t>(value);
}

bool SqliteStatement::Boolean(int column) const {
  const std::int64_t value = Integer(column);
  if (value != 0 && value != 1) {
    Refuse(column, "0 or 1");
  }
  return value == 1;
}

double SqliteStatement::Real(int column) const {
  if (!HoldsReal(column)) {
    Refuse(column, "a real number");
  }
  return sqlite3_column_double(handle_, column);
}

std::string SqliteStatement::Text(int column) const {
  if (!HoldsText(column)) {
    Refuse(column, "a text");
  }
  const unsigned char* text = sqlite3_column_text(handle_, column);
  const int size = sqlite3_column_bytes(handle_, column);
  if (text == nullptr) {
    Fail();  // out of memory
  }
  return {reinterpret_cast<const char*>(text), static_cast<std::size_t>(size)};
}

void SqliteStatement::Refuse(int column, const std::string& expected) const {
  std::string found;
  switch (sqlite3_column_type(handle_, column)) {
    case SQLITE_NULL:
      found = "nothing";
      break;
    case SQLITE_INTEGER:
      found = std::to_string(sqlite3_column_int64(handle_, column));
      break;
    case SQLITE_FLOAT:
      found = fmt::format("{}", sqlite3_column_double(handle_, column));
      break;
    case SQLITE_TEXT:
      found = "\"" + Text(column).substr(0, 60) + "\"";
      break;
    default:
      found = "bytes";
  }
  throw UnexpectedValue(fmt::format("table {}, row {}, {}: expected {}, found {}", table_, row_,
                                    sqlite3_column_name(handle_, column), expected, found));
}

}  // namespace nimbrel::engine
