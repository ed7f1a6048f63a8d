#include "platform/files.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "platform/win/wide_text.h"
#include "platform/win/win_api.h"

namespace nimbrel::platform {
namespace {

constexpr int kStandardError = 2;

[[noreturn]] void RaiseSystemError() {
  throw std::system_error(static_cast<int>(GetLastError()), std::system_category());
}

}  // namespace

PartialFile::PartialFile(const std::string& target) : target_(target) {
  for (int attempt = 0; file_ < 0; ++attempt) {
    path_ =
        target + ".part" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(attempt);
    file_ = _wopen(ToWide(path_).c_str(), _O_CREAT | _O_EXCL | _O_RDWR | _O_BINARY | _O_NOINHERIT,
                   _S_IREAD | _S_IWRITE);
    if (file_ < 0 && errno != EEXIST) {
      throw std::system_error(errno, std::generic_category());
    }
  }
}

PartialFile::~PartialFile() {
  if (file_ >= 0) {
    _close(file_);
  }
  DeleteFileW(ToWide(path_).c_str());  // what was put in place has another name
}

std::string PartialFile::CPath() const {
  return ToNarrow(path_);
}

void PartialFile::PutInPlace() {
  // What has not reached the disk must not take the place of what has.
  const int flushed = _commit(file_);
  const int reason = errno;
  _close(file_);
  file_ = -1;
  if (flushed != 0) {
    throw std::system_error(reason, std::generic_category());
  }
  if (MoveFileExW(ToWide(path_).c_str(), ToWide(target_).c_str(),
                  MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == FALSE) {
    RaiseSystemError();
  }
}

SilentErrors::SilentErrors() : before_(_dup(kStandardError)) {
  const int nowhere = _wsopen(L"NUL", _O_WRONLY | _O_NOINHERIT, _SH_DENYNO, 0);
  if (before_ >= 0 && nowhere >= 0) {
    std::fflush(stderr);
    _dup2(nowhere, kStandardError);
  }
  if (nowhere >= 0) {
    _close(nowhere);
  }
}

SilentErrors::~SilentErrors() {
  if (before_ >= 0) {
    std::fflush(stderr);
    _dup2(before_, kStandardError);
    _close(before_);
  }
}

// The temporary files are the user's own here, and so is what is made among them.

std::string UsersFolderName(const std::string& program) {
  return program;
}

void MakeUsersFolder(const std::string& path) {
  CreateDirectoryW(ToWide(path).c_str(), nullptr);
}

bool IsUsersFolder(const std::string& path) {
  const DWORD attributes = GetFileAttributesW(ToWide(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
         (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0;
}

std::string MakeNewFolder(const std::string& beginning) {
  for (int attempt = 0;; ++attempt) {
    std::string path =
        beginning + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(attempt);
    if (CreateDirectoryW(ToWide(path).c_str(), nullptr) != FALSE) {
      return path;
    }
    if (GetLastError() != ERROR_ALREADY_EXISTS) {
      RaiseSystemError();
    }
  }
}

}  // namespace nimbrel::platform
