#include "nimbrel/output_folder.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>

#include "nimbrel/command_error.h"

namespace nimbrel::cli {
namespace {

namespace fs = std::filesystem;

CommandError CannotWrite(const fs::path& path, int error) {
  return FileTrouble(path.string() + ": cannot be written: " + std::strerror(error));
}

/// Raises CommandError where the folder holds what is not ours.
void RequireReplaceable(const fs::path& path, const std::vector<std::string>& replaceable) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (!fs::exists(status)) {
    return;
  }
  if (!fs::is_directory(status)) {
    throw CannotWrite(path, ENOTDIR);
  }
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    const std::string name = entry.path().filename().string();
    if (!entry.is_regular_file() ||
        std::find(replaceable.begin(), replaceable.end(), name) == replaceable.end()) {
      throw FileTrouble(fmt::format(
          "{}: expected a new folder or one with the tables of a run alone, found \"{}\" in it",
          path.string(), name));
    }
  }
}

void WriteFile(const fs::path& path, const std::string& text) {
  errno = 0;
  std::ofstream file(path, std::ios::binary);
  file << text;
  file.close();
  if (!file) {
    throw CannotWrite(path, errno != 0 ? errno : EIO);
  }
}

}  // namespace

PendingFolder::PendingFolder(const std::string& path, const Files& files,
                             const std::vector<std::string>& replaceable)
    : path_(fs::path(path).lexically_normal()) {
  if (!path_.has_filename()) {  // a closing slash
    path_ = path_.parent_path();
  }
  RequireReplaceable(path_, replaceable);
  std::string name = path_.string() + ".XXXXXX";
  if (::mkdtemp(name.data()) == nullptr) {
    throw CannotWrite(path_, errno);
  }
  temporary_ = name;
  try {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    if (::chmod(temporary_.c_str(), 0777 & ~mask) != 0) {
      throw CannotWrite(path_, errno);
    }
    for (const auto& [file, text] : files) {
      WriteFile(temporary_ / file, text);
    }
  } catch (...) {
    std::error_code ignored;
    fs::remove_all(temporary_, ignored);
    throw;
  }
}

PendingFolder::~PendingFolder() {
  if (!temporary_.empty()) {
    std::error_code ignored;
    fs::remove_all(temporary_, ignored);
  }
}

PendingFolder::PendingFolder(PendingFolder&& other) noexcept
    : path_(std::move(other.path_)), temporary_(std::exchange(other.temporary_, {})) {}

void PendingFolder::Commit() {
  // An empty folder is replaced by the first; of one with files the two change places, and the
  // destructor removes the former one.
  if (::rename(temporary_.c_str(), path_.c_str()) == 0) {
    temporary_.clear();
    return;
  }
  if (errno != ENOTEMPTY && errno != EEXIST) {
    throw CannotWrite(path_, errno);
  }
  if (::renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), RENAME_EXCHANGE) == 0) {
    return;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    throw CannotWrite(path_, errno);
  }
  // A file system without that: the former folder steps aside for a moment.
  const fs::path aside = temporary_.string() + ".old";
  if (::rename(path_.c_str(), aside.c_str()) != 0) {
    throw CannotWrite(path_, errno);
  }
  if (::rename(temporary_.c_str(), path_.c_str()) != 0) {
    const int error = errno;
    ::rename(aside.c_str(), path_.c_str());
    throw CannotWrite(path_, error);
  }
  temporary_ = aside;
}

}  // namespace nimbrel::cli
