#include "engine/risk/date_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace nimbrel::engine {
namespace {

constexpr std::size_t kDatesPerTask = std::size_t{2} * kTileIterations;

/// Makes a file that goes when it is closed.
int MakeTemporaryFile() {
  const char* folder = std::getenv("TMPDIR");
  std::string name = folder != nullptr && *folder != '\0' ? folder : "/tmp";
  name += "/nimbrel-XXXXXX";
  const int file = mkostemp(name.data(), O_CLOEXEC);
  if (file < 0) {
    throw std::system_error(errno, std::generic_category(), "No temporary file " + name);
  }
  unlink(name.c_str());
  return file;
}

}  // namespace

DateFile::DateFile(std::int32_t tasks) : file_(MakeTemporaryFile()), tasks_(tasks) {}

DateFile::~DateFile() {
  close(file_);
}

void DateFile::WriteTile(std::int32_t tile, std::span<const Instant> dates) {
  std::span<const std::byte> bytes = std::as_bytes(dates);
  auto offset = static_cast<off_t>(bytes.size()) * tile;
  while (!bytes.empty()) {
    const ssize_t written = pwrite(file_, bytes.data(), bytes.size(), offset);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      throw std::system_error(written < 0 ? errno : ENOSPC, std::generic_category(),
                              "Cannot write the run's temporary file");
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    offset += written;
  }
}

void DateFile::ReadTile(std::int32_t tile, TaskIndex first, std::int32_t count,
                        std::span<Instant> dates) const {
  std::span<std::byte> bytes =
      std::as_writable_bytes(dates.first(static_cast<std::size_t>(count) * kDatesPerTask));
  auto offset = (static_cast<off_t>(tile) * tasks_ + first) *
                static_cast<off_t>(kDatesPerTask * sizeof(Instant));
  while (!bytes.empty()) {
    const ssize_t got = pread(file_, bytes.data(), bytes.size(), offset);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      throw std::system_error(got < 0 ? errno : EIO, std::generic_category(),
                              "Cannot read the run's temporary file");
    }
    bytes = bytes.subspan(static_cast<std::size_t>(got));
    offset += got;
  }
}

TileWriter::TileWriter(DateFile& file)
    : file_(file),
      rows_(std::size_t{2} * kBatch * static_cast<std::size_t>(file.tasks())),
      dates_(kDatesPerTask * static_cast<std::size_t>(file.tasks())) {}

void TileWriter::Add(const Scheduler& scheduler) {
  const auto tasks = static_cast<std::size_t>(file_.tasks());
  const std::span<Instant> rows =
      std::span(rows_).subspan(2 * tasks * static_cast<std::size_t>(added_ % kBatch), 2 * tasks);
  scheduler.CopyEarlyDates(rows.first(tasks), rows.last(tasks));
  if (++added_ % kBatch == 0) {
    TurnOver();
  }
}

void TileWriter::TurnOver() {
  const auto tasks = static_cast<std::size_t>(file_.tasks());
  const auto begin = static_cast<std::size_t>((added_ - 1) / kBatch) * kBatch;
  for (std::size_t task = 0; task < tasks; ++task) {
    Instant* const starts = dates_.data() + task * kDatesPerTask + begin;
    Instant* const finishes = starts + kTileIterations;
    for (std::size_t i = 0; i < kBatch; ++i) {
      starts[i] = rows_[2 * tasks * i + task];
      finishes[i] = rows_[2 * tasks * i + tasks + task];
    }
  }
}

void TileWriter::Write(std::int32_t tile) {
  if (added_ % kBatch != 0) {
    TurnOver();
  }
  file_.WriteTile(tile, dates_);
  added_ = 0;
}

}  // namespace nimbrel::engine
