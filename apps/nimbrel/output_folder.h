#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace nimbrel::cli {

/// Files for a folder. Nothing is seen of them until Commit: they stand in a folder beside it,
/// which takes its place in one step, so that the files in it are always those of one and the same
/// run. Let go without Commit, it leaves no trace.
class PendingFolder {
 public:
  /// Names and texts of the files.
  using Files = std::vector<std::pair<std::string, std::string>>;

  /// Writes the files aside. The folder may be there already if it holds nothing but files with
  /// names of `replaceable`. Raises CommandError if that is not so or the files cannot be written.
  PendingFolder(const std::string& path, const Files& files,
                const std::vector<std::string>& replaceable);
  ~PendingFolder();
  PendingFolder(PendingFolder&& other) noexcept;
  PendingFolder(const PendingFolder&) = delete;
  PendingFolder& operator=(const PendingFolder&) = delete;
  PendingFolder& operator=(PendingFolder&&) = delete;

  /// Puts the folder in place. Raises CommandError; the folder is then as it was.
  void Commit();

 private:
  std::filesystem::path path_;
  std::filesystem::path temporary_;  // empty: done
};

}  // namespace nimbrel::cli
