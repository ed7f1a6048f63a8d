#include "spreadsheet/package.h"

#include <zip.h>

#include <algorithm>
#include <utility>

#include "spreadsheet/limits.h"
#include "spreadsheet/little_endian.h"
#include "spreadsheet/read_error.h"
#include "spreadsheet/text_coding.h"

namespace nimbrel::spreadsheet {
namespace {

struct CloseFile {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};

std::string TooManyParts() {
  return "has more than " + std::to_string(kMaxParts) + " parts";
}

}  // namespace

void Package::Close::operator()(zip* archive) const {
  zip_discard(archive);
}

Package::Package(std::string_view bytes, std::string file) : file_(std::move(file)) {
  CheckDirectories(bytes);
  zip_error_t error;
  zip_error_init(&error);
  const auto raise = [&] {
    const std::string reason = zip_error_strerror(&error);
    zip_error_fini(&error);
    RaiseReadError({.file = file_}, "is no sound .xlsx package: " + reason);
  };
  zip_source_t* const source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
  if (source == nullptr) {
    raise();
  }
  archive_.reset(zip_open_from_source(source, ZIP_RDONLY, &error));
  if (!archive_) {
    zip_source_free(source);
    raise();
  }
  zip_error_fini(&error);
  ListParts();
}

/// The library reads every directory that the end of the file shows, and each whole, before it
/// takes one. So what they promise is looked at first.
void Package::CheckDirectories(std::string_view bytes) const {
  constexpr std::string_view kEndOfDirectory("PK\5\6");
  constexpr std::size_t kLongestEnd = 22 + 65'535;
  constexpr int kMostEnds = 4;  // some bytes may look like an end by chance
  const std::size_t first = bytes.size() - std::min(bytes.size(), kLongestEnd);
  int ends = 0;
  for (auto end = bytes.find(kEndOfDirectory, first); end != std::string_view::npos;
       end = bytes.find(kEndOfDirectory, end + 1)) {
    if (++ends > kMostEnds) {
      RaiseReadError({.file = file_}, "is no sound .xlsx package: it has more than one directory");
    }
    CheckDirectory(bytes, end);
  }
  if (ends == 0) {
    RaiseReadError({.file = file_}, "is no sound .xlsx package: it is cut short");
  }
}

/// `end` is where the record is that ends the directory.
void Package::CheckDirectory(std::string_view bytes, std::size_t end) const {
  constexpr std::size_t kCount = 10;
  if (bytes.size() - end < kCount + 2) {
    RaiseReadError({.file = file_}, "is no sound .xlsx package: it is cut short");
  }
  std::uint64_t count = Read16(bytes, end + kCount);
  // The larger form of the record has another in front of it, which says where it is.
  constexpr std::size_t kLocator = 20;
  constexpr std::size_t kLargeRecord = 56;
  if (end >= kLocator && bytes.substr(end - kLocator).starts_with("PK\6\7")) {
    const std::uint64_t large = Read64(bytes, end - kLocator + 8);
    if (large < bytes.size() && bytes.size() - large >= kLargeRecord) {
      const std::string_view record = bytes.substr(static_cast<std::size_t>(large));
      count = std::max({count, Read64(record, 24), Read64(record, 32)});
    }
  }
  if (count > kMaxParts) {
    RaiseReadError({.file = file_}, TooManyParts());
  }
}

void Package::ListParts() {
  const auto count = static_cast<std::uint64_t>(zip_get_num_entries(archive_.get(), 0));
  if (count > kMaxParts) {
    RaiseReadError({.file = file_}, TooManyParts());
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    const char* const raw = zip_get_name(archive_.get(), i, ZIP_FL_ENC_GUESS);
    if (raw == nullptr) {
      continue;
    }
    std::string name = raw;
    // Some writers for Windows put its own separator into the names.
    std::replace(name.begin(), name.end(), '\\', '/');
    name.erase(0, name.find_first_not_of('/'));
    if (name.empty() || name.back() == '/') {
      continue;
    }
    if (!parts_.try_emplace(name, i).second) {
      RaiseReadError({.file = file_}, "has the part " + Quoted(name) + " more than once");
    }
  }
}

void Package::Read(std::string_view part, const std::function<void(std::string_view)>& take) {
  const auto raise = [&](const std::string& reason) {
    RaiseReadError({.file = file_}, "part " + Quoted(part) + " " + reason);
  };
  const auto found = parts_.find(part);
  if (found == parts_.end()) {
    raise("is missing");
  }
  zip_stat_t stat;
  if (zip_stat_index(archive_.get(), found->second, 0, &stat) != 0) {
    raise(zip_strerror(archive_.get()));
  }
  if ((stat.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && stat.encryption_method != ZIP_EM_NONE) {
    raise("is encrypted");
  }
  // Other ways of compression may take any memory.
  if (stat.comp_method != ZIP_CM_STORE && stat.comp_method != ZIP_CM_DEFLATE) {
    raise("is compressed in a way that is not read");
  }
  if (stat.size > kMaxInflatedBytes) {
    raise("is larger than " + MebibytesText(kMaxInflatedBytes));
  }
  const std::unique_ptr<zip_file_t, CloseFile> file(
      zip_fopen_index(archive_.get(), found->second, 0));
  if (!file) {
    raise(std::string("cannot be read: ") + zip_strerror(archive_.get()));
  }
  std::string buffer(1 << 18, '\0');
  std::uint64_t size = 0;
  for (;;) {
    const auto got = zip_fread(file.get(), buffer.data(), buffer.size());
    if (got < 0) {
      raise(std::string("cannot be read: ") + zip_file_strerror(file.get()));
    }
    if (got == 0) {
      break;
    }
    size += static_cast<std::uint64_t>(got);
    inflated_ += static_cast<std::uint64_t>(got);
    if (size > stat.size) {
      raise("is longer than its header says");
    }
    if (inflated_ > kMaxInflatedBytes) {
      raise("takes what is read of the package past " + MebibytesText(kMaxInflatedBytes));
    }
    take(std::string_view(buffer.data(), static_cast<std::size_t>(got)));
  }
  if (size < stat.size) {
    raise("is cut short");
  }
}

}  // namespace nimbrel::spreadsheet
