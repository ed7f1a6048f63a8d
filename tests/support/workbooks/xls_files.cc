#include "tests/support/workbooks/xls_files.h"

#include <algorithm>
#include <bit>
#include <stdexcept>

namespace nimbrel::spreadsheet {
namespace {

constexpr std::size_t kHeader = 512;
constexpr std::size_t kTablesInHeader = 109;
constexpr std::size_t kSmallSector = 64;
constexpr std::size_t kSmallLimit = 4096;
constexpr std::uint32_t kEndOfChain = 0xFFFFFFFE;
constexpr std::uint32_t kTableSector = 0xFFFFFFFD;
constexpr std::uint32_t kFree = 0xFFFFFFFF;

void Pad(std::string& bytes, std::size_t size) {
  bytes.resize((bytes.size() + size - 1) / size * size);
}

/// Sectors with the table of what follows each of them.
struct Sectors {
  std::size_t size;
  std::string bytes;
  std::vector<std::uint32_t> table;

  /// Appends a chain; its first sector.
  std::uint32_t Append(std::string data) {
    if (data.empty()) {
      return kEndOfChain;
    }
    Pad(data, size);
    const auto first = static_cast<std::uint32_t>(table.size());
    const auto count = static_cast<std::uint32_t>(data.size() / size);
    for (std::uint32_t i = 1; i <= count; ++i) {
      table.push_back(i == count ? kEndOfChain : first + i);
    }
    bytes += data;
    return first;
  }
};

std::string DirectoryEntry(std::string_view name, char kind, std::uint32_t right,
                           std::uint32_t child, std::uint32_t start, std::size_t size) {
  std::string entry = Wide(name) + std::string(2, '\0');
  const auto length = static_cast<unsigned>(entry.size());
  entry.resize(64);
  entry += Bytes16(length) + kind + '\1' + Bytes32(kFree) + Bytes32(right) + Bytes32(child);
  entry.resize(116);
  return entry + Bytes32(start) + Bytes32(static_cast<std::uint32_t>(size)) + Bytes32(0);
}

std::string TableBytes(const std::vector<std::uint32_t>& table) {
  std::string bytes;
  for (const std::uint32_t next : table) {
    bytes += Bytes32(next);
  }
  return bytes;
}

}  // namespace

std::string Bytes16(unsigned value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}

std::string Bytes32(std::uint32_t value) {
  return Bytes16(value & 0xFFFF) + Bytes16(value >> 16);
}

std::string BytesOf(double value) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  return Bytes32(static_cast<std::uint32_t>(bits)) +
         Bytes32(static_cast<std::uint32_t>(bits >> 32));
}

std::string Wide(std::string_view text) {
  std::string wide;
  for (const char c : text) {
    wide += c;
    wide += '\0';
  }
  return wide;
}

std::string Narrow8(std::string_view text) {
  return '\0' + std::string(text);
}

BiffMaker& BiffMaker::Begin(unsigned kind) {
  return Add(0x0809, Bytes16(version_) + Bytes16(kind) + std::string(4, '\0'));
}

BiffMaker& BiffMaker::Add(unsigned type, std::string_view data) {
  bytes_ += Bytes16(type) + Bytes16(static_cast<unsigned>(data.size()));
  bytes_ += data;
  return *this;
}

std::string StyleRecord(unsigned format) {
  return BiffMaker().Add(0x00E0, Bytes16(0) + Bytes16(format) + std::string(16, '\0')).bytes();
}

std::string XlsFile::Stream() const {
  const auto make_globals = [&](const std::vector<std::size_t>& offsets) {
    BiffMaker list;
    for (std::size_t i = 0; i < sheets.size(); ++i) {
      const std::string name = "Sheet" + std::to_string(i + 1);
      const std::string text = version == 0x0600 ? Narrow8(name) : name;
      list.Add(0x0085, Bytes32(static_cast<std::uint32_t>(offsets[i])) + std::string(2, '\0') +
                           static_cast<char>(name.size()) + text);
    }
    return BiffMaker(version).Begin(5).bytes() + globals + list.bytes() + BiffMaker().End().bytes();
  };
  // The places of the sheets do not change the length of what stands in front of them.
  std::vector<std::size_t> offsets(sheets.size());
  std::size_t offset = make_globals(offsets).size();
  std::string parts;
  for (std::size_t i = 0; i < sheets.size(); ++i) {
    offsets[i] = offset + parts.size();
    parts += BiffMaker(version).Begin(16).bytes() + sheets[i] + BiffMaker().End().bytes();
  }
  return make_globals(offsets) + parts;
}

std::string XlsFile::Bytes() const {
  const std::string stream = Stream();
  constexpr std::size_t kLarge = std::size_t{4} << 20;
  return MakeCompoundFile({{version == 0x0600 ? "Workbook" : "Book", stream}},
                          stream.size() < kLarge ? kUsualSectors : kLargeSectors);
}

std::string MakeCompoundFile(const std::vector<std::pair<std::string, std::string>>& streams,
                             unsigned sector_shift) {
  const std::size_t sector_size = std::size_t{1} << sector_shift;
  Sectors sectors{sector_size, {}, {}};
  Sectors small{kSmallSector, {}, {}};
  std::string directory;
  for (std::size_t i = 0; i < streams.size(); ++i) {
    const auto& [name, data] = streams[i];
    const std::uint32_t start =
        data.size() < kSmallLimit ? small.Append(data) : sectors.Append(data);
    // The entries hang one below the other.
    const auto right = i + 1 < streams.size() ? static_cast<std::uint32_t>(i + 2) : kFree;
    directory += DirectoryEntry(name, 2, right, kFree, start, data.size());
  }
  const std::uint32_t small_start = sectors.Append(small.bytes);
  const std::uint32_t small_table = sectors.Append(TableBytes(small.table));
  directory =
      DirectoryEntry("Root Entry", 5, kFree, 1, small_start, small.bytes.size()) + directory;
  const std::uint32_t directory_start = sectors.Append(directory);

  // The table has a place for each sector, its own included.
  const std::size_t per_sector = sector_size / 4;
  std::size_t table_sectors = 1;
  while (table_sectors * per_sector < sectors.table.size() + table_sectors) {
    ++table_sectors;
  }
  const auto first_table = static_cast<std::uint32_t>(sectors.table.size());
  sectors.table.resize(first_table + table_sectors, kTableSector);
  sectors.table.resize(table_sectors * per_sector, kFree);
  sectors.bytes += TableBytes(sectors.table);

  std::string header = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
  header.resize(24);
  header += Bytes16(0x3E) + Bytes16(3) + Bytes16(0xFFFE) + Bytes16(sector_shift) + Bytes16(6);
  header.resize(44);
  header += Bytes32(static_cast<std::uint32_t>(table_sectors)) + Bytes32(directory_start) +
            Bytes32(0) + Bytes32(kSmallLimit) + Bytes32(small_table) + Bytes32(1) +
            Bytes32(kEndOfChain) + Bytes32(0);
  if (table_sectors > kTablesInHeader) {
    throw std::logic_error("the test's streams need larger sectors");
  }
  for (std::size_t i = 0; i < kTablesInHeader; ++i) {
    header += Bytes32(i < table_sectors ? first_table + static_cast<std::uint32_t>(i) : kFree);
  }
  Pad(header, std::max(sector_size, kHeader));
  return header + sectors.bytes;
}

}  // namespace nimbrel::spreadsheet
