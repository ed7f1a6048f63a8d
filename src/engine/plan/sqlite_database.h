#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace nimbrel::engine {

/// What SQLite says when it cannot do something.
class SqliteError : public std::runtime_error {
 public:
  /// `code` is SQLite's extended result code.
  SqliteError(int code, const std::string& text) : std::runtime_error(text), code_(code) {}

  int code() const noexcept { return code_; }
  /// Whether the trouble lies with the file system or another program, not with what is in the
  /// file.
  bool IsFileTrouble() const noexcept;

 private:
  int code_;
};

/// A value that stands in a file where another kind of value or another range was expected. what()
/// tells table, row, column, what was expected and what was found.
class UnexpectedValue : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A connection to one database file. Everything raises SqliteError.
class SqliteDatabase {
 public:
  /// Opens a file that exists, also one that is write-protected. Another program that holds the
  /// file is waited for, up to two seconds a statement.
  explicit SqliteDatabase(const std::string& path);
  /// Rolls back what was not committed.
  ~SqliteDatabase();
  SqliteDatabase(const SqliteDatabase&) = delete;
  SqliteDatabase& operator=(const SqliteDatabase&) = delete;

  /// Runs statements without results.
  void Execute(const std::string& sql);
  /// Runs a statement that gives one number, such as a pragma.
  std::int64_t Number(const std::string& sql);
  bool IsWriteProtected() const;
  /// How often the file has been changed, as the file itself counts it. Within a transaction this
  /// belongs to what the transaction sees.
  std::uint32_t ChangeCount() const;
  sqlite3* handle() const { return handle_; }

 private:
  sqlite3* handle_ = nullptr;
};

/// One prepared statement, for many rows. All parameters and columns count from 0.
class SqliteStatement {
 public:
  /// The database must outlive the statement. `table` names the rows in UnexpectedValue.
  SqliteStatement(const SqliteDatabase& database, std::string table, const std::string& sql);
  ~SqliteStatement();
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  // Parameters. What is not bound since the last Insert is NULL.

  void BindInteger(int parameter, std::int64_t value);
  void BindReal(int parameter, double value);
  /// The text must stay as it is until Insert.
  void BindText(int parameter, std::string_view value);
  /// Runs the statement once, and makes it ready for the next row.
  void Insert();

  // Rows. Those that read raise UnexpectedValue where the column holds something else.

  /// Goes to the next row; false behind the last one.
  bool Next();
  bool IsNull(int column) const;
  std::int64_t Integer(int column) const;
  /// A whole number that fits in 32 bits.
  std::int32_t Integer32(int column) const;
  bool Boolean(int column) const;
  double Real(int column) const;
  std::string Text(int column) const;
  /// Whether the column holds a value of SQLite's type.
  bool HoldsInteger(int column) const;
  bool HoldsReal(int column) const;
  bool HoldsText(int column) const;
  /// Raises UnexpectedValue for this row: the column holds what was not expected.
  [[noreturn]] void Refuse(int column, const std::string& expected) const;

 private:
  [[noreturn]] void Fail() const;

  sqlite3* database_;
  sqlite3_stmt* handle_ = nullptr;
  std::string table_;
  std::int64_t row_ = 0;  // rows read so far
};

}  // namespace nimbrel::engine
