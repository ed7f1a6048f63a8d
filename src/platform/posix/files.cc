#include "platform/files.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

namespace nimbrel::platform {
namespace {

[[noreturn]] void RaiseSystemError() {
  throw std::system_error(errno, std::generic_category());
}

}  // namespace

PartialFile::PartialFile(const std::string& target) : target_(target) {
  struct stat there {};
  if (stat(target.c_str(), &there) == 0) {
    permissions_ = static_cast<int>(there.st_mode & 07777);
  }
  // Nobody may read it before it has the permissions of what it takes the place of.
  const mode_t first = permissions_ >= 0 ? 0600 : 0666;
  for (int attempt = 0; file_ < 0; ++attempt) {
    path_ = target + ".part" + std::to_string(getpid()) + "-" + std::to_string(attempt);
    file_ = open(path_.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, first);
    if (file_ < 0 && errno != EEXIST) {
      RaiseSystemError();
    }
  }
}

PartialFile::~PartialFile() {
  close(file_);
  unlink(path_.c_str());  // what was put in place has another name
}

std::string PartialFile::CPath() const {
  return path_;
}

void PartialFile::PutInPlace() {
  if (permissions_ >= 0 && fchmod(file_, static_cast<mode_t>(permissions_)) != 0) {
    RaiseSystemError();
  }
  // What has not reached the disk must not take the place of what has.
  if ((fsync(file_) != 0 && errno != EINVAL && errno != EROFS) ||
      rename(path_.c_str(), target_.c_str()) != 0) {
    RaiseSystemError();
  }
}

SilentErrors::SilentErrors() : before_(dup(STDERR_FILENO)) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (before_ >= 0 && nowhere >= 0) {
    std::fflush(stderr);
    dup2(nowhere, STDERR_FILENO);
  }
  close(nowhere);
}

SilentErrors::~SilentErrors() {
  if (before_ >= 0) {
    std::fflush(stderr);
    dup2(before_, STDERR_FILENO);
    close(before_);
  }
}

std::string UsersFolderName(const std::string& program) {
  return program + "-" + std::to_string(geteuid());
}

void MakeUsersFolder(const std::string& path) {
  mkdir(path.c_str(), 0700);
}

bool IsUsersFolder(const std::string& path) {
  struct stat info {};
  return lstat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid() &&
         (info.st_mode & 077) == 0;
}

std::string MakeNewFolder(const std::string& beginning) {
  std::string path = beginning + "XXXXXX";
  if (mkdtemp(path.data()) == nullptr) {
    RaiseSystemError();
  }
  return path;
}

}  // namespace nimbrel::platform
