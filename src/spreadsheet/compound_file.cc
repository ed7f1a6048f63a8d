#include "spreadsheet/compound_file.h"

#include <algorithm>

#include "platform/text.h"
#include "spreadsheet/limits.h"
#include "spreadsheet/little_endian.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

constexpr std::size_t kHeaderSize = 512;
constexpr std::uint32_t kMaxRegularSector = 0xFFFFFFFA;  // ends, gaps and the like are above
constexpr std::uint32_t kNoEntry = 0xFFFFFFFF;
constexpr std::size_t kEntrySize = 128;
constexpr std::size_t kSmallSectorSize = 64;

// Places in the header.
constexpr std::size_t kSectorShift = 30;
constexpr std::size_t kSmallSectorShift = 32;
constexpr std::size_t kDirectoryStart = 48;
constexpr std::size_t kSmallLimit = 56;
constexpr std::size_t kSmallTableStart = 60;
constexpr std::size_t kMasterStart = 68;
constexpr std::size_t kMasterInHeader = 76;

}  // namespace

CompoundFile::CompoundFile(std::string_view bytes, const std::string& file)
    : place_{.file = file}, bytes_(bytes) {
  if (bytes.size() < kHeaderSize) {
    RaiseDamaged("it is cut short");
  }
  const auto shift = Read16(bytes, kSectorShift);
  // Other sizes are allowed by nobody.
  if ((shift != 9 && shift != 12) || Read16(bytes, kSmallSectorShift) != 6) {
    RaiseDamaged("its sectors have an impossible size");
  }
  sector_size_ = std::size_t{1} << shift;
  small_limit_ = Read32(bytes, kSmallLimit);
  ReadTable(bytes);
  ReadDirectory(Read32(bytes, kDirectoryStart));
  if (entries_.empty()) {
    RaiseDamaged("it has no directory");
  }
  small_table_ = Read32(bytes, kSmallTableStart);
}

void CompoundFile::RaiseDamaged(const std::string& what) const {
  RaiseReadError(place_, "the file is damaged: " + what);
}

std::string_view CompoundFile::Sector(std::uint32_t sector) const {
  const std::uint64_t begin = (std::uint64_t{sector} + 1) * sector_size_;
  if (begin >= bytes_.size()) {
    RaiseDamaged("sector " + std::to_string(sector) + " is past its end");
  }
  // The last sector of some writers' files is not filled up.
  return bytes_.substr(static_cast<std::size_t>(begin), sector_size_);
}

void CompoundFile::ReadTable(std::string_view header) {
  const std::size_t limit = bytes_.size() / sector_size_ + 1;
  for (std::size_t i = kMasterInHeader; i < kHeaderSize; i += 4) {
    AddTableSector(Read32(header, i));
  }
  std::uint32_t master = Read32(header, kMasterStart);
  for (std::size_t steps = 0; master < kMaxRegularSector; ++steps) {
    const std::string_view sector = Sector(master);
    if (steps > limit || sector.size() < sector_size_) {
      RaiseDamaged("its table of sectors has no end");
    }
    for (std::size_t i = 0; i + 4 < sector_size_; i += 4) {
      AddTableSector(Read32(sector, i));
    }
    master = Read32(sector, sector_size_ - 4);
  }
}

void CompoundFile::AddTableSector(std::uint32_t sector) {
  if (sector >= kMaxRegularSector || next_.size() > bytes_.size() / sector_size_) {
    return;  // all sectors of the file are in the table already
  }
  const std::string_view table = Sector(sector);
  for (std::size_t i = 0; i + 4 <= table.size(); i += 4) {
    next_.push_back(Read32(table, i));
  }
}

std::string CompoundFile::Chain(std::uint32_t start, std::size_t enough) const {
  std::string joined;
  joined.reserve(std::min(enough, bytes_.size()) + sector_size_);
  std::vector<bool> visited(next_.size());
  for (std::uint32_t sector = start; sector < kMaxRegularSector && joined.size() < enough;) {
    joined += Sector(sector);
    if (sector >= next_.size()) {
      RaiseDamaged("a chain of sectors leaves the table");
    }
    if (visited[sector]) {
      RaiseDamaged("a chain of sectors runs in a circle");
    }
    visited[sector] = true;
    sector = next_[sector];
  }
  return joined;
}

void CompoundFile::ReadDirectory(std::uint32_t start) {
  const std::string directory = Chain(start, kMaxParts * kEntrySize + 1);
  if (directory.size() > kMaxParts * kEntrySize) {
    RaiseReadError(place_, "has more than " + std::to_string(kMaxParts) + " parts");
  }
  for (std::size_t i = 0; i + kEntrySize <= directory.size(); i += kEntrySize) {
    const std::string_view raw = std::string_view(directory).substr(i, kEntrySize);
    constexpr std::size_t kNameBytes = 64;
    const std::size_t length = Read16(raw, kNameBytes);  // of the name in bytes, its end included
    Entry entry;
    if (length >= 2 && length <= kNameBytes) {
      entry.name = platform::FoldCase(FromUtf16(raw.substr(0, length - 2)));
    }
    entry.is_stream = raw[66] == 2;
    entry.left = Read32(raw, 68);
    entry.right = Read32(raw, 72);
    entry.child = Read32(raw, 76);
    entry.start = Read32(raw, 116);
    // Files with small sectors leave rubbish in the upper half.
    entry.size = sector_size_ == 512 ? Read32(raw, 120) : Read64(raw, 120);
    entries_.push_back(std::move(entry));
  }
}

std::optional<std::string> CompoundFile::Stream(std::string_view name) const {
  const std::string folded = platform::FoldCase(name);
  // The children of the root are a tree; every entry is visited once at most, in whatever shape the
  // tree is. A storage in it has children of its own, which are not looked at.
  std::vector<bool> visited(entries_.size());
  std::vector<std::uint32_t> open{entries_.front().child};
  while (!open.empty()) {
    const std::uint32_t index = open.back();
    open.pop_back();
    if (index == kNoEntry || index >= entries_.size() || visited[index]) {
      continue;
    }
    visited[index] = true;
    const Entry& entry = entries_[index];
    if (entry.is_stream && entry.name == folded) {
      if (entry.size < small_limit_) {
        return SmallStream(entry);
      }
      // A size that no file has is cut short, whatever is read of it.
      const std::uint64_t most = bytes_.size() + sector_size_;
      std::string stream = Chain(entry.start, static_cast<std::size_t>(std::min(entry.size, most)));
      if (stream.size() < entry.size) {
        RaiseDamaged("the stream " + Quoted(name) + " is cut short");
      }
      stream.resize(static_cast<std::size_t>(entry.size));
      return stream;
    }
    open.push_back(entry.left);
    open.push_back(entry.right);
  }
  return std::nullopt;
}

std::string CompoundFile::SmallStream(const Entry& entry) const {
  // The stream of the root holds the small ones.
  const std::string small = Chain(entries_.front().start, bytes_.size());
  const std::string table = Chain(small_table_, small.size() / kSmallSectorSize * 4);
  if (entry.size > small.size()) {
    RaiseDamaged("a small stream is cut short");
  }
  std::string joined;
  std::size_t sector = entry.start;
  while (joined.size() < entry.size) {
    const std::size_t begin = sector * kSmallSectorSize;
    if (sector >= table.size() / 4 || begin >= small.size()) {
      RaiseDamaged("a small stream is cut short");
    }
    joined += small.substr(begin, kSmallSectorSize);
    sector = Read32(table, sector * 4);
  }
  joined.resize(static_cast<std::size_t>(entry.size));
  return joined;
}

}  // namespace nimbrel::spreadsheet
