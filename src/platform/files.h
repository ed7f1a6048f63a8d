#pragma once

#include <string>

/// Files and folders, in what systems differ in. Paths are UTF-8.
namespace nimbrel::platform {

/// A new, empty file beside another, which is to take the other's place when it is whole. It is
/// gone at the end unless it was put in place. What fails raises std::system_error.
class PartialFile {
 public:
  /// `target` is the other file, which need not be there.
  explicit PartialFile(const std::string& target);
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;
  ~PartialFile();

  const std::string& path() const { return path_; }
  /// The path as functions of the C library take it.
  std::string CPath() const;

  /// Brings what was written to the disk, and puts the file where the other is, with the
  /// permissions of that where the system has such. Nobody may have the file open any more. Not to
  /// be called twice.
  void PutInPlace();

 private:
  std::string target_;
  std::string path_;
  int file_ = -1;
  int permissions_ = -1;  // those of the file that was there
};

/// Standard error goes nowhere while this lives.
class SilentErrors {
 public:
  SilentErrors();
  SilentErrors(const SilentErrors&) = delete;
  SilentErrors& operator=(const SilentErrors&) = delete;
  ~SilentErrors();

 private:
  int before_;
};

/// The name of this user's folder of that program among the temporary files.
std::string UsersFolderName(const std::string& program);

/// Makes a folder for the user alone, if there is nothing of that name.
void MakeUsersFolder(const std::string& path);

/// Whether there is a folder that is the user's own, and no link to one.
bool IsUsersFolder(const std::string& path);

/// Makes a new folder for the user alone; its path is `beginning` with something behind that no
/// other has. Raises std::system_error if none can be made.
std::string MakeNewFolder(const std::string& beginning);

}  // namespace nimbrel::platform
