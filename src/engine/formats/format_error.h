#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace nimbrel::engine {

/// A plan file cannot be taken as it is. what() is "FILE:ROW: what was expected, what was found".
class FormatError : public std::runtime_error {
 public:
  /// `row` is the line of the file, from 1.
  FormatError(std::string_view file, std::int64_t row, std::string_view message);

  const std::string& file() const noexcept { return file_; }
  std::int64_t row() const noexcept { return row_; }

 private:
  std::string file_;
  std::int64_t row_;
};

/// Text of a file as it can stand in a message of one line: in quotes, without control characters,
/// cut after 60 bytes (never within a UTF-8 character).
std::string Quoted(std::string_view text);

}  // namespace nimbrel::engine
