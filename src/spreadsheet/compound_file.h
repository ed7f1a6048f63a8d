#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/read_error.h"

namespace nimbrel::spreadsheet {

/// The file system inside an OLE 2 compound file, as far as a reader of .xls needs it: the streams
/// of the root storage. Raises error 1004 for what is damaged or has more than kMaxParts entries;
/// of a chain of sectors no more is joined than is needed.
class CompoundFile {
 public:
  /// `bytes` must live as long as this; `file` names them in messages.
  CompoundFile(std::string_view bytes, const std::string& file);

  /// The bytes of a stream of the root storage, by its name without regard to case. Nothing if
  /// there is none.
  std::optional<std::string> Stream(std::string_view name) const;

 private:
  struct Entry {
    std::string name;  // folded
    bool is_stream = false;
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t child = 0;
    std::uint32_t start = 0;
    std::uint64_t size = 0;
  };

  [[noreturn]] void RaiseDamaged(const std::string& what) const;
  std::string_view Sector(std::uint32_t sector) const;
  void ReadTable(std::string_view header);
  void AddTableSector(std::uint32_t sector);
  void ReadDirectory(std::uint32_t start);
  /// Joins a chain of sectors to its end, or until it has at least `enough` bytes.
  std::string Chain(std::uint32_t start, std::size_t enough) const;
  std::string SmallStream(const Entry& entry) const;

  ReadPlace place_;
  std::string_view bytes_;
  std::size_t sector_size_ = 512;
  std::uint32_t small_limit_ = 4096;  // streams below this are in the small stream
  std::vector<std::uint32_t> next_;   // the sector behind each sector
  std::uint32_t small_table_ = 0;     // where the same of the small stream begins
  std::vector<Entry> entries_;
};

}  // namespace nimbrel::spreadsheet
