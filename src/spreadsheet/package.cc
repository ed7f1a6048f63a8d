#include "spreadsheet/package.h"

#include <zip.h>

#include <algorithm>
#include <array>
#include <utility>

#include "spreadsheet/limits.h"
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
  CheckDirectory(bytes);
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

/// The library reads the whole directory at once, so its size is looked at first.
void Package::CheckDirectory(std::string_view bytes) const {
  constexpr std::string_view kEndOfDirectory("PK\5\6");
  constexpr std::size_t kCountOffset = 10;
  const auto end = bytes.rfind(kEndOfDirectory);
  if (end == std::string_view::npos || bytes.size() - end < kCountOffset + 2) {
    RaiseReadError({.file = file_}, "is no sound .xlsx package: it is cut short");
  }
  const auto byte = [&](std::size_t i) {
    return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[end + kCountOffset + i]));
  };
  if ((byte(0) | byte(1) << 8) > kMaxParts) {
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
  if (stat.size > kMaxPartBytes) {
    raise("is larger than " + std::to_string(kMaxPartBytes >> 20) + " MiB");
  }
  const std::unique_ptr<zip_file_t, CloseFile> file(
      zip_fopen_index(archive_.get(), found->second, 0));
  if (!file) {
    raise(std::string("cannot be read: ") + zip_strerror(archive_.get()));
  }
  std::array<char, 1 << 16> buffer;
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
      raise("takes the package past " + std::to_string(kMaxInflatedBytes >> 20) + " MiB");
    }
    take(std::string_view(buffer.data(), static_cast<std::size_t>(got)));
  }
  if (size < stat.size) {
    raise("is cut short");
  }
}

}  // namespace nimbrel::spreadsheet
